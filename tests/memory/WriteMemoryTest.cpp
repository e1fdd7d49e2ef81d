// Writing XML 1.0 while memory runs out: it is std::bad_alloc, nothing leaks, and the tree is as it was.
#include "memory/Failing.h"
#include "support/Places.h"
#include "support/Trees.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/Save.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include "xml/standard/Write.h"
#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace Xml::test {
namespace {

const std::string kText =
    "<?xml version='1.0' encoding='UTF-8'?><!--a comment before the document type--><!DOCTYPE garden PUBLIC '-//a "
    "public "
    "identifier//' 'a-system-identifier' [\n<!ENTITY soil 'heavy, and wet for <em>most</em> of the year'>\n<!ATTLIST "
    "pea "
    "colour-of-the-flowers CDATA 'white, or perhaps red'>\n]><garden zone='of the house' bed='the second one'>sow "
    "&soil; "
    "&#8364; &#13; and\n<![CDATA[indoors & out ]] ]]><!--early, as soon as it is warm--><pea/><?sow a lot of them?>"
    "<bed xmlns:p='urn:of-the-bed'><p:pea p:x='&#10; and a value that is long'/></bed></garden><!--after all of it-->";

// A stream that has its memory before anything is written.
class Stream : private std::streambuf, public std::ostream {
public:
    Stream() : std::ostream(static_cast<std::streambuf*>(this)) { setp(bytes.data(), bytes.data() + bytes.size()); }

    std::string_view text() const { return {bytes.data(), static_cast<std::size_t>(pptr() - bytes.data())}; }

private:
    std::array<char, 10'000> bytes;
};

WriteOptions in(const char* encoding) {
    WriteOptions options;
    options.encoding = encoding;
    options.newline = "\r\n";
    return options;
}

void expectBadAlloc(const Object& node, const WriteOptions& options) {
    std::string expected;
    {
        const WriteResult result = writeText(node, options);
        expected = result.text() + result.message();
    }
    const std::string before = dump(&node);
    forEachFailingAllocation([&](Attempt& attempt) {
        std::optional<WriteResult> result;
        if (!attempt([&] { result.emplace(writeText(node, options)); })) result.emplace(writeText(node, options));
        EXPECT_EQ(result->text() + result->message(), expected);
        EXPECT_EQ(dump(&node), before);
    });
    forEachFailingAllocation([&](Attempt& attempt) {
        Stream stream;
        std::optional<WriteResult> result;
        if (attempt([&] { result.emplace(writeStream(node, stream, options)); })) {
            EXPECT_EQ(std::string(stream.text()) + result->message(), expected);
        } else {
            EXPECT_EQ(stream.text(), "");
        }
    });
}

TEST(WriteMemoryTest, WritingGivesBadAllocAndLeaksNothing) {
    const ReadResult read = readText(kText, everything());
    ASSERT_TRUE(read) << read.message();
    for (const char* const encoding : {"UTF-8", "UTF-16", "ISO-8859-1", "windows-1252", "klingon"}) {
        SCOPED_TRACE(encoding);
        expectBadAlloc(*read, in(encoding));
    }
    expectBadAlloc(*read, asRead(*read));
    expectBadAlloc(*read->getDtd(), {});
    expectBadAlloc(*read->getRoot(), {});
}

TEST(WriteMemoryTest, WhatCannotBeWrittenGivesBadAllocAndLeaksNothing) {
    ReadResult read = readText(kText, everything());
    ASSERT_TRUE(read) << read.message();
    read->getRoot()->addChild(new Comment("a comment of more than a few bytes, with -- in it"));
    expectBadAlloc(*read, in("UTF-8"));
    prologOf(*read).doctype.clear();
    prologOf(*read).beforeRoot.push_back(std::make_unique<Comment>("a comment that ends with a hyphen-"));
    expectBadAlloc(*read, in("US-ASCII"));
}

// Once an allocation has failed nothing more is written, and what was written is a beginning.
void expectBadAlloc(void (*write)(StreamWriter&), const WriteOptions& options) {
    std::string expected;
    std::string message;
    {
        Stream stream;
        StreamWriter writer(stream, options);
        write(writer);
        if (!writer.finish()) message = writer.problems()[0].toString();
        expected = stream.text();
    }
    forEachFailingAllocation([&](Attempt& attempt) {
        Stream stream;
        bool isWhole = false;
        std::optional<StreamWriter> writer;
        if (attempt([&] {
                writer.emplace(stream, options);
                write(*writer);
                isWhole = writer->finish();
            })) {
            EXPECT_EQ(isWhole, message.empty());
            EXPECT_EQ(stream.text(), expected);
            return;
        }
        if (!writer) return;
        writer->start("more").text("more").end();
        EXPECT_FALSE(writer->finish());
        EXPECT_FALSE(writer->problems().empty());
        writer.reset();
        EXPECT_EQ(expected.substr(0, stream.text().size()), stream.text());
    });
}

// What the calls are given, which is made before.
struct Pieces {
    Pieces() : bed("a-bed-of-the-garden") {
        prolog.doctype = "a-garden-with-a-long-name";
        prolog.internalSubset = "<!ENTITY soil 'heavy, and wet for most of the year'>";
        prolog.afterRoot.push_back(std::make_unique<Comment>("a comment after all of the garden"));
        for (int i = 0; i < 20; ++i) names.push_back("attribute-of-the-garden-" + std::to_string(i));
        bed.addElement("below", "a text of some length in it");
    }

    Prolog prolog;
    std::vector<std::string> names;
    Element bed;
};

const Pieces& pieces() {
    static const Pieces made;
    return made;
}

TEST(WriteMemoryTest, WritingPieceByPieceGivesBadAllocAndLeaksNothing) {
    const auto garden = [](StreamWriter& w) {
        w.prolog(pieces().prolog).start("a-garden-with-a-long-name");
        for (const std::string& name : pieces().names) w.attribute(name, "a value\nin two lines");
        w.text("a text with an \u00E4 and a \u20AC, and an & as well").cdata("a section with ]]> in it");
        w.start("another-element").node(pieces().bed).end().comment("a comment that is longer than a few bytes").end();
    };
    const auto wrong = [](StreamWriter& w) {
        w.start("an-element-with-a-long-name").start("another-one-in-it").comment("a comment with -- in it, and more");
    };
    for (const char* const encoding : {"UTF-8", "UTF-16", "windows-1252"}) {
        SCOPED_TRACE(encoding);
        expectBadAlloc(garden, in(encoding));
        expectBadAlloc(wrong, in(encoding));
    }
}

// The allocation that fails may be the reader's; then the document is not whole either.
TEST(WriteMemoryTest, CopyingGivesBadAllocAndLeaksNothing) {
    const std::string wrong = "<an-element-with-a-long-name><another-one></an-element-with-a-long-name>";
    for (const std::string& text : {kText, wrong}) {
        SCOPED_TRACE(text);
        const auto copy = [&](std::ostream& stream) {
            StreamReader reader{std::string_view(text)};
            StreamWriter writer(stream, in("UTF-8"));
            for (;;) {
                const StreamReader::Event event = reader.next();
                writer.copy(reader);
                if (event == StreamReader::Event::Finished || event == StreamReader::Event::Failed) break;
            }
            return writer.finish();
        };
        Stream whole;
        const bool isWhole = copy(whole);
        EXPECT_EQ(isWhole, text == kText);
        forEachFailingAllocation([&](Attempt& attempt) {
            Stream stream;
            if (attempt([&] { EXPECT_EQ(copy(stream), isWhole); })) {
                EXPECT_EQ(stream.text(), whole.text());
            } else {
                EXPECT_EQ(whole.text().substr(0, stream.text().size()), stream.text());
            }
        });
    }
}

TEST(WriteMemoryTest, SavingGivesBadAllocAndLeavesTheFileAsItWas) {
    const std::filesystem::path folder = scratchFolder() + "/WriteMemoryTest-a-folder-of-its-own";
    std::filesystem::create_directories(folder);
    const std::filesystem::path path = folder / "a-file-with-a-name-that-is-not-short.xml";
    const std::filesystem::path link = folder / "a-link-to-the-file-with-a-long-name.xml";
    const ReadResult read = readText(kText, everything());
    const std::string written = writeText(*read).text();
    const auto textOf = [](const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    };
    std::filesystem::remove(link);
    std::filesystem::create_symlink(path.filename(), link);
    forEachFailingAllocation([&](Attempt& attempt) {
        std::ofstream(path, std::ios::binary) << "old";
        const bool isDone = attempt([&] { EXPECT_TRUE(saveFile(*read, link)); });
        const std::string text = textOf(path);
        EXPECT_TRUE(text == written || (!isDone && text == "old")) << text;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
    });
    forEachFailingAllocation([&](Attempt& attempt) { attempt([&] { EXPECT_FALSE(saveFile(*read, folder)); }); });
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace Xml::test
