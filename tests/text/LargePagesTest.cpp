#include "xml/text/internal/LargePages.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <vector>

namespace {

namespace LargePages = Xml::LargePages;

constexpr std::size_t kSmallPage = 4096;

// Small pages, of which none is there until it is touched, or asked for.
struct FreshPages {
    static constexpr std::ptrdiff_t kCount = 100;
    static constexpr std::size_t kSize = kCount * kSmallPage;

    FreshPages() : memory(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}
    FreshPages(const FreshPages&) = delete;
    FreshPages& operator=(const FreshPages&) = delete;
    ~FreshPages() { munmap(memory, kSize); }

    std::ptrdiff_t countThere() const {
        std::vector<unsigned char> areThere(kCount);
        EXPECT_EQ(mincore(memory, kSize, areThere.data()), 0);
        return std::count(areThere.begin(), areThere.end(), 1);
    }

    void* const memory;
};

TEST(LargePagesTest, LeavesMemoryAsItIs) {
    std::string text;
    for (std::size_t i = 0; i < 5 * LargePages::kBytes; ++i) text += static_cast<char>('a' + i % 23);
    const std::string before = text;
    for (const std::size_t from : {std::size_t{0}, std::size_t{1}, LargePages::kBytes + 17}) {
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, LargePages::kBytes, 3 * LargePages::kBytes}) {
            LargePages::ask(text.data() + from, size);
            ASSERT_TRUE(text == before) << size << " bytes from " << from;
        }
    }
}

#ifdef MADV_POPULATE_WRITE
TEST(LargePagesTest, HasFreshMemoryGivenAtOnce) {
    const FreshPages pages;
    ASSERT_NE(pages.memory, MAP_FAILED);
    if (madvise(pages.memory, kSmallPage, MADV_POPULATE_WRITE) != 0)
        GTEST_SKIP() << "the system gives pages one by one";
    LargePages::askForAll(static_cast<char*>(pages.memory) + 16, FreshPages::kSize - 16 - 100);
    EXPECT_EQ(pages.countThere(), FreshPages::kCount - 1) << "all whole pages, the last is none";
}
#endif

// A look at the last page tells whether memory is fresh.
TEST(LargePagesTest, LeavesMemoryAloneThatIsThere) {
    const FreshPages pages;
    ASSERT_NE(pages.memory, MAP_FAILED);
    static_cast<char*>(pages.memory)[FreshPages::kSize - kSmallPage] = 'x';
    LargePages::askForAll(pages.memory, FreshPages::kSize);
    EXPECT_EQ(pages.countThere(), 1);
}

TEST(LargePagesTest, MapsPagesOf2MBOnTheirBoundaries) {
    std::vector<void*> pages;
    for (int i = 0; i < 8; ++i) {
        pages.push_back(LargePages::map());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages.back()) % (std::uintptr_t{2} << 20), 0U);
    }
    for (void* const page : pages) LargePages::unmap(page, LargePages::kBytes);
}

TEST(LargePagesTest, MapsPagesAndGivesAnyPartOfThemBack) {
    errno = 17;
    char* const page = static_cast<char*>(LargePages::map());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(page) % LargePages::kBytes, 0U);
    for (std::size_t i = 0; i < LargePages::kBytes; i += kSmallPage) {
        EXPECT_EQ(page[i], 0);
        page[i] = static_cast<char>(i / kSmallPage);
    }
    LargePages::unmap(page, kSmallPage);
    LargePages::unmap(page + 5 * kSmallPage, LargePages::kBytes - 5 * kSmallPage);
    for (std::size_t i = 1; i < 5; ++i) EXPECT_EQ(page[i * kSmallPage], static_cast<char>(i));
    LargePages::unmap(page + kSmallPage, 4 * kSmallPage);
    EXPECT_EQ(errno, 17) << "memory is given back by delete, which leaves errno alone";
}

TEST(LargePagesTest, OffersPagesThatCanBeFilledAgain) {
    errno = 17;
    char* const page = static_cast<char*>(LargePages::map());
    ASSERT_NE(page, nullptr);
    for (int round = 1; round <= 3; ++round) {
        std::memset(page, round, LargePages::kBytes);
        ASSERT_TRUE(LargePages::offer(page));
        const std::string bytes(page, LargePages::kBytes);
        const std::size_t kept = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), round));
        const std::size_t emptied = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), 0));
        EXPECT_EQ(kept + emptied, LargePages::kBytes) << "the bytes are as they were, or the system has taken them";
    }
    std::memset(page, 'x', LargePages::kBytes);
    EXPECT_EQ(std::count(page, page + LargePages::kBytes, 'x'), static_cast<std::ptrdiff_t>(LargePages::kBytes));
    LargePages::unmap(page, LargePages::kBytes);
    EXPECT_FALSE(LargePages::offer(page)) << "it is not mapped";
    EXPECT_EQ(errno, 17);
}

TEST(LargePagesTest, MakesRoom) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, LargePages::kBytes, 3 * LargePages::kBytes + 1}) {
        std::string text;
        LargePages::reserve(text, size);
        EXPECT_TRUE(text.empty());
        EXPECT_GE(text.capacity(), size);
        const char* const memory = text.data();
        text.append(size, 'x');
        EXPECT_EQ(text.data(), memory);
    }
}

}  // namespace
