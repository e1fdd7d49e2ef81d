#pragma once

#include "xml/stream/InStream.h"
#include <string>

namespace Xml {

using internal::Nesting;
using internal::Window;

// Whether a position is one: a source without positions has -1, and so has what was not met yet.
inline bool isPlace(int position) { return position >= 0; }

// How the tokenizer moves over the bytes of a stream: in the lent window where there is one, by the primitives of the
// source elsewhere, with the same results. A cursor is cheap to make and keeps nothing; all it moves is the stream.
//
// Bytes that are read are noted in the line breaks. Going back is not.
class Cursor {
public:
    explicit Cursor(InStream& stream) : in(stream) {}

    // The next byte. `c` is left as it was at the end of the data, and where the source says true without a byte.
    bool read(char& c) {
        if (!readUnnoted(c)) return false;
        note(c);
        return true;
    }

    // The same for the tokenizer, which takes a missing byte for a zero.
    bool next(char& c) {
        c = 0;
        return read(c);
    }

    // The next byte, which the line breaks do not see.
    bool readUnnoted(char& c) {
        Window& window = in.window;
        if (window.cursor == window.end) return fetch(in, c);
        c = *window.cursor++;
        return true;
    }

    // Appends what comes up to and including the next `last`; false at the end of the data.
    bool appendThrough(std::string& text, char last) { return appendThrough(in, text, last); }

    // Appends bytes of the window up to the first that is `isLast`; the bytes are neither CR nor LF.
    template <class IsLast>
    void appendOthersBefore(std::string& text, const IsLast& isLast) {
        Window& window = in.window;
        const char* const from = window.cursor;
        const char* const end = window.end;
        const char* to = from;
        while (to != end && !isLast(*to)) ++to;
        if (to == from) return;
        text.append(from, to);
        window.cursor = to;
        in.lineBreaks.noteOthers();
    }

    // Back by one byte, at the start not at all.
    void stepBack() {
        Window& window = in.window;
        if (window.cursor != window.begin) {
            --window.cursor;
            return;
        }
        const int position = in.getPosition();
        if (position >= 1) in.setPosition(position - 1);
    }

    // getPosition() and setPosition(), without giving the window back where the place lies in it.
    int tell() const { return positionIn(in); }
    void seek(int position) { seek(in, position); }

    static int positionIn(const InStream& in) {
        return in.window.isLent() ? positionOf(in, in.window.cursor) : in.getPosition();
    }

    // The position of a byte of the window.
    static int positionOf(const InStream& in, const char* byte) {
        Window& window = in.window;
        if (!isPlace(window.base)) window.base = in.positionOfBytes(window);
        return window.base + static_cast<int>(byte - window.begin);
    }

    // Notes that these bytes of the window were consumed.
    static void noteRun(InStream& in, const char* from, const char* to) {
        in.lineBreaks.noteRun(from, to, [&in](const char* byte) { return positionOf(in, byte); });
    }

private:
    void note(char c) {
        if (c == '\r' || (c == '\n' && in.lineBreaks.isAfterReturn())) {
            noteBreakByte(in, c);
        } else {
            in.lineBreaks.noteOthers();
        }
    }

    // Not members, so that a cursor need not lie in memory.
    static bool fetch(InStream& in, char& c);
    static void noteBreakByte(InStream& in, char c);
    static bool appendThrough(InStream& in, std::string& text, char last);
    static void seek(InStream& in, int position);

    InStream& in;
};

}  // namespace Xml
