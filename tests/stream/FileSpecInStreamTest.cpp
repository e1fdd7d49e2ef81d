#include "support/Messages.h"
#include "support/Sources.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>

namespace {

using OrvSys::FileIO;
using OrvSys::FileSpec;
using Xml::FileSpecInStream;
using Xml::test::MessageCollector;
using Xml::test::scratchPath;
using Xml::test::writeFile;

const std::string kEnd = "Unexpected end of stream";

class FileSpecInStreamTest : public testing::Test {
protected:
    ~FileSpecInStreamTest() override { std::remove(path.c_str()); }

    const std::string path = scratchPath("platform-in");
};

void expectEmpty(FileSpecInStream& in, int position) {
    char c = 'Z';
    std::string token = "before";
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getChar(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_EQ(in.getPosition(), position);
    EXPECT_FALSE(in.getToken(token));
    EXPECT_EQ(token, "before");
    EXPECT_EQ(in.getErrorMessage(), kEnd);
}

TEST_F(FileSpecInStreamTest, IsMadeFromAnOpenFileOrANameExplicitly) {
    EXPECT_TRUE((std::is_constructible_v<FileSpecInStream, FileIO&>));
    EXPECT_FALSE((std::is_convertible_v<FileIO&, FileSpecInStream>));
    EXPECT_FALSE((std::is_convertible_v<const FileSpec&, FileSpecInStream>));
    EXPECT_FALSE(std::is_copy_constructible_v<FileSpecInStream>);
}

TEST_F(FileSpecInStreamTest, ReadsNothingFromAMissingFileAndSaysNothing) {
    const MessageCollector messages;
    FileSpecInStream in{FileSpec(path)};
    expectEmpty(in, -1);
    in.setPosition(3);
    expectEmpty(in, -1);
    EXPECT_EQ(in.getLine(), 1);
    EXPECT_EQ(in.getColumn(), -1);
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(FileSpecInStreamTest, ReadsNothingFromWhatIsNoRegularFile) {
    for (const char* name : {"/", "/dev/zero", "/dev/null"}) {
        SCOPED_TRACE(name);
        FileSpecInStream in{FileSpec(name)};
        expectEmpty(in, -1);
    }
}

TEST_F(FileSpecInStreamTest, IsAtItsEndAtOnceInAnEmptyFile) {
    writeFile(path, "");
    FileSpecInStream in{FileSpec(path)};
    expectEmpty(in, 0);
}

TEST_F(FileSpecInStreamTest, HandsOutEachByteAndThenNone) {
    std::string bytes;
    for (int i = 0; i < 140'000; ++i) bytes += static_cast<char>(i * 11 % 256);
    writeFile(path, bytes);
    FileSpecInStream in{FileSpec(path)};
    std::string read;
    char c = 0;
    while (in.getChar(c)) read += c;
    EXPECT_TRUE(read == bytes);
    EXPECT_TRUE(in.eof());
    EXPECT_EQ(in.getPosition(), 140'000);
    for (const int position : {65'535, 65'536, 0, 139'999}) {
        in.setPosition(position);
        EXPECT_EQ(in.getPosition(), position);
        EXPECT_FALSE(in.eof());
        EXPECT_TRUE(in.getChar(c));
        EXPECT_EQ(c, bytes[static_cast<std::size_t>(position)]);
    }
}

TEST_F(FileSpecInStreamTest, ReadsNothingAtPositionsOutsideTheFile) {
    writeFile(path, "abc");
    FileSpecInStream in{FileSpec(path)};
    in.setPosition(std::numeric_limits<int>::max());
    expectEmpty(in, std::numeric_limits<int>::max());
    in.setPosition(3);
    expectEmpty(in, 3);
    in.setPosition(2);
    char c = 0;
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'c');
}

TEST_F(FileSpecInStreamTest, ReadsTheCallersFileFromWhereItStandsAndLeavesItOpen) {
    writeFile(path, "skipped one two ");
    FileIO file{FileSpec(path)};
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(8);
    std::string token;
    {
        FileSpecInStream in(file);
        EXPECT_EQ(in.getPosition(), 8);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "one");
        EXPECT_EQ(file.GetPosition(), 11);
        // What the caller does with the file shows, and the other way round.
        EXPECT_EQ(file.ReadUInt8(), ' ');
        EXPECT_EQ(in.getPosition(), 12);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "two");
        file.Seek(0);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "skipped");
    }
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(file.GetPosition(), 7);
}

TEST_F(FileSpecInStreamTest, ReadsNothingFromAFileThatIsNotOpen) {
    writeFile(path, "abc");
    FileIO file{FileSpec(path)};
    FileSpecInStream never(file);
    char c = 'Z';
    EXPECT_TRUE(never.eof());
    EXPECT_FALSE(never.getChar(c));

    ASSERT_TRUE(file.OpenForReading());
    FileSpecInStream in(file);
    EXPECT_TRUE(in.getChar(c));
    file.Close();
    EXPECT_TRUE(in.eof());
    c = 'Z';
    EXPECT_FALSE(in.getChar(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_FALSE(in.get(c));
    EXPECT_EQ(in.getErrorMessage(), kEnd);
}

TEST_F(FileSpecInStreamTest, ReadsOnlyWhatTheFileHeldAtFirst) {
    writeFile(path, "one");
    FileSpecInStream in{FileSpec(path)};
    std::ofstream(path, std::ios::app | std::ios::binary) << " two";
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "one");
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getToken(token));
    in.setPosition(4);
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getToken(token));
}

// While a reader is at work its tokens come out of the file's memory, and it comes back to one that lies there: that
// shows only in where the file stands meanwhile.
TEST_F(FileSpecInStreamTest, LeavesTheFileWhereItStandsUntilAReaderIsDone) {
    std::string text;
    for (int i = 0; i < 20'000; ++i) text += "<!x 'y' a &b; ";
    writeFile(path, text);
    for (const int start : {0, 140, 14 * 10'000}) {
        SCOPED_TRACE(start);
        FileIO file{FileSpec(path)};
        ASSERT_TRUE(file.OpenForReading());
        FileSpecInStream in(file);
        in.setPosition(start);
        {
            const Xml::StreamAccess::Session session(in);
            std::string token;
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, "<!x");
            const auto after = in.StorePosition();
            EXPECT_EQ(after.first, start + 3);
            for (int i = 0; i < 10; ++i) EXPECT_TRUE(in.getToken(token));
            in.RestorePosition(after);
            EXPECT_TRUE(in.getString(token));
            EXPECT_EQ(token, "'y'");
            EXPECT_EQ(file.GetPosition(), start);
        }
        EXPECT_EQ(file.GetPosition(), start + 7);
    }
}

TEST_F(FileSpecInStreamTest, HasADerivedClasssPrimitivesCalled) {
    class Counting : public FileSpecInStream {
    public:
        using FileSpecInStream::FileSpecInStream;
        bool getChar(char& c) override {
            ++reads;
            if (!FileSpecInStream::getChar(c)) return false;
            if (c == 'o') c = '0';
            return true;
        }
        int reads = 0;
    };
    writeFile(path, "one two ");
    Counting in{FileSpec(path)};
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "0ne");
    EXPECT_TRUE(in.checkToken("tw0"));
    EXPECT_GE(in.reads, 8);
}

// Files with a hole: they take no room.
constexpr std::uintmax_t kMostBytes = 2'147'483'647;

TEST_F(FileSpecInStreamTest, RefusesAFileWhosePositionsAnIntCannotHold) {
    writeFile(path, "<a>text</a> ");
    std::filesystem::resize_file(path, kMostBytes + 1);
    FileSpecInStream in{FileSpec(path)};
    std::string token = "before";
    char c = 'Z';
    EXPECT_FALSE(in.getToken(token));
    EXPECT_EQ(token, "before");
    EXPECT_EQ(in.getErrorMessage(), "Source too large");
    EXPECT_FALSE(in.get(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_EQ(in.getErrorMessage(), "Source too large");

    FileIO file{FileSpec(path)};
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(std::int64_t{1} << 31);
    FileSpecInStream callers(file);
    EXPECT_FALSE(callers.get(c));
    EXPECT_EQ(callers.getErrorMessage(), "Source too large");
}

TEST_F(FileSpecInStreamTest, ReadsAFileWhosePositionsAnIntJustHolds) {
    writeFile(path, "<a>text</a> ");
    std::filesystem::resize_file(path, kMostBytes);
    FileSpecInStream in{FileSpec(path)};
    EXPECT_TRUE(in.checkToken("<"));
    EXPECT_TRUE(in.checkToken("a"));
    constexpr int kLast = std::numeric_limits<int>::max() - 1;
    in.setPosition(kLast);
    char c = 'Z';
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 0);
    EXPECT_EQ(in.getPosition(), kLast + 1);
    EXPECT_EQ(in.getColumn(), kLast + 1);
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.get(c));
    EXPECT_EQ(in.getErrorMessage(), kEnd);
}

}  // namespace
