#pragma once

#include "xml/dom/ExactClass.h"
#include <cstdint>

namespace Xml {
class Dtd;
}  // namespace Xml

namespace Xml::internal {

// Where the text of a node is (see Text).
enum class TextPlace : std::uint8_t { Own, Lent };

// What the library keeps at every node beside what it holds: the link to the governing Dtd, whether the node has
// changed since it was last written, where that was, and which class it is exactly of. Writing is no change of a node,
// so it may be noted at a const one.
//
// Not for callers.
class Marks {
public:
    Marks() : Marks(NodeClass::Unknown) {}
    explicit Marks(NodeClass made) : exactClass(made), dirty(true), asideText(false), edited(false) {}

    // The copy of a node keeps the link only: it is marked as changed and was never written.
    Marks(const Marks& other) : Marks() { link = other.link; }
    Marks& operator=(const Marks&) = delete;
    ~Marks() = default;

    const Dtd* dtd() const { return link; }
    void setDtd(const Dtd* dtd) { link = dtd; }

    bool isDirty() const { return dirty; }
    void setDirty(bool isChanged) const { dirty = isChanged; }

    // The node has changed: it is no longer known to conform to the Dtd.
    void touch() {
        dirty = true;
        link = nullptr;
    }

    // The positions of the last record of where the node was written; -1 without one.
    int writeStart() const { return start; }
    int writeEnd() const { return end; }
    void record(int from, int to) const {
        start = from;
        end = to;
    }

    TextPlace textPlace() const { return text; }
    void setTextPlace(TextPlace place) { text = place; }

    // Whether a text of the node is kept aside (see AsideTexts).
    bool hasAsideText() const { return asideText; }
    void setAsideText(bool has) const { asideText = has; }

    // A number that is the affair of what works on the tree: of an element, validation's.
    std::uint32_t number() const { return itsNumber; }
    void setNumber(std::uint32_t number) const { itsNumber = number; }

    // Whether the children or attributes of the element have been changed since it was read or copied.
    bool isEdited() const { return edited; }
    void setEdited() { edited = true; }

    ExactClass exactClass;

private:
    mutable bool dirty : 1;
    mutable bool asideText : 1;
    bool edited : 1;
    TextPlace text = TextPlace::Own;
    mutable std::uint32_t itsNumber = 0;
    mutable std::int32_t start = -1;
    mutable std::int32_t end = -1;
    const Dtd* link = nullptr;
};

}  // namespace Xml::internal
