#pragma once

#include "xml/stream/InStream.h"

// What the tokenizer does with every byte, for its sources to inline.
namespace Xml {

// Whether a position is one: a source without positions tells -1, and so does what has none yet.
inline bool isPlace(int position) { return position >= 0; }

inline void InStream::track(char c) {
    if (c != '\r' && c != '\n') {
        previousWasCR = false;
    } else {
        trackBreak(c);
    }
}

// A byte with line tracking. `c` is left as it was when the source returns true without a byte.
inline bool InStream::read(char& c) {
    if (!readRaw(c)) return false;
    track(c);
    return true;
}

// The same for the tokenizer, which takes a missing byte for a zero.
inline bool InStream::next(char& c) {
    c = 0;
    return read(c);
}

inline bool InStream::readRaw(char& c) {
    if (window.cursor == window.end) return fetch(c);
    c = *window.cursor++;
    return true;
}

inline void InStream::stepBack() {
    if (window.cursor != window.begin) {
        --window.cursor;
        return;
    }
    const int position = getPosition();
    if (position >= 1) setPosition(position - 1);
}

}  // namespace Xml
