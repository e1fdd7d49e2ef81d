#include "stream/LendingSource.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/Window.h"
#include "xml/stream/internal/StreamAccess.h"
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

TEST(WindowTest, LendsNothingAtFirst) {
    const Window window;
    EXPECT_FALSE(window.isLent());
    EXPECT_EQ(window.begin, window.end);
    EXPECT_EQ(window.cursor, window.end);
    EXPECT_LT(window.base, 0);
}

TEST(WindowTest, LeavesAStreamSmall) { EXPECT_LE(sizeof(InStream), 200U); }

TEST(WindowTest, IsGivenBackAfterEveryOperation) {
    const struct {
        const char* name;
        std::function<void(InStream&)> run;
        int position;
    } kCases[] = {
        {"getToken",
         [](InStream& in) {
             std::string s;
             EXPECT_TRUE(in.getToken(s));
         },
         2},
        {"getTokenInParseBuffer", [](InStream& in) { EXPECT_TRUE(in.getTokenInParseBuffer()); }, 2},
        {"getName",
         [](InStream& in) {
             std::string s;
             EXPECT_TRUE(in.getName(s));
         },
         2},
        {"getNameInParseBuffer", [](InStream& in) { EXPECT_TRUE(in.getNameInParseBuffer()); }, 2},
        {"getString",
         [](InStream& in) {
             std::string s;
             EXPECT_FALSE(in.getString(s));
         },
         1},
        {"getStringInParseBuffer", [](InStream& in) { EXPECT_FALSE(in.getStringInParseBuffer()); }, 1},
        {"getTokenltInParseBuffer", [](InStream& in) { EXPECT_TRUE(in.getTokenltInParseBuffer()); }, 0},
        {"getCharData",
         [](InStream& in) {
             DataHolder d;
             EXPECT_TRUE(in.getCharData(d));
         },
         3},
        {"get",
         [](InStream& in) {
             char c;
             EXPECT_TRUE(in.get(c));
         },
         1},
        {"checkToken", [](InStream& in) { EXPECT_FALSE(in.checkToken("x")); }, 2},
        {"checkTokenInParseBuffer", [](InStream& in) { EXPECT_TRUE(in.checkTokenInParseBuffer("b", 1)); }, 2},
        {"eatWhite", [](InStream& in) { in.eatWhite(); }, 0},
        {"skip", [](InStream& in) { EXPECT_TRUE(in.skip("/")); }, 5},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        LendingSource in("ab </x>", 100);
        c.run(in);
        EXPECT_EQ(in.lent, 1);
        EXPECT_EQ(in.takenBack, 1);
        EXPECT_EQ(in.position, c.position);
    }
}

TEST(WindowTest, StaysWithAReaderUntilTheOutermostReturns) {
    LendingSource in("one two three ", 100);
    {
        const StreamAccess::Session outer(in);
        EXPECT_TRUE(StreamAccess::isOutermost(in));
        EXPECT_TRUE(in.checkToken("one"));
        {
            const StreamAccess::Session inner(in);
            EXPECT_FALSE(StreamAccess::isOutermost(in));
            EXPECT_TRUE(in.checkToken("two"));
        }
        EXPECT_TRUE(StreamAccess::isOutermost(in));
        EXPECT_EQ(in.lent, 1);
        EXPECT_EQ(in.takenBack, 0);
        EXPECT_EQ(in.position, 0);
        EXPECT_EQ(StreamAccess::tell(in), 7);
        EXPECT_EQ(StreamAccess::bytesRead(in), 7);
    }
    EXPECT_FALSE(StreamAccess::isOutermost(in));
    EXPECT_EQ(in.takenBack, 1);
    EXPECT_EQ(in.position, 7);
}

TEST(WindowTest, IsGivenBackByEveryPrimitiveAndOnRequest) {
    const struct {
        const char* name;
        std::function<void(InStream&)> run;
        int position;
    } kCases[] = {
        {"getChar",
         [](InStream& in) {
             char c;
             EXPECT_TRUE(in.getChar(c));
         },
         4},
        {"getPosition", [](InStream& in) { EXPECT_EQ(in.getPosition(), 3); }, 3},
        {"setPosition", [](InStream& in) { in.setPosition(1); }, 1},
        {"eof", [](InStream& in) { EXPECT_FALSE(in.eof()); }, 3},
        {"release", [](InStream& in) { StreamAccess::release(in); }, 3},
        {"release twice",
         [](InStream& in) {
             StreamAccess::release(in);
             StreamAccess::release(in);
         },
         3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        LendingSource in("one two ", 100);
        const StreamAccess::Session session(in);
        EXPECT_TRUE(in.checkToken("one"));
        EXPECT_EQ(in.takenBack, 0);
        c.run(in);
        EXPECT_EQ(in.takenBack, 1);
        EXPECT_EQ(in.position, c.position);
    }
}

TEST(WindowTest, IsGivenBackWhereAnOperationIsLeftByAnException) {
    // Lends one piece, and cannot read on after it.
    class Breaking : public LendingSource {
    public:
        using LendingSource::LendingSource;

    protected:
        bool lendBytes(Window& given) override {
            if (lent == 1) throw std::string("broken");
            return LendingSource::lendBytes(given);
        }
    };
    Breaking in("one two", 6);
    {
        const StreamAccess::Session session(in);
        EXPECT_TRUE(in.checkToken("one"));
        EXPECT_THROW(in.checkToken("two"), std::string);
        EXPECT_TRUE(StreamAccess::isOutermost(in)) << "the operation is over, the reader is not";
    }
    EXPECT_EQ(in.takenBack, 1);
    EXPECT_EQ(in.position, 6);
}

TEST(WindowTest, IsLentAgainWhereMoreBytesAreNeeded) {
    // Lends twice as many where the last were too few.
    class Growing : public LendingSource {
    public:
        using LendingSource::LendingSource;
        std::size_t count = 2;
        bool throws = false;

    protected:
        bool lendBytes(Window& given) override {
            if (throws) throw std::string("broken");
            count *= given.loan == Window::Loan::TooFew ? 2 : 1;
            if (!LendingSource::lendBytes(given)) return false;
            given.end = std::min(given.end, given.cursor + count);
            return true;
        }
    };
    Growing in("abcdefghij", 100);
    const StreamAccess::Session session(in);
    EXPECT_FALSE(StreamAccess::lendMore(in)) << "nothing was lent";
    EXPECT_EQ(in.lent, 0);
    char c = 0;
    const auto left = [&in] { return StreamAccess::window(in).end - StreamAccess::window(in).cursor; };
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(left(), 1);
    EXPECT_TRUE(StreamAccess::lendMore(in));
    EXPECT_EQ(in.position, 1) << "stood there meanwhile";
    EXPECT_EQ(left(), 4);
    EXPECT_TRUE(StreamAccess::lendMore(in));
    EXPECT_EQ(left(), 8);
    EXPECT_TRUE(StreamAccess::lendMore(in));
    EXPECT_EQ(left(), 9);
    EXPECT_FALSE(StreamAccess::lendMore(in)) << "there are no more";
    EXPECT_EQ(left(), 9);
    in.throws = true;
    EXPECT_THROW(StreamAccess::lendMore(in), std::string);
    EXPECT_FALSE(StreamAccess::window(in).isLent());
    in.throws = false;
    for (const char expected : std::string("bcdefghij")) {
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(c, expected);
    }
    EXPECT_FALSE(StreamAccess::lendMore(in)) << "at the end";
    EXPECT_FALSE(StreamAccess::window(in).isLent());
    EXPECT_FALSE(in.get(c));
}

TEST(WindowTest, IsNotLentAgainWhereItIsLentForGood) {
    StringInStream in("abc");
    const StreamAccess::Session session(in);
    EXPECT_TRUE(in.checkToken("abc"));
    EXPECT_FALSE(StreamAccess::lendMore(in));
    in.setPosition(0);
    in.eatWhite();
    EXPECT_FALSE(StreamAccess::lendMore(in));
    EXPECT_TRUE(StreamAccess::window(in).isLent());
}

TEST(WindowTest, IsAskedForItsPositionOnceAndOnlyWhereOneIsNeeded) {
    LendingSource in("one two ", 100, Window::Loan::ForNow, false);
    in.position = 3;
    const StreamAccess::Session session(in);
    EXPECT_TRUE(in.checkToken("two"));
    EXPECT_EQ(in.askedForPosition, 0);
    EXPECT_EQ(StreamAccess::tell(in), 7);
    EXPECT_EQ(StreamAccess::tell(in), 7);
    EXPECT_EQ(in.askedForPosition, 1);
}

TEST(WindowTest, HasNoPositionWhereTheSourceDoesNotSayOne) {
    class Silent : public LendingSource {
    public:
        using LendingSource::LendingSource;

    protected:
        int positionOfBytes(const Window& given) const override { return InStream::positionOfBytes(given); }
    };
    Silent in("one", 100, Window::Loan::ForNow, false);
    const StreamAccess::Session session(in);
    in.eatWhite();
    EXPECT_EQ(in.lent, 1);
    EXPECT_EQ(StreamAccess::tell(in), -1);
}

}  // namespace
}  // namespace Xml::test
