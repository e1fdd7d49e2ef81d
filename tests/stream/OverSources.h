#pragma once

#include "models/NaiveTokenizer.h"
#include "support/Sources.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

// The library's stream and the naive tokenizer, over every kind of source.
namespace Xml::test {

inline const std::string kEnd = "Unexpected end of stream";

using Tokens = std::vector<std::string>;

// Calls `use` with the library's stream and with the naive tokenizer, over every given kind of source.
template <class Sources, class Use>
void overSources(const Sources& sources, const std::string& text, const Use& use) {
    for (const Source source : sources) {
        SCOPED_TRACE(source);
        withSource(source, text, [&use](InStream& in) { use(in); });
        SCOPED_TRACE("naive tokenizer");
        withSource(source, text, [&use](InStream& in) {
            NaiveTokenizer naive(in);
            use(naive);
        });
    }
}

template <class Use>
void everywhere(const std::string& text, const Use& use) {
    overSources(kAllSources, text, use);
}

// For what depends on where the data end: the kinds whose end shows at once.
template <class Use>
void whereTheEndIsPrompt(const std::string& text, const Use& use) {
    overSources(kPromptSources, text, use);
}

template <class Use>
void overFileStream(const std::string& text, const Use& use) {
    const Source kOnly[] = {Source::FileStream};
    overSources(kOnly, text, use);
}

// The tokens up to one that is "." alone or a failure.
template <class Tokenizer>
Tokens tokensOf(Tokenizer& in) {
    Tokens tokens;
    std::string token;
    while (in.getToken(token) && token != ".") tokens.push_back(token);
    return tokens;
}

// Whether the parse buffer holds exactly the text.
template <class Tokenizer>
bool holds(const Tokenizer& in, const std::string& text) {
    const int length = static_cast<int>(text.size());
    return in.StorePosition().second == length && in.CheckParseBufferEnd(text.data(), length);
}

// Counts the bytes that it is asked for.
class CountedInStream : public BareInStream {
public:
    using BareInStream::BareInStream;
    bool getChar(char& c) override {
        ++reads;
        return BareInStream::getChar(c);
    }
    int reads = 0;
};

}  // namespace Xml::test
