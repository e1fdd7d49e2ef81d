#include "xml/stream/FileSpecOutStream.h"

#include <cstdint>
#include <limits>
#include <typeinfo>

namespace Xml {

namespace {

constexpr std::uint32_t kTextType = 0x54455854;  // 'T', 'E', 'X', 'T'

}  // namespace

FileSpecOutStream::FileSpecOutStream(OrvSys::FileIO& openFile) : file(&openFile) {}

FileSpecOutStream::FileSpecOutStream(const OrvSys::FileSpec& spec) : owned(std::make_unique<OrvSys::FileIO>(spec)) {
    OrvSys::FileSpecFunctions::CreateFile(
        spec, kTextType);  // last: a file must not be emptied for a sink that cannot be made
    if (owned->OpenForWriting()) {
        file = owned.get();
    } else {
        owned.reset();
    }
}

FileSpecOutStream::~FileSpecOutStream() = default;

bool FileSpecOutStream::isValid() const { return file != nullptr; }

void FileSpecOutStream::putChar(char c) {
    if (!isValid()) return;
    file->WriteUInt8(static_cast<std::uint8_t>(c));
    movedTo(file->GetPosition());
}

int FileSpecOutStream::getPosition() const {
    if (!isValid()) return -1;
    const std::int64_t position = file->GetPosition();
    return position <= std::numeric_limits<int>::max() ? static_cast<int>(position) : -1;
}

void FileSpecOutStream::setPosition(int position) {
    if (!isValid()) return;
    file->Seek(position, OrvSys::FromStart);
    movedTo(file->GetPosition());
}

// A derived class gets every byte by its own putChar.
bool FileSpecOutStream::putChars(const char* bytes, std::size_t count) {
    if (typeid(*this) != typeid(FileSpecOutStream)) return false;
    if (isValid()) {
        file->WriteBytes(bytes, count);
        movedTo(file->GetPosition());
    }
    return true;
}

std::int64_t FileSpecOutStream::countFrom() const {
    return isValid() && typeid(*this) == typeid(FileSpecOutStream) ? file->GetPosition() : -1;
}

}  // namespace Xml
