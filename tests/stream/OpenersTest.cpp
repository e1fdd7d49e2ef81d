#include "stream/OverSources.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

// Marks in marks are attempts in attempts: each is tried in up to three ways, and must not be tried again in each of
// the ways of the one around it.
TEST(OpenersTest, ReadsRunsOfMarksOnceAndWithoutDepth) {
    const int kCount = 100'000;
    std::string declarations;
    std::string instructions;
    for (int i = 0; i < kCount; ++i) {
        declarations += "<!";
        instructions += "<?";
    }
    const struct {
        const char* name;
        std::string text;
        std::string token;
        const char* message;
    } kCases[] = {
        {"declarations", declarations + "1 ", "<!", "\"[\" expected"},
        {"declarations before a name", declarations + "a ", "<!", "\"[\" expected"},
        {"declarations before a bracket", declarations + "[ ", declarations + "[", "Unexpected end of stream"},
        {"instructions", instructions + "1 ", "<?", "not a name: <?"},
        {"instructions before xml", instructions + "xml ", "<?", "not a name: <?"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (const Source source : kPromptSources) {
            SCOPED_TRACE(source);
            withSource(source, c.text, [&c](InStream& in) {
                std::string token;
                EXPECT_TRUE(in.getToken(token));
                EXPECT_TRUE(token == c.token) << token.size();
                EXPECT_EQ(in.getErrorMessage(), c.message);
                EXPECT_EQ(in.getPosition(), static_cast<int>(c.token.size()));
            });
        }
    }
}

// Every mark that has its bracket goes on to look for "CDATA", all at the same place.
TEST(OpenersTest, LooksOnceAfterTheBracketOfManyMarks) {
    std::string marks;
    for (int i = 0; i < 1000; ++i) marks += "<!";
    CountedInStream in(marks + "[" + std::string(1000, 'x') + " ");
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, marks + "[");
    EXPECT_EQ(in.getErrorMessage(), "\"CDATA\" expected");
    EXPECT_LE(in.reads, 10'000);
}

// Every chain of a few pieces. The naive tokenizer reads a token as often as the trials do.
TEST(OpenersTest, ReadsEveryShortChainAsTrialsOneByOneDo) {
    const std::vector<std::string> kPieces = {"<!", "<?", "</", "[", "CDATA", "xml ", "-", "--", "\r", "\n", "&", "1"};
    const auto read = [](auto& in) {
        std::string all;
        std::string token;
        for (int i = 0; i < 6; ++i) {
            token.clear();
            all += in.getToken(token) ? '+' : '-';
            all += token + '@' + std::to_string(in.getPosition()) + ':' + std::to_string(in.getLine()) + ':' +
                   std::to_string(in.getColumn()) + ' ' + in.getErrorMessage() + '\n';
        }
        return all;
    };
    int count = 0;
    std::vector<std::string> chains = {"<!", "<?"};
    for (int length = 2; length <= 4; ++length) {
        std::vector<std::string> longer;
        for (const std::string& chain : chains) {
            for (const std::string& piece : kPieces) longer.push_back(chain + piece);
        }
        chains = std::move(longer);
        for (const std::string& chain : chains) {
            BareInStream bytes(chain);
            NaiveTokenizer naive(bytes);
            const std::string expected = read(naive);
            BareInStream bare(chain);
            ASSERT_EQ(read(bare), expected) << chain;
            StringInStream string(chain);
            ASSERT_EQ(read(string), expected) << chain;
            BareInStream readers(chain);
            const StreamAccess::Session session(readers);
            ASSERT_EQ(read(readers), expected) << chain;
            ++count;
        }
    }
    EXPECT_EQ(count, 2 * (12 + 12 * 12 + 12 * 12 * 12));
}

}  // namespace
}  // namespace Xml::test
