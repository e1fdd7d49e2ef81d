#include "xml/stream/FileSpecInStream.h"

#include <algorithm>
#include <limits>
#include <typeinfo>

namespace Xml {

const InStream::WindowSource FileSpecInStream::kWindowSource = {acquireWindow, returnWindow, nullptr, false};

FileSpecInStream::FileSpecInStream(OrvSys::FileIO& openFile) : InStream(&kWindowSource), file(&openFile) {
    takeLength();
}

FileSpecInStream::FileSpecInStream(const OrvSys::FileSpec& spec)
    : InStream(&kWindowSource), owned(std::make_unique<OrvSys::FileIO>(spec)) {
    if (!owned->OpenForReading()) {
        owned.reset();
        return;
    }
    file = owned.get();
    takeLength();
}

FileSpecInStream::~FileSpecInStream() = default;

void FileSpecInStream::takeLength() {
    length = file->GetLength();
    tooLarge = length > std::numeric_limits<int>::max();
}

bool FileSpecInStream::getChar(char& c) {
    if (tooLarge || file == nullptr || beforeStart < 0 || eof()) return false;
    const std::int64_t before = file->GetPosition();
    c = static_cast<char>(file->ReadUInt8());
    return file->GetPosition() != before;  // a file that was cut meanwhile has no more bytes
}

int FileSpecInStream::getPosition() const {
    releaseWindow();
    if (file == nullptr) return -1;
    if (beforeStart < 0) return beforeStart;
    const std::int64_t position = file->GetPosition();
    return position <= std::numeric_limits<int>::max() ? static_cast<int>(position) : -1;
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

bool FileSpecInStream::acquireWindow(InStream& stream) {
    if (typeid(stream) != typeid(FileSpecInStream)) return false;
    auto& self = static_cast<FileSpecInStream&>(stream);
    if (self.tooLarge || self.file == nullptr || self.beforeStart < 0 || !self.file->IsOpen()) return false;
    const std::int64_t left = self.length - self.file->GetPosition();
    if (left <= 0) return false;
    std::size_t count = 0;
    const char* const begin = self.file->BufferedBytes(count);
    if (count == 0) return false;
    count = std::min(count, static_cast<std::size_t>(left));
    self.window = {begin, begin, begin + count, static_cast<int>(self.file->GetPosition()), true};
    return true;
}

void FileSpecInStream::returnWindow(const InStream& stream) {
    const auto& self = static_cast<const FileSpecInStream&>(stream);
    self.file->SkipBuffered(static_cast<std::size_t>(self.window.cursor - self.window.begin));
}

}  // namespace Xml
