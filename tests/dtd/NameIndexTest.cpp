#include "xml/dtd/internal/NameIndex.h"

#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

TEST(NameIndexTest, FindsTheFirstPlaceOfAName) {
    NameIndex index;
    EXPECT_EQ(index.find("a"), NameIndex::kNone);
    index.add("a", 0);
    index.add("b", 1);
    index.add("a", 2);
    EXPECT_EQ(index.find("a"), 0U);
    EXPECT_EQ(index.find("b"), 1U);
    EXPECT_EQ(index.find("c"), NameIndex::kNone);
    EXPECT_EQ(index.find(""), NameIndex::kNone);
}

TEST(NameIndexTest, KeepsNamesOfItsOwn) {
    NameIndex index;
    {
        std::string name(100, 'n');
        index.add(name, 7);
        name.assign(100, 'm');
    }
    const NameIndex copy(index);
    EXPECT_EQ(copy.find(std::string(100, 'n')), 7U);
    EXPECT_EQ(copy.find(std::string(100, 'm')), NameIndex::kNone);
}

}  // namespace
}  // namespace Xml::test
