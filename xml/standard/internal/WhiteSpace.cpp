#include "xml/standard/internal/WhiteSpace.h"

namespace Xml {

bool WhiteSpace::isAllWhite(std::string_view text) {
    const char* const end = text.data() + text.size();
    return Scan::endOfAny<' ', '\t', '\n', '\r'>(text.data(), end) == end;
}

void WhiteSpace::endHeld() {
    if (levels.back().hasElements) {
        dropHeld();
    } else {
        keepHeld();
    }
}

// What waits at the end of an element with others in it is dropped then.
void WhiteSpace::addWhite(std::string_view text, const Place* place, bool isLast) {
    const Level& level = levels.back();
    if (space == Space::Dropped) return;
    const char* const end = text.data() + text.size();
    const bool isKept = space == Space::All || level.isPreserved || level.hasText ||
                        (text.front() != '\n' && Scan::findAny<'\n', '\r'>(text.data(), end) == end);
    if (isKept) return addText(text, place);
    if (isLast && level.hasElements) return;
    if (place != nullptr) places.push_back(*place);
    const std::size_t firstPlace = places.size() - (place != nullptr ? 1 : 0);
    if (!held.emplace_back(tree.childCount(), text, bytes.size(), firstPlace).isShort()) bytes += text;
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
    const std::size_t first = levels.back().firstHeld;
    std::vector<TreeBuilder::TextBefore> texts;
    for (std::size_t i = first; i < held.size(); ++i) {
        const Place* const place = places.empty() ? nullptr : &places[held[i].firstPlace];
        for (std::size_t j = 0; j < held[i].count; ++j)
            texts.push_back({held[i].child + j, viewOf(held[i]), place != nullptr ? place + j : nullptr});
    }
    tree.insertTexts(texts);
    dropHeld();
}

// That of the innermost element.
void WhiteSpace::dropHeld() {
    const std::size_t first = levels.back().firstHeld;
    if (bytes.size() > held[first].from) bytes.resize(held[first].from);
    places.resize(held[first].firstPlace);
    held.erase(held.begin() + static_cast<std::ptrdiff_t>(first), held.end());
}

}  // namespace Xml
