#pragma once

#include "xml/stream/OutStream.h"
#include <functional>
#include <random>
#include <string>

namespace Xml::test {

// A sink with nothing but what every sink must have: it keeps what putChar is given.
class BareOutStream : public OutStream {
public:
    void putChar(char c) override { bytes += c; }
    int getPosition() const override { return static_cast<int>(bytes.size()); }
    void setPosition(int) override {}

    std::string bytes;
};

// Writes random things in random ways: put and << of bytes and texts, writeDataHolder, levels up and down, runs that
// are longer than any buffer now and then. The same generator state gives the same program. `afterEach` is called after
// each operation.
inline void runOutProgram(std::mt19937& random, OutStream& out, int steps,
                          const std::function<void()>& afterEach = {}) {
    const std::string kPieces[] = {"\n",   "\n\n",    "<a>",    "text", "\r\n", "", "\t", std::string(1, '\0'),
                                   "\xff", "a\nb\nc", "\n\t\n", " "};
    for (int i = 0; i < steps; ++i) {
        const std::string& piece = kPieces[random() % 12];
        const std::string text = random() % 50 == 0 ? std::string(random() % 9000, 'r') + piece : piece;
        const char c = text.empty() ? '\n' : text.back();
        switch (random() % 7) {
        case 0: out.put(c); break;
        case 1: out.put(text); break;
        case 2: out << c; break;
        case 3: out << text << '/' << std::string("-\n"); break;
        case 4: out.writeDataHolder(text); break;
        case 5: out.incTab(); break;
        case 6: out.decTab(); break;
        }
        if (afterEach) afterEach();
    }
}

}  // namespace Xml::test
