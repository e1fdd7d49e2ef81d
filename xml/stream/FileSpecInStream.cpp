#include "xml/stream/FileSpecInStream.h"

#include "xml/stream/internal/FileBlock.h"
#include "xml/stream/internal/StreamAccess.h"
#include <algorithm>
#include <limits>
#include <typeinfo>

namespace Xml {

namespace {

constexpr std::int64_t kMostPosition = std::numeric_limits<int>::max();

}  // namespace

FileSpecInStream::FileSpecInStream(OrvSys::FileIO& openFile) : file(&openFile), length(openFile.GetLength()) {}

FileSpecInStream::FileSpecInStream(const OrvSys::FileSpec& spec) : owned(std::make_unique<OrvSys::FileIO>(spec)) {
    if (!owned->OpenForReading()) {
        owned.reset();
        return;
    }
    file = owned.get();
    length = file->GetLength();
}

FileSpecInStream::~FileSpecInStream() = default;

bool FileSpecInStream::getChar(char& c) {
    if (length > kMostPosition || file == nullptr || beforeStart < 0 || eof()) return false;
    const std::int64_t before = file->GetPosition();
    c = static_cast<char>(file->ReadUInt8());
    return file->GetPosition() != before;  // a file that was cut meanwhile has no more bytes
}

int FileSpecInStream::getPosition() const {
    releaseWindow();
    if (file == nullptr) return -1;
    if (beforeStart < 0) return beforeStart;
    const std::int64_t position = file->GetPosition();
    return position <= kMostPosition ? static_cast<int>(position) : -1;
}

void FileSpecInStream::setPosition(int position) {
    releaseWindow();
    beforeStart = std::min(position, 0);
    if (file != nullptr) file->Seek(position, OrvSys::FromStart);
}

bool FileSpecInStream::eof() {
    releaseWindow();
    return file == nullptr || !file->IsOpen() || length <= file->GetPosition();
}

bool FileSpecInStream::lendBytes(Window& lent) {
    if (typeid(*this) != typeid(FileSpecInStream)) return false;
    if (length > kMostPosition || file == nullptr || beforeStart < 0 || !file->IsOpen()) return false;
    const std::int64_t left = length - file->GetPosition();
    if (left <= 0) return false;
    if (lent.loan == Window::Loan::TooFew && lendBlock(lent, left)) return true;
    std::size_t count = 0;
    const char* const begin = file->BufferedBytes(count);
    if (count == 0) return false;
    count = std::min(count, static_cast<std::size_t>(left));
    lent = {begin, begin, begin + count, static_cast<int>(file->GetPosition()), Window::Loan::ForNow};
    return true;
}

bool FileSpecInStream::lendBlock(Window& lent, std::int64_t left) {
    const std::int64_t position = file->GetPosition();
    const std::size_t count = FileBlock::lengthFor(StreamAccess::bytesReadAt(*this, position), notUsed, left);
    if (count == 0) return false;
    if (block == nullptr) block = std::make_unique<FileBlock>();
    const auto read = [this](char* bytes, std::size_t most) { return file->ReadBytes(bytes, most); };
    return block->lend(std::min(count, static_cast<std::size_t>(left)), static_cast<int>(position), read, lent);
}

void FileSpecInStream::takeBytesBack(const Window& lent) const {
    notUsed = lent.end - lent.cursor;
    if (block != nullptr && block->hasLent(lent)) {
        file->Seek(lent.base + (lent.cursor - lent.begin));
    } else {
        file->SkipBuffered(static_cast<std::size_t>(lent.cursor - lent.begin));
    }
}

bool FileSpecInStream::isTooLarge(const Window&) const { return length > kMostPosition; }

}  // namespace Xml
