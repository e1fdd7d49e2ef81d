#include "xml/dtd/MixedSpec.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>

namespace Xml::test {

using Texts = std::vector<std::string>;

TEST(MixedSpecTest, AcceptsTextAndItsNamesInAnyOrderAndNumber) {
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool valid;
    } kCases[] = {
        {"nothing", "(#PCDATA | a)*", "", true},
        {"text only", "(#PCDATA | a)*", "'text' 'more'", true},
        {"elements only", "(#PCDATA | a)*", "a a a", true},
        {"text between", "(#PCDATA | a)*", "'x' a 'y' a a 'z'", true},
        {"two names, later one first", "(#PCDATA | a | b)*", "b a b", true},
        {"another name", "(#PCDATA | a)*", "b", false},
        {"another name at the end", "(#PCDATA | a)*", "'x' a b", false},
        {"other case", "(#PCDATA | a)*", "A", false},
        {"name that begins like it", "(#PCDATA | a)*", "aa", false},
        {"name without declaration", "(#PCDATA | undeclared)*", "undeclared", false},
        {"neither element nor text", "(#PCDATA | a)*", "@", false},
        {"no names, nothing", "(#PCDATA)", "", true},
        {"no names, text", "(#PCDATA)", "'x' 'y'", true},
        {"no names, element", "(#PCDATA)", "a", false},
        {"no names, element after text", "(#PCDATA)", "'x' a", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(accepts(c.model, c.children), c.valid);
    }
}

TEST(MixedSpecTest, TakesOnlyElementsThatAreValidThemselves) {
    const auto dtd = dtdOf("p: (#PCDATA | em)*; em: (#PCDATA)");
    EXPECT_TRUE(dtd->validate(elementOf("p('x' em('y') 'z')").get()));
    EXPECT_FALSE(dtd->validate(elementOf("p('x' em(em))").get()));
    EXPECT_FALSE(dtd->validate(elementOf("p(em[x=1])").get()));
}

TEST(MixedSpecTest, StopsAtTheFirstFailureAndKeepsTheLinksSetBefore) {
    const auto dtd = dtdOf("p: (#PCDATA | em | b)*; em: (#PCDATA); b: EMPTY");
    const struct {
        const char* name;
        const char* tree;
        const char* links;
    } kCases[] = {
        {"unlisted name", "p('1' em('2') u '3')", "p('1'* em*('2'*) u '3')"},
        {"invalid element", "p('1' b('x') em('2') '3')", "p('1'* b('x') em('2') '3')"},
        {"element invalid half way", "p('1' em('2' b '3') '4')", "p('1'* em('2'* b '3') '4')"},
        {"no node of content", "p('1' @ '2')", "p('1'* @ '2')"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto p = elementOf(c.tree);
        EXPECT_FALSE(dtd->validate(p.get()));
        EXPECT_EQ(linksOf(*p, {dtd.get()}), c.links);
    }
}

TEST(MixedSpecTest, ReportsANameThatIsThereAndKeepsOne) {
    MessageCollector messages;
    Dtd dtd("test");
    MixedSpec model(&dtd);
    model.addName("b");
    model.addName("a");
    EXPECT_EQ(messages.take(), Texts());
    model.addName("b");
    EXPECT_EQ(messages.take(), Texts{"<MixedSpec::MixedSpec> name already added b"});
    EXPECT_EQ(written(model), "(#PCDATA | b | a)*");
}

TEST(MixedSpecTest, WritesItsNamesInTheOrderOfAdding) {
    Dtd dtd("test");
    EXPECT_EQ(written(*specOf("(#PCDATA)", &dtd)), "(#PCDATA)");
    EXPECT_EQ(written(*specOf("(#PCDATA | z)*", &dtd)), "(#PCDATA | z)*");
    EXPECT_EQ(written(*specOf("(#PCDATA | z | a | m)*", &dtd)), "(#PCDATA | z | a | m)*");
}

TEST(MixedSpecTest, TakesNamesAsTheyAre) {
    MessageCollector messages;
    Dtd dtd("test");
    MixedSpec model(&dtd);
    model.addName("1 no name");
    model.addName("");
    EXPECT_EQ(messages.take(), Texts());
    EXPECT_EQ(written(model), "(#PCDATA | 1 no name | )*");
}

TEST(MixedSpecTest, ClonesItsNamesForTheGivenDtd) {
    const auto dtd = dtdOf("b: EMPTY; c: EMPTY");
    const auto other = dtdOf("b: EMPTY");
    const auto model = specOf("(#PCDATA | b | c)*", dtd.get());
    const std::unique_ptr<ContentSpec> copy(model->clone(other.get()));
    EXPECT_EQ(written(*copy), "(#PCDATA | b | c)*");
    EXPECT_EQ(SpecAccess::dtd(*copy), other.get());
    EXPECT_EQ(SpecAccess::dtd(*model), dtd.get());

    const NodeList nodes("'text' b c");
    EXPECT_FALSE(copy->validate(nodes.list())) << "the other Dtd does not know c";
    EXPECT_EQ(linksOf(*nodes.list()[0], {other.get()}), "'text'*");
    EXPECT_EQ(linksOf(*nodes.list()[1], {other.get()}), "b*");
    EXPECT_EQ(linksOf(*nodes.list()[2], {other.get()}), "c");
    EXPECT_TRUE(model->validate(nodes.list()));

    // The copy knows which names it has.
    MessageCollector messages;
    auto* mixed = dynamic_cast<MixedSpec*>(copy.get());
    ASSERT_NE(mixed, nullptr);
    mixed->addName("c");
    EXPECT_EQ(messages.take(), Texts{"<MixedSpec::MixedSpec> name already added c"});
    mixed->addName("d");
    EXPECT_EQ(written(*copy), "(#PCDATA | b | c | d)*");
    EXPECT_EQ(written(*model), "(#PCDATA | b | c)*");
}

}  // namespace Xml::test
