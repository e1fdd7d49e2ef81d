#pragma once

#include "xml/Export.h"
#include "xml/standard/WriteOptions.h"
#include "xml/standard/WriteResult.h"
#include <filesystem>

namespace Xml {

class Object;

// Writes a node, as writeText does, into a file: the file is replaced whole or not at all. What is written goes into a
// new file in the same folder, which takes the place of the old one once all of it is on the disk. So whatever happens,
// also where the process or the system ends, the file has its old content or the new one, whole; a file whose name
// begins with ".orvxml-" may be left then.
//
// The permissions of the file are kept, and the owner where the process may; other names of it (hard links) keep the
// old content. A symbolic link is followed. A new file has the permissions that the process gives new files. What is no
// file but a pipe or a device is written to.
//
// A file that may not be written is not replaced.
ORVXML_API WriteResult saveFile(const Object& node, const std::filesystem::path& path,
                                const WriteOptions& options = {});

}  // namespace Xml
