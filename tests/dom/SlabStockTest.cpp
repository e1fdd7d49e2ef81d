#include "xml/dom/internal/SlabStock.h"

#include "support/Rounds.h"
#include "xml/dom/internal/Slab.h"
#include "xml/text/internal/LargePages.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <set>
#include <sys/mman.h>
#include <thread>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::size_t kSlabsInAPage = LargePages::kBytes / Slab::kBytes;
constexpr std::size_t kMostKept = 512;

// Whether the address is one of the process's.
bool isMapped(void* memory) {
    unsigned char states[Slab::kBytes / 4096];
    return mincore(memory, Slab::kBytes, states) == 0;
}

void give(void* memory) { SlabStock::Return().give(memory); }

// Nothing is kept when a test begins: more than all that can be is taken away.
class SlabStockTest : public testing::Test {
public:
    SlabStockTest() {
        SlabStock stock;
        constexpr std::size_t kMostOffered = (std::size_t{1} << 30) / Slab::kBytes;
        for (std::size_t i = 0; i < kMostKept + kMostOffered; ++i) LargePages::unmap(stock.take(), Slab::kBytes);
    }
};

TEST_F(SlabStockTest, GivesMemoryForSlabs) {
    SlabStock stock;
    std::set<char*> taken;
    for (std::size_t i = 0; i < 2 * kSlabsInAPage + 1; ++i) {
        char* const memory = static_cast<char*>(stock.take());
        ASSERT_NE(memory, nullptr);
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(memory) % Slab::kBytes, 0U);
        ASSERT_TRUE(taken.insert(memory).second) << "given twice";
        std::memset(memory, static_cast<int>(i), Slab::kBytes);
    }
    for (char* const memory : taken) {
        const char first = *memory;
        for (std::size_t i = 0; i < Slab::kBytes; ++i) ASSERT_EQ(memory[i], first) << "two overlap";
    }
    for (char* const memory : taken) give(memory);
}

TEST_F(SlabStockTest, GivesTheRestOfAPageBackToTheSystem) {
    char* memory = nullptr;
    {
        SlabStock stock;
        memory = static_cast<char*>(stock.take());
        ASSERT_NE(memory, nullptr);
        EXPECT_TRUE(isMapped(memory + Slab::kBytes));
    }
    EXPECT_TRUE(isMapped(memory));
    for (std::size_t i = 1; i < kSlabsInAPage; ++i) EXPECT_FALSE(isMapped(memory + i * Slab::kBytes)) << i;
    give(memory);
}

TEST_F(SlabStockTest, KeepsWhatIsGivenBackForTheNext) {
    SlabStock stock;
    void* const memory = stock.take();
    give(memory);
    SlabStock other;
    EXPECT_EQ(other.take(), memory);
    give(memory);
}

// Taken in order, so that the pieces of pages cannot be put together.
TEST_F(SlabStockTest, KeepsSoManySlabsAndNoMore) {
    SlabStock stock;
    std::vector<void*> taken;
    for (std::size_t i = 0; i < kMostKept + 40; ++i) taken.push_back(stock.take());
    for (void* const memory : taken) give(memory);
    std::size_t mapped = 0;
    for (void* const memory : taken) mapped += isMapped(memory) ? 1U : 0U;
    EXPECT_EQ(mapped, kMostKept);
}

// A tree gives its slabs back from the newest one on. What is no whole page goes to the system.
TEST_F(SlabStockTest, OffersWholePagesAndGivesThemAgain) {
    constexpr std::size_t kPages = 3;
    std::vector<char*> taken;
    std::set<char*> pages;
    {
        SlabStock stock;
        for (std::size_t i = 0; i < kPages * kSlabsInAPage; ++i) {
            taken.push_back(static_cast<char*>(stock.take()));
            if (i % kSlabsInAPage == 0) pages.insert(taken.back());
        }
        for (std::size_t i = 0; i < kMostKept + 5; ++i) taken.push_back(static_cast<char*>(stock.take()));
    }
    {
        SlabStock::Return toStock;
        for (std::size_t i = taken.size(); i-- > 0;) toStock.give(taken[i]);
    }
    const std::size_t whole = kPages * kSlabsInAPage;
    for (std::size_t i = 0; i < 5; ++i) EXPECT_FALSE(isMapped(taken[whole + i])) << i;

    SlabStock stock;
    std::vector<void*> again;
    for (std::size_t i = 0; i < kMostKept; ++i) again.push_back(stock.take());
    for (std::size_t page = 0; page < kPages; ++page) {
        for (std::size_t i = 0; i < kSlabsInAPage; ++i) {
            char* const memory = static_cast<char*>(stock.take());
            if (i == 0) {
                EXPECT_EQ(pages.erase(memory), 1U) << "not one of those given back";
            }
            std::memset(memory, 1, Slab::kBytes);
            again.push_back(memory);
        }
    }
    EXPECT_TRUE(pages.empty());
    for (void* const memory : again) give(memory);
}

// In whatever order the slabs come, none of those beyond what is kept stays, but as part of a whole page.
TEST_F(SlabStockTest, GivesBackAllThatItDoesNotKeep) {
    for (const int order : {-1, 0, 1}) {
        SCOPED_TRACE(order);
        SlabStock stock;
        std::vector<char*> taken;
        for (std::size_t i = 0; i < kMostKept + 3 * kSlabsInAPage; ++i)
            taken.push_back(static_cast<char*>(stock.take()));
        std::sort(taken.begin(), taken.end());
        if (order < 0) std::reverse(taken.begin(), taken.end());
        if (order == 0) std::shuffle(taken.begin(), taken.end(), std::mt19937(20261122));
        {
            SlabStock::Return toStock;
            for (char* const memory : taken) toStock.give(memory);
        }
        const bool inPages = order < 0;
        for (std::size_t i = 0; i < taken.size(); ++i) ASSERT_EQ(isMapped(taken[i]), i < kMostKept || inPages) << i;
        for (std::size_t i = 0; i < (inPages ? taken.size() : kMostKept); ++i)
            LargePages::unmap(stock.take(), Slab::kBytes);
    }
}

// Each thread writes its mark into what it has taken and finds it there before it gives it back.
TEST_F(SlabStockTest, ServesThreads) {
    std::vector<std::thread> threads;
    for (int mark = 1; mark <= 4; ++mark) {
        threads.emplace_back([mark] {
            std::mt19937 dice(static_cast<unsigned>(mark));
            SlabStock stock;
            std::vector<int*> taken;
            for (int i = 0; i < rounds(3000); ++i) {
                if (taken.size() < 40 && dice() % 2 == 0) {
                    taken.push_back(static_cast<int*>(stock.take()));
                    *taken.back() = mark;
                } else if (!taken.empty()) {
                    std::swap(taken[dice() % taken.size()], taken.back());
                    ASSERT_EQ(*taken.back(), mark);
                    give(taken.back());
                    taken.pop_back();
                }
            }
            for (int* const memory : taken) give(memory);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace Xml::test
