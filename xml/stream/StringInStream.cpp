#include "xml/stream/StringInStream.h"

#include "xml/text/internal/LargePages.h"
#include <limits>
#include <typeinfo>

namespace Xml {

namespace {

constexpr std::size_t kMostBytes = std::numeric_limits<int>::max();

}  // namespace

StringInStream::StringInStream(const std::string& bytes) {
    LargePages::reserveAll(text, bytes.size());
    text = bytes;
}

bool StringInStream::getChar(char& c) {
    releaseWindow();
    if (!hasByte()) return false;
    c = text[static_cast<std::size_t>(position++)];
    return true;
}

int StringInStream::getPosition() const {
    releaseWindow();
    return position;
}

void StringInStream::setPosition(int newPosition) {
    releaseWindow();
    position = newPosition;
}

bool StringInStream::eof() {
    releaseWindow();
    return position >= 0 && static_cast<std::size_t>(position) >= text.size();
}

bool StringInStream::lendBytes(Window& lent) {
    if (typeid(*this) != typeid(StringInStream) || !hasByte()) return false;
    const char* const begin = text.data();
    lent = {begin, begin + position, begin + text.size(), 0, Window::Loan::ForGood};
    return true;
}

void StringInStream::takeBytesBack(const Window& lent) const { position = static_cast<int>(lent.cursor - lent.begin); }

bool StringInStream::isTooLarge(const Window&) const { return text.size() > kMostBytes; }

// Whether there is a byte to read at the position.
bool StringInStream::hasByte() const {
    return text.size() <= kMostBytes && position >= 0 && static_cast<std::size_t>(position) < text.size();
}

}  // namespace Xml
