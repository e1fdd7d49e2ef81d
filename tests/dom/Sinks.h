#pragma once

#include "xml/stream/OutStream.h"
#include <algorithm>
#include <limits>
#include <streambuf>
#include <string>
#include <vector>

namespace Xml::test {

// A sink of a caller: bytes in memory, behaving as a file, that notes what is asked of it.
class BareOutStream : public OutStream {
public:
    std::string bytes;
    int putCount = 0;          // bytes written since the last reset
    std::vector<int> movedTo;  // positions set since the last reset

    void putChar(char c) override {
        ++putCount;
        if (place >= bytes.size()) bytes.resize(place + 1, '\0');
        bytes[place++] = c;
    }
    int getPosition() const override { return static_cast<int>(place); }
    void setPosition(int position) override {
        movedTo.push_back(position);
        if (position >= 0) place = static_cast<std::size_t>(position);
    }

    void reset() {
        putCount = 0;
        movedTo.clear();
    }

private:
    std::size_t place = 0;
};

// A sink that has no positions, such as a pipe.
class PositionlessOutStream : public OutStream {
public:
    std::string bytes;
    std::vector<int> movedTo;

    void putChar(char c) override { bytes += c; }
    int getPosition() const override { return -1; }
    void setPosition(int position) override { movedTo.push_back(position); }
};

// What a standard stream can stand on, with the odd things that such buffers do.
class OddBuffer : public std::streambuf {
public:
    std::string bytes;
    std::size_t limit = std::numeric_limits<std::size_t>::max();  // a byte beyond this place fails
    bool expandsLines = false;                                    // a line feed is stored as CR LF
    bool hasPositions = true;

protected:
    int_type overflow(int_type c) override {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        const char byte = traits_type::to_char_type(c);
        if (expandsLines && byte == '\n' && !store('\r')) return traits_type::eof();
        return store(byte) ? c : traits_type::eof();
    }

    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
        if (from == std::ios_base::cur) offset += static_cast<off_type>(place);
        if (from == std::ios_base::end) offset += static_cast<off_type>(bytes.size());
        return moveTo(offset);
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode) override { return moveTo(position); }

private:
    bool store(char byte) {
        if (place >= limit) return false;
        if (place >= bytes.size()) bytes.resize(place + 1, '\0');
        bytes[place++] = byte;
        return true;
    }
    pos_type moveTo(off_type offset) {
        if (!hasPositions || offset < 0 || static_cast<std::size_t>(offset) > bytes.size())
            return pos_type(off_type(-1));
        place = static_cast<std::size_t>(offset);
        return pos_type(offset);
    }

    std::size_t place = 0;
};

}  // namespace Xml::test
