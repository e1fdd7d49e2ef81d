// Long readings of files, which go on in blocks, beside the same readings of bytes that are in memory as a whole.
#include "models/Snapshot.h"
#include "support/BothWays.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/FileBlock.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Message.h"
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::size_t kBlock = FileBlock::kSize;

// --- What a reading leaves ---

std::string documentIn(InStream& in) {
    DocumentReader reader;
    const bool ok = reader.parse(in);
    return (ok ? "true " : "false ") + reader.getErrorMessage() + " [" + StreamAccess::token(in) + "] " + stateOf(in) +
           " " + linksOf(reader.getDocument(), nullptr);
}

std::string placeOf(std::istream& stream) {
    const auto place = stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    return " state " + std::to_string(static_cast<int>(stream.rdstate())) + " at " + std::to_string(place);
}

// What reading a document leaves, in the tree, in the source, and in the caller's stream.
std::string outcomeOver(std::istream& stream, std::size_t size) {
    FileInStream in(&stream);
    std::string text = documentIn(in) + placeOf(stream);
    stream.clear();
    return text + placesOf(in, size - 1, size / 100 + 1);
}

std::string outcomeOver(InStream& in, std::size_t size) {
    return documentIn(in) + placesOf(in, size - 1, size / 100 + 1);
}

// The first place where two texts differ.
std::string difference(const std::string& got, const std::string& wanted) {
    const auto at = static_cast<std::size_t>(std::mismatch(got.begin(), got.end(), wanted.begin(), wanted.end()).first -
                                             got.begin());
    const std::size_t from = at < 100 ? 0 : at - 100;
    return "from " + std::to_string(from) + ": " + got.substr(from, 300) + "\nwanted: " + wanted.substr(from, 300);
}

// The file has the text.
void expectReadAlike(const std::string& text, const std::string& path) {
    std::istringstream memory(text);
    std::ifstream file(path, std::ios::binary);
    const std::string wanted = outcomeOver(memory, text.size());
    const std::string got = outcomeOver(file, text.size());
    EXPECT_TRUE(got == wanted) << "file stream, " << difference(got, wanted);

    StringInStream string(text);
    FileSpecInStream platform{OrvSys::FileSpec(path)};
    const std::string wantedPromptly = outcomeOver(string, text.size());
    const std::string gotPromptly = outcomeOver(platform, text.size());
    EXPECT_TRUE(gotPromptly == wantedPromptly) << "platform file, " << difference(gotPromptly, wantedPromptly);
}

// --- Documents ---

const std::string kUnit =
    "<e a='1' b=\"x &amp; y\">word\r\n text\r\n<!-- c\r -->\r\n\t<f/> 'q'\r\r\n<g h = \"\r\n\" />&lt;</e>\r\n";

std::string documentOf(const std::string& beginning, std::size_t size) {
    std::string text = "<?xml version=\"1.0\"?>\r\n<r>" + beginning;
    while (text.size() < size) text += kUnit;
    return text + "</r>\r\n";
}

TEST(LongFilesTest, ReadAlikeWhereverABlockEnds) {
    const std::size_t step = rounds(8) == 8 ? 1 : 8;
    for (std::size_t shift = 0; shift < kUnit.size(); shift += step) {
        SCOPED_TRACE(shift);
        const std::string text = documentOf(std::string(shift, ' '), 100'000);
        const ScratchFile file("shifted", text);
        bothWays([&] { expectReadAlike(text, file.path); });
        if (HasFailure()) return;
    }
}

TEST(LongFilesTest, ReadAlikeWhateverIsLongerThanABlock) {
    const std::string words = repeated("some words\r\n", 20'000);
    const std::string solid(3 * kBlock + 17, 's');
    const struct {
        const char* name;
        std::string text;
    } kCases[] = {
        {"comment", "<!-- " + words + " -->"},
        {"comment with the ends of tags in it", "<!-- " + repeated("> ->\r\n", 30'000) + " -->"},
        {"text", words},
        {"text of one word", solid},
        {"text that begins with a long string", "'" + words + "' and more"},
        {"text that begins with a long reference", "&" + words + "; and more"},
        {"text with references", repeated("&amp;&#65;\r\n", 20'000)},
        {"value", "<v x='1' y=\"" + words + "\" z='2'/>"},
        {"value with references", "<v y=\"" + repeated("&amp;&#65;\r\n", 20'000) + "\"/>"},
        {"value with the ends of tags in it", "<v y=\"" + repeated("/> ", 60'000) + "\">text</v>"},
        {"two long values", "<v x='" + words + "' y='" + solid + "'>" + words + "</v>"},
        {"name", "<" + solid + "/>"},
        {"name of an attribute", "<v " + solid + "='1'/>"},
        {"many attributes", "<v" + pieces(30'000, [](int i) { return " a" + std::to_string(i) + "='\r\n'"; }) + "/>"},
        {"white space in a tag", "<v " + repeated("\r\n", 50'000) + "x='1'/>"},
        {"white space", repeated(" \r\n", 60'000) + "<v/>"},
        {"comment without an end", "<v/><!-- " + words},
        {"value without an end", "<v x='" + words},
        {"tag without an end", "<v " + words},
        {"failure", "<v>" + words + "</v><v x=>"},
        {"silent failure", "<v>" + words + "</v><v x='1' ?>"},
        {"a byte after the long thing", words + "<"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (const std::size_t before : {std::size_t{0}, std::size_t{9'000}, 2 * kBlock}) {
            SCOPED_TRACE(before);
            const std::string text = documentOf(documentOf("", before) + c.text, 0);
            const ScratchFile file("long", text);
            bothWays([&] { expectReadAlike(text, file.path); });
        }
    }
}

TEST(LongFilesTest, ReadAlikeWhereTheFileEndsInABlock) {
    const std::string whole = documentOf("", 3 * kBlock);
    for (const std::size_t size : {kBlock - 1, kBlock, kBlock + 1, 2 * kBlock, 2 * kBlock + 100, whole.size() - 3}) {
        SCOPED_TRACE(size);
        const std::string text = whole.substr(0, size);
        const ScratchFile file("cut", text);
        bothWays([&] { expectReadAlike(text, file.path); });
    }
}

// A caller may give the buffer of the stream another length, before the file is opened.
TEST(LongFilesTest, ReadAlikeWhateverTheLengthOfTheStreamsBuffer) {
    const std::string text = documentOf(repeated("text ", 30'000), 4 * kBlock);
    const ScratchFile scratch("buffer", text);
    std::istringstream memory(text);
    const std::string wanted = outcomeOver(memory, text.size());
    for (const std::size_t length : {std::size_t{1}, std::size_t{100}, 3 * kBlock}) {
        SCOPED_TRACE(length);
        std::vector<char> bytes(length);
        std::ifstream file;
        file.rdbuf()->pubsetbuf(bytes.data(), static_cast<std::streamsize>(length));
        file.open(scratch.path, std::ios::binary);
        const std::string got = outcomeOver(file, text.size());
        EXPECT_TRUE(got == wanted) << difference(got, wanted);
    }
}

// --- The caller's stream ---

// Where the stream stood at each report, and the byte that followed; and the handler of diagnostics that asks.
std::istream* asked = nullptr;
std::vector<std::pair<std::streamoff, int>> reports;

void askWhere(const char*, ...) {
    const std::streamoff place = asked->tellg();
    reports.emplace_back(place, asked->get());
    asked->seekg(place);
}

TEST(LongFilesTest, StandWhereTheyShouldWhenACallersCodeIsAtWork) {
    const std::string text = repeated("<!ATTLIST e\r\n a CDATA 'some value' b CDATA #REQUIRED\t>\r\n", 6'000);
    ASSERT_GT(text.size(), 4 * kBlock);
    const ScratchFile scratch("reports", text);
    std::istringstream memory(text);
    std::ifstream file(scratch.path, std::ios::binary);
    const auto reportsOver = [](std::istream& stream) {
        asked = &stream;
        reports.clear();
        const MessageCollector before;
        Message::InstallMessageHandler(askWhere);
        FileInStream in(&stream);
        DTDReader reader("e");
        reader.parse(in);
        return reports;
    };
    const auto wanted = reportsOver(memory);
    EXPECT_GT(wanted.size(), 1'000U);
    EXPECT_EQ(reportsOver(file), wanted);
    for (const auto& report : wanted) {
        const auto place = static_cast<std::size_t>(report.first);
        ASSERT_LT(place, text.size());
        EXPECT_EQ(report.second, static_cast<unsigned char>(text[place]));
    }
}

TEST(LongFilesTest, LeaveTheStreamAfterEachElementForTheCallerToGoOn) {
    std::string text;
    std::vector<std::size_t> ends;
    for (int i = 0; i < 12; ++i) {
        text += "<r>" + repeated(kUnit, 10 + i % 3 * 1'000) + "</r>";
        ends.push_back(text.size());
        text += " word" + std::to_string(i) + " more ";
    }
    const ScratchFile scratch("elements", text);
    bothWays([&] {
        std::ifstream file;
        FileInStream in(scratch.path, &file);
        for (std::size_t i = 0; i < ends.size(); ++i) {
            SCOPED_TRACE(i);
            ElementReader reader;
            ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
            const auto end = static_cast<std::streamoff>(ends[i]);
            EXPECT_EQ(file.tellg(), end);
            EXPECT_EQ(in.getPosition(), end);
            EXPECT_EQ(file.unget().get(), '>');
            EXPECT_EQ(file.peek(), ' ');
            std::string token;
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, "word" + std::to_string(i));
            EXPECT_TRUE(file >> token);
            EXPECT_EQ(token, "more");
            if (i == 5) {  // once more
                file.seekg(static_cast<std::streamoff>(ends[4]) + 12);
                EXPECT_EQ(file.peek(), '<');
                in.putBackChar();
                ElementReader again;
                ASSERT_TRUE(again.parse(in)) << again.getErrorMessage();
                EXPECT_EQ(file.tellg(), end);
                file.seekg(12, std::ios::cur);
            }
        }
    });
}

// A byte that is stepped back to is that of the file, also where a block was read to its last byte.
TEST(LongFilesTest, LeaveNothingInTheStreamsBufferThatIsNotBeforeItsPlace) {
    const std::string text = documentOf("", 5 * kBlock);
    const ScratchFile scratch("back", text);
    std::size_t size = 0;
    for (int windows = 5; windows < 8; ++windows) {
        std::ifstream file;
        FileInStream in(scratch.path, &file);
        {
            const StreamAccess::Session session(in);
            const Window& window = StreamAccess::window(in);
            char c = 0;
            size = 0;
            for (int ends = 0; ends < windows; ends += window.cursor == window.end ? 1 : 0, ++size)
                ASSERT_TRUE(in.get(c));
        }
        ASSERT_EQ(file.unget().get(), static_cast<unsigned char>(text[size - 1]));
        ASSERT_EQ(file.get(), static_cast<unsigned char>(text[size]));
    }
    EXPECT_GT(size, 2 * kBlock);
}

TEST(LongFilesTest, LeaveAStreamThatWritesToo) {
    const std::string element = "<r>" + repeated(kUnit, 2'000) + "</r>";
    const ScratchFile scratch("written", element + " before " + element);
    std::fstream file(scratch.path, std::ios::in | std::ios::out | std::ios::binary);
    FileInStream in(&file);
    ElementReader reader;
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(file.tellg(), static_cast<std::streamoff>(element.size()));
    file.seekp(file.tellg());
    file << " after. ";
    std::string token;
    file.seekg(static_cast<std::streamoff>(element.size()));
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "after.");
    ElementReader second;
    EXPECT_TRUE(second.parse(in)) << second.getErrorMessage();
    file.close();
    EXPECT_EQ(readFile(scratch.path), element + " after. " + element);
}

TEST(LongFilesTest, FollowAFileThatGrowsAndOneThatIsCut) {
    const std::string element = "<r>" + repeated(kUnit, 2'000) + "</r>";
    const ScratchFile scratch("growing", element);
    std::ifstream file;
    FileInStream in(scratch.path, &file);
    for (int i = 1; i <= 3; ++i) {
        ElementReader reader;
        ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
        EXPECT_EQ(file.tellg(), static_cast<std::streamoff>(element.size()) * i);
        std::ofstream(scratch.path, std::ios::binary | std::ios::app) << element;
    }
    std::filesystem::resize_file(scratch.path, 3 * element.size() + 100'000);
    ElementReader reader;
    EXPECT_FALSE(reader.parse(in));
    EXPECT_TRUE(file.fail());
    file.clear();
    file.seekg(0);
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    EXPECT_EQ(file.tellg(), static_cast<std::streamoff>(element.size()));
}

}  // namespace
}  // namespace Xml::test
