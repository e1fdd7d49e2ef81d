#pragma once

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/ReadOptions.h"
#include "xml/stream/internal/Scan.h"
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Which texts of white space alone become nodes. What an element holds decides that, and is known at its end: until
// then such texts wait.
class WhiteSpace {
public:
    // Around the outermost element white space may be preserved.
    WhiteSpace(TreeBuilder& builder, Space which, bool isPreserved = false)
        : tree(builder), space(which), isPreservedAround(isPreserved) {}

    // An element has begun, with this value of xml:space, empty without one; it ends.
    [[gnu::always_inline]] void begin(std::string_view spaceAttribute) {
        bool isPreserved = isPreservedAround;
        if (!levels.empty()) {
            isPreserved = levels.back().isPreserved;
            levels.back().hasElements = true;
        }
        if (!spaceAttribute.empty()) {
            if (spaceAttribute == "preserve") isPreserved = true;
            if (spaceAttribute == "default") isPreserved = false;
        }
        levels.emplace_back(held.size(), isPreserved);
    }
    void end() {
        if (held.size() > levels.back().firstHeld) endHeld();
        levels.pop_back();
    }

    // An element within it has begun and ended.
    void noteElement() { levels.back().hasElements = true; }

    // A text within it, with its offset as TreeBuilder has it; other is all that is not white space, or came by a
    // reference. Where the element ends after white space, it may be the last. Padded: as TreeBuilder has it.
    //
    // What waits at the end of an element with others in it is dropped then: mostly it is one line end and what indents
    // the end tag.
    void addWhite(std::string_view text, std::int64_t offset, bool isLast = false) {
        const Level& level = levels.back();
        const bool mayBeKept = space != Space::Content || text.front() != '\n' || level.isPreserved || level.hasText;
        if (mayBeKept || !isLast || !level.hasElements) addOtherWhite(text, offset, isLast);
    }
    void addOther(std::string_view text, std::int64_t offset, bool isPadded = false);

    // Between the children of one element white space is mostly the same. Where the bytes that wait as the last text
    // are there again, and '<' after them: the place of that. They may be added then, with their offset.
    [[gnu::always_inline]] const char* endOfAgain(const char* from, const char* to) {
        if (held.empty() || held.size() == levels.back().firstHeld) return nullptr;
        const Held& last = held.back();
        if (last.child + last.count != tree.childCount()) return nullptr;
        const std::string_view text = viewOf(last);
        if (from != to && *from == '\r' && text.front() == '\n') ++from;  // CR LF is one LF
        if (!Scan::startsWith(from, to, text)) return nullptr;
        const char* const end = from + text.size();
        return end != to && *end == '<' ? end : nullptr;
    }
    void addAgain(std::int64_t offset) {
        if (offset != Marks::kNoOffset) offsets.push_back(offset);
        ++held.back().count;
    }

    // Other text within it that is a node of another kind.
    void noteOther();

    static bool isWhite(std::string_view text) {
        return text.empty() || (static_cast<unsigned char>(text.front()) <= ' ' && isAllWhite(text));
    }

private:
    // Made in their places: what is copied there waits for the stores.
    struct Level {
        Level(std::size_t itsFirstHeld, bool isSpacePreserved)
            : firstHeld(itsFirstHeld), isPreserved(isSpacePreserved) {}

        std::size_t firstHeld;
        bool isPreserved;
        bool hasElements = false;
        bool hasText = false;
    };
    // Texts of the same bytes, one before each of so many children.
    struct Held {
        Held(std::size_t itsChild, std::string_view text, std::size_t itsFrom, std::size_t itsFirstOffset)
            : child(itsChild), from(itsFrom), size(text.size()), firstOffset(itsFirstOffset) {
            if (isShort()) text.copy(few, kFew);
        }
        bool isShort() const { return size <= kFew; }

        static constexpr std::size_t kFew = 16;

        std::size_t child, from, size, firstOffset;
        std::size_t count = 1;
        char few[kFew];  // all bytes of a short one
    };

    std::string_view viewOf(const Held& text) const {
        return {text.isShort() ? text.few : bytes.data() + text.from, text.size};
    }

    static bool isAllWhite(std::string_view text);
    [[gnu::noinline]] void addOtherWhite(std::string_view text, std::int64_t offset, bool isLast);
    void endHeld();
    void keepHeld();
    void dropHeld();

    TreeBuilder& tree;
    Space space;
    bool isPreservedAround;
    std::vector<Level> levels;
    std::vector<Held> held;
    std::string bytes;                  // of those that are not short, in the same order
    std::vector<std::int64_t> offsets;  // where they are kept, of each text that waits
};

}  // namespace Xml
