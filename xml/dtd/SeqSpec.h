#pragma once

#include "xml/dtd/GroupSpec.h"
#include <string>

namespace Xml {

// A sequence: all members, in order. It owns them. An empty one matches without taking anything.
class ORVXML_API SeqSpec : public GroupSpec {
public:
    explicit SeqSpec(Dtd* dtd);

    // A deep copy that belongs to the same Dtd.
    SeqSpec(const SeqSpec& other);
    ~SeqSpec() override;

    // Appends a member and takes ownership of it; the forms with a repetition wrap what they are given.
    void add(ChildrenSpec* member);
    void add(const std::string& name, RepType repetition);
    void add(CpSpec* particle, RepType repetition);

    bool validate(ChildQueue& children) const override;

    // An empty sequence writes nothing, and "<SeqSpec::toStream> need at least 1 element" is reported.
    void toStream(OutStream& out, bool outermost) const override;
    CpSpec* clone(Dtd* dtd) const override;
};

}  // namespace Xml
