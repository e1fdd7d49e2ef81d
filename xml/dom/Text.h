#pragma once

#include "xml/Export.h"
#include "xml/dom/Marks.h"
#include "xml/text/DataHolder.h"
#include <atomic>
#include <cstddef>
#include <string_view>

namespace Xml {
class Object;
}  // namespace Xml

namespace Xml::internal {

struct KeptText;

// The text for a node in the memory of a tree: a short one, of which the node has a copy of its own; or bytes that stay
// as long as the node; or a string in place of them that the tree keeps.
struct GivenText {
    std::string_view bytes;
    TextPlace place = TextPlace::Own;
    KeptText* string = nullptr;
    bool isPadded = false;  // of a short one: kShortText bytes may be read there
};

// Up to so many bytes are in a string without memory of its own.
constexpr std::size_t kShortText = 15;
inline bool isShort(std::string_view text) { return text.size() <= kShortText; }

// The text that a node holds: a string of its own, or bytes that lie beside the node in the memory of its tree. Most
// texts are only looked at, so such bytes become a string when somebody asks for one, and the tree keeps that.
//
// Which of the two it is stands in the marks of the node, which has the room for it; they come with every call. A node
// whose bytes lie beside it is in the memory of a tree itself.
//
// Several threads may ask for the string at the same time: all get the same one.
//
// Not for callers.
class Text {
public:
    Text() : own() {}
    explicit Text(const GivenText& given) {
        if (given.place == TextPlace::Own) {
            makeShort(given.bytes, given.isPadded);
        } else {
            ::new (&lent) Lent{given.bytes.data(), given.bytes.size(), {given.string}};
        }
    }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    // The node calls dispose() before.
    ~Text() {}
    void dispose(const Marks& marks) {
        if (marks.textPlace() == TextPlace::Own) {
            own.~DataHolder();
        } else {
            forgetString();
        }
    }

    // The bytes; good until the text changes. There are more than kShortText of them, or they are in a string.
    std::string_view view(const Marks& marks) const {
        if (marks.textPlace() == TextPlace::Own) return own;
        const KeptText* const kept = lent.string.load(std::memory_order_acquire);
        return kept == nullptr ? std::string_view(lent.bytes, lent.length) : viewOf(*kept);
    }

    // The string. Where it has to be made memory may run out; nothing has changed then.
    const DataHolder& string(const Object& node, const Marks& marks) const {
        return marks.textPlace() == TextPlace::Own ? own : madeString(node);
    }
    DataHolder& string(const Object& node, const Marks& marks) {
        return const_cast<DataHolder&>(static_cast<const Text*>(this)->string(node, marks));
    }

    // Puts another text in place of this one: in the same string, where there is one.
    void assign(const Object& node, const Marks& marks, DataHolder&& text);

private:
    struct Lent {
        const char* bytes;
        std::size_t length;
        std::atomic<KeptText*> string;  // in place of the bytes, once it was asked for
    };

    // In line as a whole, and without a branch for each length where that can be: it is a good part of what a text
    // costs.
    [[gnu::flatten]] void makeShort(std::string_view text, bool isPadded) {
        if (isPadded) {
            ::new (&own) DataHolder(text.data(), kShortText);
            own.erase(text.size());
        } else {
            ::new (&own) DataHolder(text);
        }
    }

    ORVXML_LOCAL static std::string_view viewOf(const KeptText& kept);
    ORVXML_LOCAL const DataHolder& madeString(const Object& node) const;
    ORVXML_LOCAL void forgetString();

    union {
        DataHolder own;
        mutable Lent lent;
    };
};

static_assert(sizeof(Text) == sizeof(DataHolder), "lent bytes need no more room than a string");

}  // namespace Xml::internal
