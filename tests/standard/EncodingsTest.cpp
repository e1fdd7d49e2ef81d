#include "xml/standard/internal/Encodings.h"
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace std::string_literals;
using Xml::Encoding;
using Kind = Xml::Opening::Kind;

constexpr Encoding kAll[] = {Encoding::Utf8,    Encoding::Ascii, Encoding::Latin1,  Encoding::Utf16,  Encoding::Utf16Le,
                             Encoding::Utf16Be, Encoding::Utf32, Encoding::Utf32Le, Encoding::Utf32Be};

TEST(EncodingsTest, AreFoundByTheirNames) {
    for (const Encoding encoding : kAll) EXPECT_EQ(Xml::encodingNamed(Xml::nameOf(encoding)), encoding);
    const struct {
        const char* name;
        Encoding encoding;
    } kCases[] = {
        {"utf-16", Encoding::Utf16},      {"ISO-10646-UCS-2", Encoding::Utf16},
        {"Latin1", Encoding::Latin1},     {"ucs-4", Encoding::Utf32},
        {"us", Encoding::Ascii},          {"", Encoding::Other},
        {"UTF-8 ", Encoding::Other},      {"UTF", Encoding::Other},
        {"ISO-8859-15", Encoding::Other}, {"windows-1252", Encoding::Other},
        {"utf-16l", Encoding::Other},
    };
    for (const auto& c : kCases) EXPECT_EQ(Xml::encodingNamed(c.name), c.encoding) << c.name;
}

TEST(EncodingsTest, HaveUnitsOfSomeBytes) {
    const std::size_t kUnits[] = {1, 1, 1, 2, 2, 2, 4, 4, 4};
    for (std::size_t i = 0; i < std::size(kAll); ++i)
        EXPECT_EQ(Xml::unitOf(kAll[i]), kUnits[i]) << Xml::nameOf(kAll[i]);
    EXPECT_EQ(Xml::unitOf(Encoding::Other), 1U);
}

TEST(EncodingsTest, HaveNamesOfLettersDigitsAndMarks) {
    for (const char* name : {"a", "UTF-8", "x._-9"}) EXPECT_TRUE(Xml::isEncodingName(name)) << name;
    for (const char* name : {"", "8859", "-a", "a b", "a//b", "a:b", "\xC3\xA4"})
        EXPECT_FALSE(Xml::isEncodingName(name)) << name;
}

TEST(EncodingsTest, AreShownByTheFirstBytes) {
    const struct {
        std::string bytes;
        Kind kind;
        Encoding encoding;
        std::size_t markSize;
    } kCases[] = {
        {"", Kind::Bytes, Encoding::Utf8, 0},
        {"<", Kind::Bytes, Encoding::Utf8, 0},
        {"<?xm", Kind::Bytes, Encoding::Utf8, 0},
        {" \n<a", Kind::Bytes, Encoding::Utf8, 0},
        {"\xEF\xBB", Kind::Bytes, Encoding::Utf8, 0},
        {"\xEF\xBB\xBF<", Kind::Marked, Encoding::Utf8, 3},
        {"\xFF\xFE", Kind::Marked, Encoding::Utf16Le, 2},
        {"\xFF\xFE<\0"s, Kind::Marked, Encoding::Utf16Le, 2},
        {"\xFE\xFF\0<"s, Kind::Marked, Encoding::Utf16Be, 2},
        {"\xFF\xFE\0\0"s, Kind::Marked, Encoding::Utf32Le, 4},
        {"\0\0\xFE\xFF"s, Kind::Marked, Encoding::Utf32Be, 4},
        {"<\0?\0"s, Kind::Unmarked, Encoding::Utf16Le, 0},
        {"\0<\0a"s, Kind::Unmarked, Encoding::Utf16Be, 0},
        {"<\0\0\0"s, Kind::Unmarked, Encoding::Utf32Le, 0},
        {"\0\0\0<"s, Kind::Unmarked, Encoding::Utf32Be, 0},
        {"\0\0<\0"s, Kind::Unreadable, Encoding::Other, 0},
        {"\0<\0\0"s, Kind::Unreadable, Encoding::Other, 0},
        {"\0\0\xFF\xFE"s, Kind::Unreadable, Encoding::Other, 0},
        {"\xFE\xFF\0\0"s, Kind::Unreadable, Encoding::Other, 0},
        {"\x4C\x6F\xA7\x94"s, Kind::Unreadable, Encoding::Other, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.bytes));
        const auto opening = Xml::openingOf(c.bytes);
        EXPECT_EQ(opening.kind, c.kind);
        EXPECT_EQ(opening.encoding, c.encoding);
        EXPECT_EQ(opening.markSize, c.markSize);
    }
}

TEST(EncodingsTest, ThatAreGivenHaveTheirOwnMarksAlone) {
    const struct {
        std::string bytes;
        Encoding given;
        Encoding encoding;
        std::size_t markSize;
    } kCases[] = {
        {"\xEF\xBB\xBF", Encoding::Utf8, Encoding::Utf8, 3},
        {"\xEF\xBB\xBF", Encoding::Latin1, Encoding::Latin1, 0},
        {"\xFF\xFE<\0"s, Encoding::Utf8, Encoding::Utf8, 0},
        {"\xFF\xFE<\0"s, Encoding::Utf16, Encoding::Utf16Le, 2},
        {"\xFE\xFF\0<"s, Encoding::Utf16, Encoding::Utf16Be, 2},
        {"\xFF\xFE\0\0"s, Encoding::Utf16, Encoding::Utf16Le, 2},
        {"\xFF\xFE\0\0"s, Encoding::Utf32, Encoding::Utf32Le, 4},
        {"\xFE\xFF\0<"s, Encoding::Utf16Le, Encoding::Utf16Le, 0},
        {"<\0a\0"s, Encoding::Utf16, Encoding::Utf16Le, 0},
        {"a\0b\0"s, Encoding::Utf16, Encoding::Utf16Be, 0},
        {"abcd", Encoding::Utf32, Encoding::Utf32Be, 0},
        {"<abc", Encoding::Ascii, Encoding::Ascii, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.bytes));
        const auto opening = Xml::openingOf(c.bytes, c.given);
        EXPECT_EQ(opening.encoding, c.encoding);
        EXPECT_EQ(opening.markSize, c.markSize);
    }
}

}  // namespace
