#include "xml/standard/internal/EntityValues.h"

#include "xml/standard/internal/References.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// Makes the texts, with a stack of its own: entities may refer to each other as deep as there are some.
class EntityTexts {
public:
    explicit EntityTexts(const Entities& general) : declared(general) {
        for (const auto& [name, entity] : declared) left += kTimes * entity.text.size();
    }

    std::map<std::string_view, std::string> make() {
        for (const auto& [name, entity] : declared) {
            if (begin(name, entity)) complete();
        }
        std::map<std::string_view, std::string> texts;
        for (auto& [name, value] : values) texts.emplace_hint(texts.end(), name, std::move(value.text));
        return texts;
    }

private:
    static constexpr std::size_t kTimes = 16;

    struct Value {
        std::string text;
        bool isComplete = false;
    };

    // A value that is being made, and what is left of the replacement text.
    struct Open {
        std::string_view rest;
        Value* value;
    };

    // False where there is nothing to do: it has begun before, or is not internal.
    bool begin(const std::string& name, const DeclaredEntity& entity) {
        if (entity.kind != EntityDecl::Kind::Internal) return false;
        const auto [place, isNew] = values.try_emplace(name);
        if (isNew) open.push_back({entity.text, &place->second});
        return isNew;
    }

    void complete() {
        while (!open.empty()) {
            Open& here = open.back();
            const std::size_t next = std::min(here.rest.find('&'), here.rest.size());
            here.value->text += here.rest.substr(0, next);
            here.rest.remove_prefix(next);
            if (!here.rest.empty()) {
                takeReference(here);
            } else {
                here.value->isComplete = true;
                open.pop_back();
            }
        }
    }

    // One to a text that has to be made first is looked at again then.
    void takeReference(Open& here) {
        const std::string_view reference = References::first(here.rest);
        if (!takeCharacter(here.value->text, reference)) {
            const auto entity = declared.find(nameIn(reference));
            const bool isDeclared = entity != declared.end();
            if (isDeclared && begin(entity->first, entity->second)) return;
            const Value* const value = isDeclared ? valueOf(entity->first) : nullptr;
            here.value->text += value != nullptr ? std::string_view(value->text) : reference;
        }
        here.rest.remove_prefix(reference.size());
    }

    static std::string_view nameIn(std::string_view reference) {
        return reference.size() > 1 ? reference.substr(1, reference.size() - 2) : std::string_view();
    }

    static bool takeCharacter(std::string& text, std::string_view reference) {
        const bool isNumber = reference.substr(1, 1) == "#";
        const auto byte = static_cast<unsigned char>(Syntax::predefined(nameIn(reference)));
        const char32_t character = isNumber ? References::characterOf(reference) : byte;
        if (character != 0) Utf8::append(text, character);
        return character != 0;
    }

    // Null where there is none, or no room for it; then there is none for any other.
    const Value* valueOf(const std::string& name) {
        const auto value = values.find(name);
        if (value == values.end() || !value->second.isComplete) return nullptr;
        const std::size_t size = value->second.text.size();
        const bool hasRoom = size <= left;
        left = hasRoom ? left - size : 0;
        return hasRoom ? &value->second : nullptr;
    }

    const Entities& declared;
    std::size_t left = std::size_t{64} << 10;  // what references may still make
    std::map<std::string_view, Value> values;
    std::vector<Open> open;
};

}  // namespace

std::map<std::string_view, std::string> entityValues(const Entities& general) { return EntityTexts(general).make(); }

}  // namespace Xml
