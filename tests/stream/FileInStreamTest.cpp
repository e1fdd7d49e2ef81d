#include "TextBuffer.h"
#include "models/NaiveTokenizer.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::FileInStream;
using Xml::test::MessageCollector;
using Xml::test::ScratchFile;
using Xml::test::scratchPath;
using Xml::test::TextStream;

const std::string kEnd = "Unexpected end of stream";
constexpr auto kAllExceptions = std::ios::badbit | std::ios::failbit | std::ios::eofbit;

TEST(FileInStreamTest, IsMadeFromAStreamOrAPathExplicitly) {
    EXPECT_TRUE((std::is_constructible_v<FileInStream, std::istream*>));
    EXPECT_FALSE((std::is_convertible_v<std::istream*, FileInStream>));
    EXPECT_TRUE((std::is_constructible_v<FileInStream, const std::string&, std::ifstream*>));
    EXPECT_TRUE((std::is_base_of_v<Xml::InStream, FileInStream>));
    EXPECT_FALSE(std::is_copy_constructible_v<FileInStream>);
}

TEST(FileInStreamTest, ShowsTheEndOneReadLate) {
    std::istringstream stream("ab");
    FileInStream in(&stream);
    char c = 0;
    EXPECT_EQ(in.getPosition(), 0);
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'a');
    EXPECT_EQ(in.getPosition(), 1);
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'b');
    EXPECT_FALSE(in.eof());
    EXPECT_EQ(in.getPosition(), 2);
    c = 'Z';
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getChar(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_EQ(in.getPosition(), -1);
}

TEST(FileInStreamTest, ReadsEveryByteOfAFileAsItIs) {
    std::string bytes;
    for (int i = 0; i < 20'000; ++i) bytes += static_cast<char>(i * 7 % 256);
    const ScratchFile scratch("bytes", bytes);
    std::ifstream file;
    FileInStream in(scratch.path, &file);
    std::string read;
    char c = 0;
    while (read.size() < bytes.size() && in.getChar(c)) read += c;
    EXPECT_TRUE(read == bytes);
    in.setPosition(9000);
    EXPECT_EQ(in.getPosition(), 9000);
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, bytes[9000]);
}

TEST(FileInStreamTest, BeginsWhereTheCallersStreamStands) {
    std::istringstream stream("skipped read ");
    stream.seekg(8);
    FileInStream in(&stream);
    std::string token;
    EXPECT_EQ(in.getPosition(), 8);
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "read");
    EXPECT_EQ(stream.tellg(), 12);
}

TEST(FileInStreamTest, LeavesTheCallersStreamRightAfterEachToken) {
    const std::string text = "<a b='c'>one &two; <!-- x -->/> ";
    const ScratchFile scratch("tokens", text);
    std::ifstream file(scratch.path, std::ios::binary);
    std::istringstream memory(text);
    for (std::istream* stream : {static_cast<std::istream*>(&file), static_cast<std::istream*>(&memory)}) {
        FileInStream in(stream);
        const struct {
            const char* token;
            int position;
        } kTokens[] = {{"<", 1},      {"a", 2},     {"b", 4},  {"=", 5},   {"'c'", 8}, {">", 9},  {"one", 12},
                       {"&two;", 18}, {"<!--", 23}, {"x", 25}, {"--", 28}, {">", 29},  {"/>", 31}};
        for (const auto& wanted : kTokens) {
            SCOPED_TRACE(wanted.token);
            std::string token;
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, wanted.token);
            EXPECT_EQ(stream->tellg(), wanted.position);
        }
    }
}

TEST(FileInStreamTest, GoesOnWhereTheCallerMovedTheStream) {
    const std::string text = "one two three four ";
    const ScratchFile scratch("moved", text);
    std::ifstream file(scratch.path, std::ios::binary);
    std::istringstream memory(text);
    for (std::istream* stream : {static_cast<std::istream*>(&file), static_cast<std::istream*>(&memory)}) {
        FileInStream in(stream);
        std::string token;
        EXPECT_TRUE(in.getToken(token));
        stream->seekg(8);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "three");
        EXPECT_EQ(stream->get(), ' ');
        EXPECT_EQ(stream->get(), 'f');
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "our");
        std::string word;
        stream->seekg(0);
        EXPECT_TRUE(*stream >> word);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "two");
    }
}

TEST(FileInStreamTest, FollowsTheStreamToAnotherText) {
    std::istringstream stream("one two ");
    FileInStream in(&stream);
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    stream.str("three four ");
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "three");
    std::stringbuf other("five six ");
    stream.std::istream::rdbuf(&other);
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "five");
    EXPECT_EQ(in.getPosition(), 4);
    stream.std::istream::rdbuf(stream.rdbuf());
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "four");
}

TEST(FileInStreamTest, SeeksAsTheStreamDoes) {
    std::istringstream stream("abc");
    FileInStream in(&stream);
    char c = 0;
    in.setPosition(2);
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'c');
    // An end that the caller has seen is forgotten by moving; a failure is not.
    stream.clear(std::ios::eofbit);
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getChar(c));
    in.setPosition(0);
    EXPECT_FALSE(in.eof());
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 'a');
    stream.setstate(std::ios::failbit);
    in.setPosition(1);
    EXPECT_EQ(in.getPosition(), -1);
    EXPECT_FALSE(in.getChar(c));
    EXPECT_FALSE(in.eof());
    stream.clear();
    EXPECT_EQ(in.getPosition(), 1);
    in.setPosition(-5);
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(in.getPosition(), -1);
}

TEST(FileInStreamTest, OpensAPathAndClosesItAtTheEnd) {
    const ScratchFile scratch("opened", "text ");
    std::ifstream file;
    {
        FileInStream in(scratch.path, &file);
        EXPECT_TRUE(file.is_open());
        std::string token;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "text");
    }
    EXPECT_FALSE(file.is_open());
}

TEST(FileInStreamTest, ClosesWhatTheCallersStreamHadOpen) {
    const ScratchFile before("before", "before ");
    const ScratchFile scratch("opened", "opened ");
    const MessageCollector messages;
    std::ifstream file(before.path);
    FileInStream in(scratch.path, &file);
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "opened");
    EXPECT_TRUE(messages.texts().empty());
}

TEST(FileInStreamTest, LeavesTheCallersOwnStreamOpen) {
    const ScratchFile scratch("callers", "one two ");
    std::ifstream file(scratch.path);
    {
        FileInStream in(&file);
        std::string token;
        EXPECT_TRUE(in.getToken(token));
    }
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(file.tellg(), 3);
}

TEST(FileInStreamTest, LeavesAFileAloneThatTheCallerClosed) {
    const ScratchFile scratch("closed", "text");
    std::ifstream file;
    {
        FileInStream in(scratch.path, &file);
        file.close();
    }
    EXPECT_TRUE(file.good());
}

TEST(FileInStreamTest, ReportsAPathThatCannotBeOpenedAndReadsNothing) {
    for (const auto exceptions : {std::ios::goodbit, kAllExceptions}) {
        MessageCollector messages;
        const std::string path = scratchPath("missing");
        std::ifstream file;
        file.exceptions(exceptions);
        FileInStream in(path, &file);
        EXPECT_EQ(messages.texts(),
                  std::vector<std::string>{"<Xml::FileInStream::FileInStream> Could not open file: " + path});
        char c = 'Z';
        std::string token = "before";
        EXPECT_FALSE(in.getChar(c));
        EXPECT_EQ(in.getPosition(), -1);
        EXPECT_FALSE(in.eof());
        in.setPosition(0);
        EXPECT_FALSE(in.get(c));
        EXPECT_EQ(c, 'Z');
        EXPECT_EQ(in.getErrorMessage(), kEnd);
        EXPECT_FALSE(in.getToken(token));
        EXPECT_EQ(token, "before");
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), -1);
        EXPECT_EQ(file.exceptions(), exceptions);
    }
}

TEST(FileInStreamTest, ThrowsNothingWhereTheStreamsExceptionsAreOn) {
    const ScratchFile scratch("strict", "one");
    std::ifstream file(scratch.path);
    std::istringstream memory("one");
    TextStream pipe("one", {2, false});
    for (std::istream* stream :
         {static_cast<std::istream*>(&file), static_cast<std::istream*>(&memory), static_cast<std::istream*>(&pipe)}) {
        stream->exceptions(kAllExceptions);
        FileInStream in(stream);
        std::string token;
        char c = 'Z';
        EXPECT_NO_THROW(while (in.getToken(token)){});
        EXPECT_NO_THROW(in.getChar(c));
        EXPECT_NO_THROW(in.setPosition(0));
        EXPECT_NO_THROW(in.setPosition(-7));
        EXPECT_NO_THROW(in.eof());
        EXPECT_NO_THROW(in.getLine());
        EXPECT_EQ(in.getPosition(), -1);
        EXPECT_EQ(in.getErrorMessage(), kEnd);
        EXPECT_EQ(stream->exceptions(), kAllExceptions);
        EXPECT_TRUE(stream->fail());
    }
}

// A buffer of the caller's that throws by itself, however the stream takes it.
TEST(FileInStreamTest, ThrowsNothingWhereTheBufferDoes) {
    for (const auto exceptions : {std::ios::goodbit, kAllExceptions}) {
        for (const std::size_t chunk : {0U, 3U}) {
            TextStream stream("one two", {chunk, true, 4});
            stream.exceptions(exceptions);
            FileInStream in(&stream);
            std::string token;
            EXPECT_NO_THROW(while (in.getToken(token)){});
            EXPECT_TRUE(stream.bad());
            EXPECT_EQ(in.getErrorMessage(), kEnd);
            EXPECT_EQ(in.getPosition(), -1);
        }
    }
}

// The memory of the process as a file, which cannot be read beyond what is mapped: a read of more gives what there is,
// and the next one fails.
TEST(FileInStreamTest, GivesEveryByteBeforeTheOneThatCannotBeRead) {
    constexpr std::size_t kSize = 25 * 4096;
    void* const place = reinterpret_cast<void*>(std::uintptr_t{1} << 30);
    void* const memory = ::mmap(place, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != place) GTEST_SKIP() << "there is something at the place";
    std::string text;
    while (text.size() < kSize) text += "word" + std::to_string(text.size()) + "\n";
    text.resize(kSize);
    std::memcpy(memory, text.data(), kSize);

    std::ifstream file("/proc/self/mem", std::ios::binary);
    file.seekg(static_cast<std::streamoff>(reinterpret_cast<std::uintptr_t>(memory)));
    FileInStream in(&file);
    const Xml::StreamAccess::Session session(in);  // in which what was read before says how much is read at once
    std::string read;
    std::string token;
    while (in.getToken(token) && !token.empty()) read += token + "\n";
    ::munmap(memory, kSize);
    EXPECT_EQ(read.substr(0, kSize), text);
}

TEST(FileInStreamTest, HasNoPositionsWhereTheStreamHasNone) {
    TextStream stream("ab", {4, false});
    FileInStream in(&stream);
    char c = 0;
    EXPECT_EQ(in.getPosition(), -1);
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 'a');
    in.putBackChar();
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 'b');
    EXPECT_TRUE(in.getChar(c));
    EXPECT_FALSE(in.getChar(c));
}

// While a reader is at work its tokens come out of the stream's buffer, and it comes back to one that lies there: that
// shows only in where the stream stands meanwhile.
TEST(FileInStreamTest, LeavesTheStreamWhereItStandsUntilAReaderIsDone) {
    const ScratchFile scratch("standing", "one two 'three' four five ");
    std::istringstream strings("one two 'three' four five ");
    std::ifstream file(scratch.path, std::ios::binary);
    for (std::istream* const stream : {static_cast<std::istream*>(&strings), static_cast<std::istream*>(&file)}) {
        for (const int start : {0, 4}) {
            SCOPED_TRACE(start);
            const auto place = [stream] { return stream->rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in); };
            stream->seekg(start);
            FileInStream in(stream);
            {
                const Xml::StreamAccess::Session session(in);
                std::string token;
                EXPECT_TRUE(in.getToken(token));
                EXPECT_EQ(token, start == 0 ? "one" : "two");
                const auto after = in.StorePosition();
                EXPECT_EQ(after.first, start + 3);
                EXPECT_TRUE(in.getToken(token));
                EXPECT_TRUE(in.getToken(token));
                in.RestorePosition(after);
                EXPECT_TRUE(in.getToken(token));
                EXPECT_EQ(token, start == 0 ? "two" : "'three'");
                EXPECT_EQ(place(), start);
            }
            EXPECT_EQ(place(), start == 0 ? 7 : 15);
        }
    }
}

// No place shows there whether a reference is the last one again.
TEST(FileInStreamTest, QuotesTheReferenceThatIsNoNameWhereTheStreamHasNoPositions) {
    TextStream stream("'<?a&ab;", {4, false});
    FileInStream in(&stream);
    const Xml::StreamAccess::Session session(in);
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(in.getErrorMessage(), "not a name: &ab;");
}

// Its buffer is that of any file, and has both bytes at hand.
TEST(FileInStreamTest, StepsNowhereInAPipe) {
    const std::string path = scratchPath("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int end = open(path.c_str(), O_RDWR);
    EXPECT_EQ(write(end, "ab", 2), 2);
    std::ifstream file(path, std::ios::binary);
    close(end);
    std::remove(path.c_str());

    FileInStream in(&file);
    char c = 0;
    EXPECT_EQ(in.getPosition(), -1);
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 'a');
    in.putBackChar();
    EXPECT_EQ(in.getPosition(), -1);
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 'b');
    EXPECT_TRUE(in.getChar(c));
    EXPECT_FALSE(in.getChar(c));
}

// Of two bytes in the file one is a byte of the stream. Its positions are those in the file: a step back is half a
// byte.
TEST(FileInStreamTest, ReadsAFileWhoseBytesAreConvertedAsItsPrimitivesDo) {
    struct EveryOther : std::codecvt<char, char, std::mbstate_t> {
        bool do_always_noconv() const noexcept override { return false; }
        int do_encoding() const noexcept override { return 2; }
        int do_max_length() const noexcept override { return 2; }
        result do_in(std::mbstate_t&, const char* from, const char* fromEnd, const char*& fromNext, char* to,
                     char* toEnd, char*& toNext) const override {
            for (; fromEnd - from >= 2 && to != toEnd; from += 2) *to++ = *from;
            fromNext = from;
            toNext = to;
            return from == fromEnd ? ok : partial;
        }
        int do_length(std::mbstate_t&, const char* from, const char* end, std::size_t most) const override {
            return static_cast<int>(std::min(2 * most, static_cast<std::size_t>(end - from) / 2 * 2));
        }
    };
    const ScratchFile scratch("converted", "aabb  cc==dd  <<eeff  ");
    const std::locale converting(std::locale::classic(), new EveryOther);
    std::ifstream file;
    std::ifstream other;
    for (std::ifstream* const each : {&file, &other}) {
        each->imbue(converting);
        each->open(scratch.path, std::ios::binary);
    }
    FileInStream in(&file);
    FileInStream primitives(&other);
    Xml::test::NaiveTokenizer naive(primitives);
    std::string token;
    std::string wanted;
    for (const char* const expected : {"ab", "c", "d", "<"}) {
        SCOPED_TRACE(expected);
        ASSERT_TRUE(naive.getToken(wanted));
        ASSERT_TRUE(in.getToken(token));
        EXPECT_EQ(token, expected);
        EXPECT_EQ(wanted, expected);
        EXPECT_EQ(in.getPosition(), naive.getPosition());
    }
}

TEST(FileInStreamTest, HasADerivedClasssPrimitivesCalled) {
    class Counting : public FileInStream {
    public:
        using FileInStream::FileInStream;
        bool getChar(char& c) override {
            ++reads;
            if (!FileInStream::getChar(c)) return false;
            if (c == 'o') c = '0';
            return true;
        }
        int reads = 0;
    };
    const ScratchFile scratch("derived", "one two ");
    std::ifstream file;
    Counting in(scratch.path, &file);
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "0ne");
    EXPECT_TRUE(in.checkToken("tw0"));
    EXPECT_GE(in.reads, 8);
}

// Files with a hole: they take no room.
constexpr std::uintmax_t kMostBytes = 2'147'483'647;

TEST(FileInStreamTest, RefusesAFileWhosePositionsAnIntCannotHold) {
    const ScratchFile scratch("large", "<a>text</a> ");
    std::filesystem::resize_file(scratch.path, kMostBytes + 1);
    std::ifstream file;
    FileInStream in(scratch.path, &file);
    std::string token = "before";
    char c = 'Z';
    EXPECT_FALSE(in.getToken(token));
    EXPECT_EQ(token, "before");
    EXPECT_EQ(in.getErrorMessage(), "Source too large");
    EXPECT_FALSE(in.get(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_EQ(in.getErrorMessage(), "Source too large");
    EXPECT_FALSE(in.checkToken("<"));
    EXPECT_EQ(in.getErrorMessage(), "Source too large");

    std::ifstream callers(scratch.path);
    FileInStream over(&callers);
    EXPECT_FALSE(over.get(c));
    EXPECT_EQ(over.getErrorMessage(), "Source too large");

    std::ifstream others(scratch.path);
    EXPECT_FALSE(FileInStream(&others).getChar(c)) << "by the primitive too, which nothing went before";
    EXPECT_EQ(c, 'Z');
}

TEST(FileInStreamTest, ReadsAFileWhosePositionsAnIntJustHolds) {
    const ScratchFile scratch("most", "<a>text</a> ");
    std::filesystem::resize_file(scratch.path, kMostBytes);
    std::ifstream file;
    FileInStream in(scratch.path, &file);
    EXPECT_TRUE(in.checkToken("<"));
    EXPECT_TRUE(in.checkToken("a"));
    constexpr int kLast = std::numeric_limits<int>::max() - 1;
    in.setPosition(kLast);
    EXPECT_EQ(in.getPosition(), kLast);
    char c = 'Z';
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 0);
    EXPECT_EQ(in.getPosition(), kLast + 1);
    EXPECT_EQ(in.getColumn(), kLast + 1);
    c = 'Z';
    EXPECT_TRUE(in.get(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_FALSE(in.get(c));
    EXPECT_EQ(in.getErrorMessage(), kEnd);
}

// It is measured once, before the first byte: that costs a way to the end and back.
TEST(FileInStreamTest, ReadsOnInAFileThatGrowsTooLargeMeanwhile) {
    const ScratchFile scratch("growing", "one two ");
    std::ifstream file;
    FileInStream in(scratch.path, &file);
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    std::filesystem::resize_file(scratch.path, kMostBytes + 1);
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "two");
}

TEST(FileInStreamTest, NeverWrapsAPositionBeyondAnInt) {
    TextStream stream("text ", {4, true, std::string::npos, std::streamoff{1} << 32});
    FileInStream in(&stream);
    std::string token;
    EXPECT_FALSE(in.getToken(token));
    EXPECT_EQ(in.getErrorMessage(), "Source too large");
    EXPECT_EQ(in.getPosition(), -1);
}

}  // namespace
