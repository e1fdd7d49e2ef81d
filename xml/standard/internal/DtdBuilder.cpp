#include "xml/standard/internal/DtdBuilder.h"

#include "xml/dtd/AttEnumeratedType.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/AttTokenType.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/internal/EntityValues.h"
#include "xml/standard/internal/ModelBuilder.h"
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// What stands between the brackets of "(a|b)".
std::vector<std::string> choicesOf(std::string_view type) {
    std::vector<std::string> choices;
    std::size_t from = type.find('(');
    while (from < type.size() - 1) {
        const std::size_t to = type.find_first_of("|)", from + 1);
        choices.emplace_back(type.substr(from + 1, to - from - 1));
        from = to;
    }
    return choices;
}

std::unique_ptr<AttDef> makeDefinition(const AttributeRule& rule) {
    using Kind = AttTokenType::Kind;
    static constexpr std::pair<std::string_view, Kind> kTokenTypes[] = {
        {"ID", Kind::Id},
        {"IDREF", Kind::IdRef},
        {"IDREFS", Kind::IdRefs},
        {"ENTITY", Kind::EntityName},
        {"NMTOKEN", Kind::NmToken},
        {"NMTOKENS", Kind::NmTokens},
        {"ENTITIES", Kind::EntityNames},
    };
    for (const auto& [keyword, kind] : kTokenTypes) {
        if (rule.type == keyword) return std::make_unique<AttTokenType>(kind, rule.defaultRule, rule.value);
    }
    if (rule.isCData) return std::make_unique<AttStringType>(rule.defaultRule, rule.value);
    const auto kind = rule.type[0] == '(' ? AttEnumeratedType::Kind::Tokens : AttEnumeratedType::Kind::Notations;
    return std::make_unique<AttEnumeratedType>(kind, choicesOf(rule.type), rule.defaultRule, rule.value);
}

void addElements(Dtd& dtd, const Declarations& declared) {
    for (const auto& [element, text] : declared.models) {
        std::unique_ptr<ContentSpec> model = makeModel(text, dtd);
        dtd.addElementDecl(element, model.get());
        model.release();
    }
    for (const auto& [element, rules] : declared.elements) {
        for (const auto& [attribute, rule] : rules.all) {
            std::unique_ptr<AttDef> definition = makeDefinition(rule);
            dtd.addAttDecl(element, attribute, definition.get());
            definition.release();
        }
    }
}

void addEntities(Dtd& dtd, const Declarations& declared) {
    for (const auto& [entity, value] : entityValues(declared.general)) dtd.setEntity(std::string(entity), value);
    for (const auto& [entity, declaration] : declared.general) dtd.addEntityDecl(entity, declaration);
    for (const auto& [entity, declaration] : declared.parameter) dtd.addParameterEntityDecl(entity, declaration);
    for (const auto& [notation, declaration] : declared.notations) dtd.addNotationDecl(notation, declaration);
}

}  // namespace

std::unique_ptr<Dtd> makeDtd(const Declarations& declared) {
    if (!declared.isPresent) return nullptr;
    auto dtd = std::make_unique<Dtd>(declared.name);
    addElements(*dtd, declared);
    addEntities(*dtd, declared);
    return dtd;
}

}  // namespace Xml
