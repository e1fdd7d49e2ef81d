#include "OutPrograms.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "xml/stream/FileSpecOutStream.h"
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <type_traits>

namespace {

using namespace std::string_literals;
using OrvSys::FileIO;
using OrvSys::FileSpec;
using Xml::FileSpecOutStream;
using Xml::test::BareOutStream;
using Xml::test::MessageCollector;
using Xml::test::readFile;
using Xml::test::runOutProgram;
using Xml::test::scratchPath;
using Xml::test::writeFile;

class FileSpecOutStreamTest : public testing::Test {
protected:
    ~FileSpecOutStreamTest() override { std::remove(path.c_str()); }

    const std::string path = scratchPath("platform-out");
};

TEST_F(FileSpecOutStreamTest, IsMadeFromAnOpenFileOrANameExplicitly) {
    EXPECT_FALSE((std::is_convertible_v<FileIO&, FileSpecOutStream>));
    EXPECT_FALSE((std::is_convertible_v<const FileSpec&, FileSpecOutStream>));
    EXPECT_FALSE(std::is_copy_constructible_v<FileSpecOutStream>);
}

TEST_F(FileSpecOutStreamTest, WritesTheSameBytesAsABareSink) {
    std::mt19937 random(25);
    for (int i = 0; i < 200; ++i) {
        std::mt19937 same = random;
        BareOutStream bare;
        runOutProgram(same, bare, 60);
        {
            FileSpecOutStream out{FileSpec(path)};
            int written = 0;
            same = random;
            BareOutStream beside;
            runOutProgram(same, beside, 60);
            runOutProgram(random, out, 60, [&] {
                ASSERT_GE(out.getPosition(), written);
                written = out.getPosition();
            });
            EXPECT_EQ(written, static_cast<int>(bare.bytes.size()));
        }
        ASSERT_TRUE(readFile(path) == bare.bytes);
    }
}

TEST_F(FileSpecOutStreamTest, CreatesAFileOrEmptiesTheOneThatIsThere) {
    for (int round = 0; round < 2; ++round) {
        {
            FileSpecOutStream out{FileSpec(path)};
            EXPECT_TRUE(out.isValid());
            EXPECT_EQ(out.getPosition(), 0);
            out << (round == 0 ? "a longer text\r\n"s : "short\xff\0"s);
        }
        EXPECT_EQ(readFile(path), round == 0 ? "a longer text\r\n" : "short\xff\0"s);
    }
}

TEST_F(FileSpecOutStreamTest, WritesOverWhatStandsAtAPosition) {
    {
        FileSpecOutStream out{FileSpec(path)};
        out << "abcdef"s;
        EXPECT_EQ(out.getPosition(), 6);
        out.setPosition(2);
        EXPECT_EQ(out.getPosition(), 2);
        out << "XY"s;
        out.writeDataHolder("Z");
        EXPECT_EQ(out.getPosition(), 5);
        out.setPosition(8);
        out.putChar('!');
        EXPECT_EQ(out.getPosition(), 9);
    }
    EXPECT_EQ(readFile(path), "abXYZf\0\0!"s);
}

TEST_F(FileSpecOutStreamTest, WritesToTheCallersFileFromWhereItStandsAndLeavesItOpen) {
    writeFile(path, "0123456789");
    FileIO file{FileSpec(path)};
    ASSERT_TRUE(file.OpenForWriting());
    file.Seek(3);
    {
        FileSpecOutStream out(file);
        EXPECT_TRUE(out.isValid());
        EXPECT_EQ(out.getPosition(), 3);
        out << "ab"s;
        EXPECT_EQ(file.GetPosition(), 5);
        file.Seek(7);
        EXPECT_EQ(out.getPosition(), 7);
        out.put('c');
    }
    EXPECT_TRUE(file.IsOpen());
    file.WriteUInt8('d');
    file.Close();
    EXPECT_EQ(readFile(path), "012ab56cd9");
}

TEST_F(FileSpecOutStreamTest, IgnoresWritesWhereTheFileCannotBeOpened) {
    for (const std::string& name : {scratchPath("no-folder/out"), "/"s, "/dev/full"s}) {
        SCOPED_TRACE(name);
        const MessageCollector messages;
        FileSpecOutStream out{FileSpec(name)};
        EXPECT_FALSE(out.isValid());
        EXPECT_EQ(out.getPosition(), -1);
        out << 'a' << "b\n"s;
        out.incTab();
        out.put('c');
        out.putChar('d');
        out.writeDataHolder("e");
        out.setPosition(3);
        EXPECT_EQ(out.getPosition(), -1);
        EXPECT_TRUE(messages.texts().empty());
    }
}

TEST_F(FileSpecOutStreamTest, HandsEveryByteToADerivedClasssPutChar) {
    class Marking : public FileSpecOutStream {
    public:
        using FileSpecOutStream::FileSpecOutStream;
        void putChar(char c) override { FileSpecOutStream::putChar(c == 'x' ? 'X' : c); }
    };
    std::mt19937 random(26);
    std::mt19937 same = random;
    BareOutStream bare;
    runOutProgram(same, bare, 200);
    {
        Marking out{FileSpec(path)};
        runOutProgram(random, out, 200);
        out.writeDataHolder("x\nx");
        out << "\nx"s;
    }
    std::string wanted = bare.bytes + "x\nx";
    const std::string got = readFile(path);
    for (char& c : wanted) c = c == 'x' ? 'X' : c;
    EXPECT_TRUE(got.substr(0, wanted.size()) == wanted);
    EXPECT_EQ(got.back(), 'X');
}

}  // namespace
