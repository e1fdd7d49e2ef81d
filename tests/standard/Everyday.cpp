#include "standard/Everyday.h"

#include "support/Places.h"
#include "support/Sources.h"
#include <algorithm>
#include <filesystem>

namespace Xml::test {

std::vector<std::string> everydayFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(everydayPath("")))
        files.push_back(entry.path().filename().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string everydayPath(const std::string& file) { return sourceFolder() + "/tests/standard/everyday/" + file; }

std::string everydayText(const std::string& file) { return readFile(everydayPath(file)); }

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

}  // namespace Xml::test
