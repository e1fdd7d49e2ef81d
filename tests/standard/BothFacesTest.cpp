// The same document by the dialect's reader and as XML 1.0: equal trees, but for what a rule names. And what is written
// of a tree of XML 1.0, read as the dialect.
//
// To add a difference: a row of kDifferences; of a tree that is written: a row of kWritten.
#include "reader/DialectMaker.h"
#include "standard/Documents.h"
#include "standard/WholeTree.h"
#include "support/Messages.h"
#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/standard/Read.h"
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The dialect has no others.
ReadOptions elementsAndTexts() {
    ReadOptions options;
    options.space = Space::Dropped;
    options.keepComments = options.keepInstructions = false;
    return options;
}

std::string standardTree(const std::string& text, const ReadOptions& options = elementsAndTexts()) {
    const ReadResult result = readText(text, options);
    return result ? dump(result.get()) : "refused: " + result.problems()[0].rule;
}

// Of a document that is not valid too.
std::string dialectTree(const std::string& text) {
    const MessageCollector quiet;
    const Outcome outcome = readDocument(text);
    return outcome.document != nullptr ? dump(outcome.document.get()) : "refused";
}

// --- What differs ---

struct Difference {
    const char* name;
    const char* clause;  // what the recommendation has
    const char* text;
    const char* dialect;
    const char* standard;
};

const Difference kDifferences[] = {
    {"a text ends at a comment", "2.5: comments are not part of the character data", "<a>x<!--c-->y</a>", "a('x' 'y')",
     "a('xy')"},
    {"white space beside a comment is dropped", "2.10: all of it is passed on", "<a>x<!--c--> <b/></a>", "a('x' b)",
     "a('x ' b)"},
    {"a comment may be <!-->", "2.5: [15] Comment", "<a><!--> <b/> --><c/></a>", "a(b ' -->' c)", "a(c)"},
    {"a comment may be <!--->", "2.5: [15] Comment", "<a><!---> x --><b/></a>", "a(' x -->' b)", "a(b)"},
    {"line ends stay", "2.11: CR LF and CR are LF", "<a>1\r\n2\r3</a>", "a('1\r\n2\r3')", "a('1\n2\n3')"},
    {"white space in a value stays", "3.3.3: it is a blank each", "<a x='1\t2\n3'/>", "a[x=1\t2\n3]", "a[x=1 2 3]"},
    {"white space in a value of tokens stays", "3.3.3: it is normalized further",
     "<!DOCTYPE a [<!ATTLIST a x NMTOKENS #IMPLIED>]><a x=' 1  2 '/>", "refused", "a[x=1 2]"},
    {"references in a text stay", "4.4.2: they are replaced", "<a>&#65;&#x42;</a>", "a('&#65;&#x42;')", "a('AB')"},
    {"references to characters are bytes", "4.1: they are code points", "<a x='&#321;'/>", "a[x=A]", "a[x=\xC5\x81]"},
    {"unknown references stay", "4.1: Entity Declared", "<a>&e;</a>", "a('&e;')", "refused: Entity Declared"},
    {"an entity with markup stays", "4.4.2: it is processed",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e '<b/>'>]><a>&e;</a>", "a('&e;')", "a(b)"},
    {"entities have one level", "4.4.2: recursively",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY f '&e;'><!ENTITY e 'v'>]><a x='&f;'/>", "a[x=&e;]", "a[x=v]"},
    {"the last declaration of an entity counts", "4.2: the first is binding",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e '1'><!ENTITY e '2'>]><a x='&e;'/>", "a[x=2]", "a[x=1]"},
    {"defaults are no attributes", "3.3.2: as if they were in the tag",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA 'd'>]><a/>", "a", "a[x=d]"},
    {"of attributes of one name the last counts", "3.1: Unique Att Spec", "<a x='1' x='2'/>", "a[x=2]",
     "refused: Unique Att Spec"},
    {"a value may have <", "2.3: [10] AttValue", "<a x='<'/>", "a[x=<]", "refused: AttValue"},
    {"an end tag may have other bytes before the name", "3: Element Type Match", "<a></xa>", "a",
     "refused: Element Type Match"},
    {"a rest after the root is not read", "2.1: [1] document", "<a/><b/>", "a", "refused: document"},
    {"prefixes need no declaration", "Namespaces 5: Prefix Declared", "<p:a/>", "p:a", "refused: Prefix Declared"},
    {"encodings are not enforced", "4.3.3", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xB6</a>",
     "a('\xC3\xB6')", "a('\xC3\x83\xC2\xB6')"},
    {"bytes need be no characters", "2.2: Char", "<a>\xFF</a>", "a('\xFF')", "refused: Character Encoding in Entities"},
    {"names are ASCII", "2.3: [4] NameStartChar", "<\xC3\xB6/>", "refused", "\xC3\xB6"},
    {"a text that begins with a quote has another", "2.4: [14] CharData", "<a>\"x<b/></a>", "refused", "a('\"x' b)"},
    {"sections are refused", "2.7: [18] CDSect", "<a><![CDATA[x]]></a>", "refused", "a('x')"},
    {"instructions in content are refused", "2.6: [16] PI", "<a><?t?></a>", "refused", "a"},
    {"a byte order mark is refused", "4.3.3", "\xEF\xBB\xBF<a/>", "refused", "a"},
    {"a subset needs a declaration", "2.8: [28b] intSubset", "<!DOCTYPE a []><a/>", "refused", "a"},
    {"an external subset is read", "5.1: it may be left out", "<!DOCTYPE a SYSTEM 'no such file'><a/>", "refused", "a"},
    {"a document type without a subset is refused", "2.8: [28] doctypedecl", "<!DOCTYPE a><a/>", "refused", "a"},
};

TEST(BothFacesTest, WhatTheDialectMakesDifferentHasARule) {
    for (const Difference& d : kDifferences) {
        SCOPED_TRACE(std::string(d.name) + "; " + d.clause);
        EXPECT_EQ(dialectTree(d.text), d.dialect);
        EXPECT_EQ(standardTree(d.text), d.standard);
        EXPECT_STRNE(d.dialect, d.standard);
    }
}

// --- Documents that both accept ---

bool isWhite(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string withoutSpace(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), isWhite), text.end());
    return text;
}

// CR LF and CR as `end`.
std::string withLineEnds(const std::string& text, char end) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        result += text[i] == '\r' || text[i] == '\n' ? end : text[i];
    }
    return result;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

enum class Blanks { Inside, None };  // what of the white space in texts counts

// What both must have alike: names, values with blanks for their white space, and texts with LF for their line ends;
// texts in a row are one. Defaults are left out.
std::string common(const Document& document, Blanks blanks) {
    std::string result;
    std::string text;
    const auto endText = [&] {
        text = withLineEnds(text, '\n');
        text = blanks == Blanks::None ? withoutSpace(text) : trimmed(text);
        if (!text.empty()) result += "'" + text + "'\n";
        text.clear();
    };
    struct Level {
        const Element* element;
        int next;
    };
    std::vector<Level> open;
    const auto begin = [&](const Element& element) {
        result += "<" + element.getName() + "\n";
        for (int i = 0; i < element.getAttributeCount(); ++i) {
            const Attribute& attribute = *element.getAttribute(i);
            std::string value = withLineEnds(attribute.getValue(), ' ');
            std::replace(value.begin(), value.end(), '\t', ' ');
            if (!isDefault(attribute)) result += "  " + attribute.getName() + "=" + value + "\n";
        }
        open.push_back({&element, 0});
    };
    begin(*document.getRoot());
    while (!open.empty()) {
        Level& level = open.back();
        if (level.next == level.element->getChildCount()) {
            endText();
            result += ">\n";
            open.pop_back();
            continue;
        }
        const Object& child = *level.element->getChild(level.next++);
        if (child.isCharData()) {
            text += child.toCharData()->getData();
        } else {
            endText();
            begin(*child.toElement());
        }
    }
    return result;
}

// Documents in which one of the rules above can show, beside those that `common` levels.
const std::pair<const char*, Pattern> kExempting[] = {
    {"a comment may be <!--> or <!--->", Pattern("<!--?-?>")},
    {"references to characters are bytes",
     Pattern("&#(x0*[89a-fA-F][0-9a-fA-F]|x0*[0-9a-fA-F]{3}|0*1[3-9]|0*[2-9][0-9]{2}|0*[0-9]{4})")},
    {"entities have one level and no markup, the last counts", Pattern("<!ENTITY")},
    {"white space in a value of tokens stays", Pattern("<!ATTLIST")},
    {"a text that begins with a quote has another", Pattern(">[ \t\r\n]*[\"']")},
    {"an end tag may have other bytes before the name", Pattern("</[ \t\r\n]")},
};

struct Comparison {
    int equal = 0;
    std::map<std::string, int> exempt;

    void compare(const std::string& text) {
        const MessageCollector quiet;
        const Outcome dialect = readDocument(text);
        if (dialect.document == nullptr || dialect.document->getRoot() == nullptr) return;
        const ReadResult standard = readText(text, elementsAndTexts());
        if (!standard) return;
        const Blanks blanks = text.find("<!--") == std::string::npos ? Blanks::Inside : Blanks::None;
        const std::string ours = common(*standard, blanks);
        const std::string theirs = common(*dialect.document, blanks);
        if (ours == theirs) {
            ++equal;
            return;
        }
        for (const auto& [name, shows] : kExempting) {
            if (!shows.isIn(text)) continue;
            ++exempt[name];
            return;
        }
        EXPECT_EQ(theirs, ours) << text;
    }
};

TEST(BothFacesTest, ExampleDocumentsAreTheSameTree) {
    int read = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dataFolder())) {
        if (entry.path().extension() != ".xml") continue;
        SCOPED_TRACE(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        Comparison comparison;
        comparison.compare(text);
        read += comparison.equal;
        EXPECT_TRUE(comparison.exempt.empty());
    }
    EXPECT_GE(read, 7);
}

TEST(BothFacesTest, RandomDocumentsOfTheDialectAreTheSameTree) {
    DialectMaker make(31);
    Comparison comparison;
    for (int i = 0; i < rounds(20000) && !HasFailure(); ++i) comparison.compare(make.document());
    EXPECT_GT(comparison.equal, atLeast(2000));
    for (const auto& [name, count] : comparison.exempt) EXPECT_LT(count, comparison.equal / 20) << name;
}

TEST(BothFacesTest, RandomDocumentsOfXmlAreTheSameTree) {
    Dice dice(32);
    Comparison comparison;
    for (int i = 0; i < rounds(20000) && !HasFailure(); ++i) comparison.compare(randomDocument(dice));
    EXPECT_GT(comparison.equal, atLeast(1000));
    for (const auto& [name, count] : comparison.exempt) EXPECT_LT(count, comparison.equal / 2) << name;
}

// --- What is written of a tree and read as the dialect ---

struct WrittenCase {
    const char* name;
    const char* text;
    const char* written;  // the root alone
    const char* dialect;  // what the dialect makes of the whole
};

const WrittenCase kWritten[] = {
    {"elements", "<a><b/></a>", "<a>\n\t<b/>\n</a>", "a(b)"},
    {"order of attributes", "<a y='1' x='2'/>", "<a x=\"2\" y=\"1\"/>", "a[x=2 y=1]"},
    {"prefixes", "<p:a xmlns:p='u'/>", "<p:a xmlns:p=\"u\"/>", "p:a[xmlns:p=u]"},
    {"markup in a text", "<a>&lt;b>&amp;]]&gt;</a>", "<a>&lt;b&gt;&amp;]]&gt;</a>", "a('&lt;b&gt;&amp;]]&gt;')"},
    {"section", "<a><![CDATA[<b>&]]></a>", "<a>&lt;b&gt;&amp;</a>", "a('&lt;b&gt;&amp;')"},
    {"empty section", "<a><![CDATA[]]></a>", "<a></a>", "a"},
    {"characters beyond ASCII", "<a x='&#228;'>&#x1F600;</a>", "<a x=\"\xC3\xA4\">\xF0\x9F\x98\x80</a>",
     "a[x=\xC3\xA4]('\xF0\x9F\x98\x80')"},
    {"comment in a text", "<a>x<!--c-->y</a>", "<a>x<!--c-->y</a>", "a('x' 'y')"},
    {"comment beside an element", "<a><!-- c --><b/></a>", "<a>\n\t<!-- c -->\n\t<b/>\n</a>", "a(b)"},
    {"comment that begins with >", "<a><!-->--></a>", "<a>\n\t<!-->-->\n</a>", "a('-->\n')"},
    {"instruction in content", "<a><?t c?></a>", "<a>\n\t<?t c?>\n</a>", "refused"},
    {"what stands around the root", "<?t?><!--c--><a/><!--d-->", "<a/>", "a"},
    {"name of an element",
     "<gr\xC3\xB6\xC3\x9F"
     "e/>",
     "<gr\xC3\xB6\xC3\x9F"
     "e/>",
     "refused"},
    {"name of an attribute", "<a \xC3\xB6='1'/>", "<a \xC3\xB6=\"1\"/>", "refused"},
    {"lone quote", "<a>\"x</a>", "<a>\"x</a>", "refused"},
    {"lone apostrophe", "<a>'</a>", "<a>'</a>", "refused"},
    {"lone quote after an element", "<a>x<b/>\"y</a>", "<a>x<b/>\"y</a>", "refused"},
    {"quote with another", "<a>\"x\" y</a>", "<a>\"x\" y</a>", "a('\"x\" y')"},
    {"text that begins with &", "<a>&amp;x</a>", "<a>&amp;x</a>", "a('&amp;x')"},
    {"white space alone", "<a> </a>", "<a> </a>", "a"},
    {"white space between elements", "<a>\n <b/>\n</a>", "<a>\n <b/>\n</a>", "a(b)"},
    {"white space around a text", "<a> x </a>", "<a> x </a>", "a(' x ')"},
    {"carriage return by reference", "<a>x&#13;y</a>", "<a>x\ry</a>", "a('x\ry')"},
    {"white space in a value by reference", "<a x='1&#9;2'/>", "<a x=\"1\t2\"/>", "a[x=1\t2]"},
    {"text of an entity", "<!DOCTYPE a [<!ENTITY e 'x'><!ELEMENT a ANY>]><a>&e;</a>", "<a>x</a>", "a('x')"},
    {"default", "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA 'd'>]><a/>", "<a x=\"d\"/>", "a[x=d]"},
    {"document type without a declaration", "<!DOCTYPE a><a/>", "<a/>", "refused"},
    {"document type with an external subset", "<!DOCTYPE a SYSTEM 's'><a/>", "<a/>", "refused"},
    {"type of an attribute", "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x ID #IMPLIED>]><a/>", "<a/>", "refused"},
    {"notation", "<!DOCTYPE a [<!ELEMENT a ANY><!NOTATION n SYSTEM 's'>]><a/>", "<a/>", "a"},
    {"declared name beyond ASCII", "<!DOCTYPE a [<!ELEMENT a ANY><!ELEMENT \xC3\xB6 ANY>]><a/>", "<a/>", "refused"},
};

TEST(BothFacesTest, WhatIsWrittenOfATreeIsReadAsTheDialectHasIt) {
    for (const WrittenCase& c : kWritten) {
        SCOPED_TRACE(c.name);
        const ReadResult result = readText(c.text, everything());
        ASSERT_TRUE(result) << result.message();
        EXPECT_EQ(textOf(*result->getRoot()), c.written);
        EXPECT_EQ(dialectTree(textOf(*result)), c.dialect);
    }
}

}  // namespace
}  // namespace Xml::test
