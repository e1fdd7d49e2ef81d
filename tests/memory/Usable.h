#pragma once

#include "xml/stream/OutStream.h"
#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace Xml {
class Document;
}

namespace Xml::test {

// Checks that everything can be done with a document that was there when memory ran out: it can be written, read again,
// copied, validated, asked by path and edited. It is then what it was before.
void expectUsable(Document& document);

// The document of the text, which must have one, with no link set that validation would set.
std::unique_ptr<Document> documentOf(const std::string& text);

// A sink that behaves as a file and allocates nothing. What does not fit is lost.
class FixedSink : public OutStream {
public:
    void putChar(char c) override {
        if (place < bytes.size()) bytes[place] = c;
        ++place;
        if (place > length) length = place;
    }
    int getPosition() const override { return static_cast<int>(place); }
    void setPosition(int position) override { place = static_cast<std::size_t>(position); }

    // The bytes up to the position, and all.
    std::string upToPosition() const { return {bytes.data(), place}; }
    std::string all() const { return {bytes.data(), length}; }

private:
    std::array<char, 4096> bytes = {};
    std::size_t place = 0;
    std::size_t length = 0;
};

// Text that fits into no string without an allocation.
const std::string kLong = "longer than any string holds without an allocation";

}  // namespace Xml::test
