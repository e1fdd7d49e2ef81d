#include "xml/dtd/internal/OutcomeStack.h"

#include "models/Models.h"
#include "xml/dtd/ChildrenSpec.h"
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::vector<ChildQueue> placesIn(const std::vector<Object*>& nodes) {
    std::vector<ChildQueue> places;
    for (ChildQueue queue(nodes);; queue.pop()) {
        places.push_back(queue);
        if (queue.empty()) return places;
    }
}

std::vector<std::unique_ptr<ChildrenSpec>> specs(int count) {
    std::vector<std::unique_ptr<ChildrenSpec>> made;
    for (int i = 0; i < count; ++i) made.push_back(std::make_unique<ChildrenSpec>(nullptr, "a", REP_ZERO_OR_MORE));
    return made;
}

TEST(OutcomeStackTest, FindsWhatHasBeenIndexed) {
    const NodeList nodes("a b c");
    const auto places = placesIn(nodes.list());
    const auto spec = specs(2);
    OutcomeStack stack;
    EXPECT_EQ(stack.find(*spec[0], places[0]), nullptr);
    stack.push(*spec[0], places[0], {true, places[2]});
    stack.push(*spec[0], places[1], {false, places[1]});
    EXPECT_EQ(stack.find(*spec[0], places[0]), nullptr) << "not indexed yet";
    stack.index(0);
    ASSERT_NE(stack.find(*spec[0], places[0]), nullptr);
    EXPECT_TRUE(stack.find(*spec[0], places[0])->matched);
    EXPECT_TRUE(stack.find(*spec[0], places[0])->left == places[2]);
    ASSERT_NE(stack.find(*spec[0], places[1]), nullptr);
    EXPECT_FALSE(stack.find(*spec[0], places[1])->matched);
    EXPECT_EQ(stack.find(*spec[0], places[2]), nullptr) << "another place";
    EXPECT_EQ(stack.find(*spec[1], places[0]), nullptr) << "another repetition";
    EXPECT_TRUE(stack.lastStart() == places[1]);
}

TEST(OutcomeStackTest, TellsPlacesApartWhereOneNodeStandsTwice) {
    const NodeList nodes("a b");
    const std::vector<Object*> twice = {nodes.list()[0], nodes.list()[1], nodes.list()[0], nodes.list()[1]};
    const auto places = placesIn(twice);
    const auto spec = specs(1);
    OutcomeStack stack;
    stack.push(*spec[0], places[0], {true, places[1]});
    stack.push(*spec[0], places[4], {true, places[4]});
    stack.index(0);
    EXPECT_EQ(stack.find(*spec[0], places[2]), nullptr);
    ASSERT_NE(stack.find(*spec[0], places[4]), nullptr) << "the end is a place too";
    EXPECT_EQ(stack.find(*spec[0], ChildQueue()), nullptr) << "the end of another list";
}

// Against a list that is searched from its front.
TEST(OutcomeStackTest, FindsTheFirstOfAPlaceAndForgetsWhatIsDropped) {
    struct Entry {
        std::size_t spec, place, left;
        bool indexed;
    };
    std::mt19937 random(5);
    const auto below = [&random](std::size_t n) { return random() % n; };
    const NodeList nodes(std::string("a b c d e f g h i j k l m n o p q r s t"));
    const auto places = placesIn(nodes.list());
    const auto spec = specs(12);
    OutcomeStack stack;
    std::vector<Entry> entries;
    std::size_t found = 0, largest = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::size_t what = below(100);
        if (what < 60) {
            const Entry entry = {below(spec.size()), below(places.size()), below(places.size()), false};
            stack.push(*spec[entry.spec], places[entry.place], {true, places[entry.left]});
            entries.push_back(entry);
        } else if (what < 75) {
            std::size_t first = entries.size();
            while (first > 0 && !entries[first - 1].indexed) entries[--first].indexed = true;
            stack.index(first);
        } else if (what < 78) {
            entries.resize(entries.size() - below(entries.size() + 1));
            stack.dropTo(entries.size());
        }
        ASSERT_EQ(stack.size(), entries.size());
        largest = std::max(largest, entries.size());
        const std::size_t s = below(spec.size()), p = below(places.size());
        const Outcome* const outcome = stack.find(*spec[s], places[p]);
        const Entry* expected = nullptr;
        for (const Entry& entry : entries) {
            if (expected == nullptr && entry.indexed && entry.spec == s && entry.place == p) expected = &entry;
        }
        ASSERT_EQ(outcome != nullptr, expected != nullptr) << round;
        if (expected == nullptr) continue;
        ++found;
        ASSERT_TRUE(outcome->left == places[expected->left]) << round;
    }
    EXPECT_GT(found, 100U);
    EXPECT_GT(largest, 40U) << "the index has grown more than once";
}

}  // namespace
}  // namespace Xml::test
