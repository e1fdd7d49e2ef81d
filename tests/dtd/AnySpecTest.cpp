#include "xml/dtd/AnySpec.h"

#include "models/Models.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>

namespace Xml::test {

TEST(AnySpecTest, AcceptsEverything) {
    EXPECT_TRUE(accepts("ANY", ""));
    EXPECT_TRUE(accepts("ANY", "a b 'text' a"));
    EXPECT_TRUE(accepts("ANY", "undeclared(likewise[x=1])"));
    EXPECT_TRUE(accepts("ANY", "@"));
}

TEST(AnySpecTest, LooksAtNothingBelow) {
    const auto dtd = dtdOf("doc: ANY; a: (b); a@x IMPLIED; b: EMPTY");
    const auto doc = elementOf("doc(a('not allowed') undeclared 'text')");
    EXPECT_TRUE(dtd->validate(doc.get()));
    EXPECT_EQ(linksOf(*doc, {dtd.get()}), "doc(a('not allowed') undeclared 'text')");
}

TEST(AnySpecTest, WritesItsKeyword) {
    Dtd dtd("test");
    EXPECT_EQ(written(AnySpec(&dtd)), "ANY");
}

TEST(AnySpecTest, ClonesForTheGivenDtd) {
    Dtd dtd("test"), other("other");
    const AnySpec model(&dtd);
    const std::unique_ptr<ContentSpec> copy(model.clone(&other));
    EXPECT_NE(dynamic_cast<AnySpec*>(copy.get()), nullptr);
    EXPECT_EQ(SpecAccess::dtd(model), &dtd);
    EXPECT_EQ(SpecAccess::dtd(*copy), &other);
}

}  // namespace Xml::test
