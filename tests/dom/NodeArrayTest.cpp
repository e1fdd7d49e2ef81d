#include "xml/dom/NodeArray.h"

#include "support/Rounds.h"
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace Xml::test {
namespace {

using Array = internal::NodeArray<int>;

std::vector<int*> shown(const Array& array) {
    const auto span = array.span();
    EXPECT_EQ(span.size(), array.size());
    EXPECT_EQ(span.empty(), array.empty());
    for (std::size_t i = 0; i < array.size(); ++i) EXPECT_EQ(span[i], array[i]);
    return {span.begin(), span.end()};
}

TEST(NodeArrayTest, IsOneWord) { EXPECT_EQ(sizeof(Array), sizeof(void*)); }

TEST(NodeArrayTest, DoesWhatAListOfPointersDoes) {
    std::mt19937 dice(20261122);
    std::vector<int> nodes(200);
    for (int round = 0; round < rounds(200); ++round) {
        Array array;
        std::vector<int*> expected;
        const auto next = [&dice](std::size_t below) { return static_cast<std::size_t>(dice() % below); };
        for (int i = 0; i < 60; ++i) {
            SCOPED_TRACE(std::to_string(round) + "/" + std::to_string(i));
            int* const node = &nodes[next(nodes.size())];
            const auto at = [&expected](std::size_t place) {
                return expected.begin() + static_cast<std::ptrdiff_t>(place);
            };
            switch (next(8)) {
            case 0:
            case 1:
                array.append(node);
                expected.push_back(node);
                break;
            case 2: {
                const std::size_t place = next(expected.size() + 1);
                array.insert(place, node);
                expected.insert(at(place), node);
                break;
            }
            case 3:
            case 4: {
                if (expected.empty()) break;
                const std::size_t place = next(expected.size());
                ASSERT_EQ(array.remove(place), expected[place]);
                expected.erase(at(place));
                break;
            }
            case 5:
                if (expected.empty()) break;
                array.set(expected.size() / 2, node);
                expected[expected.size() / 2] = node;
                break;
            case 6: array.reserve(next(2 * expected.size() + 2)); break;
            default:
                if (next(5) != 0) break;
                expected.resize(expected.size() / 2);
                array.truncate(expected.size());
            }
            ASSERT_EQ(shown(array), expected);
        }
    }
}

TEST(NodeArrayTest, StaysWhereItIsWhileThereIsRoom) {
    int nodes[10];
    for (const std::size_t count : {2, 3, 10}) {
        Array array;
        array.reserve(count);
        array.append(nodes);
        int* const* const first = array.span().begin();
        for (std::size_t i = 1; i < count; ++i) array.append(nodes + i);
        EXPECT_EQ(array.span().begin(), first);
        while (!array.empty()) array.remove(0);
        for (std::size_t i = 0; i < count; ++i) array.append(nodes + i);
        EXPECT_EQ(array.span().begin(), first) << "what was taken out can be put back";
    }
}

TEST(NodeArrayTest, IsFilledAtItsEnd) {
    int nodes[5];
    for (const std::size_t count : {0U, 1U, 2U, 5U}) {
        for (std::size_t before = 0; before <= count; ++before) {
            Array array;
            array.reserve(count);
            for (std::size_t i = 0; i < before; ++i) array.append(nodes + i);
            {
                Array::Filling filling(array);
                for (std::size_t i = before; i < count; ++i) filling.put(nodes + i);
            }
            std::vector<int*> expected;
            for (std::size_t i = 0; i < count; ++i) expected.push_back(nodes + i);
            EXPECT_EQ(shown(array), expected);
        }
    }
}

}  // namespace
}  // namespace Xml::test
