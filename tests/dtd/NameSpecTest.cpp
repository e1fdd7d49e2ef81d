#include "xml/dtd/NameSpec.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>

namespace Xml::test {

TEST(NameSpecTest, TakesOneValidElementOfItsNameAndElseLeavesTheQueue) {
    const auto dtd = dtdOf("a: (b?); b: EMPTY; A: EMPTY; aa: EMPTY");
    const struct {
        const char* name;
        const char* children;
        bool matches;
        std::size_t left;
    } kCases[] = {
        {"nothing waits", "", false, 0},
        {"its name", "a", true, 0},
        {"its name twice", "a a", true, 1},
        {"its name, valid content", "a(b) b", true, 1},
        {"its name, invalid content", "a(a)", false, 1},
        {"its name, undeclared attribute", "a[x=1] b", false, 2},
        {"another name in front", "b a", false, 2},
        {"other case", "A", false, 1},
        {"longer name", "aa", false, 1},
        {"text in front", "'a' a", false, 2},
        {"neither element nor text", "@ a", false, 2},
    };
    const NameSpec particle(dtd.get(), "a");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const NodeList nodes(c.children);
        ChildQueue queue(nodes.list());
        EXPECT_EQ(particle.validate(queue), c.matches);
        EXPECT_EQ(queue.size(), c.left);
        if (!queue.empty()) {
            EXPECT_EQ(queue.front(), nodes.list()[nodes.list().size() - c.left]);
        }
    }
}

TEST(NameSpecTest, DoesNotMatchAnElementThatIsNotDeclared) {
    Dtd dtd("test");
    const NodeList nodes("a");
    ChildQueue queue(nodes.list());
    EXPECT_FALSE(NameSpec(&dtd, "a").validate(queue));
    EXPECT_EQ(queue.size(), 1U);
    dtd.addElementDecl("a");
    EXPECT_TRUE(NameSpec(&dtd, "a").validate(queue)) << "declared since";
    EXPECT_TRUE(queue.empty());
}

TEST(NameSpecTest, LeavesTheLinkToTheDtdToTheElementsAttributeList) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY; b@x IMPLIED");
    const NodeList nodes("a b");
    ChildQueue queue(nodes.list());
    EXPECT_TRUE(NameSpec(dtd.get(), "a").validate(queue));
    EXPECT_TRUE(NameSpec(dtd.get(), "b").validate(queue));
    EXPECT_EQ(linksOf(*nodes.list()[0], {dtd.get()}), "a");
    EXPECT_EQ(linksOf(*nodes.list()[1], {dtd.get()}), "b*");
}

TEST(NameSpecTest, KeepsAnEmptyNameInPlaceOfWhatIsNoName) {
    MessageCollector messages;
    Dtd dtd("test");
    for (const char* name : {"", "1a", "-a", ".a", "a b", "a\xC3\xA4", "a|b", " a"}) {
        EXPECT_EQ(written(NameSpec(&dtd, name), false), "") << name;
        EXPECT_EQ(written(NameSpec(&dtd, name), true), "()") << name;
    }
    for (const char* name : {"a", "_", ":", "a-b.c:d_e", "Z9"}) EXPECT_EQ(written(NameSpec(&dtd, name), false), name);
    EXPECT_EQ(messages.texts(), std::vector<std::string>());
}

TEST(NameSpecTest, WithAnEmptyNameMatchesNoChild) {
    MessageCollector messages;  // an element without a name is reported when it is made
    const auto dtd = dtdOf("a: EMPTY");
    dtd->addElementDecl("");
    dtd->addElementDecl("1a");
    for (const char* name : {"", "1a"}) {
        SCOPED_TRACE(name);
        const NodeList nodes("! a 'text'");
        const NameSpec particle(dtd.get(), name);
        for (ChildQueue queue(nodes.list()); !queue.empty(); queue.pop()) {
            const std::size_t before = queue.size();
            EXPECT_FALSE(particle.validate(queue));
            EXPECT_EQ(queue.size(), before);
        }
        const std::unique_ptr<ContentSpec> model(new ChildrenSpec(dtd.get(), name, REP_OPTIONAL));
        EXPECT_TRUE(model->validate({}));
        EXPECT_FALSE(model->validate({nodes.list()[0]}));
    }
}

TEST(NameSpecTest, WritesItsNameInParenthesesOnlyWhenOutermost) {
    Dtd dtd("test");
    EXPECT_EQ(written(NameSpec(&dtd, "b"), true), "(b)");
    EXPECT_EQ(written(NameSpec(&dtd, "b"), false), "b");
}

TEST(NameSpecTest, ClonesForTheGivenDtd) {
    const auto dtd = dtdOf("a: EMPTY");
    const auto other = dtdOf("a: (a)");
    const NameSpec particle(dtd.get(), "a");
    const std::unique_ptr<CpSpec> copy(particle.clone(other.get()));
    EXPECT_EQ(SpecAccess::dtd(*copy), other.get());
    EXPECT_EQ(written(*copy, true), "(a)");

    const NodeList nodes("a");
    ChildQueue queue(nodes.list());
    EXPECT_FALSE(copy->validate(queue)) << "it asks the other Dtd";
    EXPECT_TRUE(particle.validate(queue));
}

}  // namespace Xml::test
