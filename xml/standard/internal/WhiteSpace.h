#pragma once

#include "xml/dom/Place.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/ReadOptions.h"
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
    void begin(std::string_view spaceAttribute);
    void end();

    // An element within it has begun and ended.
    void noteElement() { levels.back().hasElements = true; }

    // A text within it, with its place or null; other is all that is not white space, or came by a reference.
    // Padded: as TreeBuilder has it.
    void addWhite(std::string_view text, const Place* place);
    void addOther(std::string_view text, const Place* place, bool isPadded = false);

    // Other text within it that is a node of another kind.
    void noteOther();

    static bool isWhite(std::string_view text) {
        return text.empty() || (static_cast<unsigned char>(text.front()) <= ' ' && isAllWhite(text));
    }

private:
    struct Level {
        std::size_t firstHeld;
        std::size_t heldBytes;
        bool isPreserved;
        bool hasElements;
        bool hasText;
    };
    struct Held {
        // Made in its place: what is copied there waits for the stores.
        Held(std::size_t itsChild, std::size_t itsFrom, std::size_t itsSize, const Place* itsPlace)
            : child(itsChild), from(itsFrom), size(itsSize) {
            if (itsPlace != nullptr) place = *itsPlace;
        }

        std::size_t child, from, size;
        Place place;
    };

    static bool isAllWhite(std::string_view text);
    void addText(std::string_view text, const Place* place, bool isPadded = false);
    void keepHeld();

    TreeBuilder& tree;
    Space space;
    bool isPreservedAround;
    std::vector<Level> levels;
    std::vector<Held> held;
    std::string bytes;  // of those, in the same order
};

}  // namespace Xml
