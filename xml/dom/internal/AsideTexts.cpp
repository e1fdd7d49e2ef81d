#include "xml/dom/internal/AsideTexts.h"

#include "xml/dom/internal/Arena.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <mutex>
#include <unordered_map>

namespace Xml {

namespace {

struct Table {
    std::mutex mutex;
    std::unordered_map<const Object*, std::string> texts;
};

// Nodes may be static objects.
Table& table() {
    static NeverDestroyed<Table> theOne;
    return theOne.get();
}

}  // namespace

std::string& AsideTexts::of(const Object& node) {
    Table& all = table();
    const std::lock_guard<std::mutex> lock(all.mutex);
    std::string& text = all.texts[&node];
    NodeAccess::marks(node).setAsideText(true);
    Arena::noteChange(node);
    return text;
}

void AsideTexts::drop(const Object& node) noexcept {
    Table& all = table();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.texts.erase(&node);
}

}  // namespace Xml
