#include "xml/reader/internal/MarkupScan.h"

#include "support/Rounds.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace Xml::test {

namespace {

// Of fewer than so many bytes, each one of `bytes`.
std::string randomText(std::mt19937& random, std::size_t size, const std::string& bytes) {
    std::string text(random() % size, ' ');
    std::generate(text.begin(), text.end(), [&] { return bytes[random() % bytes.size()]; });
    return text;
}

}  // namespace

TEST(MarkupScanTest, EndsWhiteSpaceAndTellsWhetherThereIsAReturnInIt) {
    std::mt19937 random(1);
    for (int i = 0; i < rounds(20000); ++i) {
        const std::string text = randomText(random, 24, "      \t\n") + randomText(random, 3, "\r\n ") +
                                 randomText(random, 24, "      \t\n") + randomText(random, 40, "a\r ");
        const char* const begin = text.data();
        const std::size_t end = std::min(text.find_first_not_of(" \t\n\r"), text.size());
        EXPECT_EQ(MarkupScan::whiteEnd(begin, begin + text.size()), begin + end) << i;
        bool hasReturn = false;
        EXPECT_EQ(MarkupScan::whiteEnd(begin, begin + text.size(), hasReturn), begin + end) << i;
        EXPECT_EQ(hasReturn, text.find('\r') < end) << i;
        hasReturn = true;
        MarkupScan::whiteEnd(begin, begin + text.size(), hasReturn);
        EXPECT_TRUE(hasReturn) << i;
    }
}

TEST(MarkupScanTest, EndsAPlainValueAtItsQuoteAnAmpersandOrAReturn) {
    std::mt19937 random(2);
    for (int i = 0; i < rounds(20000); ++i) {
        const std::string text = randomText(random, 90, "abc\n<>") + randomText(random, 4, "\"'&\r");
        const char* const begin = text.data();
        for (const char quote : {'"', '\''}) {
            const std::size_t end = std::min(text.find_first_of(std::string("&\r") + quote), text.size());
            EXPECT_EQ(MarkupScan::plainValueEnd(begin, begin + text.size(), quote), begin + end) << i;
        }
    }
}

}  // namespace Xml::test
