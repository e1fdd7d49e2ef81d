#include "xml/text/internal/Words.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {

TEST(WordsTest, CopiesSixteenBytesAndMore) {
    std::string from;
    for (std::size_t size = 16; size < 200; ++size) {
        while (from.size() < size) from += static_cast<char>('!' + from.size() % 90);
        const auto exactly = std::make_unique<char[]>(size);
        from.copy(exactly.get(), size);
        std::string to(size + 2, '\xff');
        Words::copyLong(to.data() + 1, exactly.get(), size);
        EXPECT_EQ(to, '\xff' + from + '\xff');
    }
}

}  // namespace Xml::test
