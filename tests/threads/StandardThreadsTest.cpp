// What several threads may do at the same time with documents of XML 1.0.
#include "support/Places.h"
#include "support/Trees.h"
#include "threads/InThreads.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Place.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/Save.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include "xml/standard/Write.h"
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Xml::test {
namespace {

const std::string kText =
    "<?xml version='1.0' encoding='UTF-8'?><!--c--><!DOCTYPE r [<!ENTITY e 'x<b>y</b>'>"
    "<!ATTLIST b k CDATA 'd'><!ELEMENT r ANY>]>\n<r xmlns:p='urn:p'>\n <p:a l='1'>text &amp; &e;</p:a><?t c?>\n"
    " <a>\xC3\xB6<![CDATA[<]]></a>\n</r><!--d-->";
const std::string kBroken = "<?xml version='1.0' encoding='ISO-8859-1'?><r>\n <a>\xF6</b></r>";

ReadOptions withPlaces() {
    ReadOptions options = everything();
    options.keepPlaces = true;
    return options;
}

// All that a look at a tree gives.
std::string looksOf(const Document& document) {
    const Prolog& prolog = prologOf(document);
    std::string looks = prolog.doctype + prolog.encoding + std::to_string(prolog.beforeDoctype.size());
    std::vector<const Object*> next = {document.getRoot()};
    while (!next.empty()) {
        const Object& node = *next.back();
        next.pop_back();
        const Place place = placeOf(node);
        looks += std::to_string(static_cast<int>(kindOf(node))) + "@" + std::to_string(place.offset) + ":" +
                 std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
        if (!node.isElement()) continue;
        const Element& element = *node.toElement();
        for (int i = 0; i < element.getAttributeCount(); ++i) looks += isDefault(*element.getAttribute(i)) ? "*" : "-";
        for (int i = 0; i < element.getChildCount(); ++i) next.push_back(element.getChild(i));
    }
    return looks;
}

std::string eventsOf(StreamReader& reader) {
    std::string events;
    for (;;) {
        const StreamReader::Event event = reader.next();
        events += std::to_string(static_cast<int>(event)) + std::string(reader.name()) + std::string(reader.text()) +
                  std::to_string(reader.place().offset) + std::string(reader.namespaceUri()) + "\n";
        if (event == StreamReader::Event::Failed) return events + reader.problems()[0].toString();
        if (event == StreamReader::Event::Finished) return events;
    }
}

std::string eventsOf(const std::string& text) {
    StreamReader reader{std::string_view(text)};
    return eventsOf(reader);
}

TEST(StandardThreadsTest, OneTextIsReadByAll) {
    const ReadResult expected = readText(kText, withPlaces());
    ASSERT_TRUE(expected) << expected.message();
    const std::string looks = looksOf(*expected);
    const std::string written = textOf(*expected);
    const std::string message = readText(kBroken).message();
    ASSERT_FALSE(message.empty());
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            const ReadResult result = readText(kText, withPlaces());
            failed += !result || looksOf(*result) != looks || textOf(*result) != written;
            failed += readText(kBroken).message() != message;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(StandardThreadsTest, EventsOfOneTextAreReadByAll) {
    const std::string events = eventsOf(kText);
    const std::string broken = eventsOf(kBroken);
    ASSERT_NE(events, broken);
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            failed += eventsOf(kText) != events || eventsOf(kBroken) != broken;
            std::istringstream stream(kText);
            StreamReader reader(stream);
            failed += eventsOf(reader) != events;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(StandardThreadsTest, OneFileIsReadByAll) {
    const std::string path = scratchFolder() + "/threads-standard.xml";
    std::ofstream(path, std::ios::binary) << kText;
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            const ReadResult result = Xml::readFile(path);
            failed += !result || result->getRoot()->getName() != "r";
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

// Places are known for the whole tree: looking for one changes nothing that another thread sees.
TEST(StandardThreadsTest, OneTreeIsLookedAtAndCopiedByAll) {
    for (int round = 0; round < kRounds; ++round) {
        const ReadResult result = readText(kText, withPlaces());
        ASSERT_TRUE(result) << result.message();
        const Document& document = *result;
        std::vector<std::string> looks(kThreads);
        std::vector<int> failures(kThreads);
        inThreads([&](int number) {
            const auto index = static_cast<std::size_t>(number);
            looks[index] = looksOf(document);
            const std::unique_ptr<Object> copy(document.clone());
            failures[index] += dump(copy.get()) != dump(&document);
            failures[index] += placeOf(*copy->toDocument()->getRoot()).line != 0;
        });
        EXPECT_EQ(failures, std::vector<int>(kThreads));
        EXPECT_EQ(looks, std::vector<std::string>(kThreads, looksOf(document)));
    }
}

TEST(StandardThreadsTest, OneTreeIsWrittenByAll) {
    for (int round = 0; round < kRounds; ++round) {
        const ReadResult result = readText(kText, withPlaces());
        ASSERT_TRUE(result) << result.message();
        const Document& document = *result;
        std::vector<std::string> written(kThreads);
        inThreads([&](int number) {
            WriteOptions options = asRead(document);
            options.encoding = number % 2 == 0 ? "UTF-8" : "windows-1252";
            std::ostringstream stream;
            StreamWriter writer(stream);
            writer.node(*document.getRoot()).finish();
            written[static_cast<std::size_t>(number)] =
                writeText(document, options).text() + writeText(*document.getDtd()).text() + stream.str();
        });
        for (std::size_t i = 2; i < written.size(); ++i) EXPECT_EQ(written[i], written[i - 2]);
        EXPECT_NE(written[0], "");
    }
}

// Each sees what one of them wrote, whole.
TEST(StandardThreadsTest, OneFileIsSavedByAll) {
    const std::string path = scratchFolder() + "/threads-saved.xml";
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        const ReadResult own = readText("<r>" + std::string(20'000, static_cast<char>('a' + number)) + "</r>");
        for (int round = 0; round < kRounds; ++round) {
            int& failed = failures[static_cast<std::size_t>(number)];
            failed += saveFile(*own, path) ? 0 : 1;
            const ReadResult read = Xml::readFile(path);
            if (!read) {
                ++failed;
                continue;
            }
            const std::string text = read->getRoot()->getCharData();
            failed += text.size() == 20'000 && text.find_first_not_of(text[0]) == std::string::npos ? 0 : 1;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(StandardThreadsTest, TreesAreHandedOnAndDestroyedByOthers) {
    std::vector<std::unique_ptr<Document>> documents;
    for (int number = 0; number < kThreads; ++number) documents.push_back(readText(kText, withPlaces()).take());
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        std::unique_ptr<Document>& own = documents[static_cast<std::size_t>(number)];
        const std::string looks = looksOf(*own);
        for (int round = 0; round < kRounds; ++round) {
            own = readText(kText, withPlaces()).take();
            failures[static_cast<std::size_t>(number)] += looksOf(*own) != looks;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace Xml::test
