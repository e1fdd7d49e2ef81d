#pragma once

#include <functional>
#include <string>

// Texts that grow, and what reads them.
namespace Xml::test {

// Of what a test shows by size, a sanitizer sees a part.
#ifdef __SANITIZE_ADDRESS__
constexpr int kScale = 20;
#else
constexpr int kScale = 1;
#endif

// A name of the same length for every number: names that grow would be work that does too.
std::string numbered(const std::string& name, int number);

// One kind of text for each size.
struct TextCase {
    const char* name;
    std::function<std::string(int)> text;
};

// The job of reading that document from a source that counts.
std::function<void()> reading(std::string text, bool ok = true);

}  // namespace Xml::test
