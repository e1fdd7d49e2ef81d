#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/Decoder.h"
#include <string>
#include <string_view>
#include <vector>

// What is wrong with a source, and with what is asked, before what it says counts. Where nothing else is said there is
// no place.
namespace Xml {

Problem problemOf(const std::string& source, Problem::Kind kind, const std::string& text, const char* rule = "");

// A problem for each option that is asked for and that nothing serves; as many as the options allow, and the first.
std::vector<Problem> unsupported(const ReadOptions& options, const std::string& source);

// Every problem's toString, a line each.
std::string messageOf(const std::vector<Problem>& problems);

// The stream cannot be read, for a reason in a few words.
Problem unreadable(const std::string& source, const char* reason);

// The source has more bytes than the options allow. Its place is where they end: the one of that many bytes from its
// beginning, or one that is still to be given.
Problem tooLong(const ReadOptions& options, const std::string& name, std::string_view bytes);
Problem tooLong(const ReadOptions& options, const std::string& source);

// The source is no text from some place on, which is still to be given but for the offset.
Problem undecodable(const DecodingFailure& failure, const std::string& source);

}  // namespace Xml
