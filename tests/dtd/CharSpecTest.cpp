#include "xml/dtd/CharSpec.h"

#include "models/Models.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>

namespace Xml::test {

TEST(CharSpecTest, AcceptsCharacterDataOnly) {
    EXPECT_TRUE(accepts("CHARS", ""));
    EXPECT_TRUE(accepts("CHARS", "'text'"));
    EXPECT_TRUE(accepts("CHARS", "'one' 'two' ''"));
    EXPECT_FALSE(accepts("CHARS", "a"));
    EXPECT_FALSE(accepts("CHARS", "'text' a"));
    EXPECT_FALSE(accepts("CHARS", "a 'text'"));
    EXPECT_FALSE(accepts("CHARS", "@")) << "neither element nor character data";
}

TEST(CharSpecTest, PassesOverCommentsAndInstructions) {
    EXPECT_TRUE(accepts("CHARS", "# 'text' ? \" #"));
    EXPECT_FALSE(accepts("CHARS", "# a"));
    Dtd dtd("test");
    const NodeList nodes("# \" 'text' ?");
    EXPECT_TRUE(CharSpec(&dtd).validate(nodes.list()));
    const char* const kLinks[] = {"#", "'section'*", "'text'*", "?"};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(linksOf(*nodes.list()[i], {&dtd}), kLinks[i]);
}

TEST(CharSpecTest, LinksCharacterDataUpToTheFirstThatDoesNotFit) {
    const auto dtd = dtdOf("p: CHARS");
    auto p = elementOf("p('one' 'two')");
    EXPECT_TRUE(dtd->validate(p.get()));
    EXPECT_EQ(linksOf(*p, {dtd.get()}), "p('one'* 'two'*)");

    p = elementOf("p('one' a 'two')");
    EXPECT_FALSE(dtd->validate(p.get()));
    EXPECT_EQ(linksOf(*p, {dtd.get()}), "p('one'* a 'two')");
}

TEST(CharSpecTest, WritesCharacterData) {
    Dtd dtd("test");
    EXPECT_EQ(written(CharSpec(&dtd)), "(#PCDATA)");
}

TEST(CharSpecTest, ClonesForTheGivenDtd) {
    Dtd dtd("test"), other("other");
    const CharSpec model(&dtd);
    const std::unique_ptr<ContentSpec> copy(model.clone(&other));
    EXPECT_NE(dynamic_cast<CharSpec*>(copy.get()), nullptr);
    EXPECT_EQ(SpecAccess::dtd(model), &dtd);

    const NodeList nodes("'text'");
    EXPECT_TRUE(copy->validate(nodes.list()));
    EXPECT_EQ(linksOf(*nodes.list()[0], {&other}), "'text'*");
}

}  // namespace Xml::test
