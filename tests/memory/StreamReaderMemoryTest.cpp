// Events of XML 1.0 while memory runs out.
#include "memory/Failing.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/StreamReader.h"
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

using Event = StreamReader::Event;

const std::string kTexts[] = {
    "<?xml version='1.0' encoding='ISO-8859-1'?>\r\n<!DOCTYPE garden PUBLIC '-//a public identifier//' 's' [<!ENTITY "
    "soil "
    "'heavy, and wet for <em>most</em> of the year'><!ATTLIST pea colour-of-the-flowers CDATA 'white, or perhaps "
    "red'>]>"
    "<garden xmlns:a-long-prefix='urn:of-the-garden'><bed><pea sizes='1 &amp; 2' xml:space='preserve'/></bed>sow "
    "&soil; "
    "\xE4nd <![CDATA[indoors & out]]><!-- early\r\n -->, not late<bed>in rows, but not in those of the last year</bed>"
    "<?and water them, every other day?></garden>",
    "<garden><bed><pea></bed></garden>",
    "<garden> \n \n" + std::string(1500, ' ') + "<bed the-width-of-it='" + std::string(3000, '1') + "'/> \n </garden>",
    "<garden><bed x='\xFF'/></garden>",
};

// All that the events say, up to the last one or as far as memory goes. Every third element is read as a tree. There is
// room in `shown`, so that the reader is the one that asks for memory.
void take(StreamReader& reader, std::string& shown) {
    int elements = 0;
    for (;;) {
        const Event event = reader.next();
        shown += std::to_string(static_cast<int>(event));
        shown.append(reader.name()).append("'").append(reader.text()).append("'").append(reader.namespaceUri());
        shown += std::to_string(reader.place().offset);
        for (int i = 0; i < reader.attributeCount(); ++i) shown.append(reader.attributeValue(i));
        if (event == Event::Start && ++elements % 3 == 0) {
            const auto element = reader.readElement();
            if (element != nullptr) shown.append(element->getName()) += std::to_string(element->getChildCount());
        }
        if (event != Event::Finished && event != Event::Failed) continue;
        for (const Problem& problem : reader.problems()) shown.append(problem.text).append(problem.path);
        shown.append(reader.prolog().doctype).append(reader.prolog().encoding);
        return;
    }
}

// `make` puts a reader of the same text from its beginning into what it is given.
template <class Make>
void expectBadAlloc(Make make) {
    std::string expected;
    {
        std::optional<StreamReader> reader;
        make(reader);
        take(*reader, expected);
    }
    forEachFailingAllocation([&](Attempt& attempt) {
        std::optional<StreamReader> reader;
        std::string shown;
        shown.reserve(10'000);
        if (attempt([&] {
                make(reader);
                take(*reader, shown);
            })) {
            EXPECT_EQ(shown, expected);
            return;
        }
        // Nothing is read after that, and nothing is at hand.
        if (!reader || shown.empty()) return;
        EXPECT_EQ(reader->name().size() + reader->text().size() + reader->localName().size(), 0U);
        EXPECT_EQ(reader->attributeCount(), 0);
        const Event event = reader->next();
        EXPECT_TRUE(event == Event::Failed || event == Event::Finished);
        EXPECT_EQ(reader->readElement(), nullptr);
    });
}

TEST(StreamReaderMemoryTest, EventsGiveBadAllocAndLeakNothing) {
    for (const std::string& text : kTexts) {
        SCOPED_TRACE(text);
        ReadOptions options;
        options.keepPlaces = true;
        expectBadAlloc([&](std::optional<StreamReader>& reader) { reader.emplace(std::string_view(text), options); });
        options.space = Space::Dropped;
        std::istringstream stream(text);
        expectBadAlloc([&](std::optional<StreamReader>& reader) {
            stream.clear();
            stream.seekg(0);
            reader.emplace(stream, options);
        });
    }
}

}  // namespace
}  // namespace Xml::test
