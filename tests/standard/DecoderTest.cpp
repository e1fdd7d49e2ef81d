#include "Decoding.h"
#include "Encoded.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/Decoder.h"
#include "xml/standard/internal/SourceText.h"
#include <cctype>
#include <gtest/gtest.h>
#include <iconv.h>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::DecodingFailure;
using Xml::SourceText;
using Xml::test::charactersOf;
using Xml::test::decodeBytes;
using Xml::test::Decoded;
using Xml::test::decodePieces;
using Xml::test::decodeWhole;
using Xml::test::encode;
using Xml::test::Encoded;
using Xml::test::encodingsUnderTest;
using Xml::test::EncodingUnderTest;
using Xml::test::expectSame;
using Kind = DecodingFailure::Kind;

std::string declared(const std::string& encoding, const std::string& content) {
    return "<?xml version=\"1.0\" encoding='" + encoding + "'?>" + content;
}

std::string contentIn(const EncodingUnderTest& encoding) {
    return "<a b='"s + encoding.own + "'>\r\n" + encoding.own + "x" + encoding.own + "\n</a>";
}

void expectText(const Decoded& outcome, const std::string& text, const Encoded& source) {
    EXPECT_FALSE(outcome.hasFailed) << outcome.failure.text;
    EXPECT_EQ(outcome.text, text);
    EXPECT_EQ(outcome.offsets, source.starts);
}

// The document from memory, byte by byte, and in every two pieces.
void expectAllWays(const std::string& text, const Encoded& source, const std::string& given = {}) {
    expectText(decodeWhole(source.bytes, given), text, source);
    expectText(decodeBytes(source.bytes, given), text, source);
    for (std::size_t split = 1; split < source.bytes.size(); ++split)
        expectText(decodePieces(source.bytes, {split}, given), text, source);
}

TEST(DecoderTest, GivesTheSameTextAndPlacesFromEveryEncoding) {
    const auto encodings = encodingsUnderTest();
    EXPECT_GE(encodings.size(), 7u);
    for (const auto& encoding : encodings) {
        SCOPED_TRACE(encoding.name);
        const std::string content = contentIn(encoding);
        const std::string text = declared(encoding.name, content);
        expectAllWays(text, encode(text, encoding));
        expectAllWays(text, encode(text, encoding), encoding.name);
        expectAllWays(content, encode(content, encoding), encoding.name);
        expectAllWays("", encode("", encoding), encoding.name);
        if (encoding.markSize != 0) {
            expectAllWays(text, encode(text, encoding, true));
            expectAllWays(content, encode(content, encoding, true));
            expectAllWays(content, encode(content, encoding, true), encoding.name);
            EXPECT_TRUE(decodeWhole(encode(content, encoding, true).bytes).hasMark);
        }
        EXPECT_FALSE(decodeWhole(encode(text, encoding).bytes).hasMark);
        if (testing::Test::HasFailure()) return;
    }
}

// What looks like text in a document is text: an encoding that can hide markup is taken from outside only.
TEST(DecoderTest, TakesNoDeclaredEncodingThatHidesMarkup) {
    for (const char* const name : {"UTF-7", "utf-7", "UNICODE-1-1-UTF-7"}) {
        if (Xml::Converter::makeForeign(name) == nullptr) continue;
        const Decoded decoded = decodeWhole(declared(name, "<a>+ADw-</a>"));
        ASSERT_TRUE(decoded.hasFailed) << name;
        EXPECT_EQ(decoded.failure.kind, Kind::UnknownEncoding);
        EXPECT_EQ(decoded.failure.text,
                  "the encoding " + std::string(name) + " is not supported: it can write ASCII in other bytes");
        EXPECT_EQ(decodeWhole("<a>+ADw-</a>", name).text, "<a><</a>");
    }
    for (const char* const name : {"ISO-2022-JP", "Shift_JIS", "EUC-JP", "GB18030", "Big5", "EUC-KR", "KOI8-R"}) {
        EXPECT_FALSE(decodeWhole(declared(name, "<a>+ADw-</a>")).hasFailed) << name;
    }
}

TEST(DecoderTest, TakesTheGivenEncodingWhateverTheSourceSays) {
    const auto encodings = encodingsUnderTest();
    for (const auto& encoding : encodings) {
        SCOPED_TRACE(encoding.name);
        const std::string text = declared("UTF-7", contentIn(encoding));
        expectText(decodeWhole(encode(text, encoding).bytes, encoding.name), text, encode(text, encoding));
    }
    const auto whole = decodeWhole(declared("UTF-8", "\xE9"), "latin1");
    EXPECT_EQ(whole.text, declared("UTF-8", "é"));
}

TEST(DecoderTest, FindsPlacesOfLongTexts) {
    for (const auto& encoding : encodingsUnderTest()) {
        SCOPED_TRACE(encoding.name);
        std::string text = declared(encoding.name, "");
        while (text.size() < 30000) text += contentIn(encoding);
        const Encoded source = encode(text, encoding);
        expectText(decodeWhole(source.bytes), text, source);
        expectText(decodePieces(source.bytes, {1000, 9000, 9001, 12000}), text, source);

        // In any order: what was passed is found again.
        SourceText whole(source.bytes);
        const auto characters = charactersOf(text);
        std::vector<std::int64_t> offsets;
        std::int64_t offset = 0;
        for (const auto& character : characters) {
            offsets.push_back(offset);
            offset += static_cast<std::int64_t>(character.size());
        }
        Xml::Places places;
        Xml::test::Dice dice(5);
        for (int round = 0; round < 40; ++round) {
            const std::size_t i = dice.below(offsets.size());
            EXPECT_EQ(whole.decoder().sourceOffset(places.at(offsets[i], whole.text())), source.starts[i]);
        }
    }
}

TEST(DecoderTest, DoesNotCopyUtf8) {
    for (const std::string& source : {"<a>größe</a>"s, "<?xml version='1.0'?><a/>"s, declared("utf-8", "<a>ä</a>"),
                                      declared("Utf8", std::string(100000, 'x')), "\xEF\xBB\xBF<a/>"s,
                                      "\xEF\xBB\xBF" + declared("UTF-8", "<a/>"), "<a>ok</a>\xC3"s}) {
        const SourceText text(source);
        const std::size_t mark = source[0] == '<' ? 0 : 3;
        EXPECT_EQ(text.text().data(), source.data() + mark);
        EXPECT_EQ(text.decoder().hasMark(), mark != 0);
    }
}

TEST(DecoderTest, KnowsNamesInAnyCaseAndAliases) {
    const struct {
        const char* name;
        const char* text;  // what the byte 0xE4 is; empty: nothing
    } kCases[] = {
        {"ISO-8859-1", "ä"}, {"iso-8859-1", "ä"}, {"Iso_8859-1", "ä"}, {"latin1", "ä"},  {"l1", "ä"},
        {"CP819", "ä"},      {"ISO8859-1", "ä"},  {"US-ASCII", ""},    {"us-ascii", ""}, {"ascii", ""},
        {"UTF-8", ""},       {"utf8", ""},        {"utf-8", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string source = declared(c.name, "\xE4!");
        const auto outcome = decodeWhole(source);
        const bool fails = *c.text == '\0';
        EXPECT_EQ(outcome.hasFailed, fails);
        EXPECT_EQ(outcome.text, declared(c.name, fails ? "" : c.text + "!"s));
        expectSame(decodeBytes(source), outcome);
    }
}

TEST(DecoderTest, KeepsTheDeclaredName) {
    Xml::Decoder decoder;
    std::string text;
    EXPECT_TRUE(decoder.decode(declared("Latin1", "<a/>"), text));
    EXPECT_EQ(decoder.declaredEncoding(), "Latin1");
    Xml::Decoder without;
    EXPECT_TRUE(without.decode("<?xml version='1.0'?><a/>", text));
    EXPECT_EQ(without.declaredEncoding(), "");
}

// The bytes of a source and what is wrong with them.
TEST(DecoderTest, RefusesWhatIsNoText) {
    const std::string wide = "\xFF\xFE";
    const auto inUtf16 = [](const std::string& ascii, bool lowFirst = true) {
        std::string bytes;
        for (const char c : ascii) bytes += lowFirst ? std::string{c, '\0'} : std::string{'\0', c};
        return bytes;
    };
    const struct {
        const char* what;
        std::string source;
        std::string given;
        Kind kind;
        std::int64_t offset;
        std::int64_t textOffset;
        const char* bytes;
        const char* text;
    } kCases[] = {
        {"a wrong byte in UTF-8", "<a>\xC3(</a>", "", Kind::IllFormed, 3, 3, "C3 28", "C3 28 are not UTF-8"},
        {"the mark counts", "\xEF\xBB\xBF<a>\xFF</a>", "", Kind::IllFormed, 6, 3, "FF", "FF is not UTF-8"},
        {"a character that goes on at the end", "<a>\xE2\x82", "", Kind::IllFormed, 3, 3, "E2 82",
         "the source ends within a character of UTF-8: E2 82"},
        {"a source of one byte", "\x80", "", Kind::IllFormed, 0, 0, "80", "80 is not UTF-8"},
        {"not ASCII", declared("US-ASCII", "<a>\xE9</a>"), "", Kind::IllFormed, 44, 44, "E9", "E9 is not US-ASCII"},
        {"not UTF-8 in a declaration", "<?xml version='1.0' \xFF", "", Kind::IllFormed, 20, 20, "FF",
         "FF is not UTF-8"},
        {"half a unit of UTF-16", wide + inUtf16("<a/>") + "\n", "", Kind::IllFormed, 10, 4, "0A",
         "the source ends within a character of UTF-16LE: 0A"},
        {"the second of a pair", wide + inUtf16("<a>") + "\x01\xDC" + inUtf16("</a>"), "", Kind::IllFormed, 8, 3,
         "01 DC", "01 DC are not UTF-16LE"},
        {"the first of a pair alone", wide + inUtf16("<a>") + "\x01\xD8" + inUtf16("</a>"), "", Kind::IllFormed, 8, 3,
         "01 D8 3C 00", "01 D8 3C 00 are not UTF-16LE"},
        {"the first of a pair at the end", "\xFE\xFF" + inUtf16("<a>", false) + "\xD8\x01", "", Kind::IllFormed, 8, 3,
         "D8 01", "the source ends within a character of UTF-16BE: D8 01"},
        {"above the last of UTF-32", "\0\0\xFE\xFF\0\x11\0\0"s, "", Kind::IllFormed, 4, 0, "00 11 00 00",
         "00 11 00 00 are not UTF-32BE"},
        {"a surrogate in UTF-32", "\0\0\xFE\xFF\0\0\xD8\0"s, "", Kind::IllFormed, 4, 0, "00 00 D8 00",
         "00 00 D8 00 are not UTF-32BE"},

        {"an unknown encoding", declared("klingon", "<a/>"), "", Kind::UnknownEncoding, 30, 30, "",
         "the encoding klingon is not known"},
        {"an unknown one in UTF-16", wide + inUtf16(declared("klingon", "<a/>")), "", Kind::UnknownEncoding, 62, 30, "",
         "the encoding klingon is not known"},
        {"a long name", declared(std::string(100, 'x'), "<a/>"), "", Kind::UnknownEncoding, 30, 30, "",
         "the encoding xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx... is not known"},
        {"an unknown one is given", "<a/>", "klingon", Kind::UnknownEncoding, 0, 0, "",
         "the encoding klingon is not known"},
        {"what is given is no name", "<a/>", "KOI8-R//IGNORE", Kind::UnknownEncoding, 0, 0, "",
         "the encoding KOI8-R//IGNORE is not known"},
        {"EBCDIC", "\x4C\x6F\xA7\x94\x93\x40", "", Kind::UnknownEncoding, 0, 0, "",
         "the source is in EBCDIC, which cannot be read"},
        {"bytes in the order 2143", "\0\0<\0\0\0a\0"s, "", Kind::UnknownEncoding, 0, 0, "",
         "the source is in UCS-4 in an unusual order of bytes, which cannot be read"},
        {"bytes in the order 3412", "\0<\0\0"s, "", Kind::UnknownEncoding, 0, 0, "",
         "the source is in UCS-4 in an unusual order of bytes, which cannot be read"},

        {"UTF-16 in single bytes", declared("UTF-16", "<a/>"), "", Kind::OtherEncoding, 30, 30, "",
         "the declaration names UTF-16, but is not in it"},
        {"UTF-16LE in single bytes", declared("utf-16le", "<a/>"), "", Kind::OtherEncoding, 30, 30, "",
         "the declaration names utf-16le, but is not in it"},
        {"UCS-4 in single bytes", declared("ISO-10646-UCS-4", "<a/>"), "", Kind::OtherEncoding, 30, 30, "",
         "the declaration names ISO-10646-UCS-4, but is not in it"},
        {"EBCDIC in ASCII", declared("IBM037", "<a/>"), "", Kind::OtherEncoding, 30, 30, "",
         "the declaration names IBM037, but is not in it"},
        {"UTF-8 in UTF-16", wide + inUtf16(declared("UTF-8", "<a/>")), "", Kind::OtherEncoding, 62, 30, "",
         "the declaration names UTF-8, but is in UTF-16LE"},
        {"UTF-8 in UTF-16 without mark", inUtf16(declared("UTF-8", "<a/>")), "", Kind::OtherEncoding, 60, 30, "",
         "the declaration names UTF-8, but is in UTF-16LE"},
        {"ISO-8859-1 in UTF-16", wide + inUtf16(declared("ISO-8859-1", "<a/>")), "", Kind::OtherEncoding, 62, 30, "",
         "the declaration names ISO-8859-1, but is in UTF-16LE"},
        {"UTF-16 in the other order", wide + inUtf16(declared("UTF-16BE", "<a/>")), "", Kind::OtherEncoding, 62, 30, "",
         "the declaration names UTF-16BE, but is in UTF-16LE"},
        {"ISO-8859-1 after a mark of UTF-8", "\xEF\xBB\xBF" + declared("ISO-8859-1", "<a/>"), "", Kind::OtherEncoding,
         33, 30, "", "the declaration names ISO-8859-1, but is in UTF-8"},
        {"UTF-16 after a mark of UTF-8", "\xEF\xBB\xBF" + declared("UTF-16", "<a/>"), "", Kind::OtherEncoding, 33, 30,
         "", "the declaration names UTF-16, but is in UTF-8"},
        {"UTF-16 that nothing names", inUtf16("<?xml version='1.0'?><a/>"), "", Kind::OtherEncoding, 38, 19, "",
         "neither a byte order mark nor a declaration names the encoding, which is UTF-16LE"},
        {"UTF-16 without a declaration", inUtf16("<a/>"), "", Kind::OtherEncoding, 2, 1, "",
         "neither a byte order mark nor a declaration names the encoding, which is UTF-16LE"},
        {"the declaration is before what is ill-formed", "\xEF\xBB\xBF" + declared("UTF-16", "\xFF"), "",
         Kind::OtherEncoding, 33, 30, "", "the declaration names UTF-16, but is in UTF-8"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const auto outcome = decodeWhole(c.source, c.given);
        ASSERT_TRUE(outcome.hasFailed);
        EXPECT_EQ(outcome.failure.kind, c.kind);
        EXPECT_EQ(outcome.failure.offset, c.offset);
        EXPECT_EQ(outcome.failure.textOffset, c.textOffset);
        EXPECT_EQ(outcome.failure.bytes, c.bytes);
        EXPECT_EQ(outcome.failure.text, c.text);
        EXPECT_LE(outcome.failure.textOffset, static_cast<std::int64_t>(outcome.text.size()));
        expectSame(decodeBytes(c.source, c.given), outcome);
        for (std::size_t split = 1; split < c.source.size(); ++split)
            expectSame(decodePieces(c.source, {split}, c.given), outcome);
    }
}

// Marks and declarations that go together.
TEST(DecoderTest, AcceptsWhatFits) {
    const auto encodings = encodingsUnderTest();
    const struct {
        const char* what;
        int encoding;  // of those under test: 0 UTF-8, 1 UTF-16LE, 2 UTF-16BE, 3 UTF-32LE, 4 UTF-32BE
        bool mark;
        const char* declared;
        const char* given;
    } kCases[] = {
        {"UTF-16 with mark", 1, true, "UTF-16", ""},
        {"UTF-16 with the other mark", 2, true, "utf-16", ""},
        {"UTF-16 without mark", 1, false, "UTF-16", ""},
        {"UTF-16 without mark, high byte first", 2, false, "UTF-16", ""},
        {"UTF-16LE with mark", 1, true, "UTF-16LE", ""},
        {"UCS-2", 1, true, "ISO-10646-UCS-2", ""},
        {"UTF-32 with mark", 3, true, "UTF-32", ""},
        {"UTF-32 without mark", 4, false, "ISO-10646-UCS-4", ""},
        {"UTF-16 given, with mark", 1, true, "UTF-16", "UTF-16"},
        {"UTF-16 given, with the other mark", 2, true, "UTF-16", "UTF-16"},
        {"UTF-16 given, without mark", 1, false, "UTF-16", "UTF-16"},
        {"UTF-16 given, without mark, high byte first", 2, false, "UTF-16", "UTF-16"},
        {"UTF-32 given", 3, true, "UTF-8", "UTF-32"},
        {"UTF-8 with mark", 0, true, "UTF-8", ""},
        {"UTF-8 given, with mark", 0, true, "ISO-8859-1", "UTF-8"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const auto& encoding = encodings[static_cast<std::size_t>(c.encoding)];
        const std::string text = declared(c.declared, contentIn(encoding));
        expectAllWays(text, encode(text, encoding, c.mark), c.given);
    }
    const auto highFirst = decodeWhole("\0a\0b"s, "UTF-16");
    EXPECT_EQ(highFirst.text, "ab");
}

TEST(DecoderTest, LeavesAMalformedDeclarationToWhoeverReadsTheText) {
    const char* const kDeclarations[] = {
        "<?xml encoding='' version='1.0'?>",
        "<?xml version='1.0'encoding='ISO-8859-1'?>",
        "<?xmlversion='1.0' encoding='ISO-8859-1'?>",
        "<?xml version='2.0' encoding='ISO-8859-1'?>",
        "<?xml version='1.' encoding='ISO-8859-1'?>",
        "<?xml version='1.0' version='1.0' encoding='ISO-8859-1'?>",
        "<?xml version='1.0' encoding='ISO-8859-1\"?>",
        "<?xml version='1.0' encoding='8859'?>",
        "<?xml version='1.0' encoding='ISO 8859-1'?>",
        "<?xml version='1.0' encoding=ISO-8859-1?>",
        "<?xml version='1.0' Encoding='ISO-8859-1'?>",
        "<?xml version='1.0' encoding 'ISO-8859-1'?>",
        "<?XML version='1.0' encoding='ISO-8859-1'?>",
        " <?xml version='1.0' encoding='ISO-8859-1'?>",
        "<?xml version='1.0' encoding='ISO-8859-1",
        "<?xml version='1.0' standalone='yes' encoding='ISO-8859-1'?>",
    };
    for (const std::string source : kDeclarations) {
        SCOPED_TRACE(source);
        const auto outcome = decodeWhole(source + "<a>ä</a>");
        EXPECT_FALSE(outcome.hasFailed);
        EXPECT_EQ(outcome.text, source + "<a>ä</a>");
        EXPECT_TRUE(decodeWhole(source + "\xE4").hasFailed);
    }
    for (const std::string source :
         {"<?xml encoding='ISO-8859-1'?>", "<?xml\tversion\n = \r\"1.1\"  encoding =\"l1\" "}) {
        SCOPED_TRACE(source);
        EXPECT_EQ(decodeWhole(source + "\xE4").text, source + "ä");
        expectSame(decodeBytes(source + "\xE4"), decodeWhole(source + "\xE4"));
    }
}

// A declaration of any length is read once, and nothing of it is kept.
TEST(DecoderTest, ReadsALongDeclarationByteByByte) {
    const std::string source = "<?xml" + std::string(300000, ' ') + "version='1.0' encoding='ISO-8859-1'?>\xE4";
    Xml::Decoder decoder;
    std::string text;
    for (const char& byte : source) ASSERT_TRUE(decoder.decode({&byte, 1}, text));
    EXPECT_TRUE(decoder.finish(text));
    EXPECT_EQ(text, source.substr(0, source.size() - 1) + "ä");
}

// Every change of a byte: from memory, byte by byte and in two pieces it is the same text and the same failure.
TEST(DecoderTest, DecodesEveryChangedSourceTheSameInAnyPieces) {
    const int step = Xml::test::rounds(8);  // under instruments some values stand for all
    for (const auto& encoding : encodingsUnderTest()) {
        SCOPED_TRACE(encoding.name);
        const std::string text = declared(encoding.name, "<a>"s + encoding.own + "</a>");
        const std::string source = encode(text, encoding, true).bytes;
        for (std::size_t at = 0; at < source.size(); ++at) {
            for (int value = 0; value < 256; value += 9 - step) {
                std::string changed = source;
                changed[at] = static_cast<char>(value);
                const auto whole = decodeWhole(changed);
                expectSame(decodeBytes(changed), whole);
                expectSame(decodePieces(changed, {at}), whole);
                if (whole.hasFailed) {
                    EXPECT_FALSE(whole.failure.text.empty());
                }
                if (testing::Test::HasFailure()) {
                    ADD_FAILURE() << testing::PrintToString(changed);
                    return;
                }
            }
        }
    }
}

// What the platform makes of bytes: the text up to where it fails, and that place; -1 where it does not fail.
std::pair<std::string, std::int64_t> byPlatform(const std::string& source, const char* encoding) {
    const iconv_t conversion = iconv_open("UTF-8", encoding);
    std::string text(4 * source.size() + 16, ' ');
    std::string bytes = source;
    char* in = bytes.data();
    std::size_t left = bytes.size();
    char* out = text.data();
    std::size_t room = text.size();
    const bool isDone = iconv(conversion, &in, &left, &out, &room) != static_cast<std::size_t>(-1);
    if (isDone) iconv(conversion, nullptr, nullptr, &out, &room);
    iconv_close(conversion);
    text.resize(text.size() - room);
    return {text, isDone ? -1 : in - bytes.data()};
}

// Without UTF-8, of which the platform lets pass what is above U+10FFFF.
std::vector<EncodingUnderTest> encodingsOfThePlatform() {
    auto encodings = encodingsUnderTest();
    encodings.erase(encodings.begin());
    return encodings;
}

TEST(DecoderTest, AgreesWithThePlatformOnChangedSources) {
    const int step = Xml::test::rounds(8);
    int failures = 0;
    for (const auto& encoding : encodingsOfThePlatform()) {
        SCOPED_TRACE(encoding.name);
        const std::string source = encode("<a>"s + encoding.own + "xy" + encoding.own + "</a>", encoding).bytes;
        for (std::size_t at = 4; at < source.size(); ++at) {
            for (int value = 0; value < 256; value += 9 - step) {
                std::string changed = source;
                changed[at] = static_cast<char>(value);
                const auto [text, offset] = byPlatform(changed, encoding.name);
                const auto outcome = decodeWhole(changed, encoding.name);
                EXPECT_EQ(outcome.text, text);
                EXPECT_EQ(outcome.hasFailed ? outcome.failure.offset : -1, offset);
                if (outcome.hasFailed) ++failures;
                if (testing::Test::HasFailure()) {
                    ADD_FAILURE() << testing::PrintToString(changed);
                    return;
                }
            }
        }
    }
    EXPECT_GE(failures, 100);
}

TEST(DecoderTest, AgreesWithThePlatformOnRandomBytes) {
    Xml::test::Dice dice(6);
    const auto encodings = encodingsOfThePlatform();
    for (int round = Xml::test::rounds(20000); round > 0; --round) {
        const auto& encoding = encodings[dice.below(encodings.size())];
        std::string source = encode("abcd", encoding).bytes;
        for (auto left = dice.below(20); left > 0; --left) source += static_cast<char>(dice.below(256));
        SCOPED_TRACE(encoding.name);
        const auto [text, offset] = byPlatform(source, encoding.name);
        const auto outcome = decodeWhole(source, encoding.name);
        ASSERT_EQ(outcome.text, text) << testing::PrintToString(source);
        ASSERT_EQ(outcome.hasFailed ? outcome.failure.offset : -1, offset) << testing::PrintToString(source);
    }
}

// Where the platform waits for a mark that may follow a character, the place after the character is known once another
// byte has shown that there is none.
TEST(DecoderTest, FindsPlacesWhereCharactersWaitForMarks) {
    if (Xml::Converter::makeForeign("CP1255") == nullptr) GTEST_SKIP() << "not known to the platform";
    const struct {
        std::string source;
        std::string text;
        std::vector<std::int64_t> offsets;
    } kCases[] = {
        {"a\xE0\xC8"s + "b", "a\uFB2Fb", {0, 1, 3, 4}},
        {"\xE0\xE1"s, "\u05D0\u05D1", {0, 2, 2}},
    };
    for (const auto& c : kCases) {
        const auto outcome = decodeWhole(c.source, "CP1255");
        EXPECT_EQ(outcome.text, c.text);
        EXPECT_EQ(outcome.offsets, c.offsets);
        expectSame(decodeBytes(c.source, "CP1255"), outcome);
    }
}

// The platform's own wide characters may have values that are no characters.
TEST(DecoderTest, TrustsNoPlatform) {
    const auto outcome = decodeWhole("a\0\0\0\0\0\x11\0b\0\0\0"s, "WCHAR_T");
    EXPECT_TRUE(outcome.hasFailed);
    EXPECT_EQ(outcome.text, "a");
    EXPECT_EQ(outcome.failure.offset, 4);
    expectSame(decodeBytes("a\0\0\0\0\0\x11\0b\0\0\0"s, "WCHAR_T"), outcome);
}

}  // namespace
