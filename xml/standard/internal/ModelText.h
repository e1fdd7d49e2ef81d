#pragma once

#include "xml/stream/FileOutStream.h"
#include <sstream>
#include <string>

namespace Xml {

class ContentSpec;

// A content model as XML 1.0 has it. Whether it is well formed depends on what a program put into it.
std::string modelText(const ContentSpec& model);

// What a part of a declaration writes of itself.
template <class Write>
std::string ownText(Write write) {
    std::ostringstream text;
    FileOutStream out(&text);
    write(out);
    return text.str();
}

}  // namespace Xml
