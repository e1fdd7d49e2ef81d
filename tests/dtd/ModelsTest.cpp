// The short texts that the tests make models and trees from end with an error where they do not fit, whatever is
// missing.
#include "models/Models.h"
#include <gtest/gtest.h>
#include <stdexcept>

namespace Xml::test {
namespace {

TEST(ModelsTest, AnAttributeListThatDoesNotEndIsAnError) {
    EXPECT_EQ(nodesOf("a[x=1 y]").at(0).attributes.size(), 2u);
    for (const char* text : {"a[", "a[x", "a[x ", "a[x=", "a[x=1 y"})
        EXPECT_THROW(nodesOf(text), std::logic_error) << text;
}

TEST(ModelsTest, TreesAndTextsThatDoNotEndAreErrors) {
    EXPECT_EQ(nodesOf("a('t' b)").at(0).children.size(), 2u);
    for (const char* text : {"a(", "a(b", "a('t", "'t", "a(b]", "a)"})
        EXPECT_THROW(elementOf(text), std::logic_error) << text;
}

TEST(ModelsTest, GroupsThatDoNotEndAreErrors) {
    EXPECT_EQ(particleOf("(a, (b | c))").members.size(), 2u);
    for (const char* text : {"", "(", "(a", "(a,", "(a | (b)", "(a | b, c)"})
        EXPECT_THROW(particleOf(text), std::logic_error) << text;
}

}  // namespace
}  // namespace Xml::test
