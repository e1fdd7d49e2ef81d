// Where nodes began in the source.
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Place.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

ReadOptions withPlaces() {
    ReadOptions options = everything();
    options.keepPlaces = true;
    return options;
}

std::string at(const Object& node) {
    const Place place = placeOf(node);
    return std::to_string(place.offset) + " " + std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(ReadPlacesTest, AreKnownOfEveryNode) {
    const ReadResult result =
        readText("<!--1-->\n<a  x='1'>text<b y='2'\n z=''/>\r\n<!--c--><?t?><![CDATA[s]]></a><?t 2?>", withPlaces());
    const Element& root = *result->getRoot();
    EXPECT_EQ(at(*result), "0 1:1");
    EXPECT_EQ(at(*prologOf(*result).beforeRoot[0]), "0 1:1");
    EXPECT_EQ(at(root), "9 2:1");
    EXPECT_EQ(at(*root.getAttribute("x")), "13 2:5");
    EXPECT_EQ(at(*root.getChild(0)), "19 2:11");
    const Element& b = *root.getChild(1)->toElement();
    EXPECT_EQ(at(b), "23 2:15");
    EXPECT_EQ(at(*b.getAttribute("y")), "26 2:18");
    EXPECT_EQ(at(*b.getAttribute("z")), "33 3:2");
    EXPECT_EQ(at(*root.getChild(2)), "39 3:8");   // the line end
    EXPECT_EQ(at(*root.getChild(3)), "41 4:1");   // the comment
    EXPECT_EQ(at(*root.getChild(4)), "49 4:9");   // the instruction
    EXPECT_EQ(at(*root.getChild(5)), "54 4:14");  // the section
    EXPECT_EQ(at(*prologOf(*result).afterRoot[0]), "71 4:31");
}

TEST(ReadPlacesTest, OfADocumentTypeIsThatOfItsDeclaration) {
    const ReadResult result = readText("<?t?>\n <!DOCTYPE a [<!ELEMENT a ANY>]><a/>", withPlaces());
    EXPECT_EQ(at(*result.get()->getDtd()), "7 2:2");
}

TEST(ReadPlacesTest, AreKnownOnlyWhereThatIsAsked) {
    const ReadResult result = readText("<!--1--><a x=''>t<b/></a>");
    for (const Object* node :
         {static_cast<const Object*>(result.get()), static_cast<const Object*>(prologOf(*result).beforeRoot[0].get()),
          static_cast<const Object*>(result->getRoot()), static_cast<const Object*>(result->getRoot()->getAttribute(0)),
          static_cast<const Object*>(result->getRoot()->getChild(0)),
          static_cast<const Object*>(result->getRoot()->getChild(1))}) {
        EXPECT_EQ(at(*node), "-1 0:0");
    }
}

TEST(ReadPlacesTest, OfEntitiesAreThoseOfTheOutermostReference) {
    const ReadResult result =
        readText("<!DOCTYPE a [<!ENTITY in '<c y=\"1\"/>'><!ENTITY out 'x<b>&in;</b><!--d-->'>]>\n<a>1&out;2<e/></a>",
                 withPlaces());
    const Element& root = *result->getRoot();
    const std::string reference = "81 2:5";
    EXPECT_EQ(at(*root.getChild(0)), "80 2:4");  // "1x" begins before the reference
    const Element& b = *root.getChild(1)->toElement();
    EXPECT_EQ(at(b), reference);
    EXPECT_EQ(at(*b.getChild(0)), reference);
    EXPECT_EQ(at(*b.getChild(0)->toElement()->getAttribute(0)), reference);
    EXPECT_EQ(at(*root.getChild(2)), reference);  // the comment
    EXPECT_EQ(at(*root.getChild(3)), "86 2:10");  // "2" comes after it
    EXPECT_EQ(at(*root.getChild(4)), "87 2:11");
}

TEST(ReadPlacesTest, OfDefaultsAreThoseOfTheTag) {
    const ReadResult result =
        readText("<!DOCTYPE a [<!ATTLIST b y CDATA '' z CDATA ''>]><a><b x=''/></a>", withPlaces());
    const Element& b = *result->getRoot()->getChild(0)->toElement();
    EXPECT_EQ(at(b), "52 1:53");
    EXPECT_EQ(at(*b.getAttribute("x")), "55 1:56");
    EXPECT_EQ(at(*b.getAttribute("y")), at(b));
    EXPECT_EQ(at(*b.getAttribute("z")), at(b));
}

TEST(ReadPlacesTest, OfTextsAreThoseOfTheirFirstParts) {
    ReadOptions options = withPlaces();
    options.keepComments = options.keepCData = false;
    options.space = Space::Content;
    const ReadResult result =
        readText("<a>\n<!--c-->\n<b/><!--c-->x<![CDATA[y]]>z<c><![CDATA[]]><!--c-->&#65;</c></a>", options);
    const Element& root = *result->getRoot();
    EXPECT_EQ(at(*root.getChild(0)), "3 1:4");    // white space that was held, on both sides of the comment
    EXPECT_EQ(at(*root.getChild(2)), "25 3:13");  // after the comment
    EXPECT_EQ(at(*root.getChild(3)->toElement()->getChild(0)), "63 3:51");  // empty parts begin nothing
}

TEST(ReadPlacesTest, CountAMarkAndTheBytesOfTheSource) {
    const ReadResult marked = readText("\xEF\xBB\xBF<a>\xC3\xB6<b/></a>", withPlaces());
    EXPECT_EQ(at(*marked), "3 1:1");
    EXPECT_EQ(at(*marked->getRoot()), "3 1:1");
    EXPECT_EQ(at(*marked->getRoot()->getChild(1)), "8 1:5");

    std::string wide = "\xFE\xFF";
    for (const char c : std::string("<a>\n<!--c--><b/></a>")) wide.append(1, '\0').append(1, c);
    wide.insert(wide.size() - 16, "\xD8\x3D\xDE\x00", 4);  // a character above U+FFFF before "<b/>"
    const ReadResult utf16 = readText(wide, withPlaces());
    ASSERT_TRUE(utf16) << utf16.message();
    const Element& root = *utf16->getRoot();
    EXPECT_EQ(at(root), "2 1:1");
    EXPECT_EQ(at(*root.getChild(1)), "10 2:1");
    EXPECT_EQ(at(*root.getChild(2)), "26 2:9");
    EXPECT_EQ(at(*root.getChild(3)), "30 2:10");
}

TEST(ReadPlacesTest, StayWithNodesThatMoveAndNotWithCopies) {
    std::unique_ptr<Document> document;
    {
        const auto source = std::make_unique<std::string>("<a><b/><c><d/></c></a>");
        document = readText(*source, withPlaces()).take();
    }
    Element& root = *document->getRoot();
    std::unique_ptr<Object> c(root.extractChild(1));
    document.reset();
    EXPECT_EQ(at(*c), "7 1:8");
    EXPECT_EQ(at(*c->toElement()->getChild(0)), "10 1:11");
    const std::unique_ptr<Object> copy(c->clone());
    EXPECT_EQ(at(*copy), "-1 0:0");
    Element other("other");
    Object* const moved = c.release();
    other.addChild(moved);
    EXPECT_EQ(at(*moved), "7 1:8");
}

}  // namespace
}  // namespace Xml::test
