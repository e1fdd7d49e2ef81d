#include "xml/stream/FileOutStream.h"

#include "xml/text/Message.h"
#include "xml/text/internal/IoGuard.h"
#include <fstream>
#include <limits>
#include <ostream>
#include <sstream>
#include <typeinfo>

namespace Xml {

FileOutStream::FileOutStream(std::ostream* target) : stream(target) {}

FileOutStream::FileOutStream(const std::string& path, std::ofstream* file) : stream(file), openedHere(file) {
    withoutFailures([&] {
        if (file->is_open()) file->close();
    });
    try {
        withoutFailures([&] { file->open(path, std::ios_base::out | std::ios_base::binary | std::ios_base::trunc); });
        if (!file->is_open()) Message("<Xml::FileOutStream::FileOutStream> Could not open file: " + path);
    } catch (...) {
        // The file may be open all the same, and an object that was not made will not close it.
        withoutExceptions([&] { file->close(); });
        throw;
    }
}

FileOutStream::~FileOutStream() {
    withoutExceptions([&] {
        if (openedHere != nullptr && openedHere->is_open()) openedHere->close();
    });
}

void FileOutStream::putChar(char c) {
    withoutExceptions([&] { stream->put(c); });
    if (stream->good()) {
        wrote(1);
    } else {
        stopCounting();
    }
}

namespace {

std::int64_t positionOf(std::ostream& stream) {
    std::streamoff position = -1;
    withoutExceptions([&] { position = stream.tellp(); });
    return position;
}

}  // namespace

int FileOutStream::getPosition() const {
    const std::int64_t position = positionOf(*stream);
    return position <= std::numeric_limits<int>::max() ? static_cast<int>(position) : -1;
}

void FileOutStream::setPosition(int position) {
    withoutExceptions([&] {
        if (stream->good()) stream->seekp(position);
    });
    if (stream->good()) {
        movedTo(position);
    } else {
        stopCounting();
    }
}

// A derived class gets every byte by its own putChar.
bool FileOutStream::putChars(const char* bytes, std::size_t count) {
    if (typeid(*this) != typeid(FileOutStream)) return false;
    withoutExceptions([&] { stream->write(bytes, static_cast<std::streamsize>(count)); });
    if (stream->good()) {
        wrote(count);
    } else {
        stopCounting();
    }
    return true;
}

// Only in the standard's own buffers is the position known to be the number of bytes: in those of files as long as the
// locale leaves the bytes as they are.
std::int64_t FileOutStream::countFrom() const {
    const std::streambuf* const buffer = stream->rdbuf();
    if (typeid(*this) != typeid(FileOutStream) || buffer == nullptr) return -1;
    const bool known =
        typeid(*buffer) == typeid(std::stringbuf) || (typeid(*buffer) == typeid(std::filebuf) && leavesBytes(*buffer));
    return known ? positionOf(*stream) : -1;
}

}  // namespace Xml
