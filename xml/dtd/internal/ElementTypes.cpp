#include "xml/dtd/internal/ElementTypes.h"

#include "xml/dtd/AnySpec.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/internal/SpecAccess.h"

namespace Xml {

const ElementType* ElementTypes::find(const std::string& name) {
    const auto known = types.lower_bound(name);
    if (known != types.end() && known->first == name) return &known->second;
    const auto* const declaration = DtdAccess::findDeclaration(dtd, name);
    if (declaration == nullptr || declaration->second == nullptr) return nullptr;
    ElementType type{};
    type.attributes = DtdAccess::findList(dtd, name);
    if (!setContent(type, *declaration->second)) return nullptr;
    type.mayBeEmpty = states.mayEnd(type.start);
    return &types.emplace_hint(known, declaration->first, type)->second;
}

bool ElementTypes::setContent(ElementType& type, const ContentSpec& model) {
    using Content = ElementType::Content;
    type.start = ModelStates::kEnd;
    type.content = Content::Elements;
    if (isExactlySpec<EmptySpec>(model)) return true;
    if (isExactlySpec<ChildrenSpec>(model)) {
        type.start = states.add(static_cast<const ChildrenSpec&>(model), dtd);
        return type.start != ModelStates::kNone;
    }
    type.content = Content::Anything;
    if (isExactlySpec<AnySpec>(model)) return true;
    if (SpecAccess::dtd(model) != &dtd) return false;
    type.content = Content::Text;
    if (isExactlySpec<CharSpec>(model)) return true;
    if (!isExactlySpec<MixedSpec>(model)) return false;
    const std::vector<std::string>& names = SpecAccess::names(static_cast<const MixedSpec&>(model));
    if (names.empty()) return true;
    type.content = Content::Mixed;
    type.start = states.addAnyOf(names);
    return true;
}

}  // namespace Xml
