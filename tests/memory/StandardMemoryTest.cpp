// Reading XML 1.0 while memory runs out.
#include "memory/Failing.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace Xml::test {
namespace {

const std::string kDeclarations =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!DOCTYPE garden PUBLIC '-//a public identifier//' 's' "
    "[\r\n"
    "<!ELEMENT garden (bed | (note, note?)+ | shed)*><!NOTATION a-notation-for-pictures SYSTEM 'pictures'>\r\n"
    "<!ATTLIST pea colour-of-the-flowers CDATA 'white, or perhaps red' sizes NMTOKENS ' small   large '>\r\n"
    "<!ENTITY soil 'heavy, and wet for <em>most</em> of the year'><!ENTITY where 'behind &#38;amp; beside the "
    "house'>\r\n"
    "<!ENTITY % more '<!ENTITY a-picture-of-it SYSTEM \"file\" NDATA a-notation-for-pictures>'> %more; ]>";

// Each ends in another way.
const std::string kRoots[] = {
    "<garden xmlns:a-long-prefix='urn:of-the-garden' xmlns='urn:of-everything-else'>\r\n <bed>\r\n  <pea "
    "a-long-prefix:place='&where; &where;'/>\r\n </bed>\r\n <a-long-prefix:note>sow &soil; &#8364; "
    "<![CDATA[indoors & out]]><!-- early\r\n -->, not late</a-long-prefix:note>\r\n</garden>",
    "<garden><bed><pea></bed></garden>",
    "<garden><bed><pea sizes='1' sizes='2'/></bed></garden>",
    "<garden><a-long-prefix:pea/></garden>",
    "<garden>&where; &an-entity-without-declaration;</garden>",
    "<garden>&soil;<em></garden>",
};

TEST(StandardMemoryTest, ReadingGivesBadAllocAndLeaksNothing) {
    for (const std::string& root : kRoots) {
        SCOPED_TRACE(root);
        const std::string text = kDeclarations + root;
        const auto read = [&](std::optional<ReadResult>& result) { result.emplace(readText(text)); };
        const auto shown = [](const ReadResult& result) { return dump(result.get()) + result.message(); };
        std::string expected;
        {
            std::optional<ReadResult> result;
            read(result);
            expected = shown(*result);
        }
        forEachFailingAllocation([&](Attempt& attempt) {
            std::optional<ReadResult> result;
            if (!attempt([&] { read(result); })) read(result);
            EXPECT_EQ(shown(*result), expected);
        });
    }
}

}  // namespace
}  // namespace Xml::test
