// The documents that are measured: files, read once, and which libraries cannot read them.
#pragma once
#include <memory>
#include <string>
#include <vector>

namespace bench {

using Text = std::shared_ptr<const std::string>;

// The bytes of a file, in one allocation: nothing is left of it in the heap but the text. Throws Unreadable.
std::string readFile(const std::string& path);

struct Document {
    std::string path;
    Text text;
    std::vector<std::string> leftOut;  // the libraries that cannot read it

    // For this library's reading of XML 1.0 that is Standard::kLeftOutAs.
    bool isReadBy(const std::string& library) const;
};

// Reads each file with each library and drops the tree again, so that the heap is a used one afterwards. Writes a line
// "left-out, path, library, reason", split by tabs, for each library that cannot read a file, or reads another tree
// than this library does.
std::vector<Document> loadDocuments(const std::vector<std::string>& paths);

}  // namespace bench
