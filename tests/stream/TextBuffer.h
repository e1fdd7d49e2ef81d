#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace Xml::test {

// What a stream buffer may be like beside those of the standard library.
struct BufferHabits {
    std::size_t chunk = 4;                     // bytes it has at hand at a time; 0: never any, each byte is asked for
    bool seekable = true;                      // without it there are no positions, as in a pipe
    std::size_t throwsAt = std::string::npos;  // asked for the bytes from here on it throws
    std::streamoff positionOffset = 0;         // added to every position that it gives
};

// A stream buffer over a text that has the given habits.
class TextBuffer : public std::streambuf {
public:
    TextBuffer(const std::string& bytes, BufferHabits ways) : text(bytes), habits(ways) {}

protected:
    int_type underflow() override {
        const std::size_t place = at();
        if (place >= habits.throwsAt) throw std::runtime_error("unreadable");
        if (place >= text.size()) return traits_type::eof();
        if (habits.chunk == 0) return traits_type::to_int_type(text[place]);
        show(place, std::min({habits.chunk, text.size() - place, habits.throwsAt - place}));
        return traits_type::to_int_type(*gptr());
    }

    int_type uflow() override {
        const int_type byte = underflow();
        if (traits_type::eq_int_type(byte, traits_type::eof())) return byte;
        if (habits.chunk == 0) {
            ++start;
        } else {
            gbump(1);
        }
        return byte;
    }

    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
        const off_type origin = from == std::ios_base::beg   ? 0
                                : from == std::ios_base::cur ? static_cast<off_type>(at())
                                                             : static_cast<off_type>(text.size());
        // Only a position that is asked for has it added; the way to a place is the place itself.
        const off_type place = origin + offset - (from == std::ios_base::beg ? habits.positionOffset : 0);
        if (!habits.seekable || place < 0 || place > static_cast<off_type>(text.size())) return pos_type(off_type(-1));
        if (static_cast<std::size_t>(place) != at()) show(static_cast<std::size_t>(place), 0);
        return pos_type(place + habits.positionOffset);
    }

    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override {
        return seekoff(off_type(position), std::ios_base::beg, mode);
    }

private:
    std::size_t at() const { return start + static_cast<std::size_t>(gptr() - eback()); }

    void show(std::size_t place, std::size_t count) {
        start = place;
        char* bytes = text.data() + place;
        setg(bytes, bytes, bytes + count);
    }

    std::string text;
    BufferHabits habits;
    std::size_t start = 0;  // the place of the first byte at hand
};

// An input stream that owns such a buffer.
class TextStream : public std::istream {
public:
    explicit TextStream(const std::string& text, BufferHabits habits = {})
        : std::istream(nullptr), buffer(text, habits) {
        rdbuf(&buffer);
    }

private:
    TextBuffer buffer;
};

}  // namespace Xml::test
