#pragma once

#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/internal/ShortRuns.h"
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace Xml {

// What is written into a stream, in runs as long as they may be: for a sink that counts its bytes, and so takes them in
// runs, pieces are put together here, with the tabs that are due. Any other sink gets each piece at once. The bytes and
// their positions are the same either way.
//
// Nothing else may use the stream before flush().
class OutRun {
public:
    explicit OutRun(OutStream& stream) : out(stream) {}
    ~OutRun() { flush(); }
    OutRun(const OutRun&) = delete;
    OutRun& operator=(const OutRun&) = delete;

    // As OutStream::put, of one text after the other; none of them has a line feed, and the first is not empty.
    template <class... More>
    void put(std::string_view first, const More&... more) {
        if (char* at = room((first.size() + ... + std::string_view(more).size()))) {
            at = ShortRuns::copy(at, first);
            ((at = ShortRuns::copy(at, more)), ...);
            tookTo(at);
        } else {
            putOne(first);
            (putOne(more), ...);
        }
    }

    void putLineFeed() {
        if (!inRuns()) return OutStreamAccess::put(out, "\n");
        append("\n");
        out.atLineStart = true;
    }

    // As OutStream::put, of any text; escaped.
    void putAny(std::string_view text);
    void putEscaped(std::string_view text);

    // A blank, a name, which may be any text, and a value, escaped and in quotes.
    void putAttribute(std::string_view name, std::string_view value) {
        if (char* at = room(name.size() + value.size() + std::string_view(" =\"\"").size())) {
            *at++ = ' ';
            at = ShortRuns::copyOrdinary(at, name);
            if (at != nullptr) at = ShortRuns::copyOrdinary(ShortRuns::copy(at, "=\""), value);
            if (at != nullptr) {
                *at++ = '"';
                return tookTo(at);
            }
        }
        putAttributeInPieces(name, value);
    }

    // As OutStream::writeDataHolder.
    void putAsIs(std::string_view text) {
        if (inRuns()) return append(text);
        OutStreamAccess::putAsIs(out, text);
    }

    void incTab() { OutStreamAccess::incTab(out); }
    void decTab() { OutStreamAccess::decTab(out); }

    int position() const { return OutStreamAccess::position(out, used); }

    // Gives the sink all there is.
    void flush() {
        if (used == 0) return;
        const std::size_t count = std::exchange(used, 0);
        out.putChars(bytes.get(), count);
    }

private:
    static constexpr std::size_t kRoom = 4096;

    bool inRuns() const { return out.counting; }

    // Where so many bytes may be put, with the tabs that are due already before them. Null where they have to go to the
    // stream piece by piece.
    char* room(std::size_t size) {
        if (!inRuns()) return nullptr;
        if (size + (out.atLineStart ? roomForTabs() : 0) > capacity - used && !makeRoom(size)) return nullptr;
        if (out.atLineStart) appendTabs();
        return bytes.get() + used;
    }
    void tookTo(const char* end) { used = static_cast<std::size_t>(end - bytes.get()); }

    // Tabs are put some at once.
    static constexpr std::size_t kTabsAtOnce = 8;
    std::size_t roomForTabs() const { return static_cast<std::size_t>(out.tabLevel) + kTabsAtOnce; }
    void appendTabs() {
        const auto count = static_cast<std::size_t>(out.tabLevel);
        for (std::size_t i = 0; i < count; i += kTabsAtOnce) std::memset(bytes.get() + used + i, '\t', kTabsAtOnce);
        used += count;
        out.atLineStart = false;
    }

    void append(std::string_view text) {
        if (text.size() > capacity - used) return appendSlowly(text);
        tookTo(ShortRuns::copy(bytes.get() + used, text));
    }

    bool makeRoom(std::size_t size);
    void putOne(std::string_view text);
    void putAttributeInPieces(std::string_view name, std::string_view value);
    void appendSlowly(std::string_view text);
    void takeMemory();
    void putTabs();

    OutStream& out;
    std::unique_ptr<char[]> bytes;
    std::size_t capacity = 0;
    std::size_t used = 0;
};

}  // namespace Xml
