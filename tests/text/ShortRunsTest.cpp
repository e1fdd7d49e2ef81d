#include "xml/text/internal/ShortRuns.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

namespace ShortRuns = Xml::ShortRuns;

// Memory of exactly so many bytes.
struct Exact {
    explicit Exact(const std::string& text) : size(text.size()), bytes(new char[text.size()]) {
        std::copy(text.begin(), text.end(), bytes.get());
    }
    std::string_view view() const { return {bytes.get(), size}; }

    std::size_t size;
    std::unique_ptr<char[]> bytes;
};

std::string letters(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += static_cast<char>('a' + i % 26);
    return text;
}

TEST(ShortRunsTest, CopiesAllOfARunAndNothingElse) {
    for (std::size_t size = 0; size < 100; ++size) {
        const Exact from(letters(size));
        const Exact to(std::string(size, '-'));
        EXPECT_EQ(ShortRuns::copy(to.bytes.get(), from.view()), to.bytes.get() + size);
        EXPECT_EQ(to.view(), letters(size));
        const Exact ordinary(std::string(size, '-'));
        EXPECT_EQ(ShortRuns::copyOrdinary(ordinary.bytes.get(), from.view()), ordinary.bytes.get() + size);
        EXPECT_EQ(ordinary.view(), letters(size));
    }
}

// What is after a padded run is of no account, nor what is written after its copy.
TEST(ShortRunsTest, CopiesPaddedRunsAndNoMoreThanTheirPadding) {
    for (std::size_t size = 0; size < 100; ++size) {
        const std::size_t most = std::max(size, ShortRuns::kPadded);
        const Exact from(letters(most));
        const Exact to(std::string(most, '-'));
        EXPECT_EQ(ShortRuns::copyPadded(to.bytes.get(), from.view().substr(0, size)), to.bytes.get() + size);
        EXPECT_EQ(to.view().substr(0, size), letters(size));
    }
}

TEST(ShortRunsTest, FindsEachByteThatIsNotOrdinary) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool special = std::string("&<>\"'\n").find(static_cast<char>(byte)) != std::string::npos;
        for (std::size_t size = 1; size < 50; ++size) {
            for (std::size_t place = 0; place < size; ++place) {
                std::string text = letters(size);
                text[place] = static_cast<char>(byte);
                const Exact from(text);
                const Exact to(std::string(size, '-'));
                const char* const end = ShortRuns::copyOrdinary(to.bytes.get(), from.view());
                ASSERT_EQ(end, special ? nullptr : to.bytes.get() + size) << byte << " at " << place << " of " << size;
                if (!special) {
                    ASSERT_EQ(to.view(), text);
                }
            }
        }
    }
}

}  // namespace
