#include "xml/dom/Name.h"

#include <gtest/gtest.h>

namespace Xml::test {
namespace {

using internal::Name;

const std::string kShort = "n";
const std::string kLong = "a-name-that-no-string-holds-without-memory";

TEST(NameTest, IsOneWordAndEmptyAtFirst) {
    EXPECT_EQ(sizeof(Name), sizeof(void*));
    EXPECT_EQ(Name().text(), "");
    EXPECT_EQ(&Name().text(), &Name().text());
}

TEST(NameTest, CopiesATextOfItsOwnOrRefersToASharedOne) {
    for (const std::string& text : {kShort, kLong, std::string()}) {
        SCOPED_TRACE(text);
        Name name(&text);
        EXPECT_EQ(&name.text(), &text);
        name.set(name.text());
        EXPECT_EQ(name.text(), text);
        EXPECT_NE(&name.text(), &text);
        name.set(kLong);
        EXPECT_EQ(name.text(), kLong);
        EXPECT_NE(&name.text(), &kLong);
        name.set(kShort);
        EXPECT_EQ(name.text(), kShort);
    }
}

TEST(NameTest, KnowsWhetherItsTextIsShared) {
    EXPECT_TRUE(Name(&kLong).isShared());
    Name copy;
    copy.set(kLong);
    EXPECT_FALSE(copy.isShared());
}

}  // namespace
}  // namespace Xml::test
