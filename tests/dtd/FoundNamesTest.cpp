#include "xml/dtd/internal/FoundNames.h"

#include <deque>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// Finds the length of the name and the context, and counts how often it has to.
class Lengths {
public:
    std::size_t of(const std::string& name, std::uintptr_t context = 0) {
        return found.get(name, context, [&] {
            ++searches;
            return name.size() + 100 * context;
        });
    }

    int searches = 0;

private:
    FoundNames<std::size_t> found;
};

TEST(FoundNamesTest, ANameIsLookedUpOnceAtItsAddress) {
    Lengths lengths;
    const std::string name = "abc", same = "abc";
    for (int i = 0; i < 3; ++i) EXPECT_EQ(lengths.of(name), 3U);
    EXPECT_EQ(lengths.searches, 1);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(lengths.of(same), 3U);
    EXPECT_EQ(lengths.searches, 2) << "the same text is elsewhere";
}

TEST(FoundNamesTest, ContextsAreKeptApart) {
    Lengths lengths;
    const std::string first = "a", second = "bb";
    for (int i = 0; i < 3; ++i) {
        for (std::uintptr_t context = 0; context < 5; ++context) {
            EXPECT_EQ(lengths.of(first, context), 1 + 100 * context);
            EXPECT_EQ(lengths.of(second, context), 2 + 100 * context);
        }
    }
    EXPECT_EQ(lengths.searches, 10);
}

TEST(FoundNamesTest, ManyNamesAreFoundAgain) {
    Lengths lengths;
    std::deque<std::string> names;
    for (std::size_t i = 0; i < 1000; ++i) names.emplace_back(i % 50, 'x');
    for (int again = 0; again < 3; ++again) {
        for (const std::string& name : names) ASSERT_EQ(lengths.of(name), name.size());
    }
    EXPECT_EQ(lengths.searches, 1000);
}

// What has come once does not fill the room of what comes again and again.
TEST(FoundNamesTest, WhereEverNewNamesComeTheOthersAreFoundAgainMostly) {
    Lengths lengths;
    const std::string often = "often";
    std::deque<std::string> names;
    for (std::size_t i = 0; i < 20'000; ++i) {
        names.emplace_back(i % 50, 'x');
        ASSERT_EQ(lengths.of(names.back()), i % 50);
        ASSERT_EQ(lengths.of(often), 5U);
    }
    EXPECT_LT(lengths.searches, 20'100);
    EXPECT_GE(lengths.searches, 20'002) << "it has forgotten at least once";
}

}  // namespace
}  // namespace Xml::test
