#include "stream/OverSources.h"
#include "support/WithoutReadAhead.h"
#include "xml/stream/internal/ReadAhead.h"
#include "xml/stream/internal/StreamAccess.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

// The tries of one token are not made again for the next.
TEST(ReadAheadTest, ReadsARunOfMarksInAStringTokenByToken) {
    const int kCount = 300'000;
    for (const char* const mark : {"<!", "<?"}) {
        SCOPED_TRACE(mark);
        std::string text;
        for (int i = 0; i < kCount; ++i) text += mark;
        withSource(Source::String, text + "1 ", [&](InStream& in) {
            std::string token;
            int count = 0;
            while (in.getToken(token) && token == mark) ++count;
            EXPECT_EQ(count, kCount);
            EXPECT_EQ(token, "1");
        });
    }
}

// What follows a mark is tried more than once, and may end far away. A reader that comes back from there at each mark
// must not have it all read again.
TEST(ReadAheadTest, ReadsAByteAFewTimesHoweverManyMarksComeBackFromFarAfterIt) {
    const int kCount = 1000;
    for (const char* const piece :
         {"<!& >", "<?& >", "<!<!& >", "<!<?& >", "<?<!& >", "<?<?& >", "<!<!<!<!& >", "<!<!<!<!<!1 >", "<!<!<?1 >"}) {
        for (const char* const end : {"", ";"}) {
            SCOPED_TRACE(std::string(piece) + " ... " + end);
            std::string text;
            for (int i = 0; i < kCount; ++i) text += piece;
            CountedInStream in(text + end);
            const StreamAccess::Session session(in);
            std::string token;
            for (int i = 0; i < kCount; ++i) {
                ASSERT_TRUE(in.getToken(token));
                EXPECT_EQ(token, text.substr(0, 2));
                ASSERT_TRUE(in.skip(">"));
                EXPECT_EQ(in.getPosition(), static_cast<int>((i + 1) * std::string(piece).size()));
            }
            EXPECT_LE(in.reads, 5 * static_cast<int>(text.size()));
        }
    }
}

TEST(ReadAheadTest, AReferenceThatIsOpenToTheEndLeavesItsLastByteToTheNextLineBreakEachTimeItIsTried) {
    for (const Source source : kPromptSources) {
        SCOPED_TRACE(source);
        withSource(source, "<!<?\r&\r", [](InStream& in) {
            std::string token;
            EXPECT_TRUE(in.getToken(token));  // "<!": two trials of what follows read the reference
            EXPECT_TRUE(in.getToken(token));  // "<?": one more
            EXPECT_FALSE(in.getToken(token));
            EXPECT_EQ(in.getPosition(), 7);
            EXPECT_EQ(in.getLine(), 1);
            EXPECT_EQ(in.getColumn(), 2) << "the return in front of the reference counts with the one at the end";
        });
    }
}

// --- Alone ---

ReadAhead::Reference referenceTo(int begin, const std::string& text) {
    return {begin, begin + static_cast<int>(text.size()), false, std::make_shared<const std::string>(text)};
}

TEST(ReadAheadTest, RemembersMarkupByItsPlace) {
    ReadAhead ahead;
    EXPECT_TRUE(ahead.remembersNothing());
    EXPECT_EQ(ahead.recall(3), nullptr);
    ahead.remember(3, {true, false, 5, "<!", "an error"});
    ahead.remember(9, {false, true, 12, "<!x", ""});
    EXPECT_FALSE(ahead.remembersNothing());
    ASSERT_NE(ahead.recall(3), nullptr);
    EXPECT_EQ(ahead.recall(3)->error, "an error");
    ASSERT_NE(ahead.recall(9), nullptr);
    EXPECT_EQ(ahead.recall(9)->text, "<!x");
    EXPECT_EQ(ahead.recall(4), nullptr);
}

TEST(ReadAheadTest, TakesOnlyShortMarkupForWorthRemembering) {
    const std::string most(64, 'x');
    EXPECT_TRUE(ReadAhead::isShort(most, most));
    EXPECT_FALSE(ReadAhead::isShort(most + "x", ""));
    EXPECT_FALSE(ReadAhead::isShort("", most + "x"));
}

TEST(ReadAheadTest, KnowsAReferenceThatBeginsWithinTheLastOne) {
    ReadAhead ahead;
    EXPECT_EQ(ahead.referenceFrom(0), nullptr);
    ahead.setReference(referenceTo(10, "&a &b;"));
    EXPECT_EQ(ahead.referenceFrom(9), nullptr);
    EXPECT_EQ(ahead.referenceFrom(16), nullptr);
    EXPECT_NE(ahead.referenceFrom(10), nullptr);
    ASSERT_NE(ahead.referenceFrom(13), nullptr);
    EXPECT_EQ(ahead.referenceFrom(13)->end, 16);
}

TEST(ReadAheadTest, KnowsThatNoReferenceEndsAfterOneThatDoesNot) {
    ReadAhead ahead;
    ahead.setReference({10, -1, true, nullptr});
    EXPECT_EQ(ahead.referenceFrom(9), nullptr);
    for (const int position : {10, 11, 1'000'000}) {
        ASSERT_NE(ahead.referenceFrom(position), nullptr);
        EXPECT_EQ(ahead.referenceFrom(position)->end, -1);
        EXPECT_TRUE(ahead.referenceFrom(position)->endsInReturn);
    }
    std::string message = "not a name: ";
    EXPECT_FALSE(ahead.continueMessage(message));
    EXPECT_TRUE(ahead.isMessageComplete());
}

TEST(ReadAheadTest, CompletesAMessageWithTheReferenceFromItsOwnBegin) {
    ReadAhead ahead;
    ahead.setReference(referenceTo(10, "&a &b;"));
    EXPECT_NE(ahead.referenceFrom(13), nullptr);
    std::string message = "not a name: ";
    EXPECT_TRUE(ahead.continueMessage(message));
    EXPECT_FALSE(ahead.isMessageComplete());
    ahead.setReference(referenceTo(20, "&other;"));
    ahead.completeMessage(message);
    EXPECT_EQ(message, "not a name: &b;");
    ahead.completeMessage(message);
    EXPECT_EQ(message, "not a name: &b;");
    EXPECT_TRUE(ahead.isMessageComplete());
}

TEST(ReadAheadTest, DropsTheRestOfAMessageThatIsReplaced) {
    ReadAhead ahead;
    ahead.setReference(referenceTo(10, "&a;"));
    std::string message = "not a name: ";
    EXPECT_TRUE(ahead.continueMessage(message));
    const unsigned before = ahead.messageCount();
    ahead.messageReplaced();
    EXPECT_EQ(ahead.messageCount(), before + 1);
    message = "another";
    ahead.completeMessage(message);
    EXPECT_EQ(message, "another");
}

// --- In a stream ---

TEST(ReadAheadTest, LeavesTheSameResultsWhenItIsSwitchedOff) {
    const char* const kTexts[] = {
        "<!<!<!1 <!<? & <?&ab; <?<?&c &d; x ",
        "<!& >\r\n<!&\r\r>\r<?\r&x >;\r\n",
        "<?<!\r\n<!--\r<![ <![CDATA[ <!<![CDATA[ ",
        "<!\r<!\n<!\r&a\r;<?\r\n<?xml <?a&b",
    };
    const auto outcome = [](const char* text, Source source) {
        std::string all;
        withSource(source, text, [&all](InStream& in) {
            const StreamAccess::Session session(in);
            std::string token;
            for (int i = 0; i < 40; ++i) {
                token.clear();
                all += in.getToken(token) ? "+" : "-";
                all += token + "@" + std::to_string(in.getPosition()) + ":" + std::to_string(in.getLine()) + ":" +
                       std::to_string(in.getColumn()) + " " + in.getErrorMessage() + "\n";
            }
        });
        return all;
    };
    for (const char* const text : kTexts) {
        for (const Source source : kAllSources) {
            SCOPED_TRACE(source);
            const std::string remembering = outcome(text, source);
            const WithoutReadAhead off;
            EXPECT_EQ(outcome(text, source), remembering);
        }
    }
}

TEST(ReadAheadTest, IsWhatKeepsAReaderFromReadingBytesOverAndOver) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "<!& >";
    const auto readsOf = [&text] {
        CountedInStream in(text + ";");
        const StreamAccess::Session session(in);
        std::string token;
        while (in.getToken(token) && in.skip(">")) {}
        return in.reads;
    };
    EXPECT_LE(readsOf(), 5 * 1001);
    const WithoutReadAhead off;
    EXPECT_GE(readsOf(), 50 * 1001);
}

// A reader may end where the source is a caller's, who changes it.
TEST(ReadAheadTest, ForgetsWhenTheBytesMayChange) {
    class Changing : public BareInStream {
    public:
        using BareInStream::BareInStream;
        bool getChar(char& c) override {
            if (!BareInStream::getChar(c)) return false;
            if (c == '1') c = digit;
            return true;
        }
        char digit = '1';
    };
    Changing in("<!<!1 <!<?&1; ");
    std::string message;
    for (const char digit : {'1', '2'}) {
        in.digit = digit;
        in.setPosition(6);
        const StreamAccess::Session session(in);
        std::string token;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "<?");
        EXPECT_EQ(in.getErrorMessage(), std::string("not a name: &") + digit + ";");
    }
}

// --- The message that waits for the text of a reference ---

TEST(ReadAheadTest, ShowsTheWholeMessageToAReferenceOnceTheOperationHasReturned) {
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        withSource(source, "<?&abc; x <?&de; ", [](InStream& in) {
            const std::string& message = in.getErrorMessage();
            EXPECT_EQ(message, "");
            EXPECT_TRUE(in.checkToken("<?"));
            EXPECT_EQ(message, "not a name: &abc;");
            EXPECT_TRUE(in.checkToken("&abc;"));
            EXPECT_TRUE(in.checkToken("x"));
            EXPECT_EQ(message, "not a name: &abc;");
            EXPECT_TRUE(in.checkToken("<?"));
            EXPECT_EQ(message, "not a name: &de;");
            EXPECT_EQ(&in.getErrorMessage(), &message);
        });
    }
}

TEST(ReadAheadTest, ShowsTheWholeMessageToAReferenceOnceTheReaderHasReturned) {
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        withSource(source, "<?&abc; x <?&de; ", [](InStream& in) {
            const std::string& message = in.getErrorMessage();
            {
                const StreamAccess::Session outer(in);
                const StreamAccess::Session inner(in);
                EXPECT_TRUE(in.checkToken("<?"));
                EXPECT_EQ(in.getErrorMessage(), "not a name: &abc;") << "whoever asks is shown all of it";
                EXPECT_TRUE(in.checkToken("&abc;"));
                EXPECT_TRUE(in.checkToken("x"));
                EXPECT_TRUE(in.checkToken("<?"));
            }
            EXPECT_EQ(message, "not a name: &de;");
        });
    }
}

}  // namespace
}  // namespace Xml::test
