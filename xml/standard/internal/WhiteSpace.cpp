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

void WhiteSpace::addOtherWhite(std::string_view text, std::int64_t offset, bool isLast) {
    const Level& level = levels.back();
    if (space == Space::Dropped) return;
    const char* const end = text.data() + text.size();
    const bool isKept = space == Space::All || level.isPreserved || level.hasText ||
                        (text.front() != '\n' && Scan::findAny<'\n', '\r'>(text.data(), end) == end);
    if (isKept) return tree.addText(text, false, offset);
    if (isLast && level.hasElements) return;
    const std::size_t firstOffset = offsets.size();
    if (offset != Marks::kNoOffset) offsets.push_back(offset);
    if (!held.emplace_back(tree.childCount(), text, bytes.size(), firstOffset).isShort()) bytes += text;
}

void WhiteSpace::addOther(std::string_view text, std::int64_t offset, bool isPadded) {
    noteOther();
    tree.addText(text, isPadded, offset);
}

void WhiteSpace::noteOther() {
    Level& level = levels.back();
    level.hasText = true;
    if (held.size() > level.firstHeld) keepHeld();
}

void WhiteSpace::keepHeld() {
    const std::size_t first = levels.back().firstHeld;
    std::vector<TreeBuilder::TextBefore> texts;
    for (std::size_t i = first; i < held.size(); ++i) {
        for (std::size_t j = 0; j < held[i].count; ++j) {
            const std::int64_t offset = offsets.empty() ? Marks::kNoOffset : offsets[held[i].firstOffset + j];
            texts.push_back({held[i].child + j, viewOf(held[i]), offset});
        }
    }
    tree.insertTexts(texts);
    dropHeld();
}

// That of the innermost element.
void WhiteSpace::dropHeld() {
    const std::size_t first = levels.back().firstHeld;
    if (bytes.size() > held[first].from) bytes.resize(held[first].from);
    offsets.resize(held[first].firstOffset);
    held.erase(held.begin() + static_cast<std::ptrdiff_t>(first), held.end());
}

}  // namespace Xml
