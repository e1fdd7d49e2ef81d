#include "xml/stream/internal/ReturnsAhead.h"

#include "support/Rounds.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace Xml::test {

TEST(ReturnsAheadTest, TellsWhichRunsHaveAReturn) {
    std::mt19937 random(3);
    const auto below = [&random](std::size_t n) { return random() % n; };
    for (int i = 0; i < rounds(2000); ++i) {
        std::string text(below(5000), 'x');
        for (std::size_t count = below(8); count > 0 && !text.empty(); --count) text[below(text.size())] = '\r';
        const char* const end = text.data() + text.size();
        ReturnsAhead returns(text.data());
        // Runs may be empty, overlap and leave bytes out, as long as they do not begin earlier.
        std::size_t from = 0;
        while (from < text.size()) {
            const std::size_t to = from + below(std::min<std::size_t>(text.size() - from, 1 + below(2000)) + 1);
            const std::size_t first = std::min(text.find('\r', from), to);
            ASSERT_EQ(returns.in(text.data() + from, text.data() + to, end), first < to)
                << i << ": " << from << " " << to;
            ASSERT_TRUE(first == to || returns.first() == text.data() + first) << i << ": " << from << " " << to;
            from += below(300);
        }
    }
}

}  // namespace Xml::test
