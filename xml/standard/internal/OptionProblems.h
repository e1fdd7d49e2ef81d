#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/ReadOptions.h"
#include <string>
#include <vector>

// What is wrong with a source as a whole, and with what is asked. There is no place.
namespace Xml {

Problem problemOf(const std::string& source, Problem::Kind kind, const std::string& text, const char* rule = "");

// A problem for each option that is asked for and that nothing serves; as many as the options allow, and the first.
std::vector<Problem> unsupported(const ReadOptions& options, const std::string& source);

// Every problem's toString, a line each.
std::string messageOf(const std::vector<Problem>& problems);

// The source has more bytes than the options allow.
Problem tooLong(const ReadOptions& options, const std::string& source);

}  // namespace Xml
