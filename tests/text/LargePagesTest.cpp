#include "xml/text/internal/LargePages.h"
#include <gtest/gtest.h>
#include <string>

namespace {

namespace LargePages = Xml::LargePages;

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
