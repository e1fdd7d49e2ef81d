#pragma once

#include "xml/text/internal/ShortRuns.h"
#include <cstddef>
#include <memory>
#include <string_view>

namespace Xml {

// Takes UTF-8 in runs of whole characters.
class WriteSink {
public:
    virtual void take(std::string_view text) = 0;

protected:
    ~WriteSink() = default;
};

// Puts together what is written, piece by piece, in a block, and gives a sink the block when it is full. A piece is
// whole characters.
//
// Several pieces at once go into room that was asked for first:
//
//     char* at = out.room(size);      // at most kRoom
//     at = ...                        // put at most so many bytes there
//     at = out.more(at, size);        // and then so many more
//     out.tookTo(at);
//
// After what was asked for, ShortRuns::kPadded bytes more may be written, which are of no account.
class WriteBuffer {
public:
    static constexpr std::size_t kRoom = 4096;

    explicit WriteBuffer(WriteSink& itsSink)
        : sink(itsSink), bytes(new char[kBlock + ShortRuns::kPadded]), used(bytes.get()) {}

    char* room(std::size_t size) { return more(used, size); }
    char* more(char* at, std::size_t size) { return size <= left(at) ? at : flushTo(at); }
    void tookTo(char* at) { used = at; }

    void put(std::string_view text) {
        if (text.size() > left(used) && !makeRoom(text)) return;
        used = ShortRuns::copy(used, text);
    }

    // The same of a padded run.
    void putPadded(std::string_view text) {
        if (text.size() > left(used) && !makeRoom(text)) return;
        used = ShortRuns::copyPadded(used, text);
    }

    void flush() { used = flushTo(used); }

    // What is in the block, and leaves so many bytes of it.
    std::size_t size() const { return static_cast<std::size_t>(used - bytes.get()); }
    void shrink(std::size_t size) { used = bytes.get() + size; }

private:
    static constexpr std::size_t kBlock = 4 * kRoom;

    std::size_t left(const char* at) const { return static_cast<std::size_t>(bytes.get() + kBlock - at); }

    // Returns the beginning of the block.
    char* flushTo(const char* at);

    // False where the text has gone to the sink.
    bool makeRoom(std::string_view text);

    WriteSink& sink;
    const std::unique_ptr<char[]> bytes;
    char* used;
};

}  // namespace Xml
