#include "xml/stream/StringInStream.h"

#include <limits>
#include <typeinfo>

namespace Xml {

const InStream::WindowSource StringInStream::kWindowSource = {acquireWindow, returnWindow, nullptr, true};

StringInStream::StringInStream(const std::string& bytes) : InStream(&kWindowSource), text(bytes) {
    tooLarge = text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max());
}

bool StringInStream::getChar(char& c) {
    releaseWindow();
    if (tooLarge || position < 0 || static_cast<std::size_t>(position) >= text.size()) return false;
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

bool StringInStream::acquireWindow(InStream& stream) {
    if (typeid(stream) != typeid(StringInStream)) return false;
    auto& self = static_cast<StringInStream&>(stream);
    if (self.tooLarge || self.position < 0 || static_cast<std::size_t>(self.position) >= self.text.size()) return false;
    const char* const begin = self.text.data();
    self.window = {begin, begin + self.position, begin + self.text.size(), 0, true};
    return true;
}

void StringInStream::returnWindow(const InStream& stream) {
    const auto& self = static_cast<const StringInStream&>(stream);
    self.position = static_cast<int>(self.window.cursor - self.window.begin);
}

}  // namespace Xml
