#include "xml/dtd/EmptySpec.h"

#include "models/Models.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>

namespace Xml::test {

TEST(EmptySpecTest, AcceptsNoChildrenAndNothingElse) {
    EXPECT_TRUE(accepts("EMPTY", ""));
    EXPECT_FALSE(accepts("EMPTY", "a"));
    EXPECT_FALSE(accepts("EMPTY", "'text'"));
    EXPECT_FALSE(accepts("EMPTY", "' '")) << "white space is a child too";
    EXPECT_FALSE(accepts("EMPTY", "''")) << "so is empty character data";
    EXPECT_FALSE(accepts("EMPTY", "@"));
}

TEST(EmptySpecTest, PassesOverCommentsAndInstructions) {
    EXPECT_TRUE(accepts("EMPTY", "#"));
    EXPECT_TRUE(accepts("EMPTY", "? # #"));
    EXPECT_FALSE(accepts("EMPTY", "# a"));
    EXPECT_FALSE(accepts("EMPTY", "\"")) << "a section is character data";
}

TEST(EmptySpecTest, LinksNothing) {
    Dtd dtd("test");
    const NodeList nodes("a 'text'");
    EXPECT_FALSE(EmptySpec(&dtd).validate(nodes.list()));
    EXPECT_EQ(linksOf(*nodes.list()[0], {&dtd}), "a");
    EXPECT_EQ(linksOf(*nodes.list()[1], {&dtd}), "'text'");
}

TEST(EmptySpecTest, WritesItsKeyword) {
    Dtd dtd("test");
    EXPECT_EQ(written(EmptySpec(&dtd)), "EMPTY");
}

TEST(EmptySpecTest, ClonesForTheGivenDtd) {
    Dtd dtd("test"), other("other");
    const EmptySpec model(&dtd);
    const std::unique_ptr<ContentSpec> copy(model.clone(&other));
    EXPECT_NE(dynamic_cast<EmptySpec*>(copy.get()), nullptr);
    EXPECT_EQ(SpecAccess::dtd(model), &dtd);
    EXPECT_EQ(SpecAccess::dtd(*copy), &other);
}

}  // namespace Xml::test
