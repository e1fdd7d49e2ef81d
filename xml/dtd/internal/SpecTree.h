#pragma once

#include "xml/dtd/GroupSpec.h"

namespace Xml {

// Copies and deletes nests of groups. Groups may be nested as deep as a text is long, so neither recurses.
struct SpecTree {
    // Allocates nothing.
    static void deleteMembers(GroupSpec& group);

    // Appends copies that belong to `dtd`. Members of a caller's own class are cloned by themselves.
    static void copyMembers(const GroupSpec& from, GroupSpec& to, Dtd* dtd);

private:
    // The particle of a member as a group that the loops go into, else null.
    static GroupSpec* groupOf(const ChildrenSpec& member);
};

}  // namespace Xml
