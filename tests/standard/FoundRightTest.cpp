#include "xml/standard/internal/FoundRight.h"
#include "xml/standard/internal/GivenNames.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(FoundRightTest, KnowsOnlyWhatWasAdded) {
    std::vector<std::string> texts(5000, "same");
    Xml::FoundRight right;
    for (const std::string& text : texts) EXPECT_FALSE(right.has(text));
    int known = 0;
    for (std::size_t i = 0; i < texts.size(); i += 2) {
        right.add(texts[i]);
        EXPECT_TRUE(right.has(texts[i]));
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        known += right.has(texts[i]) ? 1 : 0;
        if (i % 2 == 1) {
            EXPECT_FALSE(right.has(texts[i]));
        }
    }
    EXPECT_GT(known, 0);
}

TEST(GivenNamesTest, EachNameIsAddedOnce) {
    Xml::GivenNames names;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_TRUE(names.add("x" + std::to_string(i)));
            for (int j = 0; j <= i; ++j) EXPECT_FALSE(names.add("x" + std::to_string(j)));
        }
        names.clear();
    }
    EXPECT_TRUE(names.add("ab"));
    EXPECT_TRUE(names.add("a"));
    EXPECT_TRUE(names.add("b"));
    EXPECT_TRUE(names.add(""));
    EXPECT_FALSE(names.add(""));
}

}  // namespace
