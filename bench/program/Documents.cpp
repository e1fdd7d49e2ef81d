#include "Documents.h"
#include "libraries/Libraries.h"
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>

namespace bench {

namespace {

// What the libraries found is compared by elements and attributes: they differ in which texts they drop.
std::string difference(const Seen& seen, const Seen& ours) {
    if (seen.elements == ours.elements && seen.attributes == ours.attributes) return "";
    return "reads " + std::to_string(seen.elements) + " elements and " + std::to_string(seen.attributes) +
           " attributes where orvxml reads " + std::to_string(ours.elements) + " and " +
           std::to_string(ours.attributes);
}

// Expat counts what it reads and has no tree.
template <class Library>
Seen readBy(const std::string& text) {
    if constexpr (std::is_same_v<typename Library::Tree, Seen>) {
        return Library::parse(text);
    } else {
        return Library::read(Library::parse(text));
    }
}

void leaveOut(Document& document, const std::string& library, std::string reason) {
    std::replace_if(
        reason.begin(), reason.end(), [](char c) { return c == '\n' || c == '\t' || c == '\r'; }, ' ');
    std::printf("left-out\t%s\t%s\t%s\n", document.path.c_str(), library.c_str(), reason.c_str());
    document.leftOut.push_back(library);
}

}  // namespace

std::string readFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) throw Unreadable("is no file");
    std::ifstream file(path, std::ios::binary);
    std::string text(static_cast<std::size_t>(std::filesystem::file_size(path)), '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(text.size()))) throw Unreadable("cannot be read");
    return text;
}

bool Document::isReadBy(const std::string& library) const {
    return std::find(leftOut.begin(), leftOut.end(), library) == leftOut.end();
}

std::vector<Document> loadDocuments(const std::vector<std::string>& paths) {
    std::vector<Document> documents;
    for (const std::string& path : paths) {
        Document document{path, nullptr, {}};
        std::optional<Seen> ours;
        try {
            document.text = std::make_shared<const std::string>(readFile(path));
        } catch (const Unreadable& error) {
            leaveOut(document, "file", error.what());
            continue;
        }
        const auto readOrLeaveOut = [&](auto library, const std::string& name) {
            try {
                const Seen seen = readBy<decltype(library)>(*document.text);
                if (!ours) ours = seen;
                const std::string reason = difference(seen, *ours);
                if (!reason.empty()) leaveOut(document, name, reason);
            } catch (const Unreadable& error) {
                leaveOut(document, name, error.what());
            }
        };
        forEachLibrary([&](auto library) { readOrLeaveOut(library, decltype(library)::kName); });
        readOrLeaveOut(Standard(), Standard::kLeftOutAs);
        documents.push_back(std::move(document));
    }
    return documents;
}

}  // namespace bench
