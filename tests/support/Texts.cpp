#include "support/Texts.h"

#include <cstddef>

namespace Xml::test {

namespace {

template <class Text>
Text repeatedText(const Text& text, int count) {
    Text all;
    all.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

}  // namespace

std::string narrow(const OrvSys::Uni16String& text) { return OrvSys::Uni16CharToPlatformCString(text); }

OrvSys::Uni16String wide(const std::string& text) { return OrvSys::UTF8ToUni16Char(text); }

std::string repeated(const std::string& text, int count) { return repeatedText(text, count); }

OrvSys::Uni16String repeated(const OrvSys::Uni16String& text, int count) { return repeatedText(text, count); }

std::string pieces(int count, const std::function<std::string(int)>& piece) {
    std::string all;
    for (int i = 0; i < count; ++i) all += piece(i);
    return all;
}

}  // namespace Xml::test
