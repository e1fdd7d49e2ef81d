// 64-bit offsets also where the system's default is 32.
#ifndef _FILE_OFFSET_BITS
#define _FILE_OFFSET_BITS 64
#endif

#include "xml/standard/internal/FileReplacement.h"

#include "xml/standard/internal/OptionProblems.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Xml {

namespace {

constexpr mode_t kPermissions = 07777;
constexpr mode_t kSetIds = S_ISUID | S_ISGID;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Some file systems have nothing to sync, and say so.
bool hasNoSync(int error) { return error == EINVAL || error == ENOTSUP || error == ENOSYS; }

}  // namespace

// An open file, which is closed in any case.
class FileReplacement::File {
public:
    File(FileCalls& itsCalls, const std::string& path, int flags, mode_t mode)
        : calls(itsCalls), number(calls.open(path.c_str(), flags, mode)) {}
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return number >= 0; }
    int descriptor() const { return number; }

    bool write(std::string_view bytes) {
        constexpr std::size_t kMost = std::size_t{1} << 30;
        while (!bytes.empty()) {
            const ssize_t count = calls.write(number, bytes.data(), std::min(bytes.size(), kMost));
            if (count < 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }

    bool sync() { return calls.sync(number) == 0 || hasNoSync(errno); }

    bool close() {
        if (number < 0) return true;
        const int open = number;
        number = -1;
        return calls.close(open) == 0;
    }

private:
    FileCalls& calls;
    int number;
};

// The name of a new file, which goes again unless it has become the target.
class FileReplacement::Temporary {
public:
    Temporary(FileCalls& itsCalls, const std::string& folder) : calls(itsCalls), beginning(folder) {
        if (beginning.back() != '/') beginning += '/';
        beginning += ".orvxml-" + std::to_string(::getpid()) + '-';
        name.reserve(beginning.size() + 20);
    }
    ~Temporary() {
        if (!isMade) return;
        const int before = errno;
        calls.unlink(name.c_str());
        errno = before;
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    // The next name that may be free.
    const std::string& next() {
        static std::atomic<unsigned> number{0};
        name = beginning + std::to_string(number++);
        return name;
    }
    void setMade() { isMade = true; }

    bool become(const std::string& path) {
        if (calls.rename(name.c_str(), path.c_str()) != 0) return false;
        isMade = false;
        return true;
    }

private:
    FileCalls& calls;
    std::string beginning;
    std::string name;
    bool isMade = false;
};

bool FileReplacement::fail() {
    error = errno;
    return false;
}

bool FileReplacement::replace(const std::string& path, std::string_view bytes, Problem& problem) {
    const bool isDone = put(path, bytes);
    if (isDone && syncFolder()) return true;
    const std::string what =
        isDone ? "the file is written, but its folder cannot be synced: " : "the file cannot be written: ";
    const auto kind = error == ENOENT || error == ENOTDIR ? Problem::Kind::NotFound : Problem::Kind::Unwritable;
    problem = problemOf({}, kind, what + std::strerror(error));
    return false;
}

// Links of the system to what a process has open name no file, or none that is there: only what is behind them says how
// it can be written.
bool FileReplacement::put(const std::string& path, std::string_view bytes) {
    struct stat old = {};
    if (path.empty() || path.find('\0') != std::string::npos) {
        error = ENOENT;
        return false;
    }
    const bool isThere = calls.status(path.c_str(), old) == 0;
    if (!isThere && errno != ENOENT) return fail();
    if (isThere && S_ISDIR(old.st_mode)) {
        error = EISDIR;
        return false;
    }
    if (isThere && !S_ISREG(old.st_mode)) return writeDirectly(path, 0, bytes);
    if (!follow(path)) return false;
    if (isThere && old.st_nlink == 0 && !isTargetThere()) return writeDirectly(path, O_TRUNC, bytes);
    return replaceFile(old, isThere, bytes);
}

bool FileReplacement::isTargetThere() {
    struct stat now = {};
    return calls.status(target.c_str(), now) == 0;
}

// Symbolic links are replaced by nothing: what they name is.
bool FileReplacement::follow(const std::string& path) {
    constexpr int kMost = 40;
    target = path;
    std::string next;
    for (int i = 0; i < kMost; ++i) {
        folder = folderOf(target);
        if (!calls.readLink(target, next)) return true;
        target = next.rfind('/', 0) == 0 ? next : folder + '/' + next;
    }
    error = ELOOP;
    return false;
}

// A pipe, a device, a file that has no name any more.
bool FileReplacement::writeDirectly(const std::string& path, int flags, std::string_view bytes) {
    folder.clear();
    File file(calls, path, O_WRONLY | flags, 0);
    if (!file.isOpen() || !file.write(bytes)) return fail();
    return file.close() || fail();
}

bool FileReplacement::replaceFile(const struct stat& old, bool isThere, std::string_view bytes) {
    // Whether it may be written: that the folder may be changed says nothing about the file.
    if (isThere && !File(calls, target, O_WRONLY, 0).isOpen()) return fail();

    constexpr int kTries = 100;
    Temporary temporary(calls, folder);
    for (int i = 0;; ++i) {
        File file(calls, temporary.next(), O_WRONLY | O_CREAT | O_EXCL, isThere ? S_IRUSR | S_IWUSR : 0666);
        if (!file.isOpen()) {
            if (errno == EEXIST && i < kTries) continue;
            return fail();
        }
        temporary.setMade();
        if (!file.write(bytes) || (isThere && !keepOwner(file, old)) || !file.sync()) return fail();
        if (!file.close()) return fail();
        return temporary.become(target) || fail();
    }
}

// The owner where the process may, the permissions in any case; but for those that would lend them to another owner.
bool FileReplacement::keepOwner(File& file, const struct stat& old) {
    struct stat now = {};
    if (calls.statusOf(file.descriptor(), now) != 0) return false;
    mode_t mode = old.st_mode & kPermissions;
    const bool isSame = now.st_uid == old.st_uid && now.st_gid == old.st_gid;
    if (!isSame && calls.changeOwner(file.descriptor(), old.st_uid, old.st_gid) != 0) {
        mode &= ~kSetIds;
        calls.changeOwner(file.descriptor(), static_cast<uid_t>(-1), old.st_gid);
    }
    return calls.changeMode(file.descriptor(), mode) == 0;
}

// One that may not be read cannot be synced.
bool FileReplacement::syncFolder() {
    if (folder.empty()) return true;
    File file(calls, folder, O_RDONLY | O_DIRECTORY, 0);
    if (!file.isOpen()) return errno == EACCES || fail();
    return file.sync() || fail();
}

}  // namespace Xml
