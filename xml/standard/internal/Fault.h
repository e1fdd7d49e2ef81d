#pragma once

#include "xml/standard/Problem.h"
#include <cstdint>
#include <string>

namespace Xml {

// What stops a reading.
struct Fault {
    Problem::Kind kind = Problem::Kind::Malformed;
    const char* rule = "";
    std::int64_t offset = 0;
    std::string text;
    std::string element;  // whose start tag it is in, when that element is not open yet
};

}  // namespace Xml
