#pragma once

#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ContentSpec.h"
#include "xml/dtd/RepType.h"
#include <memory>
#include <string>

namespace Xml {

class CpSpec;

// A content particle with its repetition: the children model of an element, or a member of a choice or sequence.
class ORVXML_API ChildrenSpec : public ContentSpec {
public:
    // Takes ownership of the particle.
    ChildrenSpec(Dtd* dtd, CpSpec* particle, RepType repetition);

    // Around a new NameSpec.
    ChildrenSpec(Dtd* dtd, const std::string& name, RepType repetition);

    // A deep copy that belongs to the same Dtd.
    ChildrenSpec(const ChildrenSpec& other);
    ~ChildrenSpec() override;

    // Whether the particle matches and takes every child.
    bool validate(const std::vector<Object*>& children) const override;

    // Takes what matches from the head of the queue, as the particle alone would; by the repetition as often as it
    // matches. A repetition ends with a pass that took nothing.
    bool validate(ChildQueue& children) const;

    void toStream(OutStream& out) const override;
    void toStream(OutStream& out, bool outermost) const;
    ContentSpec* clone(Dtd* dtd) const override;

private:
    friend struct SpecAccess;
    friend struct SpecTree;

    RepType repetition;
    std::unique_ptr<CpSpec> particle;
};

}  // namespace Xml
