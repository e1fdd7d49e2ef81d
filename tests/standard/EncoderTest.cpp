#include "xml/standard/internal/Encoder.h"

#include "standard/Encoded.h"
#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/Encodings.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <iconv.h>
#include <string>

namespace Xml::test {
namespace {

std::string utf8(char32_t c) {
    std::string text;
    Utf8::append(text, c);
    return text;
}

TEST(EncoderTest, MakesTheBytesThatThePlatformMakes) {
    for (const EncodingUnderTest& encoding : encodingsUnderTest()) {
        SCOPED_TRACE(encoding.name);
        const auto encoder = Encoder::make(encoding.name);
        if (encodingNamed(encoding.name) == Encoding::Utf8) {
            EXPECT_EQ(encoder, nullptr);
            continue;
        }
        ASSERT_NE(encoder, nullptr);
        EXPECT_EQ(encoder->hasAll(), encoding.hasAll && encodingNamed(encoding.name) != Encoding::Other);
        const std::string text = "<a b=\"1\">text " + std::string(encoding.own) + "</a>\n" + encoding.own + "x";
        EXPECT_EQ(encoder->sayableEnd(text.data(), text.data() + text.size()), text.data() + text.size());
        // In pieces it is the same as at once.
        for (const std::size_t size : {std::size_t{1}, std::size_t{3}, text.size()}) {
            const auto fresh = Encoder::make(encoding.name);
            std::string bytes;
            const auto characters = charactersOf(text);
            for (std::size_t i = 0; i < characters.size(); i += size) {
                std::string piece;
                for (std::size_t j = i; j < std::min(i + size, characters.size()); ++j) piece += characters[j];
                EXPECT_TRUE(fresh->encode(piece, bytes));
            }
            fresh->finish(bytes);
            EXPECT_EQ(bytes, encode(text, encoding).bytes);
        }
    }
}

TEST(EncoderTest, KnowsWhichCharactersComeBack) {
    const struct {
        const char* encoding;
        const char* lacks;
    } kCases[] = {
        {"US-ASCII", "\u0080"}, {"ISO-8859-1", "\u0100"}, {"windows-1252", "\u0100"}, {"KOI8-R", "\u00E4"},
        {"Shift_JIS", "\\"},    {"EUC-JP", "\U0001F600"}, {"ISO-8859-15", "\u00A4"},  {"ISO-2022-JP", "\u00E4"},
    };
    for (const auto& c : kCases) {
        const auto encoder = Encoder::make(c.encoding);
        if (encoder == nullptr) continue;  // not on this platform
        SCOPED_TRACE(c.encoding);
        const std::string text = std::string("ab") + c.lacks + "c";
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(encoder->sayableEnd(text.data(), text.data() + text.size()), text.data() + 2);
        }
        // What was tried leaves no trace.
        std::string bytes;
        EXPECT_TRUE(encoder->encode("abc", bytes));
        encoder->finish(bytes);
        EXPECT_EQ(bytes, "abc");
    }
}

TEST(EncoderTest, SaysAllOfAscii) {
    for (const char* const name : {"GB18030", "Big5", "EUC-JP", "windows-1252", "KOI8-R", "ISO-8859-15"}) {
        const auto encoder = Encoder::make(name);
        if (encoder == nullptr) continue;  // not on this platform
        SCOPED_TRACE(name);
        EXPECT_TRUE(encoder->hasAscii());
        std::string text = "\t\n\r";
        for (char c = ' '; c < 0x7F; ++c) text += c;
        text += '\x7F';
        EXPECT_EQ(encoder->sayableEnd(text.data(), text.data() + text.size()), text.data() + text.size());
    }
}

// Whatever it says that it can say comes back as what it was.
TEST(EncoderTest, WhatItCanSayComesBack) {
    for (const char* const name : {"US-ASCII", "ISO-8859-1", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE",
                                   "windows-1252", "Shift_JIS", "EUC-JP", "Big5", "ISO-8859-7", "GB18030"}) {
        const auto encoder = Encoder::make(name);
        if (encoder == nullptr) continue;
        SCOPED_TRACE(name);
        std::string text;
        int sayable = 0;
        for (char32_t c = 0x20; c < 0x30000; c += c < 0x500 ? 1 : 7) {
            if (c >= 0xD800 && c < 0xE000) continue;
            const std::string character = utf8(c);
            if (encoder->sayableEnd(character.data(), character.data() + character.size()) == character.data())
                continue;
            text += character;
            ++sayable;
        }
        EXPECT_GE(sayable, 95);
        std::string bytes;
        EXPECT_TRUE(encoder->encode(text, bytes));
        encoder->finish(bytes);
        const Encoding encoding = encodingNamed(name);
        const auto back = encoding == Encoding::Other ? Converter::makeForeign(name) : Converter::make(encoding);
        std::string read;
        EXPECT_EQ(back->convert(bytes, read).ending, Converter::Ending::Whole);
        back->finish(read);
        EXPECT_TRUE(read == text);
    }
}

TEST(EncoderTest, KnowsNoneInWhichMarkupIsNotThatOfAscii) {
    for (const char* const name : {"klingon", "UTF-7", "IBM037", "EBCDIC-US"}) EXPECT_EQ(Encoder::make(name), nullptr);
}

}  // namespace
}  // namespace Xml::test
