#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Xml::test {

// A text in some encoding, made character by character.
struct Encoded {
    std::string bytes;
    std::vector<std::int64_t> starts;  // where each character's bytes begin, and the end
};

struct EncodingUnderTest {
    const char* name;
    const char* mark;  // its bytes
    std::size_t markSize;
    const char* own;  // characters that it has besides ASCII, in UTF-8
    bool hasAll;      // a form for every character
};

// UTF-8, both orders of UTF-16 and UTF-32, Latin-1, US-ASCII; others that the platform knows, with one, two, up to four
// bytes a character and with states. Those that it does not know are not among them.
std::vector<EncodingUnderTest> encodingsUnderTest();

// The text is well-formed UTF-8 of characters that the encoding has. A mark, where it is asked for, is before all.
Encoded encode(const std::string& text, const EncodingUnderTest& encoding, bool mark = false);

// The characters of a text of UTF-8, each as UTF-8.
std::vector<std::string> charactersOf(const std::string& text);

}  // namespace Xml::test
