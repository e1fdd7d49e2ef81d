// Reading XML 1.0 while memory runs out.
#include "memory/Failing.h"
#include "support/Places.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Place.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/FilesBelow.h"
#include "xml/standard/Read.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

const std::string kDeclarations =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!DOCTYPE garden PUBLIC '-//a public identifier//' 's' "
    "[\r\n"
    "<!ELEMENT garden (bed | (note, note?)+ | shed)*><!NOTATION a-notation-for-pictures SYSTEM 'pictures'>\r\n"
    "<!ELEMENT bed (((a-pea-that-climbs-upwards?)+, ((bean-in-the-pot | (pot)), shed?))*)+><!ELEMENT note (#PCDATA | "
    "a-pea-that-climbs-upwards | em)*><!ELEMENT pea EMPTY>"
    "<!ATTLIST bean-in-the-pot picture NOTATION (a-notation-for-pictures | another-notation) #IMPLIED "
    "ripe (not-yet-but-soon | yes) #REQUIRED twin-of-this-bean IDREF #IMPLIED>"
    "<!ENTITY all-of-the-texts '&soil;, &where; &#38;#8364; &an-entity-not-declared;'>"
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
    "<!-- around, and longer than a short text is --><garden>\r\n <bed/>\r\n <?sow a lot of peas, and early?>x\r\n "
    "<![CDATA[indoors & out, wherever there is room]]></garden><?after all that is left of it?>",
    "<garden><bed x='\xFF'/></garden>",
};

// Without nodes beside text, and with all of them and the place of each.
ReadOptions optionsOf(bool isEverything) {
    ReadOptions options;
    if (!isEverything) {
        options.keepComments = options.keepInstructions = false;
        return options;
    }
    options = everything();
    options.keepPlaces = true;
    return options;
}

void appendPlace(std::string& to, const Object& node) {
    const Place place = placeOf(node);
    to += " " + std::to_string(place.offset) + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

void appendPlaces(std::string& to, const Element& element) {
    appendPlace(to, element);
    for (int i = 0; i < element.getAttributeCount(); ++i) appendPlace(to, *element.getAttribute(i));
}

// What stands around the root, and the places of that and of what the root holds.
std::string shown(const ReadResult& result) {
    std::string text = dump(result.get()) + result.message();
    if (!result) return text;
    text += textOf(*result.get());
    const Prolog& prolog = prologOf(*result);
    text += prolog.doctype + prolog.publicId + prolog.internalSubset + prolog.newline;
    for (const auto* nodes : {&prolog.beforeDoctype, &prolog.beforeRoot, &prolog.afterRoot}) {
        for (const auto& node : *nodes) {
            text += dump(node.get());
            appendPlace(text, *node);
        }
    }
    const Element& root = *result->getRoot();
    appendPlaces(text, root);
    for (int i = 0; i < root.getChildCount(); ++i) {
        const Object& child = *root.getChild(i);
        if (child.isElement()) {
            appendPlaces(text, *child.toElement());
        } else {
            appendPlace(text, child);
        }
    }
    return text;
}

// Whichever allocation fails, it is std::bad_alloc, and reading once more gives what there is to be read.
template <class Read>
void expectBadAlloc(Read read) {
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

TEST(StandardMemoryTest, ReadingGivesBadAllocAndLeaksNothing) {
    for (const std::string& root : kRoots) {
        SCOPED_TRACE(root);
        const std::string text = kDeclarations + root;
        for (const bool isEverything : {false, true}) {
            const ReadOptions options = optionsOf(isEverything);
            expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(readText(text, options)); });
        }
    }
}

TEST(StandardMemoryTest, ReadingAnotherEncodingGivesBadAllocAndLeaksNothing) {
    std::string text = "\xFF\xFE";
    for (const char c : std::string("<!--a comment that is long enough to need memory-->\n<a b='c'>d<e/></a>"))
        text.append(1, c).append(1, '\0');
    const ReadOptions options = optionsOf(true);
    expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(readText(text, options)); });
}

TEST(StandardMemoryTest, ReadingFilesAndStreamsGivesBadAllocAndLeaksNothing) {
    const std::string path = scratchFolder() + "/StandardMemoryTest-a-name-that-is-not-short.xml";
    const std::string text = kDeclarations + kRoots[0];
    std::ofstream(path, std::ios::binary) << text;
    const std::filesystem::path file(path);
    const std::filesystem::path missing(path + "-missing");
    const ReadOptions options = optionsOf(true);
    expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(Xml::readFile(file, options)); });
    expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(Xml::readFile(missing, options)); });
    std::istringstream in(text);
    expectBadAlloc([&](std::optional<ReadResult>& result) {
        in.clear();
        in.seekg(0);
        result.emplace(readStream(in, options));
    });
    ReadOptions unsupported;
    unsupported.validate = true;
    expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(readText(text, unsupported)); });
}

TEST(StandardMemoryTest, LookingForFilesOfAFolderGivesBadAlloc) {
    const std::string text = "a text that is longer than what a string holds in itself";
    const std::filesystem::path folder = std::filesystem::path(scratchFolder()) / "StandardMemory-a-folder";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "declarations.dtd") << text;
    const std::string base = (folder / "declarations.dtd").string();
    forEachFailingAllocation([&](Attempt& attempt) {
        std::optional<Resolved> found;
        const auto find = [&] { found = filesBelow(folder)("", "./a/../declarations%2Edtd", base); };
        if (!attempt(find)) find();
        ASSERT_TRUE(found);
        EXPECT_EQ(found->text, text);
    });
}

// Attributes beyond those that fit into the memory of a tree as one block, and texts beyond those of a slab.
TEST(StandardMemoryTest, PlacesOfLargeNodesSurvive) {
    std::string text = "<a><b";
    for (int i = 0; i < 200; ++i) text += " attribute-" + std::to_string(i) + "='" + std::string(30, 'v') + "'";
    text += "/>" + std::string(3000, 't') + "<!--" + std::string(3000, 'c') + "--></a>";
    const ReadOptions options = optionsOf(true);
    expectBadAlloc([&](std::optional<ReadResult>& result) { result.emplace(readText(text, options)); });
}

}  // namespace
}  // namespace Xml::test
