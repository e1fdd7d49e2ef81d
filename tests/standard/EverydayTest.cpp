// Documents as they are met every day: feeds, drawings, pages, build files, books. Each is read beside libxml2, from
// every kind of source, and a few things of it are known by hand.
//
// To add one: a file in everyday/, a row of kKnown, and one of the table of EverydaySaveTest.cpp.
#include "standard/Encoded.h"
#include "standard/Everyday.h"
#include "standard/Streamed.h"
#include "standard/WholeTree.h"
#include "support/Texts.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Place.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

ReadOptions withPlaces(ReadOptions options) {
    options.keepPlaces = true;
    return options;
}

// A letter for each child.
std::string kindsOf(const Element& element) {
    std::string kinds;
    for (int i = 0; i < element.getChildCount(); ++i) {
        switch (kindOf(*element.getChild(i))) {
        case NodeKind::Element: kinds += 'e'; break;
        case NodeKind::Text: kinds += 't'; break;
        case NodeKind::CData: kinds += 's'; break;
        case NodeKind::Comment: kinds += 'c'; break;
        case NodeKind::Instruction: kinds += 'i'; break;
        default: kinds += '?';
        }
    }
    return kinds;
}

std::string textIn(const Element& element) {
    std::string text;
    for (int i = 0; i < element.getChildCount(); ++i) {
        if (element.getChild(i)->isCharData()) text += element.getChild(i)->toCharData()->getData();
    }
    return text;
}

// Equal to libxml2's tree but for the marks of defaults, and the same from every kind of source.
void expectRead(const std::string& bytes, const std::string& path) {
    const ReadOptions options = withPlaces(everything());
    const ReadResult result = readText(bytes, options);
    ASSERT_TRUE(result) << result.message();
    const std::string tree = wholeTree(*result, AttributeOrder::ByName, Sections::Nodes);
    std::string withoutMarks;
    std::istringstream lines(tree);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  ", 0) == 0 && line.back() == '*') line.pop_back();
        withoutMarks += line + "\n";
    }
    std::string other = libxml2Tree(bytes, nullptr).value_or("refused");
    // Namespaces 6.2: a default namespace declaration applies to all that is within the element. libxml2 leaves what
    // comes from an entity without.
    if (bytes.find("<!ENTITY") != std::string::npos) other = replaced(other, "  xmlns=''\n", "");
    EXPECT_EQ(withoutMarks, other);

    std::istringstream stream(bytes);
    const ReadResult streamed = readStream(stream, options);
    ASSERT_TRUE(streamed) << streamed.message();
    EXPECT_EQ(linesOf(*streamed), linesOf(*result));
    StreamReader reader(std::string_view(bytes), options);
    EXPECT_EQ(linesOf(reader), linesOf(*result));
    if (path.empty()) return;
    const ReadResult fromFile = readFile(path, options);
    ASSERT_TRUE(fromFile) << fromFile.message();
    EXPECT_EQ(linesOf(*fromFile), linesOf(*result));
}

TEST(EverydayTest, DocumentsAreReadAsByLibxml2) {
    int read = 0;
    for (const std::string& file : everydayFiles()) {
        SCOPED_TRACE(file);
        expectRead(everydayText(file), everydayPath(file));
        ++read;
    }
    EXPECT_GE(read, 30);
}

// The first element of that name, what a path yields, and the children of the root, by hand, of the tree that is read
// by default.
struct Known {
    const char* file;
    const char* name;
    int line, column;
    const char* text;  // what stands in it itself
    const char* path;
    unsigned count;
    const char* value;  // of the first
    const char* kinds;
};

const Known kKnown[] = {
    {"feed.xml", "content:encoded", 17, 3, "<pre>if (a[b[0]]> c) { return \"]]\"; }</pre>", "//item/title", 2,
     "Pears & plums: \"what now?\"", "e"},
    {"entries.xml", "pre", 9, 9, "  kept\n   here", "//title", 2, "R&amp;D <b>daily</b>", "eee"},
    {"drawing.xml", "path", 15, 18, "", "//g/@style", 1, "fill:#FFFFFF;stroke:none;", "tetitetetet"},
    {"page.xml", "title", 6, 1,
     "Été \xC2\xA0– «\xC2\xA0"
     "accueil\xC2\xA0»",
     "//li", 2, "1", "ee"},
    {"page5.xml", "script", 6, 5, "/*  */ let ok = 1 < 2 && true; /*  */", "//p/@data-x", 1, "{\"k\": [1, 2]}", "ee"},
    {"build.xml", "arg", 15, 42, "", "//target[@name = 'dist']/@depends", 1,
     "init,                                  compile,                                  test", "eeeee"},
    {"package.xml", "version", 6, 5, "1.0-SNAPSHOT", "//dependency/version", 1, "[1.2,2.0)", "eeeeee"},
    {"manifest.xml", "application", 14, 5, "", "//activity/intent-filter/action", 1, "", "ee"},
    {"properties.xml", "data", 10, 2, "\n\tiVBORw0KGgoAAAANSUhEUgAA\n\tAAUAAAAFCAYAAACNbyblAAAA\n\t", "//string", 2,
     "\"Quoted\" & 'so'", "e"},
    {"envelope.xml", "m:item", 3, 50, "DIS\r\nX", "//item", 1, "9.99", "ee"},
    {"book.xml", "quote", 24, 38,
     "Larch\xC2\xA0"
     "2",
     "//chapter/@role", 2, "draft", "eee"},
    {"report.xml", "w:jc", 2, 229, "", "//w:t", 4, "Dear ", "e"},
    {"sheet.xml", "f", 3, 62, "IF(A1<>\"\",1,0)", "//t", 1, "  two  spaces ", "ee"},
    {"track.xml", "ele", 7, 42, "104.6", "//trkpt[@lat < 0]/@lon", 1, "+13.2", "ee"},
    {"placemarks.xml", "description", 4, 28, "\n  <h1>Oak</h1> &copy; <b>\"old\"</b>\n", "//coordinates", 1,
     "13.4,52.5,0\n13.5,52.6,0 ", "e"},
    {"style.xml", "xsl:text", 7, 39, " ", "//xsl:text", 3, " ", "eee"},
    {"schema.xml", "xs:element", 10, 2, "", "//xs:element/@maxOccurs", 2, "1", "eee"},
    {"names.xml", "größe", 3, 2, "12½", "/*/*", 7, "12½", "eeeeeee"},
    {"emoji.xml", "msg", 3, 1, "Hi 😀😀!", "//msg", 3, "Hi 😀😀!", "eee"},
    {"strings.xml", "xliff:g", 6, 29, "%1$s", "//string", 6, "\"Hello\" she said", "eeeeeece"},
    {"translation.xml", "g", 5, 18, "OK", "//source", 1, "Press ", "e"},
    {"settings.xml", "system.web", 13, 2, "", "//add/@value", 2, " a b   c", "eeee"},
    {"package-list.xml", "b", 11, 1, "", "//a/@y", 1, "2", "ee"},
    {"score.xml", "octave", 6, 69, "4", "//note/pitch/alter", 1, "-1", "ee"},
    {"publication.xml", "meta", 6, 1, "2024-01-01T00:00:00Z", "//dc:title", 1, "Faust – Der Tragödie erster Teil",
     "eee"},
    {"dialog.xml", "string", 12, 4, "<html><p>Save &amp; close</p></html>", "//property[@name = 'text']/string", 1,
     "<html><p>Save &amp; close</p></html>", "ee"},
    {"statement.xml", "Amt", 3, 7, "1250.00", "//Ntry/AddtlNtryInf", 1, "MÜLLER & SÖHNE  RE 17/4", "e"},
    {"service.xml", "wsdl:part", 4, 28, "", "//a/@href", 1, "https://example.org/?a&b", "eee"},
    {"outline.xml", "body", 3, 1, "", "//outline/outline/@xmlUrl", 1, "https://example.org/feed?x=1&y=2", "ee"},
    {"formula.xml", "mi", 7, 40, "α", "//mn", 3, "1", "e"},
    {"sitemap.xml", "image:loc", 1, 324, "https://example.org/a.jpg", "//url/loc", 2, "https://example.org/", "ee"},
};

TEST(EverydayTest, DocumentsHaveWhatIsKnownOfThem) {
    std::set<std::string> rows;
    for (const Known& known : kKnown) {
        SCOPED_TRACE(known.file);
        rows.insert(known.file);
        const ReadResult result = readText(everydayText(known.file), withPlaces({}));
        ASSERT_TRUE(result) << result.message();
        const Element* const element = result->find(known.name);
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(placeOf(*element).line, known.line);
        EXPECT_EQ(placeOf(*element).column, known.column);
        EXPECT_EQ(textIn(*element), known.text);
        EXPECT_EQ(kindsOf(*result->getRoot()), known.kinds);
        XPath query(const_cast<Document*>(result.get()));
        EXPECT_EQ(query.GetValues(wide(known.path)), known.count);
        EXPECT_EQ(narrow(query.GetValue(0, -1)), known.value);
    }
    for (const std::string& file : everydayFiles()) EXPECT_EQ(rows.count(file), 1u) << file;
}

// --- What stands around the root, defaults ---

TEST(EverydayTest, WhatStandsAroundTheRootIsKept) {
    const ReadResult drawing = readFile(everydayPath("drawing.xml"));
    ASSERT_TRUE(drawing) << drawing.message();
    const Prolog& prolog = prologOf(static_cast<const Document&>(*drawing));
    EXPECT_TRUE(prolog.hasDeclaration);
    EXPECT_EQ(prolog.encoding, "utf-8");
    EXPECT_EQ(prolog.doctype, "svg");
    EXPECT_EQ(prolog.publicId, "-//W3C//DTD SVG 1.1//EN");
    EXPECT_EQ(prolog.systemId, "http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd");
    EXPECT_EQ(prolog.internalSubset.find("\n\t<!ENTITY ns_svg "), 0u);
    ASSERT_EQ(prolog.beforeDoctype.size(), 1u);
    EXPECT_EQ(kindOf(*prolog.beforeDoctype[0]), NodeKind::Comment);

    const ReadResult list = readFile(everydayPath("package-list.xml"));
    ASSERT_TRUE(list) << list.message();
    const Prolog& around = prologOf(static_cast<const Document&>(*list));
    EXPECT_EQ(around.standalone, true);
    EXPECT_EQ(around.beforeRoot.size() + around.beforeDoctype.size(), 3u);
    ASSERT_EQ(around.afterRoot.size(), 2u);
    EXPECT_EQ(kindOf(*around.afterRoot[1]), NodeKind::Instruction);
}

TEST(EverydayTest, DefaultsOfTheSubsetAreAttributes) {
    const ReadResult drawing = readFile(everydayPath("drawing.xml"));
    ASSERT_TRUE(drawing) << drawing.message();
    const Element& svg = *drawing->getRoot();
    EXPECT_EQ(svg.getAttributeValue("zoomAndPan"), "magnify");
    EXPECT_TRUE(isDefault(*svg.getAttribute("zoomAndPan")));
    EXPECT_EQ(svg.getAttributeValue("xmlns"), "http://www.w3.org/2000/svg");
    EXPECT_FALSE(isDefault(*svg.getAttribute("xmlns")));

    const ReadResult book = readFile(everydayPath("book.xml"));
    ASSERT_TRUE(book) << book.message();
    const Element& first = *book->find("chapter", 0);
    EXPECT_TRUE(isDefault(*first.getAttribute("role")));
    EXPECT_EQ(first.getAttributeValue("label"), "a b");
    EXPECT_FALSE(isDefault(*book->find("chapter", 1)->getAttribute("role")));
    EXPECT_EQ(book->find("xref")->getAttributeValue("endterm"), "Larch");
    EXPECT_EQ(textIn(*book->find("title")), "Larch by example");
    EXPECT_EQ(textIn(*book->find("emphasis")), "free");
}

// --- As other systems deliver them ---

std::string declared(const std::string& encoding, const std::string& rest) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n" + rest;
}

const EncodingUnderTest& encodingNamed(const std::vector<EncodingUnderTest>& all, const std::string& name) {
    return *std::find_if(all.begin(), all.end(), [&](const auto& encoding) { return encoding.name == name; });
}

std::string bodyOf(const std::string& file) {
    const std::string text = everydayText(file);
    return text.substr(text.find("?>") + 3);
}

TEST(EverydayTest, AByteOrderMarkIsNoText) {
    const std::string text = "\xEF\xBB\xBF" + everydayText("manifest.xml");
    expectRead(text, "");
    const ReadResult result = readText(text, withPlaces({}));
    ASSERT_TRUE(result) << result.message();
    EXPECT_TRUE(prologOf(static_cast<const Document&>(*result)).hasMark);
    EXPECT_EQ(placeOf(*result->find("application")).line, 14);
    EXPECT_EQ(placeOf(*result->getRoot()).offset, static_cast<std::int64_t>(text.find("<manifest")));
}

TEST(EverydayTest, Utf16OfEitherOrderIsRead) {
    const auto all = encodingsUnderTest();
    for (const char* const name : {"UTF-16LE", "UTF-16BE"}) {
        for (const char* const file : {"names.xml", "feed.xml", "book.xml", "style.xml"}) {
            SCOPED_TRACE(std::string(name) + " " + file);
            const std::string text = declared("UTF-16", bodyOf(file));
            const Encoded encoded = encode(text, encodingNamed(all, name), true);
            expectRead(encoded.bytes, "");
            const ReadResult wide = readText(encoded.bytes, everything());
            const ReadResult narrow = readText(everydayText(file), everything());
            ASSERT_TRUE(wide && narrow) << wide.message();
            EXPECT_EQ(wholeTree(*wide, AttributeOrder::OfTag, Sections::Nodes),
                      wholeTree(*narrow, AttributeOrder::OfTag, Sections::Nodes));
        }
        // A pair of surrogates is one column, and offsets are those of the bytes.
        const Encoded encoded = encode(declared("UTF-16", "<a>😀<b/></a>"), encodingNamed(all, name), true);
        const ReadResult result = readText(encoded.bytes, withPlaces({}));
        ASSERT_TRUE(result) << result.message();
        EXPECT_EQ(placeOf(*result->find("b")).column, 5);
        EXPECT_EQ(placeOf(*result->find("b")).offset, static_cast<std::int64_t>(encoded.bytes.size()) - 2 * 8);
    }
}

TEST(EverydayTest, Latin1AndWindows1252AreRead) {
    struct Case {
        const char* name;
        const char* bytes;
        const char* text;
    };
    const Case kCases[] = {
        {"ISO-8859-1",
         "Stra\xDF"
         "e \xE0 la \xA9 \xA0\xFF",
         "Straße à la © \xC2\xA0ÿ"},
        {"iso-8859-1", "\x85", "\xC2\x85"},
        {"windows-1252", "\x80 5 \x96 \x93so\x94 \x85", "€ 5 – “so” …"},
        {"ISO-8859-15", "\xA4", "€"},
        {"US-ASCII", "&#228;", "ä"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string text = declared(c.name, std::string("<cafe x='") + c.bytes + "'>" + c.bytes + "</cafe>");
        expectRead(text, "");
        const ReadResult result = readText(text);
        ASSERT_TRUE(result) << result.message();
        EXPECT_EQ(textIn(*result->getRoot()), c.text);
        EXPECT_EQ(result->getRoot()->getAttributeValue("x"), c.text);
        EXPECT_EQ(prologOf(static_cast<const Document&>(*result)).encoding, c.name);
    }
    const std::string named = declared("ISO-8859-1",
                                       "<gr\xF6\xDF"
                                       "e/>");
    expectRead(named, "");
    const ReadResult umlauts = readText(named);
    ASSERT_TRUE(umlauts) << umlauts.message();
    EXPECT_EQ(umlauts->getRoot()->getName(), "größe");
}

TEST(EverydayTest, LineEndsOfOtherSystemsAreTheSameTreeAndLines) {
    for (const char* const end : {"\r\n", "\r"}) {
        for (const Known& known : kKnown) {
            SCOPED_TRACE(known.file);
            const std::string text = everydayText(known.file);
            const std::string foreign = replaced(text, "\n", end);
            expectRead(foreign, "");
            const ReadResult result = readText(foreign, withPlaces({}));
            const ReadResult plain = readText(text, withPlaces({}));
            ASSERT_TRUE(result && plain) << result.message();
            EXPECT_EQ(wholeTree(*result, AttributeOrder::OfTag, Sections::Nodes),
                      wholeTree(*plain, AttributeOrder::OfTag, Sections::Nodes));
            EXPECT_EQ(placeOf(*result->find(known.name)).line, known.line);
            EXPECT_EQ(placeOf(*result->find(known.name)).column, known.column);
            EXPECT_EQ(prologOf(static_cast<const Document&>(*result)).newline, end);
        }
    }
}

TEST(EverydayTest, LongLinesAndDeepNestingAreRead) {
    const std::string record = "<r id='1' v='a&amp;b'><n>x</n></r>";
    const std::string records = repeated(record, 30'000);
    expectRead("<log>" + records + "</log>", "");
    const std::string deep = repeated("<div class='x'>", 1000) + "text" + repeated("</div>", 1000);
    expectRead(deep, "");
    const ReadResult result = readText("<log>" + records + "<last/></log>", withPlaces({}));
    ASSERT_TRUE(result) << result.message();
    EXPECT_EQ(result->getRoot()->getChildCount(), 30'001);
    EXPECT_EQ(placeOf(*result->find("last")).column, 6 + 30'000 * static_cast<int>(record.size()));
    EXPECT_EQ(placeOf(*result->find("last")).line, 1);
}

}  // namespace
}  // namespace Xml::test
