// Texts into trees: which nodes come of what is written.
#include "xml/standard/Read.h"

#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/Write.h"
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <utility>

namespace Xml::test {
namespace {

// Without what parts texts.
std::string treeOf(const std::string& text, Space space = Space::Content) {
    ReadOptions options;
    options.space = space;
    options.keepComments = options.keepInstructions = false;
    const ReadResult result = readText(text, options);
    return result ? dump(result.get()) : result.message();
}

struct TreeCase {
    const char* name;
    const char* text;
    const char* tree;
};

TEST(ReadTest, MakesATreeOfElementsAttributesAndTexts) {
    const TreeCase kCases[] = {
        {"empty root", "<a/>", "a"},
        {"nested", "<a><b/><c><d/></c></a>", "a(b c(d))"},
        {"attributes", "<a y='1' x=\"2\"/>", "a[x=2 y=1]"},
        {"value with references", "<a x='&lt;&#65;&amp;\"&gt;'/>", "a[x=<A&\">]"},
        {"white space in a value", "<a x='1\t2\r\n3\n4'/>", "a[x=1 2 3 4]"},
        {"text", "<a>text</a>", "a('text')"},
        {"markup characters in a text", "<a>1 &lt; 2 &amp;&amp; 3 > 2</a>", "a('1 &lt; 2 &amp;&amp; 3 &gt; 2')"},
        {"references", "<a>&#x20AC;&quot;&apos;</a>", "a('\xE2\x82\xAC\"'')"},
        {"section joins the text", "<a>x<![CDATA[<y>]]>z</a>", "a('x&lt;y&gt;z')"},
        {"comment and instruction join", "<a>x<!--c-->y<?p i?>z</a>", "a('xyz')"},
        {"line ends", "<a>1\r\n2\r3\n4</a>", "a('1\n2\n3\n4')"},
        {"entity with markup", "<!DOCTYPE a [<!ENTITY e 'x<b>y</b>'>]><a>&e;z</a>", "a('x' b('y') 'z')"},
        {"default", "<!DOCTYPE a [<!ATTLIST a x CDATA 'd' y NMTOKENS ' p  q '>]><a/>", "a[x=d y=p q]"},
        {"collapsed value", "<!DOCTYPE a [<!ATTLIST a y NMTOKENS #IMPLIED>]><a y='  p \n q '/>", "a[y=p q]"},
        {"mark", "\xEF\xBB\xBF<a/>", "a"},
        {"name",
         "<gr\xC3\xB6\xC3\x9F"
         "e/>",
         "gr\xC3\xB6\xC3\x9F"
         "e"},
    };
    for (const TreeCase& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(treeOf(c.text), c.tree);
    }
}

struct SpaceCase {
    const char* name;
    const char* text;
    const char* all;
    const char* content;
    const char* dropped;
};

TEST(ReadTest, KeepsWhiteSpaceAsAsked) {
    const SpaceCase kCases[] = {
        {"between elements", "<a>\n <b/>\n</a>", "a('\n ' b '\n')", "a(b)", "a(b)"},
        {"without a line end", "<a> <b/> </a>", "a(' ' b ' ')", "a(' ' b ' ')", "a(b)"},
        {"alone", "<a>\n</a>", "a('\n')", "a('\n')", "a"},
        {"text comes later", "<a>\n<b/>\n<c/>x</a>", "a('\n' b '\n' c 'x')", "a('\n' b '\n' c 'x')", "a(b c 'x')"},
        {"text comes later, nested", "<r><a>\n<b/>\n<c/>x\n</a></r>", "r(a('\n' b '\n' c 'x\n'))",
         "r(a('\n' b '\n' c 'x\n'))", "r(a(b c 'x\n'))"},
        {"text came before", "<a>x<b/>\n</a>", "a('x' b '\n')", "a('x' b '\n')", "a('x' b)"},
        {"of an element within a text", "<a>x<b>\n<c/></b></a>", "a('x' b('\n' c))", "a('x' b(c))", "a('x' b(c))"},
        {"preserve", "<a xml:space='preserve'>\n<b>\n<c/></b></a>", "a[xml:space=preserve]('\n' b('\n' c))",
         "a[xml:space=preserve]('\n' b('\n' c))", "a[xml:space=preserve](b(c))"},
        {"default within preserve", "<a xml:space='preserve'>\n<b xml:space='default'>\n<c/></b></a>",
         "a[xml:space=preserve]('\n' b[xml:space=default]('\n' c))",
         "a[xml:space=preserve]('\n' b[xml:space=default](c))", "a[xml:space=preserve](b[xml:space=default](c))"},
        {"by reference", "<a>&#10;<b/>\n</a>", "a('\n' b '\n')", "a('\n' b '\n')", "a('\n' b)"},
        {"around a comment", "<a>\n<!--c-->\n<b/></a>", "a('\n\n' b)", "a(b)", "a(b)"},
        {"section", "<a><![CDATA[\n]]><b/></a>", "a('\n' b)", "a('\n' b)", "a('\n' b)"},
        {"empty section", "<a>\n<![CDATA[]]><b/></a>", "a('\n' b)", "a(b)", "a(b)"},
    };
    for (const SpaceCase& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(treeOf(c.text, Space::All), c.all);
        EXPECT_EQ(treeOf(c.text, Space::Content), c.content);
        EXPECT_EQ(treeOf(c.text, Space::Dropped), c.dropped);
    }
}

// --- Problems ---

Problem problemOf(const std::string& text, const ReadOptions& options = {}) {
    const ReadResult result = readText(text, options);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.get(), nullptr);
    EXPECT_EQ(result.problems().size(), 1u);
    return result.problems().empty() ? Problem() : result.problems()[0];
}

TEST(ReadTest, SaysWhatIsWrongAndWhere) {
    ReadOptions options;
    options.source = "app.xml";
    const Problem problem =
        problemOf("<app>\n  <server/>\n  <server>\n   <port>80</prot>\n  </server>\n</app>\n", options);
    EXPECT_EQ(problem.toString(), "app.xml:4:12: error: </port> expected, found </prot> (<port> began at 4:4)");
    EXPECT_EQ(problem.kind, Problem::Kind::Malformed);
    EXPECT_EQ(problem.rule, "Element Type Match");
    EXPECT_EQ(problem.path, "/app[1]/server[2]/port[1]");
    EXPECT_EQ(problem.excerpt, "   <port>80</prot>\n           ^");
    EXPECT_EQ(problem.place.offset, 40);
}

TEST(ReadTest, CountsColumnsInCharactersAndBytesFromTheMark) {
    const Problem problem = problemOf("\xEF\xBB\xBF<a>\r\n\xC3\xB6\xE2\x82\xAC\t<b></c></a>");
    EXPECT_EQ(problem.place.line, 2);
    EXPECT_EQ(problem.place.column, 7);
    EXPECT_EQ(problem.place.offset, 17);
    EXPECT_EQ(problem.excerpt, "\xC3\xB6\xE2\x82\xAC\t<b></c></a>\n  \t   ^");
}

TEST(ReadTest, NamesTheElementWhoseStartTagIsWrong) {
    EXPECT_EQ(problemOf("<a><b/><b x='1' x='2'/></a>").path, "/a[1]/b[2]");
    EXPECT_EQ(problemOf("<a x='1' x='2'/>").path, "/a[1]");
    EXPECT_EQ(problemOf("x").path, "");
}

TEST(ReadTest, SaysWhatToDo) {
    const struct {
        std::string text;
        const char* rule;
        const char* message;
    } kCases[] = {
        {"<!doctype html><html/>", "prolog", "1:1: error: \"<!\" begins neither a comment nor <!DOCTYPE, in capitals"},
        {"<!DOCTYPE a><!doctype a><a/>", "prolog",
         "1:13: error: \"<!\" begins neither a comment nor <!DOCTYPE, in capitals"},
        {"<!DOCTYPE a [<!element a ANY>]><a/>", "markupdecl",
         "1:14: error: \"<!\" begins neither a comment nor <!ELEMENT, <!ATTLIST, <!ENTITY or <!NOTATION, in capitals"},
        {"<a><![cdata[x]]></a>", "CDStart", "1:4: error: \"<!\" begins neither a comment nor <![CDATA[, in capitals"},
        {"</a>", "prolog", "1:1: error: an element expected, found an end tag"},
        {"<a/></a>", "document",
         "1:5: error: nothing may follow the root but comments and instructions, found an end tag"},
        {std::string("<a/>\0", 5), "Char",
         "1:5: error: nothing may follow the root but comments and instructions, found U+0000"},
        {"<a/>\xEF\xBF\xBF", "Char",
         "1:5: error: nothing may follow the root but comments and instructions, found U+FFFF"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const Problem problem = problemOf(c.text);
        EXPECT_EQ(problem.rule, c.rule);
        EXPECT_EQ(problem.toString(), c.message);
        std::istringstream in(c.text);
        StreamReader reader(in);
        while (reader.next() != StreamReader::Event::Failed) {}
        EXPECT_EQ(reader.problems().at(0).toString(), c.message);
    }
}

TEST(ReadTest, SaysWhetherAReservedTargetIsADeclaration) {
    EXPECT_EQ(problemOf("<a/><?xml version='1.0'?>").text, "an XML declaration stands at the very beginning only");
    EXPECT_EQ(problemOf("<a/><?XML?>").text, "the target XML is reserved");
}

TEST(ReadTest, NamesAllThatMayStandThere) {
    const auto said = [](const std::string& text) { return problemOf(text).toString(); };
    EXPECT_EQ(said("<?xml\xC2\xA0version='1.0'?><a/>"),
              "1:6: error: white space after \"<?xml\" expected, found \"\xC2\xA0\" (U+00A0)");
    // A name may begin with a joiner, which has no shape.
    for (const auto& [character, shown] :
         {std::pair("\u200B", "\"\u200B\" (U+200B)"), std::pair("\u200C", "\"\u200C\" (U+200C)"),
          std::pair("\u200D", "\"\u200D\" (U+200D)"), std::pair("\u2070", "\"\u2070\""), std::pair("~", "\"~\""),
          std::pair("\x7F", "U+007F"), std::pair("\u0080", "U+0080"), std::pair("\u00F6", "\"\u00F6\"")}) {
        EXPECT_EQ(said("<a b=" + std::string(character) + "/>"),
                  "1:6: error: a value in quotes expected, found " + std::string(shown));
    }
    EXPECT_EQ(said("<?xml/?><a/>"), "1:6: error: white space after \"<?xml\" expected, found \"/\"");
    EXPECT_EQ(said("<?xml version='1.0' Encoding='UTF-8'?><a/>"),
              "1:21: error: encoding, standalone or \"?>\" expected, found \"E\"");
    EXPECT_EQ(said("<?xml version='1.0' encoding='UTF-8' Standalone='no'?><a/>"),
              "1:38: error: standalone or \"?>\" expected, found \"S\"");
    EXPECT_EQ(said("<?xml version='1.0' standalone='no' encoding='UTF-8'?><a/>"),
              "1:37: error: \"?>\" expected, found \"e\"");
    EXPECT_EQ(said("<!DOCTYPE a 's'><a/>"), "1:13: error: SYSTEM, PUBLIC, \"[\" or \">\" expected, found \"'\"");
    EXPECT_EQ(said("<!DOCTYPE a SYSTEM 's' 's'><a/>"), "1:24: error: \"[\" or \">\" expected, found \"'\"");
    EXPECT_EQ(said("<!DOCTYPE a [] 's'><a/>"), "1:16: error: \">\" expected, found \"'\"");
}

TEST(ReadTest, SaysWhichDeclarationTakesAReservedNamespace) {
    const auto said = [](const std::string& text) { return problemOf(text).text; };
    const std::string xml = "'http://www.w3.org/XML/1998/namespace'/>";
    const std::string xmlns = "'http://www.w3.org/2000/xmlns/'/>";
    EXPECT_EQ(said("<a xmlns=" + xml), "the default namespace is that of xml");
    EXPECT_EQ(said("<a xmlns:b=" + xml), "another prefix than xml stands for the namespace of xml");
    EXPECT_EQ(said("<a xmlns:xml='b'/>"), "the prefix xml stands for another namespace than its own");
    EXPECT_EQ(said("<a xmlns=" + xmlns), "the default namespace is that of xmlns");
    EXPECT_EQ(said("<a xmlns:b=" + xmlns), "a prefix stands for the namespace of xmlns");
}

TEST(ReadTest, SaysWhatStandsInThePlaceOfWhatIsExpected) {
    const struct {
        const char* text;
        const char* found;
    } kCases[] = {
        {"<\na/>", "the end of the line"},
        {"<\ra/>", "the end of the line"},
        {"<\ta/>", "U+0009"},
        {"<\x7F/>", "U+007F"},
        {"< a/>", "\" \""},
        {"<\"/>", "'\"'"},
        {"<'/>", "\"'\""},
        {"<\xC2\xA0/>", "\"\xC2\xA0\" (U+00A0)"},
        {"<\xC3\x97/>", "\"\xC3\x97\" (U+00D7)"},
        {"<\xE2\x80\x8F/>", "U+200F"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(problemOf(c.text).text,
                  "the name of an element, \"/\", \"!\" or \"?\" after \"<\" expected, found " + std::string(c.found));
    }
}

TEST(ReadTest, ShowsNothingThatTurnsTheRestOfALineRound) {
    const Problem problem = problemOf("<a>\xE2\x80\xAE<!-- \xE2\x81\xA6 --></b>");
    EXPECT_EQ(problem.excerpt, "<a>\xEF\xBF\xBD<!-- \xEF\xBF\xBD --></b>\n              ^");
    EXPECT_EQ(problemOf("<a \xE2\x80\xAE/>").text, "the name of an attribute, \">\" or \"/>\" expected, found U+202E");
}

// XML 2.11: line ends are LF before anything else is looked at.
TEST(ReadTest, GivesIdentifiersWithLineEndsAsLF) {
    const ReadResult result = readText(
        "<!DOCTYPE a PUBLIC 'p\r\nq\rr' 's\r\nt' [<!ENTITY e SYSTEM 'x\ry'><!ENTITY % p PUBLIC '\r\n' 'u\r\n'>\r\n"
        "<!NOTATION n PUBLIC 'm\rn'><!ENTITY % q '<!ENTITY f SYSTEM \"c&#13;d\">'>%q;]><a/>");
    ASSERT_TRUE(result) << result.message();
    const Prolog& prolog = prologOf(*result);
    EXPECT_EQ(prolog.publicId, "p\nq\nr");
    EXPECT_EQ(prolog.systemId, "s\nt");
    EXPECT_EQ(prolog.internalSubset.substr(0, 23), "<!ENTITY e SYSTEM 'x\ry'") << "as written";
    const Dtd& dtd = *result->getDtd();
    EXPECT_EQ(dtd.getEntityDecls().at("e").systemId, "x\ny");
    EXPECT_EQ(dtd.getParameterEntityDecls().at("p").publicId, "\n");
    EXPECT_EQ(dtd.getParameterEntityDecls().at("p").systemId, "u\n");
    EXPECT_EQ(dtd.getNotationDecls().at("n").publicId, "m\nn");
    EXPECT_EQ(dtd.getEntityDecls().at("f").systemId, "c\rd") << "that one came by a reference";
    const ReadResult again = readText(writeText(*result, asRead(*result)).text());
    EXPECT_EQ(prologOf(*again).systemId, "s\nt");
}

TEST(ReadTest, NamesTheEntityThatAProblemIsIn) {
    const Problem problem =
        problemOf("<!DOCTYPE a [\n <!ENTITY in '<b>&#38;out;'>\n <!ENTITY out '</c>'>]>\n<a>&in;</a>");
    EXPECT_EQ(problem.text, "</c> has no start tag in the entity (in the entity \"out\", declared at 3:2)");
    EXPECT_EQ(problem.place.line, 4);
    EXPECT_EQ(problem.place.column, 4);
    EXPECT_EQ(problem.excerpt, "<a>&in;</a>\n   ^");
}

TEST(ReadTest, ShowsAsMuchOfALongLineAsCanBeRead) {
    const Problem problem = problemOf("<a>" + std::string(1000, 'x') + "\x01" + std::string(1000, 'y') + "</a>");
    const std::string line = problem.excerpt.substr(0, problem.excerpt.find('\n'));
    EXPECT_EQ(line, std::string(80, 'x') + "\xEF\xBF\xBD" + std::string(79, 'y'));
    EXPECT_EQ(problem.excerpt.substr(line.size() + 1), std::string(80, ' ') + "^");
}

TEST(ReadTest, FindsBytesThatAreNoUtf8) {
    const char* const kTexts[] = {
        "\x80",     "\xC0\x80", "\xC3",        "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF0\x80\x80\x80",
        "\xE2\x82", "\xFF",     "\xF0\x9F\x98"};
    for (const char* text : kTexts) {
        const Problem problem = problemOf(std::string("<a>\n ") + text + "</a>");
        EXPECT_EQ(problem.place.offset, 5);
        EXPECT_EQ(problem.place.line, 2);
        EXPECT_EQ(problem.place.column, 2);
        EXPECT_FALSE(problem.text.empty());
    }
}

std::string inUtf16(const std::string& ascii) {
    std::string result;
    for (const char c : ascii) result.append(1, c).append(1, '\0');
    return result;
}

TEST(ReadTest, ReadsOtherEncodings) {
    EXPECT_EQ(treeOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xF6</a>"), "a('\xC3\xB6')");
    EXPECT_EQ(treeOf("\xFF\xFE" + inUtf16("<a>x</a>")), "a('x')");
    ReadOptions options;
    options.encoding = "ISO-8859-1";
    const ReadResult result = readText("<a>\xF6</a>", options);
    EXPECT_EQ(dump(result.get()), "a('\xC3\xB6')");
}

TEST(ReadTest, GivesOffsetsInTheSource) {
    const Problem wide = problemOf("\xFF\xFE" + inUtf16("<a>\n<b></c></a>"));
    EXPECT_EQ(wide.place.offset, 16);
    EXPECT_EQ(wide.place.line, 2);
    EXPECT_EQ(wide.place.column, 4);
    const Problem latin = problemOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xF6</b>");
    EXPECT_EQ(latin.place.offset, 47);
    EXPECT_EQ(latin.place.column, 48);
}

TEST(ReadTest, NamesAnEncodingThatItDoesNotKnow) {
    const Problem problem = problemOf("<?xml version='1.0' encoding='No-Such'?><a/>");
    EXPECT_EQ(problem.kind, Problem::Kind::Unsupported);
    EXPECT_NE(problem.text.find("No-Such"), std::string::npos);
}

TEST(ReadTest, SaysFirstWhatIsWrongFirst) {
    EXPECT_EQ(problemOf("<a></b><c></c></a></d>\xFF").rule, "Element Type Match");
    EXPECT_EQ(problemOf("<a>\xFF</b>").rule, "Character Encoding in Entities");
    // Right before the bytes that are no text.
    const char* const kTexts[] = {"<a></b>", "<a>&;", "<a><!x",     "<a>\x01",        "<a x='<", "<a>]]>",
                                  "<a/><b",  "<a/>y", "<a x=2",     "<!DOCTYPE a [x", "<?xml x", "<a><?xml?>",
                                  "<a>&#0;", "x",     "<a x=''x='", "<a>&x;",         "<!X"};
    for (const char* text : kTexts) {
        const Problem problem = problemOf(std::string(text) + "\xFF");
        EXPECT_NE(problem.rule, "Character Encoding in Entities") << text;
        EXPECT_LT(problem.place.offset, static_cast<std::int64_t>(std::string(text).size())) << text;
    }
    // What may go on.
    const char* const kBeginnings[] = {"",
                                       "<",
                                       "<a",
                                       "<a ",
                                       "<a x",
                                       "<a x=",
                                       "<a x='",
                                       "<a x=''",
                                       "<a/",
                                       "<a></",
                                       "<a><!",
                                       "<a><!-",
                                       "<a><![CDA",
                                       "<a>&",
                                       "<a>&l",
                                       "<a>&#",
                                       "<a>]]",
                                       "<!DOCT",
                                       "<?xml",
                                       "<?xml versio",
                                       "<!DOCTYPE a PUB",
                                       "<!DOCTYPE a [<!ENT",
                                       "<!DOCTYPE a [%",
                                       "<!DOCTYPE a [<!ELEMENT a (#PCD",
                                       "<a></a"};
    for (const char* text : kBeginnings) {
        const Problem problem = problemOf(std::string(text) + "\xFF");
        EXPECT_EQ(problem.rule, "Character Encoding in Entities") << text;
        EXPECT_EQ(problem.place.offset, static_cast<std::int64_t>(std::string(text).size())) << text;
    }
    // A declaration that names an encoding comes before what is wrong after it.
    EXPECT_EQ(problemOf("<?xml version='1.0' encoding='No-Such' x?><a/>").rule, "Character Encoding in Entities");
    EXPECT_EQ(problemOf("<?xml version='2.0' encoding='No-Such'?><a/>").rule, "VersionNum");
}

TEST(ReadTest, NamesTheElementInWhichBytesAreNoText) {
    EXPECT_EQ(problemOf("\xFF").path, "");
    EXPECT_EQ(problemOf("<a>\xFF").path, "/a[1]");
    EXPECT_EQ(problemOf("<a><b/><b>x<!--\xFF").path, "/a[1]/b[2]");
    EXPECT_EQ(problemOf("<a><b/>\xFF").path, "/a[1]");
    EXPECT_EQ(problemOf("<a><b/><b x='\xFF'/>").path, "/a[1]/b[2]");
    EXPECT_EQ(problemOf("<a x='\xFF'/>").path, "/a[1]");
    EXPECT_EQ(problemOf("<a></a\xFF>").path, "/a[1]");
    EXPECT_EQ(problemOf("<a/><!--\xFF").path, "");
}

}  // namespace
}  // namespace Xml::test
