#include "xml/dtd/ChildQueue.h"

#include "models/Models.h"
#include <gtest/gtest.h>

namespace Xml::test {

TEST(ChildQueueTest, GivesTheNodesInTheirOrder) {
    const NodeList nodes("a 'text' b");
    ChildQueue queue(nodes.list());
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_FALSE(queue.empty());
        EXPECT_EQ(queue.size(), 3 - i);
        EXPECT_EQ(queue.front(), nodes.list()[i]);
        queue.pop();
    }
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(queue.size(), 0U);
}

TEST(ChildQueueTest, IsEmptyOverNoNodes) {
    const std::vector<Object*> none;
    EXPECT_TRUE(ChildQueue(none).empty());
    EXPECT_EQ(ChildQueue(none).size(), 0U);
}

TEST(ChildQueueTest, PassesOverCommentsAndInstructions) {
    const NodeList nodes("# ? a # \" ? ? @ # #");
    ChildQueue queue(nodes.list());
    for (const std::size_t place : {2U, 4U, 7U}) {
        ASSERT_FALSE(queue.empty());
        EXPECT_EQ(queue.size(), place == 2 ? 3U : place == 4 ? 2U : 1U);
        EXPECT_EQ(queue.front(), nodes.list()[place]);
        queue.pop();
    }
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(queue.size(), 0U);
    const NodeList none("# ?");
    EXPECT_TRUE(ChildQueue(none.list()).empty());
    EXPECT_TRUE(ChildQueue(none.list()) == ChildQueue(none.list()));
}

TEST(ChildQueueTest, ACopyIsASnapshotThatCanBePutBack) {
    const NodeList nodes("a b c");
    ChildQueue queue(nodes.list());
    queue.pop();
    const ChildQueue snapshot = queue;
    queue.pop();
    queue.pop();
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(snapshot.size(), 2U);
    EXPECT_EQ(snapshot.front(), nodes.list()[1]);
    queue = snapshot;
    EXPECT_EQ(queue.size(), 2U);
    EXPECT_EQ(queue.front(), nodes.list()[1]);
}

TEST(ChildQueueTest, LeavesTheListAsItIs) {
    const NodeList nodes("a b");
    const std::vector<Object*> before = nodes.list();
    ChildQueue queue(nodes.list());
    queue.pop();
    queue.pop();
    EXPECT_EQ(nodes.list(), before);
}

}  // namespace Xml::test
