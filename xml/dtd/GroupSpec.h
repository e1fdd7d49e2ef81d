#pragma once

#include "xml/dtd/CpSpec.h"
#include "xml/dtd/RepType.h"
#include <memory>
#include <string>
#include <vector>

namespace Xml {

class ChildrenSpec;

// What choices and sequences share: an ordered list of members, which they own.
class ORVXML_API GroupSpec : public CpSpec {
public:
    ~GroupSpec() override;

protected:
    explicit GroupSpec(Dtd* dtd);
    GroupSpec(const GroupSpec&) = delete;

    // Takes ownership; the forms with a repetition wrap what they are given in a member of their own.
    void append(ChildrenSpec* member);
    void append(const std::string& name, RepType repetition);
    void append(CpSpec* particle, RepType repetition);

    // Called before a member is appended.
    virtual void noteMember(const ChildrenSpec& member);

private:
    friend struct SpecAccess;
    friend struct SpecTree;

    std::vector<std::unique_ptr<ChildrenSpec>> members;
    GroupSpec* outer = nullptr;  // while a nest of groups is being deleted: the way back up
};

}  // namespace Xml
