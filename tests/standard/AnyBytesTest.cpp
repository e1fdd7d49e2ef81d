// Whatever the bytes, there is a tree, or a problem with a place; the same from a text and a stream.
#include "standard/Documents.h"
#include "standard/Encoded.h"
#include "standard/WholeTree.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/Read.h"
#include "xml/standard/internal/Excerpt.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// What is true of every problem with a source that can be read.
void expectWhole(const Problem& problem, const std::string& bytes) {
    EXPECT_FALSE(problem.text.empty());
    EXPECT_EQ(visible(problem.text), problem.text);
    EXPECT_FALSE(problem.rule.empty());
    EXPECT_GE(problem.place.offset, 0);
    EXPECT_LE(problem.place.offset, static_cast<std::int64_t>(bytes.size()));
    EXPECT_GE(problem.place.line, 1);
    EXPECT_GE(problem.place.column, 1);
    const std::size_t lineEnd = problem.excerpt.find('\n');
    ASSERT_NE(lineEnd, std::string::npos);
    EXPECT_EQ(problem.excerpt.back(), '^');
    EXPECT_EQ(problem.excerpt.find('\n', lineEnd + 1), std::string::npos);
    std::string line = problem.excerpt.substr(0, lineEnd);
    std::replace(line.begin(), line.end(), '\t', ' ');
    EXPECT_EQ(visible(line), line);
    EXPECT_LE(charactersOf(line).size(), 160U);
}

void expectTreeOrProblem(const std::string& bytes, const ReadOptions& options, int& read, int& refused) {
    SCOPED_TRACE(bytes);
    const ReadResult result = readText(bytes, options);
    std::istringstream in(bytes);
    const ReadResult streamed = readStream(in, options);
    EXPECT_EQ(streamed.message(), result.message());
    ASSERT_EQ(streamed.isWellFormed(), result.isWellFormed());
    if (result) {
        ++read;
        EXPECT_EQ(wholeTree(*streamed, AttributeOrder::OfTag, Sections::Nodes),
                  wholeTree(*result, AttributeOrder::OfTag, Sections::Nodes));
        return;
    }
    ++refused;
    ASSERT_EQ(result.problems().size(), 1U);
    expectWhole(result.problems().front(), bytes);
}

ReadOptions randomOptions(Dice& dice) {
    ReadOptions options;
    options.namespaces = dice.chance(70);
    options.space = dice.chance(50) ? Space::All : dice.chance(50) ? Space::Content : Space::Dropped;
    options.keepComments = dice.chance(50);
    options.keepInstructions = dice.chance(50);
    options.keepCData = dice.chance(50);
    options.keepPlaces = dice.chance(50);
    return options;
}

TEST(AnyBytesTest, AreATreeOrAProblemWithAPlace) {
    const std::vector<EncodingUnderTest> encodings = encodingsUnderTest();
    Dice dice(31);
    int read = 0;
    int refused = 0;
    for (int i = 0; i < rounds(4000) && !HasFailure(); ++i) {
        std::string bytes = randomDocument(dice);
        if (dice.chance(30)) {
            const EncodingUnderTest& encoding = encodings[dice.below(encodings.size())];
            if (encoding.hasAll) bytes = encode(bytes, encoding, dice.chance(70)).bytes;
        }
        for (std::size_t changes = dice.below(3); changes > 0 && !bytes.empty(); --changes) {
            const auto byte = static_cast<char>(static_cast<unsigned char>(dice.below(256)));
            const std::size_t at = dice.below(bytes.size());
            if (dice.chance(50)) {
                bytes[at] = byte;
            } else if (dice.chance(50)) {
                bytes.insert(at, 1, byte);
            } else {
                bytes.erase(at, 1 + dice.below(3));
            }
        }
        expectTreeOrProblem(bytes, randomOptions(dice), read, refused);
    }
    EXPECT_GT(read, atLeast(800));
    EXPECT_GT(refused, atLeast(800));
}

// A prefix is never well formed before the end of the root, and what is wrong with it is at its end or before.
TEST(AnyBytesTest, OfEveryPrefixToo) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8' standalone='no'?>\r\n<!--c--><!DOCTYPE a PUBLIC 'p' 's' [\n"
        "<!ELEMENT a (#PCDATA|b)*><!ATTLIST a x (y|z) #FIXED 'y' n NOTATION (t) #IMPLIED><!NOTATION t SYSTEM 't'>\n"
        "<!ENTITY % p '<!ELEMENT b EMPTY>'>%p;<!ENTITY e 'v&#38;amp;'><!ENTITY u SYSTEM 'u' NDATA t>]>\n"
        "<a x='&e;'>\xC3\xB6&#x20AC;&e;<![CDATA[]]]]><?t u?><b/></a >";
    int read = 0;
    int refused = 0;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        expectTreeOrProblem(text.substr(0, size), everything(), read, refused);
        expectTreeOrProblem(text.substr(0, size) + "\xFF", everything(), read, refused);
    }
    EXPECT_EQ(read, 1);
}

}  // namespace
}  // namespace Xml::test
