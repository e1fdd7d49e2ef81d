#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Xml {

// Looks for the encoding that an XML or text declaration at the beginning of a source names, in pieces of any size. It
// is no judge: what does not go by the grammar, up to the quote after the name, is a source that names none, and what
// is wrong with it is found by whoever reads the text.
class EncodingDeclaration {
public:
    // Takes characters of the source, which go on where the last ones ended, and returns how many: all of them as long
    // as nothing is decided.
    std::size_t take(std::string_view characters);

    bool isDecided() const { return step == Step::Found || step == Step::None; }

    // The name and the place of its first character. Empty as long as nothing is decided, and where none is named.
    std::string_view name() const { return step == Step::Found ? std::string_view(encoding) : std::string_view(); }
    std::size_t nameOffset() const { return valueBegin; }

private:
    enum class Step : std::uint8_t { Word, White, Attribute, Equals, Quote, Version, Name, Found, None };

    Step stepAfter(char c);
    Step attributeAfter(char c);
    Step versionAfter(char c);
    Step nameAfter(char c);

    Step step = Step::Word;
    std::string_view word = "<?xml";  // what is still to come of it
    Step afterWord = Step::White;
    Step value = Step::Version;  // of the attribute that is read
    char quote = 0;
    bool hasVersion = false;
    std::size_t taken = 0;
    std::size_t valueBegin = 0;
    std::string encoding;
};

}  // namespace Xml
