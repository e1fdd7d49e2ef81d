#pragma once

#include "xml/stream/InStream.h"
#include <cstddef>
#include <string>

namespace Xml::test {

// The primitives of a file stream, as a standard stream over a file would give them, over a text in memory: the read
// that meets the end still returns true and stores nothing; from then on there are no bytes and no position, and
// setting one only clears the mark of the end.
class LateSource : public InStream {
public:
    explicit LateSource(const std::string& bytes) : text(bytes) {}

    bool getChar(char& c) override {
        if (failed || ended) return false;
        if (position < text.size()) {
            c = text[position++];
        } else {
            failed = ended = true;
        }
        return true;
    }
    int getPosition() const override { return failed ? -1 : static_cast<int>(position); }
    void setPosition(int p) override {
        ended = false;
        if (p < 0) failed = true;
        if (!failed) position = static_cast<std::size_t>(p);
    }
    bool eof() override { return ended; }

private:
    std::string text;
    std::size_t position = 0;
    bool failed = false;
    bool ended = false;
};

}  // namespace Xml::test
