// 64-bit offsets also where the system's default is 32.
#ifndef _FILE_OFFSET_BITS
#define _FILE_OFFSET_BITS 64
#endif

#include "xml/standard/internal/FileBytes.h"

#include "xml/standard/internal/Uninterrupted.h"
#include "xml/text/internal/LargePages.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Xml {

namespace {

class Descriptor {
public:
    explicit Descriptor(const char* path)
        : number(uninterrupted([path] { return ::open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY); })) {}
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

}  // namespace

FileBytes::Ending FileBytes::read(const std::string& path, std::int64_t most) {
    if (path.find('\0') != std::string::npos) return fail(ENOENT);
    const Descriptor file(path.c_str());
    return file.number >= 0 ? readOpen(file.number, most) : fail(errno);
}

FileBytes::Ending FileBytes::readOpen(int descriptor, std::int64_t most) {
    struct stat info;
    if (::fstat(descriptor, &info) != 0) return fail(errno);
    if (S_ISDIR(info.st_mode)) return fail(EISDIR);
    // Files that the system makes up have no size.
    if (info.st_size > 0) {
        const std::int64_t wanted = most > 0 ? std::min<std::int64_t>(info.st_size, most) : info.st_size;
        reserve(static_cast<std::size_t>(wanted) + 1);  // so that the end is found without more room
    }
    return readRest(descriptor, most);
}

FileBytes::Ending FileBytes::readRest(int descriptor, std::int64_t most) {
    constexpr std::size_t kLeast = std::size_t{64} << 10;
    for (;;) {
        if (size == room) reserve(room < kLeast ? kLeast : 2 * room);
        const auto count = uninterrupted([&] { return ::read(descriptor, memory.get() + size, room - size); });
        if (count < 0) return fail(errno);
        if (count == 0) return Ending::Whole;
        size += static_cast<std::size_t>(count);
        if (most > 0 && size > static_cast<std::size_t>(most)) {
            size = static_cast<std::size_t>(most);
            return Ending::TooLong;
        }
    }
}

void FileBytes::reserve(std::size_t capacity) {
    std::unique_ptr<char[]> larger(new char[capacity]);
    if (capacity >= LargePages::kBytes) LargePages::ask(larger.get(), capacity);
    if (size > 0) std::memcpy(larger.get(), memory.get(), size);
    memory = std::move(larger);
    room = capacity;
}

FileBytes::Ending FileBytes::fail(int error) {
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    if (isMissing) {
        why = "there is no such file";
    } else if (error == EISDIR) {
        why = "it is a directory";
    } else if (error == EACCES || error == EPERM) {
        why = "there is no permission to read it";
    } else if (error == ENAMETOOLONG) {
        why = "its name is too long";
    } else if (error == ELOOP) {
        why = "too many links lead to each other";
    } else {
        why = "the system cannot read it (error " + std::to_string(error) + ")";
    }
    return isMissing ? Ending::NotFound : Ending::Unreadable;
}

}  // namespace Xml
