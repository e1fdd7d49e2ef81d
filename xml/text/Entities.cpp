#include "xml/text/Entities.h"

#include "xml/dtd/Dtd.h"
#include "xml/text/internal/ClassicNumbers.h"
#include "xml/text/internal/Expansion.h"
#include "xml/text/internal/StdEntities.h"
#include <algorithm>
#include <array>
#include <string_view>

namespace Xml {

namespace {

struct StdEntity {
    std::string_view name;
    char value;
};

constexpr std::array<StdEntity, 5> oStdEntities = {
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

bool isCharReference(const std::string& name) { return name.size() >= 2 && name[0] == '#'; }

// The byte that a standard entity or a character reference stands for, 0 for none.
char stdValue(const std::string& name) {
    if (isCharReference(name)) {
        const std::string_view number = name;
        const bool hexadecimal = name[1] == 'x';
        const unsigned code = Classic::extractUnsigned(number.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
        return static_cast<char>(static_cast<unsigned char>(code));
    }
    for (const auto& entity : oStdEntities) {
        if (entity.name == name) return entity.value;
    }
    return 0;
}

const StdEntity* findByValue(const DataHolder& value) {
    if (value.size() != 1) return nullptr;
    const auto* const found = std::find_if(oStdEntities.begin(), oStdEntities.end(),
                                           [&value](const StdEntity& e) { return e.value == value[0]; });
    return found != oStdEntities.end() ? found : nullptr;
}

// The reference for a byte that is written as one, empty for all others.
std::string_view referenceFor(char c) {
    switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\'': return "&apos;";
    default: return {};
    }
}

}  // namespace

bool isEntityName(const std::string& name, const Dtd* dtd) {
    return isCharReference(name) || stdValue(name) != 0 || (dtd != nullptr && dtd->isEntityName(name));
}

bool isEntityValue(const DataHolder& value, const Dtd* dtd) {
    return findByValue(value) != nullptr || (dtd != nullptr && dtd->isEntityValue(value));
}

std::string getEntityName(const DataHolder& value, const Dtd* dtd) {
    if (const StdEntity* entity = findByValue(value)) return std::string(entity->name);
    if (dtd != nullptr && dtd->isEntityValue(value)) return dtd->getEntityName(value);
    return value;
}

std::string getEntityValue(const std::string& name, const Dtd* dtd) {
    if (const char value = stdValue(name)) return std::string(1, value);
    if (dtd != nullptr && dtd->isEntityName(name)) return dtd->getEntityValue(name);
    return "&" + name + ";";
}

DataHolder& replaceEntities(DataHolder& text, const Dtd* dtd) {
    Expansion expansion;
    expandReferences(text, dtd, expansion);
    return text;
}

bool expandReferences(DataHolder& text, const Dtd* dtd, Expansion& expansion) {
    std::size_t reference = text.find('&');
    if (reference == std::string::npos) return true;

    DataHolder result;
    result.reserve(text.size());
    std::string name;
    std::size_t done = 0;
    while (reference != std::string::npos) {
        const std::size_t end = std::min(text.find(';', reference), text.size());
        name.assign(text, reference + 1, end - reference - 1);
        result.append(text, done, reference - done);
        const char byte = stdValue(name);
        if (byte != 0) {
            result += byte;
        } else if (dtd != nullptr && dtd->isEntityName(name)) {
            const DataHolder& value = dtd->getEntityValue(name);
            expansion.made += static_cast<std::int64_t>(value.size());
            if (expansion.made > expansion.most) return false;
            result += value;
        } else {
            result.append(1, '&').append(name).append(1, ';');
        }
        done = end + 1;
        reference = done < text.size() ? text.find('&', done) : std::string::npos;
    }
    if (done < text.size()) result.append(text, done);
    if (!result.empty()) text = std::move(result);
    return true;
}

DataHolder& insertStdEntities(DataHolder& text) {
    if (text.find_first_of("&<>\"'") == std::string::npos) return text;
    DataHolder result;
    result.reserve(text.size() + text.size() / 8);
    appendEscaped(result, text);
    text = std::move(result);
    return text;
}

std::string toXmlString(const DataHolder& text) {
    std::string result(1, '"');
    result.reserve(text.size() + 2);
    appendEscaped(result, text);
    result += '"';
    return result;
}

void appendEscaped(std::string& result, const std::string& text) {
    const char* done = text.data();
    const char* const end = done + text.size();
    for (const char* at = done; at != end; ++at) {
        const std::string_view reference = referenceFor(*at);
        if (reference.empty()) continue;
        result.append(done, at).append(reference);
        done = at + 1;
    }
    result.append(done, end);
}

}  // namespace Xml
