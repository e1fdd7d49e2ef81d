#pragma once

#include <string>

namespace Xml {
class ContentSpec;
}

namespace Xml::test {

// A content model as text in a normal form, which models of the same meaning share where they differ only in how groups
// are put into each other and how repetitions within a repeated choice are written: "(a,(b|c)?)+".
std::string normalModel(const ContentSpec& model);

// The same of libxml2's: an xmlElement.
std::string normalModel(const void* libxml2Element);

}  // namespace Xml::test
