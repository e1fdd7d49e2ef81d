#include "dom/Settings.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Entity.h"
#include "xml/dom/Instruction.h"
#include "xml/stream/FileOutStream.h"
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

Element* with(Element* parent, const std::vector<Object*>& children) {
    for (Object* child : children) parent->addChild(child);
    return parent;
}
Element* element(const char* name) { return new Element(name); }
CharData* text(const char* data) { return new CharData(DataHolder(data)); }

struct WriteCase {
    const char* name;
    std::function<void(Element& a)> build;
    const char* shortNotation;
    const char* longNotation;
};

TEST(ElementWriteTest, LaysOutElementsALineEachAndMixedContentAsItIs) {
    const WriteCase kCases[] = {
        {"empty", [](Element&) {}, "<a/>", "<a></a>"},
        {"text", [](Element& a) { with(&a, {text("t<u")}); }, "<a>t&lt;u</a>", "<a>t&lt;u</a>"},
        {"empty text", [](Element& a) { with(&a, {text("")}); }, "<a></a>", "<a></a>"},
        {"entity", [](Element& a) { with(&a, {new CharData(Entity("e"))}); }, "<a>&e;</a>", "<a>&e;</a>"},
        {"one element", [](Element& a) { with(&a, {element("b")}); }, "<a>\n\t<b/>\n</a>", "<a>\n\t<b></b>\n</a>"},
        {"two elements",
         [](Element& a) {
             with(&a, {element("b"), element("c")});
         },
         "<a>\n\t<b/>\n\t<c/>\n</a>", "<a>\n\t<b></b>\n\t<c></c>\n</a>"},
        {"elements in elements",
         [](Element& a) { with(&a, {with(element("b"), {with(element("c"), {element("d")})})}); },
         "<a>\n\t<b>\n\t\t<c>\n\t\t\t<d/>\n\t\t</c>\n\t</b>\n</a>",
         "<a>\n\t<b>\n\t\t<c>\n\t\t\t<d></d>\n\t\t</c>\n\t</b>\n</a>"},
        {"text before an element",
         [](Element& a) {
             with(&a, {text("t"), element("b")});
         },
         "<a>t<b/></a>", "<a>t<b></b></a>"},
        {"text after an element",
         [](Element& a) {
             with(&a, {element("b"), text("t")});
         },
         "<a><b/>t</a>", "<a><b></b>t</a>"},
        {"empty text makes the content mixed",
         [](Element& a) {
             with(&a, {element("b"), text(""), element("c")});
         },
         "<a><b/><c/></a>", "<a><b></b><c></c></a>"},
        {"elements below mixed content begin lines with the tabs of their depth",
         [](Element& a) {
             with(&a, {text("t"), with(element("b"), {element("c")})});
         },
         "<a>t<b>\n\t\t<c/>\n\t</b></a>", "<a>t<b>\n\t\t<c></c>\n\t</b></a>"},
        {"a comment alone", [](Element& a) { with(&a, {new Comment("c")}); }, "<a>\n\t<!--c-->\n</a>",
         "<a>\n\t<!--c-->\n</a>"},
        {"comments and instructions beside elements have lines of their own",
         [](Element& a) {
             with(&a,
                  {new Comment("c & <d>"), element("b"), new Instruction("go", "there"), new Instruction("go", "")});
         },
         "<a>\n\t<!--c & <d>-->\n\t<b/>\n\t<?go there?>\n\t<?go?>\n</a>",
         "<a>\n\t<!--c & <d>-->\n\t<b></b>\n\t<?go there?>\n\t<?go?>\n</a>"},
        {"and stand as they are beside text",
         [](Element& a) {
             with(&a, {new Comment("c"), text("t"), new Instruction("go", "there")});
         },
         "<a><!--c-->t<?go there?></a>", "<a><!--c-->t<?go there?></a>"},
        {"line feeds in them begin no lines",
         [](Element& a) {
             with(&a, {new Comment("one\ntwo\n"), new Instruction("go", "one\ntwo\n")});
         },
         "<a>\n\t<!--one\ntwo\n-->\n\t<?go one\ntwo\n?>\n</a>", "<a>\n\t<!--one\ntwo\n-->\n\t<?go one\ntwo\n?>\n</a>"},
        {"a section is text",
         [](Element& a) {
             with(&a, {element("b"), new CDataSection("1 < 2")});
         },
         "<a><b/>1 &lt; 2</a>", "<a><b></b>1 &lt; 2</a>"},
        {"line feeds in text begin no lines", [](Element& a) { with(&a, {with(element("b"), {text("one\ntwo\n")})}); },
         "<a>\n\t<b>one\ntwo\n</b>\n</a>", "<a>\n\t<b>one\ntwo\n</b>\n</a>"},
        {"line feeds in attributes do",
         [](Element& a) {
             a.addChild(element("b"));
             a.getElement("b")->setAttribute("x", "1\n2");
         },
         "<a>\n\t<b x=\"1\n\t2\"/>\n</a>", "<a>\n\t<b x=\"1\n\t2\"></b>\n</a>"},
        {"attributes in the order of their names",
         [](Element& a) {
             a.setAttribute("y", "2");
             a.setAttribute("x", "<1>");
             a.setAttribute("B", "");
         },
         "<a B=\"\" x=\"&lt;1&gt;\" y=\"2\"/>", "<a B=\"\" x=\"&lt;1&gt;\" y=\"2\"></a>"},
        {"attributes without a name are left out, those with a bad one not",
         [](Element& a) {
             a.setAttribute("", "1");
             a.setAttribute("1 a", "2");
         },
         "<a 1 a=\"2\"/>", "<a 1 a=\"2\"></a>"},
        {"only an attribute without a name", [](Element& a) { a.setAttribute("", "1"); }, "<a/>", "<a></a>"},
        {"an element without a name", [](Element& a) { with(&a, {element("9")}); }, "<a>\n\t</>\n</a>",
         "<a>\n\t<></>\n</a>"},
        {"the whole of it",
         [](Element& a) {
             a.setAttribute("y", "2");
             a.setAttribute("x", "1");
             a.addElement("b", "t&u");
             a.addChild(element("c"));
         },
         "<a x=\"1\" y=\"2\">\n\t<b>t&amp;u</b>\n\t<c/>\n</a>",
         "<a x=\"1\" y=\"2\">\n\t<b>t&amp;u</b>\n\t<c></c>\n</a>"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        MessageCollector collector;
        Element a("a");
        c.build(a);
        EXPECT_EQ(textOf(a), c.shortNotation);
        ShortNotation notation(false);
        EXPECT_EQ(textOf(a), c.longNotation);
    }
}

TEST(ElementWriteTest, TheNotationIsLookedUpWhenEachElementIsWritten) {
    class Switch : public CharData {
    public:
        using CharData::CharData;
        void write(OutStream& out) const override {
            Element::mUseShortNotationForEmptyTags = false;
            out << std::string("|");
        }
    };
    ShortNotation notation(true);
    Element root("r");
    root.addChild(new Element("a"));
    root.addChild(new Switch);
    root.addChild(new Element("b"));
    EXPECT_EQ(textOf(root), "<r><a/>|<b></b></r>");
}

TEST(ElementWriteTest, StandsAtTheLevelOfTheStreamAndLeavesItAsItWas) {
    Element root("r");
    root.addElement("a", "t");
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    out.incTab();
    root.toStream(out);
    out.put('\n');
    out.put('x');
    EXPECT_EQ(text.str(), "\t\t<r>\n\t\t\t<a>t</a>\n\t\t</r>\n\t\tx");
}

TEST(ElementWriteTest, WritesNoLineAfterItsOwnEnd) {
    Element root("r");
    root.addChild(new Element("a"));
    std::ostringstream text;
    FileOutStream out(&text);
    root.toStream(out);
    root.toStream(out);
    EXPECT_EQ(text.str(), "<r>\n\t<a/>\n</r><r>\n\t<a/>\n</r>");
}

TEST(ElementWriteTest, ADeepElementOnlyDocumentIsIndentedByItsDepth) {
    constexpr int kDepth = 1000;
    Element root("a");
    Element* innermost = &root;
    for (int i = 1; i < kDepth; ++i) {
        auto* child = new Element("a");
        innermost->addChild(child);
        innermost = child;
    }
    std::string expected;
    for (std::size_t i = 0; i + 1 < kDepth; ++i) expected += std::string(i, '\t') + "<a>\n";
    expected += std::string(kDepth - 1, '\t') + "<a/>\n";
    for (std::size_t i = kDepth - 1; i-- > 0;) expected += std::string(i, '\t') + "</a>" + (i > 0 ? "\n" : "");
    EXPECT_TRUE(textOf(root) == expected);
}

}  // namespace
}  // namespace Xml::test
