#include "xml/stream/internal/FileBlock.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace Xml::test {
namespace {

using internal::Window;

constexpr std::int64_t kBlock = FileBlock::kSize;
constexpr std::int64_t kMuch = std::int64_t{1} << 40;

TEST(FileBlockTest, IsAsLongAsPaysForTheReading) {
    const struct {
        const char* name;
        std::int64_t read;
        std::int64_t tooFew;
        std::int64_t left;
        std::int64_t length;
    } kCases[] = {
        {"nothing was read", 0, 0, kMuch, 0},
        {"no reading is under way", -1, 0, kMuch, 0},
        {"little was read", 16'383, 0, kMuch, 0},
        {"as much as was read", 16'384, 0, kMuch, 16'384},
        {"as much as was read, in a file that may grow", 20'000, 0, 10, 20'000},
        {"no more than a block", kMuch, 0, kMuch, kBlock},
        {"few bytes are too few", 0, 4'095, kMuch, 0},
        {"many bytes are too few", 0, 4'096, kMuch, 16'384},
        {"a block is too short", kMuch, kBlock, kMuch, 4 * kBlock},
        {"the rest of the file", kMuch, kBlock, 2 * kBlock, 2 * kBlock},
        {"a short rest of the file", kMuch, kBlock, 10, kBlock},
        {"all was used", kMuch, 0, 10, kBlock},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(FileBlock::lengthFor(c.read, c.tooFew, c.left), static_cast<std::size_t>(c.length));
    }
}

TEST(FileBlockTest, LendsWhatWasReadFromItsPositionOn) {
    FileBlock block;
    Window lent;
    EXPECT_FALSE(block.hasLent(lent));
    std::size_t asked = 0;
    const auto read = [&asked](char* bytes, std::size_t count) {
        asked = count;
        std::fill_n(bytes, 300, 'x');
        return std::size_t{300};
    };
    for (const std::size_t count : {std::size_t{20'000}, FileBlock::kSize, 3 * FileBlock::kSize, std::size_t{20'000}}) {
        SCOPED_TRACE(count);
        ASSERT_TRUE(block.lend(count, 17, read, lent));
        EXPECT_EQ(asked, count);
        EXPECT_EQ(std::string(lent.begin, lent.end), std::string(300, 'x'));
        EXPECT_EQ(lent.cursor, lent.begin);
        EXPECT_EQ(lent.base, 17);
        EXPECT_EQ(lent.loan, Window::Loan::ForNow);
        EXPECT_TRUE(block.hasLent(lent));
    }
    EXPECT_FALSE(FileBlock().hasLent(lent));
}

TEST(FileBlockTest, LeavesTheWindowAsItIsWhereNothingCame) {
    FileBlock block;
    Window lent;
    lent.loan = Window::Loan::TooFew;
    EXPECT_FALSE(block.lend(
        20'000, 17, [](char*, std::size_t) { return std::size_t{0}; }, lent));
    EXPECT_EQ(lent.loan, Window::Loan::TooFew);
    EXPECT_EQ(lent.begin, nullptr);
    EXPECT_FALSE(block.hasLent(lent));
}

}  // namespace
}  // namespace Xml::test
