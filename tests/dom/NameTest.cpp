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

TEST(NameTest, CopiesATextOfItsOwnAndRefersToASharedOne) {
    for (const std::string& text : {kShort, kLong, std::string()}) {
        SCOPED_TRACE(text);
        Name name;
        name.set(text);
        EXPECT_EQ(name.text(), text);
        EXPECT_NE(&name.text(), &text);
        name.share(text);
        EXPECT_EQ(&name.text(), &text);
        name.set(name.text());
        EXPECT_EQ(name.text(), text);
        EXPECT_NE(&name.text(), &text);
        name.set(kShort);
        EXPECT_EQ(name.text(), kShort);
    }
}

TEST(NameTest, KnowsWithWhichNamesItSharesItsText) {
    Name one, other, copy;
    one.share(kLong);
    other.share(kLong);
    copy.set(kLong);
    EXPECT_TRUE(one.isSharedWith(other));
    EXPECT_FALSE(one.isSharedWith(copy));
    EXPECT_EQ(one.text(), copy.text());
}

}  // namespace
}  // namespace Xml::test
