#include "xml/standard/internal/WriteBuffer.h"
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Pieces final : Xml::WriteSink {
    void take(std::string_view text) override { all.emplace_back(text); }

    std::string joined() const {
        std::string text;
        for (const std::string& one : all) text += one;
        return text;
    }

    std::vector<std::string> all;
};

TEST(WriteBufferTest, GivesAllOfItInOrderAndNoPieceInParts) {
    Pieces pieces;
    std::string expected;
    {
        Xml::WriteBuffer buffer(pieces);
        for (std::size_t size = 0; size < 40'000; size = size * 3 / 2 + 1) {
            const std::string text = "<" + std::string(size, 'x') + ">";
            buffer.put(text);
            expected += text;
            char* at = buffer.room(5);
            std::memcpy(at, "[1234", 5);
            at = buffer.more(at + 5, Xml::WriteBuffer::kRoom);
            *at = ']';
            buffer.tookTo(at + 1);
            expected += "[1234]";
        }
        buffer.flush();
        EXPECT_EQ(buffer.size(), 0U);
    }
    EXPECT_EQ(pieces.joined(), expected);
    EXPECT_GT(pieces.all.size(), 5U);
    for (const std::string& piece : pieces.all) {
        EXPECT_TRUE(piece.front() == '<' || piece.front() == '[' || piece.front() == ']') << piece.front();
        EXPECT_TRUE(piece.back() == '>' || piece.back() == ']' || piece.back() == '4') << piece.back();
    }
}

TEST(WriteBufferTest, FillsTheBlockToItsLastByte) {
    constexpr std::size_t kBlock = 4 * Xml::WriteBuffer::kRoom;
    const std::string half(kBlock / 2, 'x');
    Pieces pieces;
    Xml::WriteBuffer buffer(pieces);
    buffer.put(half);
    buffer.put(half);
    EXPECT_EQ(buffer.size(), kBlock);
    buffer.put("<");
    EXPECT_EQ(pieces.all, std::vector<std::string>{half + half});
    buffer.flush();

    const std::string padded = half + std::string(Xml::ShortRuns::kPadded, '-');
    buffer.putPadded({padded.data(), half.size()});
    buffer.putPadded({padded.data(), half.size()});
    EXPECT_EQ(buffer.size(), kBlock);
    buffer.flush();

    char* const at = buffer.room(kBlock / 2);
    buffer.tookTo(buffer.more(at + kBlock / 2, kBlock / 2) + kBlock / 2);
    EXPECT_EQ(buffer.size(), kBlock);
}

TEST(WriteBufferTest, TakesBackWhatIsInTheBlock) {
    Pieces pieces;
    Xml::WriteBuffer buffer(pieces);
    buffer.put("kept");
    const std::size_t size = buffer.size();
    buffer.put(" and not");
    buffer.shrink(size);
    buffer.put("!");
    buffer.flush();
    EXPECT_EQ(pieces.joined(), "kept!");
}

}  // namespace
