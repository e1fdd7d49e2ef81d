// Trees that were made to break a writer, and documents without an end that pass through one.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include "xml/standard/Write.h"
#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLittle = {kMiB};
constexpr Bounds kLarge = {600 * kMiB};
constexpr int kMany = kMillion / 10;

// Counts what it gets, and keeps nothing.
class Counter : public std::streambuf {
public:
    std::size_t count = 0;

protected:
    int_type overflow(int_type c) override {
        ++count;
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char*, std::streamsize size) override {
        count += static_cast<std::size_t>(size);
        return size;
    }
};

// A piece of text many times between a beginning and an end, as it is read.
class Repeating : public std::streambuf {
public:
    Repeating(std::string first, std::string many, int times, std::string last)
        : before(std::move(first)), piece(std::move(many)), after(std::move(last)), left(times) {}

protected:
    int_type underflow() override {
        std::string& next = isFirst ? before : left > 0 ? piece : after;
        if (!isFirst && left-- < 0) return traits_type::eof();
        isFirst = false;
        setg(next.data(), next.data(), next.data() + next.size());
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string before, piece, after;
    int left;
    bool isFirst = true;
};

// Whether a text is written as it was read, and how long it is with indentation.
std::function<std::string()> writtenAgain(const std::string& text, const ReadOptions& reading = everything()) {
    return [text, reading] {
        const ReadResult read = readText(text, reading);
        if (!read) return read.problems()[0].rule;
        if (writeText(*read, asRead(*read)).text() != text + "\n") return std::string("another text");
        return std::string(writeText(*read) ? "written" : "not indented");
    };
}

TEST(HostileWriteTest, LongAndDeepTreesAreWritten) {
    expectOutcomes({
        {"levels", writtenAgain(repeated("<a>", kMillion - 1) + "<a/>" + repeated("</a>", kMillion - 1)), "written",
         kLarge},
        {"attributes against the order of their names",
         writtenAgain("<a" + pieces(kMany, [](int i) { return " x" + std::to_string(kMillion * 9 - i) + "=\"\""; }) +
                      "/>"),
         "written", kLarge},
        {"a long name", writtenAgain("<" + repeated("n", kLongName) + "/>"), "written", kLarge},
        {"a long text", writtenAgain("<a>" + repeated("x\u00E4", kLongText / 8) + "</a>"), "written", kLarge},
        {"a long text of references", writtenAgain("<a>" + repeated("&amp;", kLongText / 16) + "</a>"), "written",
         kLarge},
        {"a long value of references", writtenAgain("<a x=\"" + repeated("&#10;", kLongText / 16) + "\"/>"), "written",
         kLarge},
        {"a long comment", writtenAgain("<a><!--" + repeated("- ", kLongText / 8) + "--></a>"), "written", kLarge},
        {"sections", writtenAgain("<a>" + repeated("<![CDATA[<]]>", kMany) + "</a>"), "written", kLarge},
        {"comments around the root", writtenAgain(repeated("<!---->\n", kMany) + "<a/>"), "written", kLarge},
    });
}

TEST(HostileWriteTest, IndentationStaysInProportion) {
    expectOutcomes({{"levels",
                     [] {
                         const ReadResult read = readText(repeated("<a>", kMany) + repeated("</a>", kMany));
                         return std::to_string(writeText(*read).text().size() / (140 * kMany));
                     },
                     "0", kLarge}});
}

TEST(HostileWriteTest, WhatIsWrongIsFoundHoweverDeep) {
    expectOutcomes({
        {"a text",
         [] {
             ReadResult read = readText(repeated("<a>", kMany) + repeated("</a>", kMany));
             Element* deepest = read->getRoot();
             while (deepest->getChildCount() > 0) deepest = deepest->getChild(0)->toElement();
             deepest->addChild(new CharData("\x01"));
             const WriteResult written = writeText(*read);
             return written.problems().at(0).rule + " " + std::to_string(written.problems()[0].path.size());
         },
         "Char " + std::to_string(std::string("/a[1]").size() * 32 + std::string("/...").size()), kLarge},
        {"after siblings",
         [] {
             ReadResult read = readText("<r>" + repeated("<a/>", kMillion) + "</r>");
             read->getRoot()->getChild(kMillion - 1)->toElement()->addChild(new Comment("--"));
             return writeText(*read).problems().at(0).path;
         },
         "/r[1]/a[" + std::to_string(kMillion) + "]", kLarge},
    });
}

TEST(HostileWriteTest, WhatEntitiesMakeIsBounded) {
    expectOutcomes({{"one large entity many times",
                     [] {
                         auto dtd = std::make_unique<Dtd>("r");
                         dtd->setEntity("e", repeated("x", 500'000));
                         auto root = std::make_unique<Element>("r");
                         auto text = std::make_unique<CharData>();
                         text->data() = repeated("&e;", 500'000);
                         root->addChild(text.release());
                         const Document document(root.release(), dtd.release());
                         return writeText(document).problems().at(0).rule;
                     },
                     "entityGrowth", kLarge}});
}

TEST(HostileWriteTest, AStreamTakesTheMemoryOfItsLargestPartAndTheDepth) {
    const auto counted = [](void (*write)(StreamWriter&)) {
        return [write] {
            Counter counter;
            std::ostream stream(&counter);
            WriteOptions options;
            options.indent.clear();
            options.declaration = false;
            StreamWriter writer(stream, options);
            write(writer);
            return writer.finish() ? std::to_string(counter.count) : writer.problems()[0].toString();
        };
    };
    const auto size = [](long long bytes) { return std::to_string(bytes); };
    expectOutcomes({
        {"siblings", counted([](StreamWriter& w) {
             w.start("r");
             for (int i = 0; i < kMillion; ++i) w.start("a").attribute("x", "<").text("&").end();
             w.end();
         }),
         size(21LL * kMillion + 8), kLittle},
        {"levels", counted([](StreamWriter& w) {
             for (int i = 0; i < kMillion; ++i) w.start("a");
             for (int i = 0; i < kMillion; ++i) w.end();
         }),
         size(7LL * kMillion - 2), kLarge},
        {"attributes", counted([](StreamWriter& w) {
             w.start("r");
             for (int i = 0; i < kMany; ++i) w.attribute("x" + std::to_string(kMany + i), "");
             w.end();
         }),
         size(static_cast<long long>(kMany) * static_cast<long long>(5 + std::to_string(kMany).size()) + 5), kLarge},
        {"texts", counted([](StreamWriter& w) {
             w.start("r");
             for (int i = 0; i < kMany; ++i) w.text("some text, and more of it");
             w.end();
         }),
         size(25LL * kMany + 8), kLittle},
    });
}

TEST(HostileWriteTest, AFilterTakesTheMemoryOfTheLargestPart) {
    const auto filtered = [](const char* encoding) {
        return [encoding] {
            const std::string record = "<record id=\"17\"><name>some name</name><!--c--><v x=\"1\"/>\n</record>";
            Repeating source("<r>", record, kMany, "</r>");
            std::istream in(&source);
            Counter counter;
            std::ostream out(&counter);
            WriteOptions options;
            options.indent.clear();
            options.declaration = false;
            options.encoding = encoding;
            StreamReader reader(in, everything());
            StreamWriter writer(out, options);
            for (;;) {
                const StreamReader::Event event = reader.next();
                writer.copy(reader);
                if (event == StreamReader::Event::Finished || event == StreamReader::Event::Failed) break;
            }
            if (!writer.finish()) return writer.problems()[0].toString();
            return std::to_string((counter.count - 8) / record.size());
        };
    };
    expectOutcomes({
        {"in UTF-8", filtered("UTF-8"), std::to_string(kMany), kLittle},
        {"in UTF-16", filtered("UTF-16LE"), std::to_string(2 * kMany), kLittle},
        {"in windows-1252", filtered("windows-1252"), std::to_string(kMany), kLittle},
    });
}

}  // namespace
}  // namespace Xml::test
