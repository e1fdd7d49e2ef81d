#pragma once

#include <string>
#include <vector>

namespace Xml::test {

// Why a document may fail to be read without a message: the row of the silent failures in docs/errors.md that holds for
// it, found by looking at its text, of which the reader has read what is in front of the position; empty where none
// does. A negative position is that of a file stream which has met its end: all is read, and a word that the data ends
// in has a zero byte after it.
std::string silentFailure(const std::string& text, int position, const std::vector<std::string>& diagnostics);

}  // namespace Xml::test
