#include "xml/standard/internal/WhiteSpace.h"

#include "xml/stream/internal/Scan.h"

namespace Xml {

bool WhiteSpace::isAllWhite(std::string_view text) {
    const char* const end = text.data() + text.size();
    return Scan::endOfAny<' ', '\t', '\n', '\r'>(text.data(), end) == end;
}

void WhiteSpace::begin(std::string_view spaceAttribute) {
    bool isPreserved = levels.empty() ? isPreservedAround : levels.back().isPreserved;
    if (spaceAttribute == "preserve") isPreserved = true;
    if (spaceAttribute == "default") isPreserved = false;
    if (!levels.empty()) levels.back().hasElements = true;
    levels.push_back({held.size(), bytes.size(), isPreserved, false, false});
}

void WhiteSpace::end() {
    const Level& level = levels.back();
    if (!level.hasElements) keepHeld();
    held.erase(held.begin() + static_cast<std::ptrdiff_t>(level.firstHeld), held.end());
    bytes.resize(level.heldBytes);
    levels.pop_back();
}

void WhiteSpace::addWhite(std::string_view text, const Place* place) {
    const Level& level = levels.back();
    if (space == Space::Dropped) return;
    const char* const end = text.data() + text.size();
    const bool isKept =
        space == Space::All || level.isPreserved || level.hasText || Scan::findAny<'\n', '\r'>(text.data(), end) == end;
    if (isKept) return addText(text, place);
    held.emplace_back(tree.childCount(), bytes.size(), text.size(), place);
    bytes += text;
}

void WhiteSpace::addOther(std::string_view text, const Place* place, bool isPadded) {
    noteOther();
    addText(text, place, isPadded);
}

void WhiteSpace::noteOther() {
    Level& level = levels.back();
    level.hasText = true;
    if (held.size() > level.firstHeld) keepHeld();
}

void WhiteSpace::addText(std::string_view text, const Place* place, bool isPadded) {
    if (place != nullptr) {
        tree.addText(text, isPadded, place);
    } else {
        tree.addText(text, isPadded);
    }
}

void WhiteSpace::keepHeld() {
    const Level& level = levels.back();
    if (held.size() == level.firstHeld) return;
    std::vector<TreeBuilder::TextBefore> texts;
    texts.reserve(held.size() - level.firstHeld);
    for (std::size_t i = level.firstHeld; i < held.size(); ++i) {
        const Place& place = held[i].place;
        texts.push_back({held[i].child, std::string_view(bytes).substr(held[i].from, held[i].size),
                         place.line > 0 ? &place : nullptr});
    }
    tree.insertTexts(texts);
    held.erase(held.begin() + static_cast<std::ptrdiff_t>(level.firstHeld), held.end());
    bytes.resize(level.heldBytes);
}

}  // namespace Xml
