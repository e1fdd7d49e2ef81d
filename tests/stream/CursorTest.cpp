#include "stream/LendingSource.h"
#include "xml/stream/internal/Cursor.h"
#include "xml/stream/internal/StreamAccess.h"
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// Over no window at all, over windows of a few bytes, over one window.
template <class Use>
void overPieces(const std::string& text, const Use& use) {
    for (const std::size_t piece : {0, 1, 2, 3, 5, 1000}) {
        for (const bool withPosition : {true, false}) {
            SCOPED_TRACE("pieces of " + std::to_string(piece));
            LendingSource in(text, piece, Window::Loan::ForNow, withPosition);
            const StreamAccess::Session session(in);
            Cursor cursor(in);
            use(cursor, in);
        }
    }
}

TEST(CursorTest, ReadsEachByteAndThenNone) {
    overPieces("ab\r\nc", [](Cursor& cursor, InStream& in) {
        std::string all;
        char c = 0;
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(cursor.tell(), i);
            EXPECT_TRUE(cursor.read(c));
            all += c;
        }
        EXPECT_EQ(all, "ab\r\nc");
        EXPECT_FALSE(cursor.read(c));
        EXPECT_EQ(c, 'c') << "as it was";
        EXPECT_FALSE(cursor.next(c));
        EXPECT_EQ(c, 0);
        EXPECT_EQ(cursor.tell(), 5);
        EXPECT_EQ(in.getColumn(), 1) << "after the break that was read";
    });
}

TEST(CursorTest, ShowsTheLineBreaksEveryByteButThoseReadUnnoted) {
    overPieces("\r\n\r\n", [](Cursor& cursor, InStream& in) {
        char c = 0;
        for (int i = 0; i < 2; ++i) EXPECT_TRUE(cursor.readUnnoted(c));
        EXPECT_EQ(in.getColumn(), 2);
        for (int i = 0; i < 2; ++i) EXPECT_TRUE(cursor.next(c));
        cursor.stepBack();
        cursor.seek(1);
        EXPECT_EQ(in.getLine(), 1);
        cursor.seek(4);
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), 4) << "right at the only break";
    });
}

TEST(CursorTest, StepsBackToTheStartAndNoFurther) {
    overPieces("abcd", [](Cursor& cursor, InStream&) {
        char c = 0;
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(cursor.read(c));
        for (int i = 3; i >= 0; --i) {
            cursor.stepBack();
            EXPECT_EQ(cursor.tell(), i);
        }
        cursor.stepBack();
        EXPECT_EQ(cursor.tell(), 0);
        EXPECT_TRUE(cursor.read(c));
        EXPECT_EQ(c, 'a');
    });
}

TEST(CursorTest, GoesToAnyPlace) {
    overPieces("abcdef", [](Cursor& cursor, InStream&) {
        for (const int place : {3, 0, 5, 2, 6, 1, 4, 4}) {
            cursor.seek(place);
            EXPECT_EQ(cursor.tell(), place);
            char c = 0;
            EXPECT_EQ(cursor.read(c), place < 6);
            if (place < 6) {
                EXPECT_EQ(c, "abcdef"[place]);
                EXPECT_EQ(cursor.tell(), place + 1);
            }
        }
        for (const int place : {-1, 7, 1000}) {
            cursor.seek(place);
            EXPECT_EQ(cursor.tell(), place);
            char c = 0;
            EXPECT_FALSE(cursor.read(c));
        }
    });
}

TEST(CursorTest, KeepsTheWindowWhereThePlaceLiesInIt) {
    LendingSource in("abcdef", 3);
    const StreamAccess::Session session(in);
    Cursor cursor(in);
    char c = 0;
    EXPECT_TRUE(cursor.read(c));
    for (const int place : {2, 0, 3}) cursor.seek(place);
    EXPECT_EQ(in.takenBack, 0);
    EXPECT_EQ(cursor.tell(), 3);
    cursor.seek(4);
    EXPECT_EQ(in.takenBack, 1);
}

TEST(CursorTest, TakesARunThroughAByte) {
    const struct {
        const char* name;
        std::string text;
        char last;
        bool found;
        std::string taken;
        int lines;
    } kCases[] = {
        {"at once", ";a", ';', true, ";", 1},
        {"later", "abc;d;", ';', true, "abc;", 1},
        {"with line breaks", "a\r\nb\r\nc\r\nd;", ';', true, "a\r\nb\r\nc\r\nd;", 3},
        {"nowhere", "a\r\nb\r\n", ';', false, "a\r\nb\r\n", 2},
        {"a line break itself", "ab\r\n\r\n", '\n', true, "ab\r\n", 1},
        {"no byte left", "", ';', false, "", 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        overPieces(c.text, [&c](Cursor& cursor, InStream& in) {
            std::string taken = "before ";
            EXPECT_EQ(cursor.appendThrough(taken, c.last), c.found);
            EXPECT_EQ(taken, "before " + c.taken);
            EXPECT_EQ(cursor.tell(), static_cast<int>(c.taken.size()));
            EXPECT_EQ(in.getLine(), c.lines);
        });
    }
}

TEST(CursorTest, TakesOtherBytesOfTheWindowAtOnce) {
    LendingSource in("\rabcd ef", 4);
    const StreamAccess::Session session(in);
    Cursor cursor(in);
    const auto isBlank = [](char c) { return c == ' '; };
    char c = 0;
    EXPECT_TRUE(cursor.read(c));
    std::string taken = "x";
    cursor.appendOthersBefore(taken, isBlank);
    EXPECT_EQ(taken, "xabc") << "up to the end of the window";
    cursor.appendOthersBefore(taken, isBlank);
    EXPECT_EQ(taken, "xabc");
    EXPECT_TRUE(cursor.read(c));
    cursor.appendOthersBefore(taken, isBlank);
    EXPECT_EQ(taken, "xabc");
    EXPECT_EQ(cursor.tell(), 5);
    EXPECT_EQ(in.getColumn(), 5) << "the return is forgotten";
}

}  // namespace
}  // namespace Xml::test
