#pragma once

#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include <string>
#include <typeinfo>
#include <vector>

namespace Xml {

// Whether a model or particle is of exactly this class; a class derived from it may override what the library's loops do.
template <class Spec, class Base>
bool isExactlySpec(const Base& spec) {
    return typeid(spec) == typeid(Spec);
}

// The insides of content models, and what goes through whole nests of groups: with a stack of its own, because groups may be
// nested as deep as a text is long.
struct SpecAccess {
    static Dtd* dtd(const ContentSpec& spec) { return spec.dtd; }
    static Dtd* dtd(const CpSpec& spec) { return spec.dtd; }
    static const std::string& name(const NameSpec& spec) { return spec.name; }
    static RepType repetition(const ChildrenSpec& spec) { return spec.repetition; }
    static const CpSpec& particle(const ChildrenSpec& spec) { return *spec.particle; }
    static const std::vector<ChildrenSpec*>& members(const GroupSpec& group) { return group.members; }
    static bool charData(const ChoiceSpec& choice) { return choice.charData; }

    // The particle as a choice or sequence of exactly those classes, else null.
    static const GroupSpec* asGroup(const CpSpec& particle) {
        const bool isGroup = isExactlySpec<ChoiceSpec>(particle) || isExactlySpec<SeqSpec>(particle);
        return isGroup ? static_cast<const GroupSpec*>(&particle) : nullptr;
    }

    static void deleteMembers(GroupSpec& group);
    static void copyMembers(const GroupSpec& from, GroupSpec& to, Dtd* dtd);

    // `isChoice`: else it is a sequence.
    static void writeGroup(const GroupSpec& group, bool isChoice, bool outermost, OutStream& out);
    static void writeMark(RepType repetition, OutStream& out);
};

}  // namespace Xml
