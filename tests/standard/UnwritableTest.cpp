// What XML cannot say: each case is a problem that says what and where, and nothing is written.
#include "support/Messages.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/Write.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

// The document <r><a/><a>...</a></r>, of which a case changes the second <a> or what stands around it.
struct Tree {
    Tree() {
        auto* const root = new Element("r");
        root->addChild(new Element("a"));
        place = new Element("a");
        root->addChild(place);
        document = std::make_unique<Document>(root, nullptr);
    }

    std::unique_ptr<Document> document;
    Element* place;
};

using Change = std::function<void(Tree&)>;

Change child(Object* (*make)()) {
    return [make](Tree& tree) { tree.place->addChild(make()); };
}

Change text(const std::string& held) {
    return [held](Tree& tree) {
        auto* const node = new CharData();
        node->data() = held;
        tree.place->addChild(node);
    };
}

Change comment(const std::string& content) {
    return [content](Tree& tree) { tree.place->addChild(new Comment(content)); };
}

Change section(const std::string& content) {
    return [content](Tree& tree) { tree.place->addChild(new CDataSection(content)); };
}

Change instruction(const std::string& target, const std::string& content) {
    return [=](Tree& tree) { tree.place->addChild(new Instruction(target, content)); };
}

Change attribute(const std::string& name, const std::string& value) {
    return [=](Tree& tree) { tree.place->setAttribute(name, value); };
}

Change element(const std::string& name) {
    return [name](Tree& tree) { NodeAccess::setName(*tree.place, name); };
}

Change prolog(void (*change)(Prolog&)) {
    return [change](Tree& tree) { change(prologOf(*tree.document)); };
}

Change dtd(void (*change)(Dtd&)) {
    return [change](Tree& tree) {
        auto type = std::make_unique<Dtd>("r");
        change(*type);
        Element* const root = tree.document->extractRoot();
        tree.document = std::make_unique<Document>(root, type.release());
    };
}

struct Case {
    const char* name;
    Change change;
    const char* message;
    const char* rule;
    const char* path = "/r[1]/a[2]";
    const char* encoding = "UTF-8";
};

constexpr char kNotUtf8[] = "Character Encoding in Entities";

std::vector<Case> cases() {
    return {
        {"a control character", text("a\x01"), "the text has a character that XML does not allow: U+0001", "Char"},
        {"a zero byte", text(std::string("a\0b", 3)), "the text has a character that XML does not allow: U+0000",
         "Char"},
        {"a noncharacter", text("\xEF\xBF\xBE"), "the text has a character that XML does not allow: U+FFFE", "Char"},
        {"a noncharacter after a reference", text("&amp;\xEF\xBF\xBF"),
         "the text has a character that XML does not allow: U+FFFF", "Char"},
        {"a control after characters", text("\u00E4\x1F"), "the text has a character that XML does not allow: U+001F",
         "Char"},
        {"a byte that is no UTF-8", text("\xE4 "), "the text has bytes that are not UTF-8: E4 20", kNotUtf8},
        {"a character that is cut off", text("a\xE2\x82"), "the text has bytes that are not UTF-8: E2 82", kNotUtf8},
        {"a surrogate", text("\xED\xA0\x80"), "the text has bytes that are not UTF-8: ED A0", kNotUtf8},
        {"no UTF-8 after a reference", text("&amp;&x\xFF;"), "the text has bytes that are not UTF-8: FF", kNotUtf8},
        {"a long text", text(std::string(10000, 'x') + "\xFF"), "the text has bytes that are not UTF-8: FF", kNotUtf8},
        {"halves of a character in two texts",
         [](Tree& tree) {
             text("\xC3")(tree);
             text("\xA4")(tree);
         },
         "the text has bytes that are not UTF-8: C3", kNotUtf8},
        {"half of a character before an entity with the other",
         [](Tree& tree) {
             auto* const node = new CharData();
             node->data() = "\xC3&e;";
             static Dtd type("r");
             type.setEntity("e", "\xA4");
             tree.place->addChild(node);
             node->setDtd(&type);
         },
         "the text has bytes that are not UTF-8: C3 26", kNotUtf8},
        {"a control in an entity",
         [](Tree& tree) {
             auto type = std::make_unique<Dtd>("r");
             type->setEntity("e", "\x02");
             text("&e;")(tree);
             Element* const root = tree.document->extractRoot();
             tree.document = std::make_unique<Document>(root, type.release());
         },
         "the document type cannot be written: a character that is not allowed: U+0002", "Char", ""},
        {"a control in a value", attribute("x", "\x08"),
         "the attribute x has a character that XML does not allow: U+0008", "Char"},
        {"a value that is no UTF-8", attribute("x", "a\xC3"), "the attribute x has bytes that are not UTF-8: C3",
         kNotUtf8},
        {"an attribute without name", attribute("", "1"), "\"\" cannot be the name of an attribute", "Name"},
        {"an attribute with a blank in its name", attribute("a b", "1"), "\"a b\" cannot be the name of an attribute",
         "Name"},
        {"a name that ends the tag", attribute("a><b", "1"), "\"a><b\" cannot be the name of an attribute", "Name"},
        {"a name that is no UTF-8", attribute("a\xFF", "1"), "\"a\uFFFD\" cannot be the name of an attribute", "Name"},
        {"an element without name", element(""), "\"\" cannot be the name of an element", "Name", "/r[1]/[1]"},
        {"an element of a number", element("1"), "\"1\" cannot be the name of an element", "Name", "/r[1]/1[1]"},
        {"a name with a control", element("a\x01"), "\"a\uFFFD\" cannot be the name of an element", "Name",
         "/r[1]/a\uFFFD[1]"},
        {"two hyphens in a comment", comment("a--b"), "the comment has \"--\"", "Comment"},
        {"a hyphen at the end of a comment", comment("a-"), "the comment ends with \"-\"", "Comment"},
        {"a carriage return in a comment", comment("a\rb"),
         "the comment has a carriage return, which would be read as a line end", "Char"},
        {"a control in a comment", comment("\x7F\x1F"), "the comment has a character that XML does not allow: U+001F",
         "Char"},
        {"a comment that is no UTF-8", comment("\x80"), "the comment has bytes that are not UTF-8: 80", kNotUtf8},
        {"the end in an instruction", instruction("t", "a?>b"), "the instruction t has \"?>\"", "PI"},
        {"a blank at the beginning of an instruction", instruction("t", " a"),
         "the instruction t has content that begins with white space", "PI"},
        {"an instruction without target", instruction("", "a"), "\"\" cannot be the name of an instruction", "Name"},
        {"an instruction named xml", instruction("xMl", ""), "an instruction may not be named xMl", "PITarget"},
        {"a control in an instruction", instruction("t", "\x0B"),
         "the instruction t has a character that XML does not allow: U+000B", "Char"},
        {"a carriage return in an instruction", instruction("t", "a\r"),
         "the instruction t has a carriage return, which would be read as a line end", "Char"},
        {"a control in a section", section("\x0C"), "the section has a character that XML does not allow: U+000C",
         "Char"},
        {"a section that is no UTF-8", section("&\xFF"), "the section has bytes that are not UTF-8: FF", kNotUtf8},
        {"an attribute among children", child([]() -> Object* { return new Attribute("x", "1"); }),
         "a node of a kind that is no content of an element", "content"},
        {"a document among children", child([]() -> Object* { return new Document(new Element("b"), nullptr); }),
         "a node of a kind that is no content of an element", "content"},
        {"no root", [](Tree& tree) { tree.document = std::make_unique<Document>(nullptr, nullptr); },
         "the document has no root", "document", ""},
        {"text around the root", prolog([](Prolog& p) { p.afterRoot.push_back(std::make_unique<CharData>("x")); }),
         "around the root stands what is neither a comment nor an instruction", "prolog", ""},
        {"a comment before the root",
         prolog([](Prolog& p) { p.beforeRoot.push_back(std::make_unique<Comment>("--")); }), "the comment has \"--\"",
         "Comment", ""},
        {"a document type that is no name", prolog([](Prolog& p) { p.doctype = "a b"; }),
         "\"a b\" cannot be the name of a document type", "Name", ""},
        {"a public identifier with other characters", prolog([](Prolog& p) {
             p.doctype = "r";
             p.publicId = "\u00E4";
         }),
         "the document type cannot be written: a character of a public identifier expected, found \"\u00E4\"",
         "PubidChar", ""},
        {"a system identifier with both quotes", prolog([](Prolog& p) {
             p.doctype = "r";
             p.systemId = "'\"";
         }),
         "the document type cannot be written: \"[\" or \">\" expected, found '\"'", "doctypedecl", ""},
        {"a subset that ends early", prolog([](Prolog& p) {
             p.doctype = "r";
             p.internalSubset = "]><r/><!--";
         }),
         "the document type cannot be written: its parts would be read as other ones", "doctypedecl", ""},
        {"a subset that is none", prolog([](Prolog& p) {
             p.doctype = "r";
             p.internalSubset = "<a/>";
         }),
         "the document type cannot be written: a declaration expected, found \"<\"", "intSubset", ""},
        {"a subset that is no UTF-8", prolog([](Prolog& p) {
             p.doctype = "r";
             p.internalSubset = "<!--\xFF-->";
         }),
         "the document type has bytes that are not UTF-8", kNotUtf8, ""},
        {"a Dtd with an entity that has no name", dtd([](Dtd& d) { d.setEntity("1", "x"); }),
         "the document type cannot be written: a name or \"%\" expected, found \"1\"", "EntityDecl", ""},
        {"a name that the encoding lacks", element("\u00E4"),
         "the name \u00E4 has a character that US-ASCII lacks: U+00E4", kNotUtf8, "/r[1]/\u00E4[1]", "US-ASCII"},
        {"a comment that it lacks", comment("\u20AC"), "the comment has a character that ISO-8859-1 lacks: U+20AC",
         kNotUtf8, "/r[1]/a[2]", "ISO-8859-1"},
        {"an instruction that it lacks", instruction("t", "\U0001F600"),
         "the instruction t has a character that windows-1252 lacks: U+01F600", kNotUtf8, "/r[1]/a[2]", "windows-1252"},
        {"a section that it lacks", section("\u0416"), "the section has a character that ISO-8859-1 lacks: U+0416",
         kNotUtf8, "/r[1]/a[2]", "ISO-8859-1"},
        {"a document type that it lacks", prolog([](Prolog& p) {
             p.doctype = "r";
             p.internalSubset = "<!--\u20AC-->";
         }),
         "the document type has a character that ISO-8859-1 lacks: U+20AC", kNotUtf8, "", "ISO-8859-1"},
        {"no UTF-8, in UTF-16", text("\xFF"), "the text has bytes that are not UTF-8: FF", kNotUtf8, "/r[1]/a[2]",
         "UTF-16"},
        {"a control, in Latin-1", text("\x01"), "the text has a character that XML does not allow: U+0001", "Char",
         "/r[1]/a[2]", "ISO-8859-1"},
    };
}

TEST(UnwritableTest, WhatXmlCannotSayIsAProblemAndNothingIsWritten) {
    const MessageCollector quiet;
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        Tree tree;
        c.change(tree);
        WriteOptions options;
        options.encoding = c.encoding;
        const WriteResult result = writeText(*tree.document, options);
        EXPECT_FALSE(result);
        EXPECT_EQ(result.text(), "");
        ASSERT_EQ(result.problems().size(), 1U) << writeText(*tree.document, options).text();
        const Problem& problem = result.problems()[0];
        EXPECT_EQ(problem.kind, Problem::Kind::Unwritable);
        EXPECT_EQ(problem.text, c.message);
        EXPECT_EQ(problem.rule, c.rule);
        EXPECT_EQ(problem.path, c.path);
        EXPECT_EQ(result.message(), "error: " + problem.text);

        std::ostringstream stream;
        EXPECT_FALSE(writeStream(*tree.document, stream, options));
        EXPECT_EQ(stream.str(), "");
    }
}

// What reads as it was is no problem, however odd.
TEST(UnwritableTest, ALoopOverTheProblemsOfACallKeepsThem) {
    const Comment comment("--");
    int count = 0;
    for (const Problem& problem : writeText(comment).problems()) {
        EXPECT_EQ(problem.kind, Problem::Kind::Unwritable);
        ++count;
    }
    for (const Problem& problem : readText("<a>").problems()) {
        EXPECT_EQ(problem.kind, Problem::Kind::Malformed);
        ++count;
    }
    EXPECT_EQ(count, 2);
}

TEST(UnwritableTest, WhatXmlCanSayIsWritten) {
    const MessageCollector quiet;
    const Change kCases[] = {
        text("\x7F\u0085\u2028"),
        text("\uFFFD\U0010FFFF"),
        text("\r\n\t"),
        comment("- - "),
        comment(""),
        comment("->"),
        section("]]>]]>"),
        section("\r"),
        section(""),
        section("a\r]]>\rb"),
        instruction("xml-a", "?"),
        instruction("t", "a >"),
        attribute("xmlns:p", "\r\n\t<&>\"'"),
        element(":"),
        element("a:b:c"),
        element("\u00E4\u4E00"),
        attribute("\u00E4", "\u20AC"),
    };
    for (const Change& change : kCases) {
        Tree tree;
        change(tree);
        const WriteResult result = writeText(*tree.document);
        ASSERT_TRUE(result) << result.message();
        ReadOptions options = everything();
        options.namespaces = false;
        options.keepCData = false;
        options.space = Space::Content;
        const ReadResult again = readText(result.text(), options);
        ASSERT_TRUE(again) << again.message() << "\n" << result.text();
        const Element& read = *again->getRoot()->getChild(1)->toElement();
        EXPECT_EQ(read.getName(), tree.place->getName());
        ASSERT_EQ(read.getAttributeCount(), tree.place->getAttributeCount());
        for (int i = 0; i < read.getAttributeCount(); ++i) {
            EXPECT_EQ(read.getAttribute(i)->getName(), tree.place->getAttribute(i)->getName());
            EXPECT_EQ(read.getAttribute(i)->getValue(), tree.place->getAttribute(i)->getValue());
        }
        EXPECT_EQ(read.getCharData(), tree.place->getCharData());
        if (tree.place->getChildCount() == 0 || tree.place->getChild(0)->isCharData()) continue;
        ASSERT_EQ(read.getChildCount(), 1);
        EXPECT_EQ(read.getChild(0)->toString(), tree.place->getChild(0)->toString());
    }
}

TEST(UnwritableTest, AStreamThatFailsIsAProblem) {
    const Tree tree;
    std::ostringstream stream;
    stream.setstate(std::ios_base::badbit);
    const WriteResult result = writeStream(*tree.document, stream);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.message(), "error: the stream cannot be written");

    struct Full : std::stringbuf {
        int_type overflow(int_type) override { return traits_type::eof(); }
        std::streamsize xsputn(const char*, std::streamsize) override { return 0; }
    } full;
    std::ostream out(&full);
    out.exceptions(std::ios_base::badbit | std::ios_base::failbit);
    EXPECT_FALSE(writeStream(*tree.document, out));
}

TEST(UnwritableTest, EntitiesThatMultiplyAreALimit) {
    const std::int64_t before = Dtd::setEntityGrowthLimit(100000);
    auto type = std::make_unique<Dtd>("r");
    type->setEntity("e", std::string(10000, 'x'));
    Tree tree;
    for (int i = 0; i < 11; ++i) text("&e;")(tree);
    Element* const root = tree.document->extractRoot();
    const Document document(root, type.release());
    const WriteResult refused = writeText(document);
    Dtd::setEntityGrowthLimit(0);
    const WriteResult written = writeText(document);
    Dtd::setEntityGrowthLimit(before);
    EXPECT_TRUE(written) << written.message();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.problems()[0].kind, Problem::Kind::Limit);
    EXPECT_EQ(refused.message(), "error: the entities that texts refer to make more than 100000 bytes");
    EXPECT_EQ(refused.problems()[0].path, "/r[1]/a[2]");
}

// Text is looked at in stretches.
TEST(UnwritableTest, WhatIsNoCharacterIsFoundWhereverItStands) {
    for (const std::string& wrong : {std::string("\xEF\xBF\xBE"), std::string("\xC3"), std::string("\x01")}) {
        for (std::size_t before = 0; before < 200; ++before) {
            for (const std::size_t after : {0, 1, 15, 100}) {
                Tree tree;
                text(std::string(before, 'x') + wrong + std::string(after, 'y'))(tree);
                const WriteResult result = writeText(*tree.document);
                ASSERT_FALSE(result) << before << " " << after;
                ASSERT_EQ(result.text(), "");
            }
        }
    }
}

}  // namespace
}  // namespace Xml::test
