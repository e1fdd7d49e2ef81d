#pragma once

#include "xml/Export.h"
#include "xml/standard/ReadOptions.h"
#include <filesystem>

namespace Xml {

// Finds external entities among the files of one folder and of those in it, and nowhere else.
//
// The system identifier is a relative reference to a file: from the folder of `base` where that is a file in here,
// otherwise from the folder itself. "%20" and the like stand for their bytes. It must not lead out of the folder, and
// the file that it names must not either once links are followed; only a regular file is opened. For anything else
// there is no answer: an absolute name, one with a scheme, a query or a fragment, a device, a file that is missing or
// cannot be read. The public identifier does not count.
//
// Resolved::name is the path of the file, absolute and without links. The folder is found from where the process stands
// when this is called. Who may change it while a name is looked up may lead that elsewhere.
ORVXML_API Resolver filesBelow(const std::filesystem::path& folder);

}  // namespace Xml
