#include "xml/stream/FileInStream.h"

#include "xml/stream/internal/FileBlock.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Message.h"
#include "xml/text/internal/IoGuard.h"
#include <fstream>
#include <limits>
#include <sstream>
#include <typeinfo>

namespace Xml {

namespace {

using Position = std::streamoff;

constexpr Position kMostPosition = std::numeric_limits<int>::max();

// The get area of a stream buffer, which only a class derived from it may name.
struct GetArea : std::streambuf {
    static const char* begin(const std::streambuf& buffer) { return (buffer.*&GetArea::eback)(); }
    static const char* cursor(const std::streambuf& buffer) { return (buffer.*&GetArea::gptr)(); }
    static const char* end(const std::streambuf& buffer) { return (buffer.*&GetArea::egptr)(); }
    static void advance(std::streambuf& buffer, int count) { (buffer.*&GetArea::gbump)(count); }
};

// Whether no byte follows, also where the next one cannot be read. Fills the get area.
bool isAtEnd(std::streambuf& buffer) {
    bool atEnd = true;
    withoutExceptions([&] { atEnd = buffer.sgetc() == std::streambuf::traits_type::eof(); });
    return atEnd;
}

Position tellOf(std::streambuf& buffer) { return buffer.pubseekoff(0, std::ios_base::cur, std::ios_base::in); }

// False where it cannot stand there.
bool standAt(std::streambuf& buffer, Position position) {
    Position place = -1;
    withoutExceptions([&] { place = buffer.pubseekpos(position, std::ios_base::in); });
    return place == position;
}

}  // namespace

FileInStream::FileInStream(std::istream* source) : stream(source) {}

FileInStream::FileInStream(const std::string& path, std::ifstream* file) : stream(file), openedHere(file) {
    withoutFailures([&] {
        if (file->is_open()) file->close();
    });
    try {
        withoutFailures([&] { file->open(path, std::ios_base::in | std::ios_base::binary); });
        if (!file->is_open()) Message("<Xml::FileInStream::FileInStream> Could not open file: " + path);
    } catch (...) {
        // The file may be open all the same, and an object that was not made will not close it.
        withoutExceptions([&] { file->close(); });
        throw;
    }
}

FileInStream::~FileInStream() {
    withoutExceptions([&] {
        if (openedHere != nullptr && openedHere->is_open()) openedHere->close();
    });
}

// Finds out, before the first byte is read, whether the positions of the source fit into an int. The length of a file
// counts only where a byte can be read: what else can be opened, a directory say, has lengths of its own kind.
void FileInStream::measure() {
    measured = true;
    withoutExceptions([&] {
        std::streambuf& buffer = *stream->rdbuf();
        const bool isFile = typeid(buffer) == typeid(std::filebuf);
        if (isFile && isAtEnd(buffer)) return;
        const Position here = tellOf(buffer);
        if (here < 0) return;
        Position end = here;
        if (isFile) {
            end = buffer.pubseekoff(0, std::ios_base::end, std::ios_base::in);
            buffer.pubseekpos(here, std::ios_base::in);
        }
        measuredEnd = end;
        tooLarge = end > kMostPosition;
    });
}

bool FileInStream::getChar(char& c) {
    releaseWindow();
    if (!stream->good()) return false;
    if (!measured) measure();
    if (tooLarge) return false;
    withoutExceptions([&] { stream->get(c); });
    metItsEnd = !stream->good();
    return true;  // also when no byte came: the end shows one read late
}

int FileInStream::getPosition() const {
    releaseWindow();
    Position position = -1;
    withoutExceptions([&] { position = stream->tellg(); });
    if (position <= kMostPosition) return static_cast<int>(position);
    tooLarge = true;
    return -1;
}

void FileInStream::setPosition(int position) {
    releaseWindow();
    withoutExceptions([&] { stream->seekg(position); });
}

bool FileInStream::eof() {
    releaseWindow();
    return stream->eof();
}

// The get area serves as the window where reading from it looks like reading by get, tellg and seekg: a sound stream
// that nothing is tied to, with one of the standard's own buffers, whose source has positions.
bool FileInStream::lendBytes(Window& lent) {
    if (typeid(*this) != typeid(FileInStream)) return false;
    if (!stream->good() || stream->tie() != nullptr || stream->exceptions() != std::ios_base::goodbit) return false;
    std::streambuf& buffer = *stream->rdbuf();
    if (typeid(buffer) != typeid(std::filebuf) && typeid(buffer) != typeid(std::stringbuf)) return false;

    if (!measured) measure();
    if (tooLarge) return false;
    if ((notUsed == 0 || lent.loan == Window::Loan::TooFew) && lendBlock(buffer, lent)) {
        metItsEnd = false;
        checkedBuffer = nullptr;
        return true;
    }
    if (GetArea::cursor(buffer) == GetArea::end(buffer)) {
        checkedBuffer = nullptr;
        if (isAtEnd(buffer)) return false;  // the primitive shows it as it should
    }
    if (checkedBuffer != &buffer) {
        const Position position = tellOf(buffer);
        const Position last = position + (GetArea::end(buffer) - GetArea::cursor(buffer));
        if (position < 0 || last > kMostPosition || !leavesBytes(buffer)) return false;
        checkedBuffer = &buffer;
    }
    metItsEnd = false;
    getAreaLength = GetArea::end(buffer) - GetArea::begin(buffer);
    lent = {GetArea::begin(buffer), GetArea::cursor(buffer), GetArea::end(buffer), -1, Window::Loan::ForNow};
    return true;
}

bool FileInStream::lendBlock(std::streambuf& buffer, Window& lent) {
    if (typeid(buffer) != typeid(std::filebuf) || !leavesBytes(buffer)) return false;
    const bool isTooFew = lent.loan == Window::Loan::TooFew;  // they have come back just now
    const Position position = isTooFew && cameBackAt ? *cameBackAt : tellOf(buffer);
    if (position < 0) return false;
    const Position tooFew = isTooFew ? notUsed : 0;
    const std::size_t count =
        FileBlock::lengthFor(StreamAccess::bytesReadAt(*this, position), tooFew, measuredEnd - position);
    if (static_cast<Position>(count) <= getAreaLength || static_cast<Position>(count) > kMostPosition - position)
        return false;

    if (block == nullptr) block = std::make_unique<FileBlock>();
    const auto read = [&](char* bytes, std::size_t most) {
        std::streamsize got = 0;
        withoutExceptions([&] { got = buffer.sgetn(bytes, static_cast<std::streamsize>(most)); });
        // The get area may still have bytes from before the block, which a caller could step back to. This empties it.
        if (got == 0 || GetArea::begin(buffer) != GetArea::end(buffer)) {
            if (!standAt(buffer, position + got)) fail();
        }
        return static_cast<std::size_t>(got);
    };
    return block->lend(count, static_cast<int>(position), read, lent);
}

void FileInStream::takeBytesBack(const Window& lent) const {
    std::streambuf& buffer = *stream->rdbuf();
    notUsed = lent.end - lent.cursor;
    if (block != nullptr && block->hasLent(lent)) {
        cameBackAt = lent.base + (lent.cursor - lent.begin);
        if (notUsed != 0 && !standAt(buffer, *cameBackAt)) fail();
        return;
    }
    cameBackAt.reset();
    GetArea::advance(buffer, static_cast<int>(lent.cursor - GetArea::cursor(buffer)));
}

// The stream does not stand where it should, as after a seek that failed: nothing is read from there.
void FileInStream::fail() const {
    cameBackAt.reset();
    withoutExceptions([&] { stream->setstate(std::ios_base::failbit); });
}

int FileInStream::positionOfBytes(const Window&) const {
    std::streambuf& buffer = *stream->rdbuf();
    return static_cast<int>(tellOf(buffer) - (GetArea::cursor(buffer) - GetArea::begin(buffer)));
}

bool FileInStream::isTooLarge(const Window&) const { return tooLarge; }

bool FileInStream::cannotComeBack(const Window&) const { return metItsEnd; }

}  // namespace Xml
