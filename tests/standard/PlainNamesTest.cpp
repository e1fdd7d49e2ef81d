#include "xml/standard/internal/PlainNames.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

TEST(PlainNamesTest, AreLettersDigitsAndMarks) {
    const std::string start = std::string(kLetters) + "_";
    const std::string other = start + "0123456789-.";
    for (int byte = 0; byte < 256; ++byte) {
        const auto c = static_cast<char>(byte);
        EXPECT_EQ(PlainNames::is(c, PlainNames::kStart), start.find(c) != std::string::npos) << byte;
        EXPECT_EQ(PlainNames::is(c, PlainNames::kGoesOn), other.find(c) != std::string::npos) << byte;
        // Where sixteen bytes may be looked at together, and where fewer are left.
        for (const std::size_t size : {3, 15, 16, 17, 33}) {
            for (std::size_t place = 0; place < size; ++place) {
                const std::unique_ptr<char[]> run(new char[size]);
                std::memset(run.get(), 'x', size);
                run[place] = c;
                const std::size_t expected = PlainNames::is(c, PlainNames::kGoesOn) ? size : place;
                ASSERT_EQ(PlainNames::endAfterStart(run.get(), run.get() + size), run.get() + expected)
                    << byte << " at " << place << " of " << size;
            }
        }
    }
}

TEST(PlainNamesTest, AreNoticedWhenTheyComeTwice) {
    int alone = 0;
    for (const char first : kLetters) {
        for (const char last : kLetters) {
            for (const std::string& name :
                 {std::string(1, last), std::string{first, last}, std::string{first, 'a', last}}) {
                PlainNames::Seen seen;
                seen.add(name);
                EXPECT_FALSE(seen.maybeTwice());
                seen.add("other");
                alone += seen.maybeTwice() ? 0 : 1;
                seen.add(name);
                EXPECT_TRUE(seen.maybeTwice()) << name;
            }
        }
    }
    EXPECT_GT(alone, 7500);  // of 8112
}

}  // namespace
}  // namespace Xml::test
