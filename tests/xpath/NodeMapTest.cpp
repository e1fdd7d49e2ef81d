#include "xml/xpath/internal/NodeMap.h"

#include "xml/xpath/XPath.h"
#include "xpath/AskedMemory.h"
#include "xpath/Queries.h"
#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// What a query for the parents of as many nodes asks of the heap. It puts each parent into a map.
std::size_t askedByParents(int parents) {
    std::string text;
    for (int i = 0; i < parents; ++i) text += "<a><b/></a>";
    const Tree tree("<r>" + text + "</r>");
    XPath query(tree.document());
    const std::size_t before = askedMemory();
    EXPECT_TRUE(query.FindNodes(u"/r/a/b/parent::a"));
    const std::size_t asked = askedMemory() - before;
    EXPECT_EQ(query.GetNrOfResults(), static_cast<unsigned>(parents));
    return asked;
}

TEST(NodeMapTest, GrowsWhenMoreThanHalfOfItWouldBeTaken) {
    // A table of 32 places is followed by one of 128, of two words each.
    constexpr std::size_t kGrown = 128 * 2 * sizeof(void*);
    const std::size_t asked = askedByParents(16);
    EXPECT_LT(asked - askedByParents(15), kGrown);
    EXPECT_GE(askedByParents(17) - asked, kGrown);
}

}  // namespace
}  // namespace Xml::test
