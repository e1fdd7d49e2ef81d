#include "xml/easy/internal/Items.h"

#include "xml/dom/CharData.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dtd/internal/PlainText.h"

namespace Xml {

const Object* Items::next(std::string& text) {
    text.clear();
    begin = at;
    const Object* first = nullptr;
    for (; at < all.size(); ++at) {
        const Object& node = *all[at];
        if (!isCharData(node)) {
            if (first == nullptr) first = all[at++];
            return first;
        }
        const std::size_t before = text.size();
        appendPlain(text, static_cast<const CharData&>(node));
        if (text.size() == before) continue;
        if (first == nullptr) {
            first = &node;
        } else if (kindOf(node) != kindOf(*first)) {
            text.resize(before);
            return first;
        }
    }
    return first;
}

std::string Items::held() const {
    std::string text;
    for (std::size_t i = begin; i < at; ++i) {
        if (isCharData(*all[i])) text += NodeAccess::text(static_cast<const CharData&>(*all[i]));
    }
    return text;
}

}  // namespace Xml
