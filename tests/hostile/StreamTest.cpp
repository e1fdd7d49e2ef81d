// Sources that were made to break a reader: positions outside of them, sizes that no position reaches, devices,
// streams that throw or have no positions.
#include "hostile/Inputs.h"
#include "orvsys/Files.h"
#include "stream/TextBuffer.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <unistd.h>

namespace Xml::test {
namespace {

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();
constexpr auto kAllExceptions = std::ios::badbit | std::ios::failbit | std::ios::eofbit;

TEST(HostileStreamTest, NothingIsReadAtPositionsOutsideOfTheText) {
    const auto at = [](int position) {
        return [position](InStream& source) {
            source.setPosition(position);
            std::string token = "none";
            const bool read = source.getToken(token);
            source.getLine();
            source.getColumn();
            return (read ? "read " : "not read ") + token;
        };
    };
    const auto text = [] { return std::string("<a>text</a>"); };
    expectOutcomes({
        {"the end", text, at(11), "not read none"},
        {"after the end", text, at(12), "not read none"},
        {"far after", text, at(kMost), "not read none"},
        {"in front", text, at(-1), "not read none"},
        {"far in front", text, at(kLeast), "not read none"},
        {"inside", text, at(3), "read text"},
    });
}

TEST(HostileStreamTest, SteppingAboutEndsWhereItBegan) {
    expectOutcomes({
        {"back from the start, again and again", [] { return std::string("<a/>"); },
         [](InStream& source) {
             for (int i = 0; i < kBrackets; ++i) source.putBackChar();
             return document(source);
         },
         facts(1, 1)},
        {"there and back", [] { return repeated("<a>\r\n", 100) + repeated("</a>", 100); },
         [](InStream& source) {
             std::string token;
             for (int i = 0; i < kBrackets; ++i) {
                 source.setPosition(i * 7 % 500);
                 source.getToken(token);
                 source.getLine();
             }
             source.setPosition(0);
             return document(source);
         },
         facts(100, 100)},
        {"positions restored that were never stored", [] { return std::string("<a/>"); },
         [](InStream& source) {
             source.RestorePosition({0, 100});
             source.RestorePosition({0, -100});
             return document(source);
         },
         facts(1, 1)},
        {"tests of a buffer that is shorter", [] { return std::string("<a/>"); },
         [](InStream& source) {
             const bool ends = source.CheckParseBufferEnd("abc", 3) || source.checkTokenInParseBuffer("abc", 3);
             return std::string(ends ? "yes" : "no") + (source.CheckParseBufferEnd("abc", -3) ? ", yes" : ", no");
         },
         "no, yes"},
    });
}

TEST(HostileStreamTest, ASourceWithoutPositionsForAllOfItIsRefused) {
    const std::string path = scratchPath("huge.xml");
    writeFile(path, "<a/>");
    const auto over = [&path](Source source, off_t size) {
        return [&path, source, size] {
            if (::truncate(path.c_str(), size) != 0) return std::string("no such size");
            std::string answer;
            withSource(source, "", path, [&answer](InStream& in) {
                ElementReader reader;
                answer = reader.parse(in) ? "read" : reader.getErrorMessage();
            });
            return answer;
        };
    };
    const off_t most = kMost;
    expectOutcomes({
        {"file stream, as large as may be", over(Source::FileStream, most), "read"},
        {"file stream, a byte more", over(Source::FileStream, most + 1), failed<ElementReader>(0, "Source too large")},
        {"file stream, ten times as much", over(Source::FileStream, most * 10),
         failed<ElementReader>(0, "Source too large")},
        {"platform file, as large as may be", over(Source::PlatformFile, most), "read"},
        {"platform file, a byte more", over(Source::PlatformFile, most + 1),
         failed<ElementReader>(0, "Source too large")},
        {"platform file, ten times as much", over(Source::PlatformFile, most * 10),
         failed<ElementReader>(0, "Source too large")},
    });
    std::remove(path.c_str());
}

// A document read from a standard stream; the stream must keep its exceptions to itself.
std::string readFrom(std::istream& stream) {
    FileInStream in(&stream);
    return document(in);
}

// A stream that has failed already throws at once.
void askForExceptions(std::istream& stream) {
    try {
        stream.exceptions(kAllExceptions);
    } catch (const std::ios::failure&) {
        // That is the test's own doing.
    }
}

TEST(HostileStreamTest, StreamsOfAnyKindThrowNothing) {
    const std::string good = "<a b='c'>text<d/></a>";
    const auto buffered = [&good](BufferHabits habits, bool throwing) {
        return [&good, habits, throwing] {
            TextBuffer buffer(good, habits);
            std::istream stream(&buffer);
            if (throwing) stream.exceptions(kAllExceptions);
            return readFrom(stream);
        };
    };
    const auto file = [](const char* path, bool throwing) {
        return [path, throwing] {
            std::ifstream stream;
            if (throwing) stream.exceptions(kAllExceptions);
            FileInStream in(path, &stream);
            return document(in);
        };
    };
    BufferHabits dies;
    dies.throwsAt = 10;
    BufferHabits diesAtOnce;
    diesAtOnce.throwsAt = 0;
    BufferHabits pipe;
    pipe.seekable = false;
    BufferHabits slow;
    slow.chunk = 0;
    BufferHabits far;
    far.positionOffset = std::streamoff{1} << 40;
    const std::string whole = facts(2, 2, 1, 1, 5);
    const std::string nothing = failed<DocumentReader>(-1, "Unexpected end of stream");
    const std::string early = failed<ElementReader>(-1, "Unexpected end of stream");
    for (const bool throwing : {false, true}) {
        SCOPED_TRACE(throwing ? "with exceptions" : "without exceptions");
        expectOutcomes({
            {"a byte at a time", buffered(slow, throwing), whole},
            {"a buffer that dies", buffered(dies, throwing), early},
            {"a buffer that dies at once", buffered(diesAtOnce, throwing), nothing},
            {"no positions", buffered(pipe, throwing), nothing},
            {"positions beyond an int", buffered(far, throwing), failed<DocumentReader>(-1, "Source too large")},
            {"a text that ends",
             [throwing] {
                 std::istringstream stream("<a><b>");
                 if (throwing) stream.exceptions(kAllExceptions);
                 return readFrom(stream);
             },
             early},
            {"a stream that has failed",
             [throwing] {
                 std::istringstream stream("<a/>");
                 stream.setstate(std::ios::failbit);
                 if (throwing) askForExceptions(stream);
                 return readFrom(stream);
             },
             nothing},
            {"no buffer",
             [throwing] {
                 std::istream stream(nullptr);
                 if (throwing) askForExceptions(stream);
                 return readFrom(stream);
             },
             nothing},
            {"a missing file", file("/no/such/file", throwing), nothing},
            {"a directory", file("/", throwing), nothing},
            {"an empty device", file("/dev/null", throwing), nothing},
        });
    }
}

TEST(HostileStreamTest, PlatformFilesAreRegularOnes) {
    const auto file = [](const char* path) {
        return [path] {
            FileSpecInStream in{OrvSys::FileSpec(path)};
            return document(in);
        };
    };
    const std::string nothing = failed<DocumentReader>(-1, "Unexpected end of stream");
    expectOutcomes({
        {"missing", file("/no/such/file"), nothing},
        {"a directory", file("/"), nothing},
        {"a device that never ends", file("/dev/zero"), nothing},
        {"an empty device", file("/dev/null"), nothing},
        {"nothing", file(""), nothing},
        {"a file that is cut while it is read",
         [] {
             const ScratchFile whole("cut.xml", "<a>" + repeated("x", 1'000'000) + "</a>");
             FileSpecInStream in{OrvSys::FileSpec(whole.path)};
             char c = 0;
             in.get(c);
             in.putBackChar();
             if (::truncate(whole.path.c_str(), 10) != 0) return std::string("cannot be cut");
             ElementReader reader;
             return std::string(reader.parse(in) ? "read" : "not read");
         },
         "not read"},
        {"a file that is closed meanwhile",
         [] {
             const ScratchFile whole("closed.xml", "<a>x</a>");
             OrvSys::FileIO closed{OrvSys::FileSpec(whole.path)};
             closed.OpenForReading();
             FileSpecInStream in(closed);
             closed.Close();
             return document(in);
         },
         failed<DocumentReader>(0, "Unexpected end of stream")},
    });
}

}  // namespace
}  // namespace Xml::test
