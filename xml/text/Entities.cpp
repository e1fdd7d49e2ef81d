#include "xml/text/Entities.h"

#include "xml/dtd/Dtd.h"
#include "xml/text/internal/Decode.h"
#include "xml/text/internal/Escape.h"
#include "xml/text/internal/Expansion.h"
#include "xml/text/internal/LargePages.h"
#include <string_view>
#include <utility>

namespace Xml {

namespace {

// The name of a value that is one of the five characters, empty for all others.
std::string_view standardName(const DataHolder& value) {
    return value.size() == 1 ? standardNameFor(value[0]) : std::string_view();
}

// Looks entities up in a Dtd, which may be null.
class DtdEntities {
public:
    explicit DtdEntities(const Dtd* dtd) : dtd_(dtd) {}

    const std::string* operator()(std::string_view name) {
        if (dtd_ == nullptr) return nullptr;
        name_ = name;
        return dtd_->isEntityName(name_) ? &dtd_->getEntityValue(name_) : nullptr;
    }

private:
    const Dtd* dtd_;
    std::string name_;  // kept from one look-up to the next for its storage
};

}  // namespace

bool isEntityName(const std::string& name, const Dtd* dtd) {
    return isCharReference(name) || standardValue(name) != 0 || (dtd != nullptr && dtd->isEntityName(name));
}

bool isEntityValue(const DataHolder& value, const Dtd* dtd) {
    return !standardName(value).empty() || (dtd != nullptr && dtd->isEntityValue(value));
}

std::string getEntityName(const DataHolder& value, const Dtd* dtd) {
    if (const std::string_view name = standardName(value); !name.empty()) return std::string(name);
    if (dtd != nullptr && dtd->isEntityValue(value)) return dtd->getEntityName(value);
    return value;
}

std::string getEntityValue(const std::string& name, const Dtd* dtd) {
    if (const char value = standardValue(name)) return std::string(1, value);
    if (dtd != nullptr && dtd->isEntityName(name)) return dtd->getEntityValue(name);
    return "&" + name + ";";
}

DataHolder& replaceEntities(DataHolder& text, const Dtd* dtd) {
    Expansion expansion;
    expandReferences(text, dtd, expansion);
    return text;
}

bool expandReferences(DataHolder& text, const Dtd* dtd, Expansion& expansion) {
    if (text.find('&') == std::string::npos) return true;
    DataHolder result;
    result.reserve(text.size());
    if (!appendDecoded(result, text, DtdEntities(dtd), expansion)) return false;
    if (!result.empty()) text = std::move(result);
    return true;
}

DataHolder decodedText(std::string_view text, const Dtd* dtd) {
    Expansion expansion;
    DataHolder result;
    LargePages::reserve(result, text.size());
    appendDecoded(result, text, DtdEntities(dtd), expansion);
    if (result.empty()) result.assign(text);
    return result;
}

DataHolder& insertStdEntities(DataHolder& text) {
    if (!needsEscaping(text)) return text;
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

}  // namespace Xml
