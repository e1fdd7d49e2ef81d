#include "xml/standard/internal/OrdinaryNames.h"

#include "xml/dom/internal/NameTable.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// The names of one tree, with the prefixes p, q and o in scope; o stands for what p does.
class Tags {
public:
    explicit Tags(bool hasNamespaces = true) : names(declared, scopes, hasNamespaces) {
        scopes.declare("p", "u");
        scopes.declare("q", "v");
        scopes.declare("o", "u");
        declared.elements["ruled"];
    }

    bool isElement(const std::string& name) { return names.isElement(table.find(name, memory)); }
    bool isAttribute(const std::string& name) { return names.isAttribute(table.find(name, memory)); }
    bool isSpace(const std::string& name) { return OrdinaryNames::isSpace(table.find(name, memory)); }

    Namespaces scopes;

private:
    Declarations declared;
    NodeMemory memory;
    NameTable table;
    OrdinaryNames names;
};

TEST(OrdinaryNamesTest, AreNamesWithoutPrefixOrWithOneInScope) {
    Tags tags;
    for (int i = 0; i < 2; ++i) {
        for (const char* const name : {"a",
                                       "gr\xC3\xB6\xC3\x9F"
                                       "e",
                                       "p:a", "q:a", "xml:lang", "xml:space", "a.-1"}) {
            EXPECT_TRUE(tags.isElement(name)) << name;
            EXPECT_TRUE(tags.isAttribute(name)) << name;
        }
        for (const char* const name : {"1", "", "-a", "a\xC3\x97", "n:a", ":a", "a:", "p:a:b", "p:1", "xmlns",
                                       "xmlns:p", "xmlns:a", "\xC2\xB7", "="}) {
            EXPECT_FALSE(tags.isElement(name)) << name;
            EXPECT_FALSE(tags.isAttribute(name)) << name;
        }
        EXPECT_FALSE(tags.isElement("ruled"));
        EXPECT_TRUE(tags.isAttribute("ruled"));
        EXPECT_TRUE(tags.isSpace("xml:space"));
        EXPECT_FALSE(tags.isSpace("xml:lang"));
        EXPECT_FALSE(tags.isSpace("a"));
    }
}

TEST(OrdinaryNamesTest, MayHaveAnyColonsWithoutNamespaces) {
    Tags tags(false);
    for (const char* const name : {"a", "n:a", ":a", "a:", "p:a:b", "p:1", "xmlns", "xmlns:p", "xml:space"}) {
        EXPECT_TRUE(tags.isElement(name)) << name;
        EXPECT_TRUE(tags.isAttribute(name)) << name;
    }
    EXPECT_FALSE(tags.isElement("1"));
    EXPECT_TRUE(tags.isSpace("xml:space"));
}

TEST(OrdinaryNamesTest, FollowTheScopes) {
    Tags tags;
    EXPECT_FALSE(tags.isElement("n:a"));
    const std::size_t mark = tags.scopes.mark();
    tags.scopes.declare("n", "w");
    EXPECT_TRUE(tags.isElement("n:a"));
    tags.scopes.goBack(mark);
    EXPECT_FALSE(tags.isElement("n:a"));
    EXPECT_TRUE(tags.isElement("p:a"));
}

// Two names of one tag may be the same one, as they are expanded.
TEST(OrdinaryNamesTest, OfOneTagHavePrefixesOfDifferentNamespaces) {
    Tags tags;
    EXPECT_TRUE(tags.isElement("p:a"));
    EXPECT_TRUE(tags.isAttribute("p:x"));
    EXPECT_TRUE(tags.isAttribute("p:y"));
    EXPECT_TRUE(tags.isAttribute("p:x"));
    EXPECT_TRUE(tags.isAttribute("q:x"));
    EXPECT_TRUE(tags.isAttribute("x"));
    EXPECT_FALSE(tags.isAttribute("o:x"));
    EXPECT_TRUE(tags.isElement("a"));
    EXPECT_TRUE(tags.isAttribute("o:x"));
    EXPECT_FALSE(tags.isAttribute("p:x"));
}

TEST(OrdinaryNamesTest, OfOneTagHaveFewPrefixes) {
    Tags tags;
    for (int i = 0; i < 20; ++i) tags.scopes.declare("n" + std::to_string(i), "w" + std::to_string(i));
    EXPECT_TRUE(tags.isElement("a"));
    EXPECT_TRUE(tags.isAttribute("n0:x"));
    EXPECT_TRUE(tags.isAttribute("n1:x"));
    int refused = 0;
    for (int i = 2; i < 20; ++i) refused += tags.isAttribute("n" + std::to_string(i) + ":x") ? 0 : 1;
    EXPECT_GT(refused, 0);
    EXPECT_TRUE(tags.isAttribute("n0:y"));
}

}  // namespace
}  // namespace Xml::test
