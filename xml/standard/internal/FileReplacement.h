#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/internal/FileCalls.h"
#include <string>
#include <string_view>

namespace Xml {

// Gives a file other bytes, all or none of them, as saveFile says.
class FileReplacement {
public:
    explicit FileReplacement(FileCalls& itsCalls) : calls(itsCalls) {}

    // False where that fails, and `problem` says why; it does not have the name of the file. The file is as it was
    // then, but where the problem says that only its folder could not be synced.
    bool replace(const std::string& path, std::string_view bytes, Problem& problem);

private:
    class File;
    class Temporary;

    bool put(const std::string& path, std::string_view bytes);
    bool follow(const std::string& path);
    bool isTargetThere();
    bool replaceFile(const struct stat& old, bool isThere, std::string_view bytes);
    bool writeDirectly(const std::string& path, int flags, std::string_view bytes);
    bool keepOwner(File& file, const struct stat& old);
    bool syncFolder();
    bool fail();

    FileCalls& calls;
    std::string target;  // without a link
    std::string folder;
    int error = 0;
};

}  // namespace Xml
