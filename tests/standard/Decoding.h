#pragma once

#include "xml/standard/internal/Decoder.h"
#include <cstdint>
#include <string>
#include <vector>

namespace Xml::test {

// What came of a source.
struct Decoded {
    std::string text;
    bool hasFailed = false;
    DecodingFailure failure{};
    bool hasMark = false;
    std::vector<std::int64_t> offsets;  // in the source, of every character and of the end of the text
};

// From memory as a whole; as a stream in pieces that end at the given places, with places asked as the text comes and
// all before them forgotten now and then.
Decoded decodeWhole(const std::string& source, const std::string& encoding = {});
Decoded decodePieces(const std::string& source, const std::vector<std::size_t>& ends, const std::string& encoding = {});
Decoded decodeBytes(const std::string& source, const std::string& encoding = {});

// Expects the two to be the same in all but what a decoder may know of characters after a failure.
void expectSame(const Decoded& outcome, const Decoded& expected);

}  // namespace Xml::test
