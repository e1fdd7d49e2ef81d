#pragma once

#include <string>

namespace Xml::fuzz {

// Where a property does not hold these print what differs and end the process: libFuzzer then keeps the input, and a
// replay fails.
void expectSame(const std::string& property, const std::string& expected, const std::string& actual);
void expectTrue(const std::string& property, bool holds, const std::string& detail);

}  // namespace Xml::fuzz
