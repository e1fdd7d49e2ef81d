// Paths are strings here: those of the standard library do not survive memory that runs out.
#include "xml/standard/FilesBelow.h"

#include "orvsys/Files.h"
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Xml {

namespace {

// The absolute path without links of something that is there.
std::optional<std::string> realPath(const std::string& path) {
    if (path.find('\0') != std::string::npos) return std::nullopt;
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path.c_str(), nullptr), &std::free);
    if (found == nullptr && errno == ENOMEM) throw std::bad_alloc();
    return found != nullptr ? std::optional<std::string>(found.get()) : std::nullopt;
}

// Both are real paths.
bool isIn(std::string_view folder, std::string_view path) {
    if (path.substr(0, folder.size()) != folder) return false;
    return path.size() == folder.size() || folder.back() == '/' || path[folder.size()] == '/';
}

// --- References ---

// A relative reference has a ":" in no segment before its first "/".
bool hasScheme(std::string_view reference) {
    return reference.substr(0, reference.find('/')).find(':') != std::string_view::npos;
}

// Goes on by one segment, in which "%20" and the like stand for their bytes.
bool follow(std::string_view segment, bool isLast, std::string& path) {
    std::string name;
    for (std::size_t i = 0; i < segment.size(); ++i) {
        char c = segment[i];
        if (c == '?' || c == '#') return false;
        if (c == '%') {
            const std::string_view digits = segment.substr(i + 1, 2);
            unsigned char byte = 0;
            const char* const end = digits.data() + digits.size();
            if (digits.size() < 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end) return false;
            c = static_cast<char>(byte);
            if (c == '/') return false;
            i += 2;
        }
        name += c;
    }
    if (name.empty() || name == ".") return !isLast;
    if (name != "..") {
        path.append("/").append(name);
        return true;
    }
    path.resize(std::min(path.rfind('/'), path.size()));
    return !isLast;
}

// The path that a reference from a folder names; none where it is no relative one, or not to a file.
std::optional<std::string> pathFrom(const std::string& folder, std::string_view reference) {
    if (reference.substr(0, 1) == "/" || hasScheme(reference)) return std::nullopt;
    std::string path = folder == "/" ? std::string() : folder;
    for (;;) {
        const std::size_t slash = reference.find('/');
        const bool isLast = slash == std::string_view::npos;
        if (!follow(reference.substr(0, slash), isLast, path)) return std::nullopt;
        if (isLast) return path;
        reference.remove_prefix(slash + 1);
    }
}

// The folder of a file in here, otherwise the folder itself.
std::string folderOf(const std::string& base, const std::string& folder) {
    std::optional<std::string> file = realPath(base);
    if (!file || *file == folder || !isIn(folder, *file)) return folder;
    file->resize(std::max<std::size_t>(file->rfind('/'), 1));
    return std::move(*file);
}

std::optional<std::string> lookUp(const std::string& place, std::string_view reference, const std::string& base) {
    const std::optional<std::string> folder = realPath(place);
    if (!folder) return std::nullopt;
    const std::optional<std::string> named = pathFrom(folderOf(base, *folder), reference);
    if (!named || !isIn(*folder, *named)) return std::nullopt;
    std::optional<std::string> found = realPath(*named);
    if (!found || !isIn(*folder, *found)) return std::nullopt;
    return found;
}

// --- Files ---

// All of a regular file.
std::optional<std::string> bytesOf(const std::string& path) {
    OrvSys::FileIO file{OrvSys::FileSpec(path)};
    if (!file.OpenForReading()) return std::nullopt;
    std::string bytes;
    const auto size = static_cast<std::uint64_t>(file.GetLength());
    if (size > bytes.max_size()) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(size));
    if (file.ReadBytes(bytes.data(), bytes.size()) != bytes.size()) return std::nullopt;
    return bytes;
}

// From where the process stands now.
std::string absolute(const std::string& path) {
    if (path.empty() || path[0] == '/') return path;
    return realPath(".").value_or("") + "/" + path;
}

}  // namespace

Resolver filesBelow(const std::filesystem::path& folder) {
    return [place = absolute(folder.string())](const std::string&, const std::string& systemId,
                                               const std::string& base) -> std::optional<Resolved> {
        std::optional<std::string> path = lookUp(place, systemId, base);
        if (!path) return std::nullopt;
        std::optional<std::string> text = bytesOf(*path);
        if (!text) return std::nullopt;
        return Resolved{std::move(*text), std::move(*path)};
    };
}

}  // namespace Xml
