#pragma once

#include <cstddef>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

namespace Xml {

// What replacing a file asks of the system, call by call, so that tests see what comes of each. Results are those of
// the system, -1 with errno for a failure; a signal interrupts none.
class FileCalls {
public:
    virtual ~FileCalls() = default;

    virtual int open(const char* path, int flags, mode_t mode);
    virtual ssize_t write(int file, const char* bytes, std::size_t count);
    virtual int changeOwner(int file, uid_t user, gid_t group);
    virtual int changeMode(int file, mode_t mode);
    virtual int sync(int file);
    virtual int close(int file);
    virtual int rename(const char* from, const char* to);
    virtual int unlink(const char* path);

    // These change nothing. readLink gives the path that a symbolic link has; false where it is none.
    virtual int status(const char* path, struct stat& info);
    virtual int statusOf(int file, struct stat& info);
    virtual bool readLink(const std::string& path, std::string& target);
};

}  // namespace Xml
