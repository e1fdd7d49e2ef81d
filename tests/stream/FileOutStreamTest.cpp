#include "OutPrograms.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "xml/stream/FileOutStream.h"
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::FileOutStream;
using Xml::test::BareOutStream;
using Xml::test::MessageCollector;
using Xml::test::readFile;
using Xml::test::runOutProgram;
using Xml::test::scratchPath;
using Xml::test::writeFile;

constexpr auto kAllExceptions = std::ios::badbit | std::ios::failbit | std::ios::eofbit;

class FileOutStreamTest : public testing::Test {
protected:
    ~FileOutStreamTest() override { std::remove(path.c_str()); }

    const std::string path = scratchPath("out");
};

TEST_F(FileOutStreamTest, IsMadeFromAStreamOrAPathExplicitly) {
    EXPECT_FALSE((std::is_convertible_v<std::ostream*, FileOutStream>));
    EXPECT_TRUE((std::is_constructible_v<FileOutStream, std::ostream*>));
    EXPECT_TRUE((std::is_constructible_v<FileOutStream, const std::string&, std::ofstream*>));
    EXPECT_FALSE(std::is_copy_constructible_v<FileOutStream>);
}

TEST_F(FileOutStreamTest, WritesTheSameBytesAsABareSink) {
    std::mt19937 random(22);
    for (int i = 0; i < 300; ++i) {
        std::mt19937 same = random;
        BareOutStream bare;
        runOutProgram(same, bare, 40);
        same = random;
        std::ostringstream memory;
        FileOutStream out(&memory);
        runOutProgram(same, out, 40);
        ASSERT_TRUE(memory.str() == bare.bytes);
        {
            std::ofstream file;
            FileOutStream toFile(path, &file);
            runOutProgram(random, toFile, 40);
            EXPECT_EQ(toFile.getPosition(), static_cast<int>(bare.bytes.size()));
        }
        ASSERT_TRUE(readFile(path) == bare.bytes);
    }
}

TEST_F(FileOutStreamTest, StandsAfterWhatWasWrittenByEachOperation) {
    std::mt19937 random(23);
    for (int i = 0; i < 50; ++i) {
        std::ostringstream memory;
        FileOutStream out(&memory);
        std::ofstream file;
        FileOutStream toFile(path, &file);
        std::mt19937 same = random;
        runOutProgram(same, out, 30, [&] {
            ASSERT_EQ(out.getPosition(), static_cast<int>(memory.tellp()));
            ASSERT_EQ(out.getPosition(), static_cast<int>(memory.str().size()));
        });
        runOutProgram(random, toFile, 30, [&] { ASSERT_EQ(toFile.getPosition(), static_cast<int>(file.tellp())); });
        EXPECT_EQ(toFile.getPosition(), out.getPosition());
    }
}

TEST_F(FileOutStreamTest, WritesOverWhatStandsAtAPosition) {
    std::ostringstream memory;
    FileOutStream out(&memory);
    out << "abcdef"s;
    out.setPosition(2);
    EXPECT_EQ(out.getPosition(), 2);
    out << "XY"s;
    EXPECT_EQ(out.getPosition(), 4);
    EXPECT_EQ(memory.str(), "abXYef");
    // The caller's own moves and bytes count as well.
    memory.seekp(0);
    memory << "1";
    EXPECT_EQ(out.getPosition(), 1);
    out.put('2');
    EXPECT_EQ(memory.str(), "12XYef");
}

TEST_F(FileOutStreamTest, MovesOnlyAGoodStreamAndFailsWhereThatIsRefused) {
    std::ostringstream memory;
    FileOutStream out(&memory);
    out << "ab"s;
    out.setPosition(-5);
    EXPECT_TRUE(memory.fail());
    EXPECT_EQ(out.getPosition(), -1);
    out << "lost"s;
    out.writeDataHolder("lost");
    out.setPosition(0);
    EXPECT_EQ(out.getPosition(), -1);
    memory.clear();
    EXPECT_EQ(out.getPosition(), 2);
    EXPECT_EQ(memory.str(), "ab");
    memory.setstate(std::ios::eofbit);
    out.setPosition(0);
    memory.clear();
    EXPECT_EQ(out.getPosition(), 2);
    memory.setstate(std::ios::badbit);
    EXPECT_EQ(out.getPosition(), -1);
    EXPECT_TRUE(out.isValid());
}

TEST_F(FileOutStreamTest, EmptiesAndWritesAFileAndClosesItAtTheEnd) {
    writeFile(path, "what was there before, and more");
    std::ofstream file;
    {
        FileOutStream out(path, &file);
        EXPECT_TRUE(file.is_open());
        EXPECT_TRUE(out.isValid());
        EXPECT_EQ(out.getPosition(), 0);
        out << "a\r\nb\n\xff"s;
    }
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(readFile(path), "a\r\nb\n\xff");
}

TEST_F(FileOutStreamTest, ClosesWhatTheCallersStreamHadOpen) {
    const std::string other = scratchPath("out-before");
    const MessageCollector messages;
    std::ofstream file(other);
    file << "before";
    {
        FileOutStream out(path, &file);
        out << "after"s;
        EXPECT_EQ(readFile(other), "before");
    }
    EXPECT_EQ(readFile(path), "after");
    EXPECT_TRUE(messages.texts().empty());
    std::remove(other.c_str());
}

TEST_F(FileOutStreamTest, LeavesTheCallersOwnStreamOpen) {
    std::ofstream file(path);
    {
        FileOutStream out(&file);
        out << "a"s;
    }
    EXPECT_TRUE(file.is_open());
    file << "b";
    file.close();
    EXPECT_EQ(readFile(path), "ab");
}

TEST_F(FileOutStreamTest, LeavesAFileAloneThatTheCallerClosed) {
    std::ofstream file;
    {
        FileOutStream out(path, &file);
        file.close();
    }
    EXPECT_TRUE(file.good());
}

TEST_F(FileOutStreamTest, ReportsAPathThatCannotBeOpenedAndWritesNothing) {
    for (const auto exceptions : {std::ios::goodbit, kAllExceptions}) {
        const MessageCollector messages;
        const std::string missing = scratchPath("no-folder/out");
        std::ofstream file;
        file.exceptions(exceptions);
        FileOutStream out(missing, &file);
        EXPECT_EQ(messages.texts(),
                  std::vector<std::string>{"<Xml::FileOutStream::FileOutStream> Could not open file: " + missing});
        EXPECT_TRUE(out.isValid());
        out << 'a' << "b\n"s;
        out.writeDataHolder("c");
        out.setPosition(0);
        EXPECT_EQ(out.getPosition(), -1);
        EXPECT_TRUE(file.fail());
        EXPECT_EQ(messages.texts().size(), 1U);
        EXPECT_EQ(file.exceptions(), exceptions);
    }
}

// Takes so many bytes and no more.
class NarrowBuffer : public std::streambuf {
public:
    explicit NarrowBuffer(std::size_t room, bool throwing = false) : left(room), throws(throwing) {}
    std::string bytes;

protected:
    int_type overflow(int_type byte) override {
        if (left == 0) {
            if (throws) throw std::runtime_error("full");
            return traits_type::eof();
        }
        --left;
        bytes += traits_type::to_char_type(byte);
        return byte;
    }

private:
    std::size_t left;
    bool throws;
};

TEST_F(FileOutStreamTest, AbsorbsAFullSinkInTheStreamsState) {
    for (const bool throws : {false, true}) {
        for (const auto exceptions : {std::ios::goodbit, kAllExceptions}) {
            SCOPED_TRACE(throws);
            NarrowBuffer buffer(4, throws);
            std::ostream stream(&buffer);
            stream.exceptions(exceptions);
            FileOutStream out(&stream);
            EXPECT_NO_THROW(out << "ab"s);
            EXPECT_NO_THROW(out << "cdef"s);
            EXPECT_EQ(buffer.bytes, "abcd");
            EXPECT_TRUE(stream.bad());
            EXPECT_EQ(out.getPosition(), -1);
            EXPECT_NO_THROW(out.writeDataHolder("g"));
            EXPECT_NO_THROW(out.put('h'));
            EXPECT_NO_THROW(out.setPosition(0));
            EXPECT_EQ(buffer.bytes, "abcd");
            EXPECT_EQ(stream.exceptions(), exceptions);
        }
    }
}

TEST_F(FileOutStreamTest, HasNoPositionsWhereTheStreamHasNone) {
    NarrowBuffer buffer(100);
    std::ostream stream(&buffer);
    FileOutStream out(&stream);
    EXPECT_EQ(out.getPosition(), -1);
    out << "ab"s;
    EXPECT_EQ(out.getPosition(), -1);
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(buffer.bytes, "ab");
    out.setPosition(0);
    EXPECT_TRUE(stream.fail());
}

TEST_F(FileOutStreamTest, ThrowsNothingWhenAFullDeviceIsClosed) {
    std::ofstream file;
    file.exceptions(kAllExceptions);
    {
        FileOutStream out("/dev/full", &file);
        EXPECT_NO_THROW(out << std::string(100'000, 'x'));
        EXPECT_NO_THROW(out.getPosition());
    }
    EXPECT_TRUE(file.fail());
    EXPECT_FALSE(file.is_open());
}

TEST_F(FileOutStreamTest, HandsEveryByteToADerivedClasssPutChar) {
    class Marking : public FileOutStream {
    public:
        using FileOutStream::FileOutStream;
        void putChar(char c) override {
            seen += c;
            FileOutStream::putChar(c == 'x' ? 'X' : c);
        }
        std::string seen;
    };
    std::mt19937 random(24);
    std::mt19937 same = random;
    BareOutStream bare;
    runOutProgram(same, bare, 200);
    std::ostringstream memory;
    Marking out(&memory);
    runOutProgram(random, out, 200);
    EXPECT_TRUE(out.seen == bare.bytes);
    memory.str("");
    out.writeDataHolder("x\nx");
    out << "\nx"s << 'x';
    EXPECT_EQ(memory.str().front(), 'X');
    EXPECT_EQ(memory.str().find('x'), std::string::npos);
    EXPECT_EQ(memory.str().size(), out.seen.size() - bare.bytes.size());
}

TEST_F(FileOutStreamTest, LosesABytePutOnAFailedStream) {
    std::ostringstream memory;
    FileOutStream out(&memory);
    out.putChar('a');
    memory.setstate(std::ios_base::failbit);
    out.putChar('b');
    EXPECT_EQ(out.getPosition(), -1);
    EXPECT_EQ(memory.str(), "a");
}

}  // namespace
