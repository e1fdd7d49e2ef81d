#include "xml/dtd/internal/FastValidation.h"

#include "models/Models.h"
#include "support/NodeTestAccess.h"
#include "support/WithoutFastValidation.h"
#include "xml/dom/CharData.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/ElementReader.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The verdict and the links that the Matcher comes to alone.
std::string byMatcher(const Dtd& dtd, const std::string& tree) {
    const WithoutFastValidation off;
    const auto element = elementOf(tree);
    const bool valid = dtd.validate(element.get());
    return (valid ? "valid " : "invalid ") + linksOf(*element, {&dtd});
}

TEST(FastValidationTest, AcceptsWhatFitsAtTheFirstTryAndLinksItAsTheMatcherDoes) {
    const struct {
        const char* dtd;
        const char* tree;
    } kCases[] = {
        {"a: EMPTY", "a"},
        {"a: EMPTY; a@x IMPLIED; a@y REQUIRED", "a[x=1 y=2]"},
        {"a: ANY", "a(u[z=1]('t' u) 't')"},
        {"a: ANY; a@x IMPLIED", "a(u[z=1]('t' u) 't')"},
        {"a: CHARS", "a('t' 'u')"},
        {"a: (#PCDATA)", "a"},
        {"a: (#PCDATA); a@x IMPLIED", "a('t')"},
        {"a: (b, c?, b+); b: EMPTY; c: EMPTY", "a(b c b b)"},
        {"a: (b, c); b: EMPTY; c: EMPTY; c@x IMPLIED", "a(b c)"},
        {"a: (b, c); b: EMPTY; c: EMPTY; a@x IMPLIED", "a(b c)"},
        {"a: (b, c); b: (#PCDATA); c: ANY; a@x IMPLIED", "a(b('t') c(u[z=1]('t') u))"},
        {"a: (b); b: (c); c: (#PCDATA); b@x IMPLIED", "a(b[x=1](c('t')))"},
        {"a: (#PCDATA | b | a)*; b: (c*); c: ANY", "a('t' b(c(u[x=1]('t')) c) a('u' b) 'v')"},
        {"a: (#PCDATA | a)*; a@x IMPLIED", "a('1' a[x=1]('2' a('3')))"},
        // Comments, instructions and sections.
        {"a: EMPTY", "a(# ?)"},
        {"a: EMPTY; a@x IMPLIED", "a(# ?)"},
        {"a: ANY; a@x IMPLIED", "a(# u(? \"))"},
        {"a: (#PCDATA)", "a(# 't' \" ?)"},
        {"a: (#PCDATA); a@x IMPLIED", "a(# 't' \" ?)"},
        {"a: CHARS; a@x IMPLIED", "a(#)"},
        {"a: (b, c?, b+); b: EMPTY; c: EMPTY", "a(# b ? c b # b #)"},
        {"a: (b, c); b: EMPTY; c: EMPTY; a@x IMPLIED", "a(# b(#) ? c)"},
        {"a: (#PCDATA | b | a)*; b: (c*); c: ANY; b@x IMPLIED", "a('t' # b(c(u[x=1]('t') #) ? c) a(? \" b) #)"},
        // Links of an element around one that has none, around one that has one, and so on.
        {"a: (b); b: (c, c); c: (d?, b?); d: EMPTY; a@x IMPLIED; c@x IMPLIED", "a(b(c(d b(c c)) c(d)))"},
        {"a: (b*); b: (c*); c: (d*); d: (b*); b@x IMPLIED; d@x IMPLIED", "a(b(c(d(b(c(d d)) b)) c) b)"},
        {"a: (b*); b: (c*); c: (d*); d: (b*); a@x IMPLIED", "a(b(c(d(b(c(d d)) b)) c) b)"},
        {"a: (m*, b); m: (#PCDATA | b)*; b: (c*); c: ANY; a@x IMPLIED", "a(m('t' b(c(u) c)) b(c('u')))"},
        {"a: (m*, b); m: (#PCDATA | b)*; b: (c*); c: ANY", "a(m('t' b(c(u) c)) b(c('u')))"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.dtd) + " over " + c.tree);
        const auto dtd = dtdOf(c.dtd);
        const auto element = elementOf(c.tree);
        ASSERT_TRUE(FastValidation::accepts(*dtd, *element));
        EXPECT_EQ("valid " + linksOf(*element, {dtd.get()}), byMatcher(*dtd, c.tree));
        element->setDtd(nullptr);
        EXPECT_TRUE(FastValidation::accepts(*dtd, *element));
        EXPECT_EQ("valid " + linksOf(*element, {dtd.get()}), byMatcher(*dtd, c.tree)) << "again";
        EXPECT_EQ(DtdAccess::validationRun(*dtd), 0U);
    }
}

// What it has linked until then, the Matcher links too: nothing else is linked in the end.
TEST(FastValidationTest, GivesUpWhereSomethingDoesNotFit) {
    const struct {
        const char* dtd;
        const char* tree;
    } kCases[] = {
        {"", "a"},
        {"b: ANY", "a"},
        {"a: EMPTY", "a('t')"},
        {"a: EMPTY", "a(a)"},
        {"a: EMPTY", "a[x=1]"},
        {"a: EMPTY; a@x REQUIRED", "a"},
        {"a: EMPTY; a@x REQUIRED; a@y IMPLIED", "a[y=1]"},
        {"a: EMPTY; a@x IMPLIED", "a[x=1 y=1]"},
        {"a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t'))"},
        {"a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t') c('u'))"},
        {"a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t') c c)"},
        {"a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t') 'u' c)"},
        {"a: (b, c); b: (#PCDATA); c: (b)", "a(b('t') c)"},
        {"a: (b, c); b: (#PCDATA); c: (b)", "a(b('t') c(b('t') b('u')))"},
        {"a: (#PCDATA | b)*; b: EMPTY; c: EMPTY", "a('t' b 'u' c 'v')"},
        {"a: (#PCDATA | b)*; b: (#PCDATA)", "a('t' b('u') b('v' b))"},
        {"a: (#PCDATA | b)*; b: (c); c: (#PCDATA)", "a('t' b(c('u')) b(c('v') c('w')))"},
        {"a: (#PCDATA); a@x IMPLIED", "a[y=1]('t')"},
        {"a: (b*); b: (c*); c: (#PCDATA | b)*; a@x IMPLIED; b@x IMPLIED", "a(b(c('t' b(c)) c('u' u)))"},
        {"a: (b*); b: (c*); c: EMPTY; a@x IMPLIED; b@x REQUIRED", "a(b[x=1](c c) b(c))"},
        {"a: CHARS", "a('t' b)"},
        {"a: CHARS", "a(# b)"},
        {"a: EMPTY", "a(# 't')"},
        {"a: EMPTY", "a(# \")"},
        {"a: (b, c); b: EMPTY; c: EMPTY", "a(# b ? c \")"},
        {"a: (b, c); b: EMPTY; c: EMPTY", "a(# b ?)"},
        {"a: (#PCDATA | b)*; b: (#PCDATA)", "a(# b('t' @) ?)"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.dtd) + " over " + c.tree);
        const auto dtd = dtdOf(c.dtd);
        const auto element = elementOf(c.tree);
        EXPECT_FALSE(FastValidation::accepts(*dtd, *element));
        EXPECT_FALSE(dtd->validate(element.get()));
        EXPECT_EQ("invalid " + linksOf(*element, {dtd.get()}), byMatcher(*dtd, c.tree));
    }
}

TEST(FastValidationTest, GivesUpWhereSomethingFailsThatTookAChild) {
    const auto dtd = dtdOf("a: ((b, b) | (b, c)); b: (#PCDATA); c: EMPTY");
    const auto element = elementOf("a(b('t') c)");
    EXPECT_FALSE(FastValidation::accepts(*dtd, *element));
    EXPECT_TRUE(dtd->validate(element.get()));
    EXPECT_EQ(linksOf(*element, {dtd.get()}), "a(b('t'*) c)");
}

// --- Nodes of a caller's own ---

class OwnElement : public Element {
public:
    explicit OwnElement(const std::string& itsName) : Element(itsName) {}
    bool isElement() const override {
        ADD_FAILURE() << "called";
        return true;
    }
    void setDtd(const Dtd* dtd) override {
        if (dtd != nullptr) ADD_FAILURE() << "called";
    }
};

class OwnText : public CharData {
public:
    OwnText() : CharData("t") {}
    bool isElement() const override {
        ADD_FAILURE() << "called";
        return false;
    }
    void setDtd(const Dtd* dtd) override {
        if (dtd != nullptr) ADD_FAILURE() << "called";
    }
};

TEST(FastValidationTest, LeavesNodesOfACallersOwnToTheMatcherAndCallsNothingOfThem) {
    const struct {
        const char* dtd;
        bool accepted;
    } kCases[] = {
        {"a: (b); b: ANY", false}, {"a: (#PCDATA | b)*; b: ANY", false},
        {"a: ANY; b: ANY", true},  {"a: ANY; a@x IMPLIED; b: ANY", false},
        {"a: (#PCDATA)", false},   {"a: CHARS", false},
        {"a: EMPTY", false},
    };
    for (const auto& c : kCases) {
        for (const bool isText : {false, true}) {
            SCOPED_TRACE(std::string(c.dtd) + (isText ? ", text" : ", element"));
            const auto dtd = dtdOf(c.dtd);
            Element a("a");
            a.addChild(isText ? static_cast<Object*>(new OwnText) : new OwnElement("b"));
            EXPECT_EQ(FastValidation::accepts(*dtd, a), c.accepted);
            EXPECT_EQ(NodeTestAccess::dtd(*a.getChild(0)), nullptr);
        }
    }
    OwnElement top("b");
    EXPECT_FALSE(FastValidation::accepts(*dtdOf("b: ANY"), top));
}

// An element around it is to be linked, which is found before anything below the ANY element is.
TEST(FastValidationTest, LeavesNodesOfACallersOwnFarBelowAnElementToTheMatcher) {
    const auto dtd = dtdOf("a: (b); b: ANY; a@x IMPLIED");
    const auto tree = elementOf("a(b('t' u(v)))");
    tree->getElement("b")->getElement("u")->getElement("v")->addChild(new OwnText);
    EXPECT_FALSE(FastValidation::accepts(*dtd, *tree));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a(b('t' u(v('t'))))");
}

// --- Validation within a validation ---

TEST(FastValidationTest, JoinsNoRunThatIsUnderWay) {
    class Noting : public ContentSpec {
    public:
        explicit Noting(Dtd* owner) : ContentSpec(owner), dtd(owner) {}
        bool validate(const std::vector<Object*>&) const override {
            const auto element = elementOf("b");
            wasAccepted = FastValidation::accepts(*dtd, *element);
            return true;
        }
        void toStream(OutStream&) const override {}
        ContentSpec* clone(Dtd* owner) const override { return new Noting(owner); }

        mutable bool wasAccepted = true;

    private:
        Dtd* dtd;
    };
    const auto dtd = dtdOf("b: EMPTY");
    auto* const noting = new Noting(dtd.get());
    dtd->addElementDecl("a", noting);
    EXPECT_TRUE(dtd->validate(elementOf("a").get()));
    EXPECT_FALSE(noting->wasAccepted);
    EXPECT_TRUE(FastValidation::accepts(*dtd, *elementOf("b")));
}

// The other Dtd has set links: the first decides again what it has decided, and sets its own.
TEST(FastValidationTest, AnotherDtdForgetsTheVerdictsOfARunThatIsUnderWay) {
    for (const char* const below : {"c: EMPTY", "c: (d); d: ANY", "c: (#PCDATA | d)*; d: (#PCDATA)", "c: ANY"}) {
        std::string links[2];
        for (const bool without : {false, true}) {
            const WithoutFastValidation off(without);
            const auto other = dtdOf(std::string("b: (c); b@x IMPLIED; c@x IMPLIED; ") + below);
            const auto dtd = dtdOf(
                std::string("a: ((own, x) | (own, y) | (own)); x: ANY; y: ANY; b: (c); b@x IMPLIED; c@x IMPLIED; ") +
                below);
            // First its own, then the other, then its own again.
            class Twice : public ContentSpec {
            public:
                Twice(Dtd* owner, const Dtd* second) : ContentSpec(owner), one(owner), two(second) {}
                bool validate(const std::vector<Object*>& children) const override {
                    for (const Dtd* asked : {one, two, one}) EXPECT_TRUE(asked->validate(children[0]->toElement()));
                    return true;
                }
                void toStream(OutStream&) const override {}
                ContentSpec* clone(Dtd* owner) const override { return new Twice(owner, two); }

            private:
                const Dtd* one;
                const Dtd* two;
            };
            dtd->addElementDecl("own", new Twice(dtd.get(), other.get()));
            const std::string content = std::string(below).find("(d)") != std::string::npos ? "(d)" : "";
            const auto tree = elementOf("a(own(b(c" + content + ")))");
            EXPECT_TRUE(dtd->validate(tree.get()));
            links[without ? 1 : 0] = linksOf(*tree, {dtd.get(), other.get()});
        }
        EXPECT_EQ(links[0], links[1]) << below;
        EXPECT_EQ(links[0].find('+'), std::string::npos) << links[0];
    }
}

TEST(FastValidationTest, CanBeSwitchedOff) {
    const auto dtd = dtdOf("a: EMPTY");
    const auto element = elementOf("a");
    EXPECT_TRUE(FastValidation::accepts(*dtd, *element));
    {
        const WithoutFastValidation off;
        EXPECT_FALSE(FastValidation::accepts(*dtd, *element));
        EXPECT_TRUE(dtd->validate(element.get()));
    }
    EXPECT_TRUE(FastValidation::accepts(*dtd, *element));
}

// Elements that were read share their names; those that were renamed or added have their own.
TEST(FastValidationTest, FindsSharedNamesAndOwnOnes) {
    const auto dtd = dtdOf("r: ((a, b) | c)*; a: (#PCDATA); b: (a*); c: EMPTY; b@x IMPLIED; b@y REQUIRED");
    std::string text;
    for (int i = 0; i < 50; ++i) text += "<a>text</a><b y=\"1\" x=\"2\"><a/><a>more text</a></b><c/><c/>";
    StringInStream in("<r>" + text + "</r>");
    ElementReader reader;
    ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    const std::unique_ptr<Element> root(reader.extractRoot());
    EXPECT_TRUE(FastValidation::accepts(*dtd, *root));

    Element* const first = root->getElement("c", 2);
    Element* const second = root->getElement("c", 3);
    first->setName("a");
    EXPECT_FALSE(FastValidation::accepts(*dtd, *root)) << "an a without b";
    second->setName("b");
    EXPECT_FALSE(FastValidation::accepts(*dtd, *root)) << "an attribute is missing";
    second->setAttribute("y", "1");
    EXPECT_TRUE(FastValidation::accepts(*dtd, *root));
    for (int i = 0; i < 20; ++i) root->addChild(new Element("c"));
    EXPECT_TRUE(FastValidation::accepts(*dtd, *root));
    root->addChild(new Element("b"));
    EXPECT_FALSE(FastValidation::accepts(*dtd, *root));
}

}  // namespace
}  // namespace Xml::test
