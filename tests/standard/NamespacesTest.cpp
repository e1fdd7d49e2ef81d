// Prefixes in scope, and that those out of scope are gone.
#include "xml/standard/internal/Namespaces.h"

#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

TEST(NamespacesTest, FindsWhatIsInScope) {
    Namespaces scopes;
    EXPECT_EQ(scopes.find("p"), Namespaces::kNone);
    EXPECT_EQ(scopes.find(""), Namespaces::kNone);
    EXPECT_EQ(scopes.nameOf(scopes.find("xml")), Namespaces::kXmlName);
    const std::size_t outer = scopes.mark();
    scopes.declare("p", "u");
    scopes.declare("", "u");
    EXPECT_EQ(scopes.find("p"), scopes.find(""));
    const std::size_t inner = scopes.mark();
    scopes.declare("p", "v");
    scopes.declare("", "");
    scopes.declare("q", "u");
    EXPECT_EQ(scopes.nameOf(scopes.find("p")), "v");
    EXPECT_EQ(scopes.find(""), Namespaces::kNone);
    EXPECT_EQ(scopes.nameOf(scopes.find("q")), "u");
    scopes.goBack(inner);
    EXPECT_EQ(scopes.nameOf(scopes.find("p")), "u");
    EXPECT_EQ(scopes.nameOf(scopes.find("")), "u");
    EXPECT_EQ(scopes.find("q"), Namespaces::kNone);
    scopes.goBack(outer);
    EXPECT_EQ(scopes.find("p"), Namespaces::kNone);
    EXPECT_EQ(scopes.find(""), Namespaces::kNone);
    EXPECT_EQ(scopes.nameOf(Namespaces::kNone), "");
}

// The default may be undeclared where it was not declared, and within that.
TEST(NamespacesTest, UndeclaresTheDefault) {
    Namespaces scopes;
    scopes.declare("", "");
    const std::size_t inner = scopes.mark();
    scopes.declare("", "u");
    EXPECT_EQ(scopes.nameOf(scopes.find("")), "u");
    scopes.goBack(inner);
    EXPECT_EQ(scopes.find(""), Namespaces::kNone);
}

// Numbers are given again, so there are as many as names have been in scope at a time.
TEST(NamespacesTest, KeepsNothingThatIsOutOfScope) {
    Namespaces scopes;
    scopes.declare("p", "u");
    const Namespaces::Number first = scopes.find("p");
    for (int i = 0; i < 100; ++i) {
        const std::size_t before = scopes.mark();
        scopes.declare("q" + std::to_string(i), "v" + std::to_string(i));
        scopes.declare("p", "w" + std::to_string(i));
        EXPECT_LE(scopes.find("q" + std::to_string(i)), first + 2);
        EXPECT_LE(scopes.find("p"), first + 2);
        EXPECT_NE(scopes.find("p"), scopes.find("q" + std::to_string(i)));
        scopes.goBack(before);
    }
    EXPECT_EQ(scopes.find("p"), first);
    EXPECT_EQ(scopes.nameOf(first), "u");
}

}  // namespace
}  // namespace Xml::test
