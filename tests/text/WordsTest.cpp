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

TEST(WordsTest, ClearsSoManyBytesAndNoOthers) {
    std::string bytes(98, '\xff');
    Words::clear<96>(bytes.data() + 1);
    EXPECT_EQ(bytes, '\xff' + std::string(96, '\0') + '\xff');
}

}  // namespace Xml::test
