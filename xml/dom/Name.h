#pragma once

#include "xml/Export.h"
#include <cstdint>
#include <string>
#include <string_view>

namespace Xml::internal {

// The name of an element or an attribute, in one word: a text of its own, or one that many nodes of a tree share.
//
// Not for callers.
class Name {
public:
    Name() = default;  // the empty name

    // A text that outlives the name.
    explicit Name(const std::string* shared) : word(reinterpret_cast<std::uintptr_t>(shared)) {}

    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    ~Name() { drop(); }

    const std::string& text() const { return word != 0 ? *pointer() : emptyText(); }

    // Whether the text may be that of other names too.
    bool isShared() const { return (word & kOwned) == 0; }

    // A copy of its own. Where memory runs out nothing has changed.
    void set(std::string_view text) {
        const std::string* const copy = text.empty() ? nullptr : new std::string(text);
        drop();
        word = copy != nullptr ? reinterpret_cast<std::uintptr_t>(copy) | kOwned : 0;
    }

private:
    static constexpr std::uintptr_t kOwned = 1;

    ORVXML_LOCAL static const std::string& emptyText();

    const std::string* pointer() const { return reinterpret_cast<const std::string*>(word & ~kOwned); }

    void drop() {
        if ((word & kOwned) != 0) delete pointer();
    }

    std::uintptr_t word = 0;  // the address of the text, its lowest bit set where it is owned
};

}  // namespace Xml::internal
