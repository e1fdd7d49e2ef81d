// One buffer serves both directions. It is a copy of a stretch of the file that may be ahead of the file in one
// contiguous part, the unwritten bytes:
//
//   file    ....................................................
//   buffer            [ held       [ unwritten ]     held ]
//                     ^ bufferStart
//
// Reading and writing inside the stretch touch memory only. All access to the file names its offset (pread, pwrite), so
// that a seek is an assignment and the descriptor's own offset is never used.

// 64-bit offsets also where the system's default is 32.
#ifndef _FILE_OFFSET_BITS
#define _FILE_OFFSET_BITS 64
#endif

#include "orvsys/Files.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvSys {

namespace {

static_assert(sizeof(off_t) == sizeof(std::int64_t), "file offsets have 64 bits");

constexpr std::size_t kBufferSize = 64 * 1024;
constexpr std::int64_t kLastPosition = std::numeric_limits<std::int64_t>::max();

ssize_t readAt(int descriptor, char* bytes, std::size_t count, std::int64_t place) {
    ssize_t result;
    do {
        result = ::pread(descriptor, bytes, count, place);
    } while (result < 0 && errno == EINTR);
    return result;
}

ssize_t writeAt(int descriptor, const char* bytes, std::size_t count, std::int64_t place) {
    ssize_t result;
    do {
        result = ::pwrite(descriptor, bytes, count, place);
    } while (result < 0 && errno == EINTR);
    return result;
}

// A descriptor of the regular file at the path, -1 when there is none or it may not be opened so. It is looked at
// before, since to open a device or a pipe may do something by itself, and again after that, since it may have been
// exchanged. O_NONBLOCK keeps the open of a pipe from waiting for its other end, and means nothing to a regular file.
int openRegular(const std::string& path, int flags) {
    if (path.find('\0') != std::string::npos) {
        errno = ENOENT;
        return -1;
    }
    struct stat info;
    if (::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        errno = EINVAL;
        return -1;
    }
    int descriptor;
    do {
        descriptor = ::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor >= 0 && (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))) {
        ::close(descriptor);
        errno = EINVAL;
        return -1;
    }
    return descriptor;
}

}  // namespace

FileSpec::FileSpec(const std::string& path) : path_(path) {}

const std::string& FileSpec::GetPath() const { return path_; }

FileIOBase::FileIOBase()
    : descriptor(-1),
      readable(false),
      writable(false),
      position(0),
      bufferStart(0),
      heldCount(0),
      unwrittenBegin(0),
      unwrittenEnd(0) {}

FileIOBase::~FileIOBase() { Detach(); }

std::uint8_t FileIOBase::ReadUInt8() {
    std::size_t count;
    const char* bytes = BufferedBytes(count);
    if (count == 0) return 0;
    ++position;
    return static_cast<std::uint8_t>(*bytes);
}

std::size_t FileIOBase::ReadBytes(char* bytes, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t wanted = count - done;
        std::size_t got = 0;
        if (readable && wanted >= kBufferSize / 2 && !Holds(position)) {
            Flush();
            const ssize_t result = readAt(descriptor, bytes + done, wanted, position);
            got = result > 0 ? static_cast<std::size_t>(result) : 0;
        } else if (const char* const held = BufferedBytes(got)) {
            got = std::min(got, wanted);
            std::memcpy(bytes + done, held, got);
        }
        if (got == 0) break;
        position += static_cast<std::int64_t>(got);
        done += got;
    }
    return done;
}

void FileIOBase::WriteUInt8(std::uint8_t byte) {
    const char c = static_cast<char>(byte);
    WriteBytes(&c, 1);
}

void FileIOBase::WriteBytes(const char* bytes, std::size_t count) {
    if (!writable) return;
    while (count > 0 && position < kLastPosition) {
        PrepareToWrite();
        const auto begin = static_cast<std::size_t>(position - bufferStart);
        std::size_t part = std::min(count, kBufferSize - begin);
        // A byte at the last position could not be stepped over.
        if (kLastPosition - position < static_cast<std::int64_t>(part)) {
            part = static_cast<std::size_t>(kLastPosition - position);
        }
        std::memcpy(buffer.get() + begin, bytes, part);
        unwrittenBegin = HasUnwritten() ? unwrittenBegin : begin;
        unwrittenEnd = std::max(unwrittenEnd, begin + part);
        heldCount = std::max(heldCount, begin + part);
        position += static_cast<std::int64_t>(part);
        bytes += part;
        count -= part;
    }
}

void FileIOBase::Seek(std::int64_t offset, SeekOrigin origin) {
    if (!IsOpen()) return;
    const std::int64_t base = origin == FromCurrent ? position : origin == FromEnd ? GetLength() : 0;
    if (offset > kLastPosition - base || base + offset < 0) return;
    position = base + offset;
}

std::int64_t FileIOBase::GetPosition() const { return position; }

std::int64_t FileIOBase::GetLength() const {
    struct stat info;
    if (!IsOpen() || ::fstat(descriptor, &info) != 0) return 0;
    const std::int64_t unwrittenUpTo = HasUnwritten() ? bufferStart + static_cast<std::int64_t>(unwrittenEnd) : 0;
    return std::max<std::int64_t>(info.st_size, unwrittenUpTo);
}

bool FileIOBase::IsOpen() const { return descriptor >= 0; }

const char* FileIOBase::BufferedBytes(std::size_t& count) {
    count = 0;
    if (!readable) return nullptr;
    if (!Holds(position)) {
        Fill();
        if (!Holds(position)) return nullptr;
    }
    const auto begin = static_cast<std::size_t>(position - bufferStart);
    count = heldCount - begin;
    return buffer.get() + begin;
}

void FileIOBase::SkipBuffered(std::size_t count) { position += static_cast<std::int64_t>(count); }

void FileIOBase::Attach(int openDescriptor, bool canRead, bool canWrite) {
    descriptor = openDescriptor;
    readable = canRead;
    writable = canWrite;
}

void FileIOBase::Detach() {
    if (!IsOpen()) return;
    Flush();
    // Not tried again when it fails: the descriptor is gone either way and may already be somebody else's.
    ::close(descriptor);
    descriptor = -1;
    readable = writable = false;
    position = 0;
    buffer.reset();
    bufferStart = 0;
    heldCount = 0;
}

bool FileIOBase::HasUnwritten() const { return unwrittenBegin < unwrittenEnd; }

bool FileIOBase::Holds(std::int64_t place) const {
    return place >= bufferStart && static_cast<std::uint64_t>(place - bufferStart) < heldCount;
}

void FileIOBase::NeedBuffer() {
    if (!buffer) buffer.reset(new char[kBufferSize]);
}

// Reads the bytes at the position into the buffer, as many as fit. At the end of the file, and past it, the buffer
// stays as it is: who looks whether there is more will often go back.
void FileIOBase::Fill() {
    NeedBuffer();
    Flush();
    std::int64_t start = position;
    // Who steps back out of the buffer is likely to step back again, so half of it goes to what lies before.
    if (heldCount > 0 && position < bufferStart) {
        start = std::max<std::int64_t>(0, position - static_cast<std::int64_t>(kBufferSize / 2));
    }
    std::size_t got = 0;
    while (start + static_cast<std::int64_t>(got) <= position) {
        const ssize_t result =
            readAt(descriptor, buffer.get() + got, kBufferSize - got, start + static_cast<std::int64_t>(got));
        if (result < 0) heldCount = 0;  // what is in the buffer now is anybody's guess
        if (result <= 0) return;
        got += static_cast<std::size_t>(result);
        bufferStart = start;
        heldCount = got;
    }
}

// Writes the unwritten bytes to the file. If the system refuses them they are dropped, and the rest of the buffer with
// them, so that the next read sees what the file really holds.
void FileIOBase::Flush() {
    while (HasUnwritten()) {
        const ssize_t result = writeAt(descriptor, buffer.get() + unwrittenBegin, unwrittenEnd - unwrittenBegin,
                                       bufferStart + static_cast<std::int64_t>(unwrittenBegin));
        if (result <= 0) {
            heldCount = 0;
            break;
        }
        unwrittenBegin += static_cast<std::size_t>(result);
    }
    unwrittenBegin = unwrittenEnd = 0;
}

// Makes the position one where the buffer can take a byte: inside the bytes held or right after them, and inside the
// unwritten ones, if there are any, or right after these. Bytes that were only read are never written back: the file
// may have got others there meanwhile.
void FileIOBase::PrepareToWrite() {
    NeedBuffer();
    if (HasUnwritten() && (position < bufferStart + static_cast<std::int64_t>(unwrittenBegin) ||
                           position > bufferStart + static_cast<std::int64_t>(unwrittenEnd))) {
        Flush();
    }
    const std::int64_t heldEnd = bufferStart + static_cast<std::int64_t>(heldCount);
    if (position < bufferStart || position > heldEnd ||
        position - bufferStart == static_cast<std::int64_t>(kBufferSize)) {
        Flush();
        bufferStart = position;
        heldCount = 0;
    }
}

FileIO::FileIO(const FileSpec& spec) : spec_(spec) {}

bool FileIO::OpenForReading() {
    Close();
    const int opened = openRegular(spec_.GetPath(), O_RDONLY);
    if (opened < 0) return false;
    Attach(opened, true, false);
    return true;
}

bool FileIO::OpenForWriting() {
    Close();
    int opened = openRegular(spec_.GetPath(), O_RDWR | O_CREAT);
    const bool canRead = opened >= 0;
    if (!canRead && errno == EACCES) opened = openRegular(spec_.GetPath(), O_WRONLY | O_CREAT);
    if (opened < 0) return false;
    Attach(opened, canRead, true);
    return true;
}

void FileIO::Close() { Detach(); }

bool FileSpecFunctions::CreateFile(const FileSpec& spec, std::uint32_t) {
    const int opened = openRegular(spec.GetPath(), O_WRONLY | O_CREAT);
    if (opened < 0) return false;
    // Emptied only once it is known to be a regular file.
    const bool emptied = ::ftruncate(opened, 0) == 0;
    ::close(opened);
    return emptied;
}

}  // namespace OrvSys
