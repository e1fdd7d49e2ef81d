#pragma once

#include "xml/dom/ExactClass.h"
#include <cstdint>

namespace Xml {
class Dtd;
}  // namespace Xml

namespace Xml::internal {

// Where the text of a node is (see Text).
enum class TextPlace : std::uint8_t { Own, Lent };

// What a leaf among the children is beside text, where it is more than that: an object of one of these classes, or of
// one derived from it. Unlike the exact class the constructors know it.
enum class LeafKind : std::uint8_t { Plain, CData, Comment, Instruction };

// What the library keeps at every node beside what it holds: the link to the governing Dtd, whether the node has
// changed since it was last written, where that was, and which class it is exactly of. Writing is no change of a node,
// so it may be noted at a const one.
//
// Not for callers.
class Marks {
public:
    Marks() : Marks(NodeClass::Unknown) {}
    explicit Marks(NodeClass made) : exactClass(made) {}

    // Of a node in a slab.
    Marks(NodeClass made, TextPlace place)
        : exactClass(made), fixed(place == TextPlace::Lent ? kInSlab | kLent : kInSlab) {}

    // The copy of a node keeps the link only: it is marked as changed and was never written.
    Marks(const Marks& other) : Marks() { link = other.link; }
    Marks& operator=(const Marks&) = delete;
    ~Marks() = default;

    const Dtd* dtd() const { return link; }
    void setDtd(const Dtd* dtd) { link = dtd; }

    bool isDirty() const { return (noted & kDirty) != 0; }
    void setDirty(bool isChanged) const { put(noted, kDirty, isChanged); }

    // The node has changed: it is no longer known to conform to the Dtd.
    void touch() {
        setDirty(true);
        link = nullptr;
    }

    // The positions of the last record of where the node was written; -1 without one. None may be made while it holds
    // an offset.
    int writeStart() const { return holdsOffset() ? -1 : start; }
    int writeEnd() const { return holdsOffset() ? -1 : end; }
    void record(int from, int to) const {
        start = from;
        end = to;
    }

    // Until it is first written a node in a slab has the offset at which it was read in the place of the record.
    static constexpr std::int64_t kNoOffset = -1;
    bool holdsOffset() const { return (noted & kHoldsOffset) != 0; }
    std::int64_t offset() const {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(static_cast<std::uint32_t>(end)) << 32 |
                                         static_cast<std::uint32_t>(start));
    }
    void holdOffset(std::int64_t offset) {
        start = static_cast<std::int32_t>(offset);
        end = static_cast<std::int32_t>(offset >> 32);
        put(noted, kHoldsOffset, true);
    }

    TextPlace textPlace() const { return (fixed & kLent) != 0 ? TextPlace::Lent : TextPlace::Own; }

    // Whether something of the node is kept aside (see AsideTexts, AsidePlaces).
    bool isAside() const { return (noted & kAside) != 0; }
    void setAside() const { put(noted, kAside, true); }

    // Whether that is the place where it was read, and the node holds no offset then.
    bool isPlaceAside() const { return (noted & kPlaceAside) != 0; }
    void setPlaceAside() const {
        if (holdsOffset()) record(-1, -1);
        noted = static_cast<Flags>((noted & ~kHoldsOffset) | kPlaceAside | kAside);
    }

    // A number of 40 bits: of an element the affair of validation, of an attribute the order in its tag.
    static constexpr std::uint64_t kMostNumber = (std::uint64_t{1} << 40) - 1;
    std::uint64_t number() const { return std::uint64_t{upperNumber} << 32 | lowerNumber; }
    void setNumber(std::uint64_t number) const {
        lowerNumber = static_cast<std::uint32_t>(number);
        upperNumber = static_cast<std::uint8_t>(number >> 32);
    }

    // Whether the node lies in a slab. Its address alone would not say: nodes that callers have elsewhere than in the
    // heap may lie anywhere.
    bool isInSlab() const { return (fixed & kInSlab) != 0; }

    LeafKind leafKind() const { return static_cast<LeafKind>(fixed >> kLeafKindShift); }
    void setLeafKind(LeafKind kind) {
        fixed = static_cast<Flags>(fixed | static_cast<unsigned>(kind) << kLeafKindShift);
    }

    // Whether it is a comment or an instruction: what looks at content passes over it.
    bool isPassedOver() const { return (fixed & kPassedOver) != 0; }

    // Whether an attribute was supplied by the document type.
    bool isSupplied() const { return (fixed & kSupplied) != 0; }
    void setSupplied(bool is) { put(fixed, kSupplied, is); }

    // What an attribute is in its tag, for a copy of it.
    void copyTag(const Marks& other) {
        upperNumber = other.upperNumber;
        lowerNumber = other.lowerNumber;
        fixed = static_cast<Flags>((fixed & ~kSupplied) | (other.fixed & kSupplied));
    }

    // Whether the children or attributes of the element have been changed since it was read or copied.
    bool isEdited() const { return (fixed & kEdited) != 0; }
    void setEdited() { put(fixed, kEdited, true); }

    ExactClass exactClass;

private:
    using Flags = std::uint8_t;
    static constexpr Flags kDirty = 1, kAside = 2, kHoldsOffset = 4, kPlaceAside = 8;  // of `noted`
    static constexpr Flags kEdited = 1, kLent = 2, kInSlab = 4, kSupplied = 8;  // of `fixed`; the text is what is lent
    static constexpr unsigned kLeafKindShift = 6;                               // its upper bits are the kind of a leaf
    static constexpr Flags kPassedOver = static_cast<unsigned>(LeafKind::Comment) << kLeafKindShift;
    static_assert((static_cast<unsigned>(LeafKind::Instruction) & static_cast<unsigned>(LeafKind::Comment)) != 0,
                  "one bit of the kind says comment or instruction");

    static void put(Flags& flags, Flags flag, bool on) {
        flags = static_cast<Flags>(on ? flags | flag : flags & ~flag);
    }

    // What looking at the node, or writing it, may change, in a byte of its own: others may look at the rest meanwhile.
    mutable Flags noted = kDirty;
    Flags fixed = 0;
    mutable std::uint8_t upperNumber = 0;
    mutable std::uint32_t lowerNumber = 0;
    mutable std::int32_t start = -1;
    mutable std::int32_t end = -1;
    const Dtd* link = nullptr;
};

}  // namespace Xml::internal
