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

std::vector<std::string> documentsOfSimilarTags() {
    const std::string element = "<ab id=\"1\" long-name=\"some value\">t</ab>";
    const std::string before = "<r>" + element + element;
    const std::string bytes("<>/&;'\"=!-: \t\n\rabix1\x01\xC3\0", 23);
    std::vector<std::string> all;
    for (std::size_t i = 0; i < element.size(); ++i) {
        for (const char c : bytes) {
            for (const bool isMore : {false, true}) {
                std::string changed = element;
                changed[i] = c;
                if (isMore) changed.insert(i + 1, 1, element[i]);
                all.push_back(before + changed + element + "</r>");
                all.push_back(before + changed);
            }
        }
    }
    return all;
}

}  // namespace Xml::test
