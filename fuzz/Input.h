#pragma once

#include "xml/stream/InStream.h"
#include <cstddef>
#include <string>

namespace Xml::fuzz {

// The bytes of an input, which must outlive it, taken one by one: what decides about the next step of a program.
class Decisions {
public:
    explicit Decisions(const std::string& input) : next(input.data()), end(next + input.size()) {}

    bool empty() const { return next == end; }

    // 0 after the end.
    unsigned byte() { return empty() ? 0 : static_cast<unsigned char>(*next++); }

    std::size_t below(std::size_t bound) { return byte() % bound; }

private:
    const char* next;
    const char* end;
};

// An input as a file that lives in memory, for the sources that open one. There is one at a time: the next takes its
// place.
std::string pathOfFileWith(const std::string& bytes);

// Thrown where a naive model would take longer than an input is worth; the input is given up then.
struct OutOfSteps {};

// A source of the library that lets only so many bytes be read. As a class of its own it has its primitives called for
// every byte.
template <class Source>
class Counted : public Source {
public:
    using Source::Source;

    bool getChar(char& c) override {
        if (--readsLeft < 0) throw OutOfSteps();
        return Source::getChar(c);
    }

private:
    long readsLeft = 6'000;
};

}  // namespace Xml::fuzz
