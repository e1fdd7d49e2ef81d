#pragma once

#include "xml/dtd/GroupSpec.h"
#include <cstddef>
#include <memory>
#include <string>

namespace Xml {

class NameIndex;

// Alternatives: the first that matches is taken, even if a later one would have let the rest of the content match. It
// owns them.
class ORVXML_API ChoiceSpec : public GroupSpec {
public:
    explicit ChoiceSpec(Dtd* dtd);

    // A deep copy that belongs to the same Dtd.
    ChoiceSpec(const ChoiceSpec& other);
    ~ChoiceSpec() override;

    // Appends an alternative and takes ownership of it; the forms with a repetition wrap what they are given.
    void addChoice(ChildrenSpec* alternative);
    void addChoice(const std::string& name, RepType repetition);
    void addChoice(CpSpec* particle, RepType repetition);

    // Whether character data is one more alternative, after all others; false at first.
    void addCharDataAsChoice(bool allowed);

    bool validate(ChildQueue& children) const override;

    // With fewer than two alternatives nothing is written, and "<ChoiceSpec::toStream> need at least 2 items" is
    // reported.
    void toStream(OutStream& out, bool outermost) const override;
    CpSpec* clone(Dtd* dtd) const override;

protected:
    void noteMember(const ChildrenSpec& member) override;

private:
    friend struct SpecAccess;

    bool charData = false;

    // The leading alternatives that are names: how many, and the first place of each name (null without any), so that a
    // wide choice is not tried one by one.
    std::size_t leadingCount = 0;
    std::unique_ptr<NameIndex> leadingNames;
};

}  // namespace Xml
