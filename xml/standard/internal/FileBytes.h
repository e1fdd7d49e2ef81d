#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Xml {

// All bytes of a file, of a regular one in one go. A pipe is read until its other end is closed.
class FileBytes {
public:
    enum class Ending : unsigned char { Whole, NotFound, Unreadable, TooLong };

    // `most`: how many bytes it may have; 0: no limit. Of one that has more these are read. Once.
    Ending read(const std::string& path, std::int64_t most);

    std::string_view bytes() const { return {memory.get(), size}; }

    // Why it is not whole, in a few words.
    const std::string& reason() const { return why; }

private:
    Ending readOpen(int descriptor, std::int64_t most);
    Ending readRest(int descriptor, std::int64_t most);
    void reserve(std::size_t capacity);
    Ending fail(int error);

    std::unique_ptr<char[]> memory;
    std::size_t room = 0;
    std::size_t size = 0;
    std::string why;
};

}  // namespace Xml
