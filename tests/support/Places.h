#pragma once

#include <string>

// Where the checkout and the build are. One source has the names from the build, so that all others compile to the same
// in every checkout.
namespace Xml::test {

// The folder of the checkout, that of the example documents, and one for files that tests make.
std::string sourceFolder();
std::string dataFolder();
std::string scratchFolder();

// What the build compiles C++ with.
std::string compilerPath();

}  // namespace Xml::test
