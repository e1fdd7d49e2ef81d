#pragma once

#include "xml/Export.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/ReadResult.h"
#include <filesystem>
#include <iosfwd>
#include <string_view>

namespace Xml {

// Read a document of XML 1.0, to the very end of the source. The tree is of the same classes as that of the other
// readers.

// A file of any kind that can be opened and read; of a pipe what comes until its other end is closed.
ORVXML_API ReadResult readFile(const std::filesystem::path& path, const ReadOptions& options = {});

ORVXML_API ReadResult readText(std::string_view text, const ReadOptions& options = {});

// From where the stream stands.
ORVXML_API ReadResult readStream(std::istream& in, const ReadOptions& options = {});

}  // namespace Xml
