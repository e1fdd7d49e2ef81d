#include "xml/standard/internal/StreamBytes.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <ios>
#include <new>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using Xml::StreamBytes;
using Ending = StreamBytes::Ending;

// Gives pieces as a pipe does, and counts how often it would have had to wait. After the last it ends or throws.
class PieceBuffer : public std::streambuf {
public:
    explicit PieceBuffer(std::vector<std::string> all, bool throwing = false)
        : pieces(std::move(all)), throwsAtEnd(throwing) {}

    std::size_t given() const { return next; }

protected:
    int_type underflow() override {
        if (next == pieces.size()) {
            if (throwsAtEnd) throw std::runtime_error("broken");
            return traits_type::eof();
        }
        std::string& piece = pieces[next++];
        setg(piece.data(), piece.data(), piece.data() + piece.size());
        return traits_type::to_int_type(piece[0]);
    }

private:
    std::vector<std::string> pieces;
    std::size_t next = 0;
    bool throwsAtEnd;
};

std::string readAll(std::istream& in, Ending& ending) {
    StreamBytes bytes(in);
    std::string all;
    std::string piece;
    while ((ending = bytes.read(piece)) == Ending::More) {
        EXPECT_FALSE(piece.empty());
        all += piece;
    }
    EXPECT_TRUE(piece.empty());
    EXPECT_EQ(bytes.read(piece), ending);
    return all;
}

TEST(StreamBytesTest, GivesAllBytesAsTheyAre) {
    std::string bytes = "  \n\r\n";
    for (int i = 0; i < 300000; ++i) bytes += static_cast<char>(i % 251);
    for (const std::string& all : {std::string(), std::string("x"), bytes}) {
        std::istringstream in(all);
        Ending ending{};
        EXPECT_TRUE(readAll(in, ending) == all);
        EXPECT_EQ(ending, Ending::End);
        EXPECT_TRUE(in.eof());
        EXPECT_FALSE(in.fail());
    }
}

TEST(StreamBytesTest, TakesWhatIsThereAndDoesNotWaitForMore) {
    PieceBuffer buffer({"ab", "c", "defg"});
    std::istream in(&buffer);
    StreamBytes bytes(in);
    std::string piece;
    for (const char* expected : {"ab", "c", "defg"}) {
        const std::size_t before = buffer.given();
        EXPECT_EQ(bytes.read(piece), Ending::More);
        EXPECT_EQ(piece, expected);
        EXPECT_EQ(buffer.given(), before + 1);
    }
    EXPECT_EQ(bytes.read(piece), Ending::End);
}

TEST(StreamBytesTest, BeginsWhereTheStreamStands) {
    std::istringstream in("12345");
    in.get();
    in.get();
    Ending ending{};
    EXPECT_EQ(readAll(in, ending), "345");
}

TEST(StreamBytesTest, CannotReadWhatIsNotGood) {
    Ending ending{};
    std::ifstream none("/nowhere/at/all");
    EXPECT_EQ(readAll(none, ending), "");
    EXPECT_EQ(ending, Ending::Unreadable);
    std::istream without(nullptr);
    EXPECT_EQ(readAll(without, ending), "");
    EXPECT_EQ(ending, Ending::Unreadable);
}

TEST(StreamBytesTest, SaysWhyItCannotRead) {
    const auto reasonOf = [](std::istream& in) {
        StreamBytes bytes(in);
        std::string piece;
        while (bytes.read(piece) == Ending::More) {}
        return std::string(bytes.reason());
    };
    std::ifstream none("/nowhere/at/all");
    EXPECT_EQ(reasonOf(none), "it has failed before");
    std::istringstream fine("x");
    EXPECT_EQ(reasonOf(fine), "");
    EXPECT_EQ(reasonOf(fine), "it has come to its end before");
    fine.setstate(std::ios_base::badbit);
    EXPECT_EQ(reasonOf(fine), "it has failed before");
    std::istream without(nullptr);
    EXPECT_EQ(reasonOf(without), "it has no buffer");
    PieceBuffer buffer({"ab"}, true);
    std::istream broken(&buffer);
    EXPECT_EQ(reasonOf(broken), "its buffer has failed");
}

TEST(StreamBytesTest, LetsMemoryThatRunsOutInTheBufferOut) {
    struct Exhausted : std::streambuf {
        int_type underflow() override { throw std::bad_alloc(); }
    };
    struct ExhaustedLater : std::stringbuf {
        ExhaustedLater() : std::stringbuf("x") {}
        std::streamsize xsgetn(char*, std::streamsize) override { throw std::bad_alloc(); }
    };
    Exhausted exhausted;
    ExhaustedLater later;
    for (std::streambuf* const buffer :
         {static_cast<std::streambuf*>(&exhausted), static_cast<std::streambuf*>(&later)}) {
        std::istream in(buffer);
        StreamBytes bytes(in);
        std::string piece;
        EXPECT_THROW(bytes.read(piece), std::bad_alloc);
        EXPECT_TRUE(in.good());
    }
}

TEST(StreamBytesTest, LetsNoExceptionOut) {
    for (const auto switchedOn : {std::ios_base::goodbit, std::ios_base::eofbit | std::ios_base::badbit}) {
        PieceBuffer buffer({"ab"}, true);
        std::istream in(&buffer);
        in.exceptions(switchedOn);
        Ending ending{};
        EXPECT_EQ(readAll(in, ending), "ab");
        EXPECT_EQ(ending, Ending::Unreadable);
        EXPECT_TRUE(in.bad());

        std::istringstream good("cd");
        good.exceptions(switchedOn);
        EXPECT_EQ(readAll(good, ending), "cd");
        EXPECT_EQ(ending, Ending::End);
        EXPECT_TRUE(good.eof());
    }
}

}  // namespace
