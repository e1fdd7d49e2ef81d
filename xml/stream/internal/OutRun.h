#pragma once

#include "xml/stream/internal/OutStreamAccess.h"
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

    // As OutStream::put; a text that is not empty and has no line feed.
    void put(std::string_view text) {
        if (!inRuns()) return OutStreamAccess::put(out, text);
        if (out.atLineStart) putTabs();
        append(text);
    }

    void putLineFeed() {
        if (!inRuns()) return OutStreamAccess::put(out, "\n");
        append("\n");
        out.atLineStart = true;
    }

    // As OutStream::put, of any text; escaped.
    void putAny(std::string_view text);
    void putEscaped(std::string_view text);

    // As OutStream::writeDataHolder.
    void putAsIs(std::string_view text) {
        if (inRuns()) return append(text);
        OutStreamAccess::putAsIs(out, text);
    }

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

    void append(std::string_view text) {
        if (text.size() > kRoom - used || bytes == nullptr) return appendSlowly(text);
        std::memcpy(bytes.get() + used, text.data(), text.size());
        used += text.size();
    }

    void appendSlowly(std::string_view text);
    void putTabs();

    OutStream& out;
    std::unique_ptr<char[]> bytes;
    std::size_t used = 0;
};

}  // namespace Xml
