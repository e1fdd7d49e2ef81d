#include "support/Places.h"

namespace Xml::test {

std::string sourceFolder() { return ORVXML_SOURCE_DIR; }

std::string dataFolder() { return ORVXML_TEST_DATA; }

std::string scratchFolder() { return ORVXML_TEST_SCRATCH; }

std::string compilerPath() { return ORVXML_CXX; }

}  // namespace Xml::test
