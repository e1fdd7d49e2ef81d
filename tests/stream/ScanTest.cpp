#include "xml/stream/internal/Scan.h"

#include "support/Rounds.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

namespace Xml::test {

namespace {

// A run of random length over few different bytes, in memory of exactly that size.
class Bytes {
public:
    Bytes(std::mt19937& random, const std::string& bytes)
        : size(random() % 40), memory(std::make_unique<char[]>(size)) {
        std::generate_n(memory.get(), size, [&] { return bytes[random() % bytes.size()]; });
    }

    const char* begin() const { return memory.get(); }
    const char* end() const { return begin() + size; }
    std::string text() const { return {begin(), end()}; }

private:
    std::size_t size;
    std::unique_ptr<char[]> memory;
};

const std::string kLongName = "abcdefghijklmnopqrstuvwxyz";
const std::string kMostlyName = kLongName + kLongName + "=\x80";
const std::string kMostlyOther = kLongName + kLongName + std::string("\"&\0\x7f\x80\xa2\xa6\xff", 8);

}  // namespace

TEST(ScanTest, EndsAClassAtTheFirstByteThatIsNotOfIt) {
    std::mt19937 random(1);
    for (int i = 0; i < rounds(20000); ++i) {
        const Bytes names(random, kMostlyName);
        EXPECT_EQ(
            Scan::endOf<ByteClass::kNameChar>(names.begin(), names.end()),
            std::find_if_not(names.begin(), names.end(), [](char c) { return ByteClass::is(c, ByteClass::kNameChar); }))
            << names.text();
        const Bytes white(random, "\t\n\r      \n\t\t\t\ta");
        EXPECT_EQ(
            Scan::endOf<ByteClass::kWhite>(white.begin(), white.end()),
            std::find_if_not(white.begin(), white.end(), [](char c) { return ByteClass::is(c, ByteClass::kWhite); }))
            << white.text();
        EXPECT_EQ((Scan::endOfAny<' ', '\t', '\n', '\r'>(white.begin(), white.end())),
                  Scan::endOf<ByteClass::kWhite>(white.begin(), white.end()))
            << white.text();
    }
}

TEST(ScanTest, FindsAByteOrOneOfSome) {
    std::mt19937 random(2);
    for (int i = 0; i < rounds(20000); ++i) {
        const Bytes run(random, kMostlyOther);
        const char* const quote = std::find(run.begin(), run.end(), '"');
        EXPECT_EQ(Scan::find(run.begin(), run.end(), '"'), quote == run.end() ? nullptr : quote) << run.text();
        EXPECT_EQ((Scan::findAny<'"', '&'>(run.begin(), run.end())),
                  std::find_if(run.begin(), run.end(), [](char c) { return c == '"' || c == '&'; }))
            << run.text();
        EXPECT_EQ((Scan::findAny<'\xff', '\x7f'>(run.begin(), run.end())),
                  std::find_if(run.begin(), run.end(), [](char c) { return c == '\xff' || c == '\x7f'; }))
            << run.text();
    }
}

TEST(ScanTest, FindsOneOfSomeFarAway) {
    for (std::size_t length = 0; length < 200; ++length) {
        for (const std::string found : {"\"", "&", "\"&", "&\"", ""}) {
            const std::string text = std::string(length, 'x') + found + "x";
            const char* const end = text.data() + text.size();
            const char* const expected = found.empty() ? end : text.data() + length;
            EXPECT_EQ((Scan::findAny<'"', '&'>(text.data(), end)), expected) << length << found;
            EXPECT_EQ((Scan::findNear<'"', '&'>(text.data(), end)), expected) << length << found;
        }
    }
}

TEST(ScanTest, TellsWhetherARunBeginsWithAText) {
    for (std::size_t length = 0; length <= kLongName.size(); ++length) {
        const std::string text = kLongName.substr(0, length);
        for (std::size_t runLength = 0; runLength <= kLongName.size(); ++runLength) {
            const std::string run = kLongName.substr(0, runLength);
            EXPECT_EQ(Scan::startsWith(run.data(), run.data() + runLength, text), length <= runLength);
        }
        for (std::size_t place = 0; place < length; ++place) {
            std::string other = text;
            other[place] = 'A';
            EXPECT_FALSE(Scan::startsWith(other.data(), other.data() + length, text)) << text << place;
        }
    }
}

}  // namespace Xml::test
