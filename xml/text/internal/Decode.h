#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

// References to bytes. A reference is what stands from '&' to the next ';' or, where none follows, to the end of the
// text; its name is what stands between them.
namespace Xml {

// How much text references to entities have made, and how much they may.
struct Expansion {
    std::int64_t made = 0;
    std::int64_t most = std::numeric_limits<std::int64_t>::max();
};

// Whether the name is that of a character reference: "#65", "#x41", and every other with something after "#".
constexpr bool isCharReference(std::string_view name) { return name.size() >= 2 && name[0] == '#'; }

// The byte that a standard entity or a character reference stands for, 0 for none.
char standardValue(std::string_view name);

// Appends what `text` begins with, as far as its references are of the usual forms ("&lt;", "&#65;", "&#x41;"), each
// replaced by its value. Returns how many bytes of it that are: what is left is nothing, or begins with a reference.
std::size_t appendUsual(std::string& result, std::string_view text);

// Appends `text` to `result` with each reference replaced by its value, in one pass: values are not looked through
// again. What has no standard value is looked up: `lookUp(name)` points to the value of an entity, or is null for an
// unknown one, which stays, with a ';' at its end. Values that were looked up are counted in `expansion`; false when
// the next one would pass the bound, and `result` ends before it.
template <class LookUp>
bool appendDecoded(std::string& result, std::string_view text, LookUp&& lookUp, Expansion& expansion) {
    for (;;) {
        text.remove_prefix(appendUsual(result, text));
        if (text.empty()) return true;
        const std::size_t end = std::min(text.find(';'), text.size());
        const std::string_view name = text.substr(1, end - 1);
        if (const char byte = standardValue(name)) {
            result += byte;
        } else if (const std::string* const value = lookUp(name)) {
            expansion.made += static_cast<std::int64_t>(value->size());
            if (expansion.made > expansion.most) return false;
            result += *value;
        } else {
            result.append(1, '&').append(name).append(1, ';');
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace Xml
