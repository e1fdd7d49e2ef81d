// 64-bit offsets also where the system's default is 32.
#ifndef _FILE_OFFSET_BITS
#define _FILE_OFFSET_BITS 64
#endif

#include "xml/standard/internal/FileCalls.h"

#include "xml/standard/internal/Uninterrupted.h"
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Xml {

int FileCalls::open(const char* path, int flags, mode_t mode) {
    return uninterrupted([=] { return ::open(path, flags | O_CLOEXEC | O_NOCTTY, mode); });
}

ssize_t FileCalls::write(int file, const char* bytes, std::size_t count) {
    return uninterrupted([=] { return ::write(file, bytes, count); });
}

int FileCalls::changeOwner(int file, uid_t user, gid_t group) {
    return uninterrupted([=] { return ::fchown(file, user, group); });
}

int FileCalls::changeMode(int file, mode_t mode) {
    return uninterrupted([=] { return ::fchmod(file, mode); });
}

int FileCalls::sync(int file) {
    return uninterrupted([=] { return ::fsync(file); });
}

// Whatever comes of it, the descriptor is gone.
int FileCalls::close(int file) { return ::close(file) == 0 || errno == EINTR ? 0 : -1; }

int FileCalls::rename(const char* from, const char* to) { return std::rename(from, to); }

int FileCalls::unlink(const char* path) { return ::unlink(path); }

int FileCalls::status(const char* path, struct stat& info) { return ::stat(path, &info); }

int FileCalls::statusOf(int file, struct stat& info) { return ::fstat(file, &info); }

bool FileCalls::readLink(const std::string& path, std::string& target) {
    target.resize(PATH_MAX);  // as much as a link may hold
    const ssize_t size = ::readlink(path.c_str(), target.data(), target.size());
    if (size < 0) return false;
    target.resize(static_cast<std::size_t>(size));
    return true;
}

}  // namespace Xml
