#include "xml/standard/internal/PlainRuns.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

namespace PlainRuns = Xml::PlainRuns;
namespace ShortRuns = Xml::ShortRuns;
using PlainRuns::Beyond;
using PlainRuns::Kind;

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

bool isControl(unsigned char byte) { return byte < 0x20; }

template <Kind Of, Beyond Others>
void expectFound(const std::string& marks, const std::string& plainControls) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto c = static_cast<char>(byte);
        const bool isPlainControl = plainControls.find(c) != std::string::npos;
        const bool isSpecial = marks.find(c) != std::string::npos ||
                               (isControl(static_cast<unsigned char>(byte)) && !isPlainControl) ||
                               (byte >= 0x80 && Others == Beyond::LookedAt);
        for (std::size_t size = 1; size < 40; ++size) {
            for (std::size_t place = 0; place < size; ++place) {
                std::string text = letters(size);
                text[place] = c;
                const Exact from(text);
                const Exact to(std::string(size, '-'));
                const char* const end = PlainRuns::copy<Of, Others>(to.bytes.get(), from.view());
                ASSERT_EQ(end, isSpecial ? nullptr : to.bytes.get() + size)
                    << byte << " at " << place << " of " << size;
                if (!isSpecial) {
                    ASSERT_EQ(to.view(), text);
                }
                const Exact padded(text + std::string(ShortRuns::kPadded, '&'));
                const Exact more(std::string(size + ShortRuns::kPadded, '-'));
                const std::string_view run = padded.view().substr(0, size);
                const char* const paddedEnd = PlainRuns::copyPadded<Of, Others>(more.bytes.get(), run);
                ASSERT_EQ(paddedEnd, isSpecial ? nullptr : more.bytes.get() + size);
                if (!isSpecial) {
                    ASSERT_EQ(more.view().substr(0, size), text);
                }
                const char* const begin = from.bytes.get();
                const char* const found = PlainRuns::end<Of, Others>(begin, begin + size);
                ASSERT_EQ(found, begin + (isSpecial ? place : size));
            }
        }
    }
}

TEST(PlainRunsTest, EachSpecialByteIsFoundAndNoOther) {
    expectFound<Kind::Text, Beyond::LookedAt>("&<>", "\t\n");
    expectFound<Kind::Text, Beyond::Trusted>("&<>", "\t\n");
    expectFound<Kind::Lines, Beyond::LookedAt>("&<>", "\t");
    expectFound<Kind::Lines, Beyond::Trusted>("&<>", "\t");
    expectFound<Kind::Value, Beyond::LookedAt>("&<\"", "");
    expectFound<Kind::Value, Beyond::Trusted>("&<\"", "");
}

TEST(PlainRunsTest, NothingOfNothingIsCopied) {
    char to = '-';
    EXPECT_EQ((PlainRuns::copy<Kind::Text, Beyond::Trusted>(&to, {})), &to);
    EXPECT_EQ(to, '-');
}

}  // namespace
