#pragma once

#include "xml/stream/Window.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace Xml {

// A run of a file's bytes that a source reads at once and lends, where the buffer of the file itself is too short.
//
// This is cost control and nothing else. At the end of a window what crosses it is read by tokens, and going back to
// where it began is a seek. For as long as the block is lent the file stands where the block ends.
class FileBlock {
public:
    static constexpr std::size_t kSize = 64 * 1024;

    // How many bytes to lend to a reading that has read so many and found so many lent too few, where the file has so
    // many left; 0 where a block is not worth its while. Short readings that come again and again do not pay for blocks
    // that they do not need: one is no longer than what was read so far, or four times what was too few. What does not
    // end in a block, however long it is, is read again a third more often at most.
    static std::size_t lengthFor(std::int64_t read, std::int64_t tooFew, std::int64_t left) {
        constexpr std::int64_t kLeast = 16 * 1024;
        constexpr std::int64_t kGrowth = 4;
        const std::int64_t length = std::max(std::min<std::int64_t>(read, kSize), std::min(kGrowth * tooFew, left));
        return length < kLeast ? 0 : static_cast<std::size_t>(length);
    }

    // Lends what `read` puts there, which is asked for `count` bytes and says how many came; where none came, or there
    // is no memory, the window stays as it is. The position is that of the first.
    template <class Read>
    bool lend(std::size_t count, int position, const Read& read, internal::Window& lent) {
        if (!makeRoom(count)) return false;
        const std::size_t got = read(bytes.get(), count);
        if (got == 0) return false;
        lent = {bytes.get(), bytes.get(), bytes.get() + got, position, internal::Window::Loan::ForNow};
        return true;
    }

    // Whether the window was lent by this block.
    bool hasLent(const internal::Window& lent) const { return bytes != nullptr && lent.begin == bytes.get(); }

private:
    // A long block goes when it is not needed any more. False where there is no memory for one: reading goes on
    // without.
    bool makeRoom(std::size_t count) {
        const std::size_t wanted = count < kSize ? kSize : count;
        if (wanted == size) return true;
        bytes.reset();
        bytes.reset(new (std::nothrow) char[wanted]);
        size = bytes != nullptr ? wanted : 0;
        return bytes != nullptr;
    }

    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
};

}  // namespace Xml
