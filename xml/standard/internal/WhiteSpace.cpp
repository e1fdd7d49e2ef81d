#include "xml/standard/internal/WhiteSpace.h"

namespace Xml {

bool WhiteSpace::isWhite(std::string_view text) { return text.find_first_not_of(" \t\n\r") == std::string_view::npos; }

void WhiteSpace::begin(std::string_view spaceAttribute) {
    bool isPreserved = !levels.empty() && levels.back().isPreserved;
    if (spaceAttribute == "preserve") isPreserved = true;
    if (spaceAttribute == "default") isPreserved = false;
    if (!levels.empty()) levels.back().hasElements = true;
    levels.push_back({held.size(), bytes.size(), isPreserved, false, false});
}

void WhiteSpace::end() {
    const Level& level = levels.back();
    if (!level.hasElements) keepHeld();
    held.resize(level.firstHeld);
    bytes.resize(level.heldBytes);
    levels.pop_back();
}

void WhiteSpace::addWhite(std::string_view text) {
    const Level& level = levels.back();
    if (space == Space::Dropped) return;
    const bool isKept = space == Space::All || level.isPreserved || level.hasText ||
                        text.find_first_of("\n\r") == std::string_view::npos;
    if (isKept) return tree.addText(text);
    held.push_back({tree.childCount(), bytes.size(), text.size()});
    bytes += text;
}

void WhiteSpace::addOther(std::string_view text, bool isPadded) {
    Level& level = levels.back();
    level.hasText = true;
    if (held.size() > level.firstHeld) keepHeld();
    tree.addText(text, isPadded);
}

void WhiteSpace::keepHeld() {
    const Level& level = levels.back();
    if (held.size() == level.firstHeld) return;
    std::vector<TreeBuilder::TextBefore> texts;
    texts.reserve(held.size() - level.firstHeld);
    for (std::size_t i = level.firstHeld; i < held.size(); ++i) {
        texts.push_back({held[i].child, std::string_view(bytes).substr(held[i].from, held[i].size)});
    }
    tree.insertTexts(texts);
    held.resize(level.firstHeld);
    bytes.resize(level.heldBytes);
}

}  // namespace Xml
