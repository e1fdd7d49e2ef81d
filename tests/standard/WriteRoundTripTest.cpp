// What is written as it was read is the same document: for this library, for Expat, and in the canonical form that
// libxml2 makes.
#include "standard/Documents.h"
#include "standard/Encoded.h"
#include "standard/Peers.h"
#include "standard/WholeTree.h"
#include "standard/Written.h"
#include "support/Places.h"
#include "support/Rounds.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/Write.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Of a document that can be read; what was written.
std::string expectSameAfterwards(const std::string& text, const ReadResult& read) {
    const WriteResult written = writeText(*read, asRead(*read));
    EXPECT_TRUE(written) << written.message();
    const ReadResult again = readText(written.text(), everything());
    if (!again) {
        ADD_FAILURE() << again.message() << "\n" << written.text();
        return {};
    }
    EXPECT_EQ(everythingOf(*again), everythingOf(*read)) << written.text();
    EXPECT_EQ(writeText(*again, asRead(*again)).text(), written.text());
    if (isSameByLibxml2(text, *read)) {
        EXPECT_EQ(canonicalForm(written.text()), canonicalForm(text)) << written.text();
    }
    return written.text();
}

TEST(WriteRoundTripTest, DocumentsOfTheRepositoryAreWrittenAsTheyWereRead) {
    int count = 0;
    const std::filesystem::recursive_directory_iterator end;
    for (std::filesystem::recursive_directory_iterator at(sourceFolder()); at != end; ++at) {
        const std::filesystem::directory_entry& entry = *at;
        const std::string name = entry.path().filename();
        if (at.depth() == 0 && (name == "build" || name == ".git")) at.disable_recursion_pending();
        if (!entry.is_regular_file() || entry.file_size() > 1 << 20) continue;
        const std::string text = bytesOf(entry.path());
        if (text.find('<') == std::string::npos) continue;
        const ReadResult read = readText(text, everything());
        if (!read) continue;
        SCOPED_TRACE(entry.path().string());
        expectSameAfterwards(text, read);
        ++count;
    }
    EXPECT_GE(count, 50);
}

TEST(WriteRoundTripTest, RandomDocumentsAreWrittenAsTheyWereRead) {
    Dice dice(20);
    int read = 0;
    int canonical = 0;
    for (int i = 0; i < rounds(4000); ++i) {
        const std::string text = randomDocument(dice);
        const ReadResult result = readText(text, everything());
        if (!result) continue;
        SCOPED_TRACE(text);
        const std::string written = expectSameAfterwards(text, result);
        if (askExpat(text, false).isAccepted) {
            EXPECT_EQ(expatRefusal(written), "");
        }
        if (askLibxml2(text, true).isAccepted) {
            EXPECT_TRUE(askLibxml2(written, true).isAccepted);
        }
        canonical += isSameByLibxml2(text, *result) && canonicalForm(written) ? 1 : 0;
        ++read;
        if (HasFailure()) break;
    }
    EXPECT_GE(read, atLeast(1000));
    EXPECT_GE(canonical, atLeast(500));
}

// Characters that the encoding lacks are references afterwards, and read again the same.
TEST(WriteRoundTripTest, RandomDocumentsAreTheSameInEveryEncoding) {
    Dice dice(21);
    int written = 0;
    int unwritable = 0;
    const auto encodings = encodingsUnderTest();
    for (int i = 0; i < rounds(4000); ++i) {
        const std::string text = randomDocument(dice);
        const ReadResult read = readText(text, everything());
        if (!read) continue;
        const EncodingUnderTest& encoding = encodings[dice.below(encodings.size())];
        SCOPED_TRACE(encoding.name + ("\n" + text));
        WriteOptions options = asRead(*read);
        options.encoding = encoding.name;
        options.declaration = true;
        options.mark = encoding.markSize > 0 && dice.chance(50);
        options.newline = dice.chance(50) ? "\n" : dice.chance(50) ? "\r\n" : "\r";
        const WriteResult result = writeText(*read, options);
        if (!result) {
            EXPECT_EQ(result.problems()[0].kind, Problem::Kind::Unwritable) << result.message();
            EXPECT_FALSE(encoding.hasAll) << result.message();
            ++unwritable;
            continue;
        }
        const ReadResult again = readText(result.text(), everything());
        ASSERT_TRUE(again) << again.message() << "\n" << result.text();
        ASSERT_EQ(wholeTree(*again, AttributeOrder::OfTag, Sections::Nodes),
                  wholeTree(*read, AttributeOrder::OfTag, Sections::Nodes));
        EXPECT_EQ(prologOf(*again).readAs, encoding.name);
        EXPECT_EQ(prologOf(*again).hasMark, options.mark);
        ++written;
    }
    EXPECT_GE(written, atLeast(700));
    EXPECT_GE(unwritable, atLeast(40));
}

// To the byte, where nothing has to change.
TEST(WriteRoundTripTest, EncodingsAndMarksAreAsTheyWere) {
    int count = 0;
    for (const EncodingUnderTest& encoding : encodingsUnderTest()) {
        const std::string name = encoding.name;
        const std::string family = name.substr(0, name.find_last_not_of("BEL") + 1);  // UTF-16 of UTF-16LE
        for (const std::string& declared : {name, family, std::string()}) {
            for (const bool isMarked : {false, true}) {
                for (const bool hasDeclaration : {false, true}) {
                    std::string text = "<a b=\"" + std::string(encoding.own) + "\">" + encoding.own + "</a>\n";
                    if (hasDeclaration) {
                        text.insert(0, declared.empty() ? "<?xml version=\"1.0\"?>\n"
                                                        : "<?xml version=\"1.0\" encoding=\"" + declared + "\"?>\n");
                    } else if (!declared.empty()) {
                        continue;
                    }
                    if (isMarked && encoding.markSize == 0) continue;
                    const std::string bytes = encode(text, encoding, isMarked).bytes;
                    const ReadResult read = readText(bytes, everything());
                    if (!read) continue;  // where nothing says the encoding
                    SCOPED_TRACE(name + " as " + declared + (isMarked ? ", marked" : ""));
                    // ASCII without a declaration is UTF-8 as well.
                    const std::string taken = declared.empty() && !isMarked ? "UTF-8" : name;
                    EXPECT_EQ(prologOf(*read).readAs, taken);
                    const WriteResult written = writeText(*read, asRead(*read));
                    EXPECT_EQ(written.text(), bytes) << written.message();
                    StreamReader reader(std::string_view(bytes), everything());
                    reader.next();
                    EXPECT_EQ(reader.prolog().readAs, taken);
                    ++count;
                }
            }
        }
    }
    EXPECT_GE(count, 30);
}

// Nothing is added to text, and nothing but white space elsewhere: dropped again it is the same tree.
TEST(WriteRoundTripTest, IndentationIsDroppedWhenItIsReadAgain) {
    Dice dice(22);
    int read = 0;
    for (int i = 0; i < rounds(3000); ++i) {
        const std::string text = randomDocument(dice);
        ReadOptions options = everything();
        options.space = dice.chance(50) ? Space::Content : Space::All;
        const ReadResult result = readText(text, options);
        if (!result) continue;
        SCOPED_TRACE(text);
        WriteOptions indented;
        indented.indent = dice.chance(50) ? "\t" : "  ";
        indented.shortEmptyTags = dice.chance(50);
        indented.defaults = dice.chance(50);
        const WriteResult written = writeText(*result, indented);
        ASSERT_TRUE(written) << written.message();
        ReadOptions content = everything();
        content.space = Space::Content;
        const ReadResult before = readText(writeText(*result, asRead(*result)).text(), content);
        const ReadResult after = readText(written.text(), content);
        ASSERT_TRUE(after) << after.message() << "\n" << written.text();
        const auto tree = [&](const ReadResult& one) {
            std::string lines = wholeTree(*one, AttributeOrder::OfTag, Sections::Nodes);
            if (!indented.defaults) return lines;
            for (std::size_t at = lines.find("*\n"); at != std::string::npos; at = lines.find("*\n", at))
                lines.erase(at, 1);
            return lines;
        };
        ASSERT_EQ(tree(after), tree(before)) << written.text();
        ++read;
    }
    EXPECT_GE(read, atLeast(800));
}

}  // namespace
}  // namespace Xml::test
