#pragma once

#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/dtd/internal/NameIndex.h"
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Xml {

// Whether a model or particle is of exactly this class; a class derived from it may override what the library's loops
// do.
template <class Spec, class Base>
bool isExactlySpec(const Base& spec) {
    return typeid(spec) == typeid(Spec);
}

// The insides of content models.
struct SpecAccess {
    static Dtd* dtd(const ContentSpec& spec) { return spec.dtd; }
    static Dtd* dtd(const CpSpec& spec) { return spec.dtd; }
    static const std::string& name(const NameSpec& spec) { return spec.name; }

    // Of a name that is none to the dialect.
    static std::unique_ptr<NameSpec> makeName(Dtd* dtd, std::string_view name) {
        auto made = std::make_unique<NameSpec>(dtd, std::string());
        made->name = name;
        return made;
    }

    static const std::vector<std::string>& names(const MixedSpec& spec) { return spec.names; }
    static bool hasName(const MixedSpec& spec, const std::string& name) {
        return spec.index != nullptr && spec.index->find(name) != NameIndex::kNone;
    }

    static RepType repetition(const ChildrenSpec& spec) { return spec.repetition; }
    static CpSpec& particle(const ChildrenSpec& spec) { return *spec.particle; }

    // Gives the particle up: it becomes the caller's, and the rest is of no use but to be deleted.
    static CpSpec* releaseParticle(ChildrenSpec& spec) { return spec.particle.release(); }

    using Members = std::vector<std::unique_ptr<ChildrenSpec>>;
    static const Members& members(const GroupSpec& group) { return group.members; }

    static bool charData(const ChoiceSpec& choice) { return choice.charData; }

    // How many alternatives at the front are names, and the first place of such a name among them.
    static std::size_t leadingCount(const ChoiceSpec& choice) { return choice.leadingCount; }
    static std::size_t findLeading(const ChoiceSpec& choice, const std::string& name) {
        return choice.leadingNames != nullptr ? choice.leadingNames->find(name) : NameIndex::kNone;
    }

    // The particle as a choice or sequence of exactly those classes, else null.
    static const GroupSpec* asGroup(const CpSpec& particle) {
        const bool isGroup = isExactlySpec<ChoiceSpec>(particle) || isExactlySpec<SeqSpec>(particle);
        return isGroup ? static_cast<const GroupSpec*>(&particle) : nullptr;
    }
};

}  // namespace Xml
