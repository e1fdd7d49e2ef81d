#include "xml/standard/internal/ForeignOffsets.h"

#include <algorithm>
#include <utility>

namespace Xml {

namespace {

constexpr std::size_t kBytesAtOnce = 4096;

}  // namespace

ForeignOffsets::ForeignOffsets(std::string name, std::int64_t text, std::int64_t source)
    : encoding(std::move(name)), begin{text, source}, table(begin) {
    restart();
}

std::int64_t ForeignOffsets::sourceOffset(std::int64_t text, std::string_view bytes) {
    const std::size_t place = placeInTable(text, bytes);
    return table.source + static_cast<std::int64_t>(place);
}

void ForeignOffsets::forget(std::int64_t text, std::string_view bytes) {
    const std::size_t place = placeInTable(text, bytes);
    const std::int64_t before = made[place];
    table.source += static_cast<std::int64_t>(place);
    table.text += before;
    made.erase(made.begin(), made.begin() + static_cast<std::ptrdiff_t>(place));
    for (std::int64_t& so : made) so -= before;
    begin = table;
    isWhole = false;
}

std::size_t ForeignOffsets::placeInTable(std::int64_t text, std::string_view bytes) {
    if (text < table.text) restart();
    while (table.text + made.back() < text) {
        if (isWhole && made.size() > kBytesAtOnce) dropTable();
        if (!extend(bytes)) break;
    }
    const auto found = std::lower_bound(made.begin(), made.end(), text - table.text);
    return std::min(static_cast<std::size_t>(found - made.begin()), made.size() - 1);
}

void ForeignOffsets::restart() {
    converter = Converter::makeForeign(encoding);
    table = begin;
    made.assign(1, 0);
    waiting = 0;
}

void ForeignOffsets::dropTable() {
    const std::size_t whole = made.size() - 1 - waiting;
    table.source += static_cast<std::int64_t>(whole);
    table.text += made.back();
    made.assign(waiting + 1, 0);
}

// Returns whether there was anything to convert.
bool ForeignOffsets::extend(std::string_view bytes) {
    const auto ofTable = static_cast<std::size_t>(table.source - begin.source);
    const std::size_t from = ofTable + made.size() - 1;
    if (converter == nullptr || from >= bytes.size()) return false;
    const std::size_t to = std::min(bytes.size(), from + kBytesAtOnce);
    std::string text;
    for (std::size_t at = from; at != to; ++at) {
        const auto converted = converter->convert(bytes.substr(at - waiting, waiting + 1), text);
        made.push_back(made.back() + static_cast<std::int64_t>(text.size()));
        waiting = waiting + 1 - converted.taken;
        text.clear();
        if (converted.ending == Converter::Ending::IllFormed) {
            converter = nullptr;  // no text comes after it
            break;
        }
    }
    return true;
}

}  // namespace Xml
