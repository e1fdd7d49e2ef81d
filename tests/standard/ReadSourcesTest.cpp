// Where a document comes from, and what is said where it cannot be had.
#include "support/Places.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace Xml::test {
namespace {

namespace fs = std::filesystem;
using Kind = Problem::Kind;
using Xml::readFile;  // and not that of the tests

fs::path inScratch(const std::string& name) { return fs::path(scratchFolder()) / ("ReadSources-" + name); }

fs::path fileOf(const std::string& name, const std::string& bytes) {
    const fs::path path = inScratch(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

Problem problemOf(const ReadResult& result) {
    EXPECT_FALSE(result);
    EXPECT_FALSE(result.isWellFormed());
    EXPECT_EQ(result.get(), nullptr);
    EXPECT_EQ(result.problems().size(), 1U);
    EXPECT_EQ(result.message(), result.problems().empty() ? "?" : result.problems()[0].toString());
    return result.problems().empty() ? Problem() : result.problems()[0];
}

std::string treeOf(const ReadResult& result) {
    return result ? dump(static_cast<const Object*>(result.get())) : result.message();
}

// --- Files ---

TEST(ReadSourcesTest, ReadsFilesOfAnySize) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65536}, std::size_t{3000000}}) {
        const std::string text = "<a>" + std::string(size, 'x') + "</a>";
        const ReadResult result = readFile(fileOf("size.xml", text));
        EXPECT_EQ(treeOf(result), size == 0 ? "a" : "a('" + std::string(size, 'x') + "')") << size;
    }
    EXPECT_EQ(problemOf(readFile(fileOf("empty.xml", ""))).rule, "document");
}

TEST(ReadSourcesTest, ReadsTheBytesOfFilesAsTheyAre) {
    const ReadResult result = readFile(fileOf("bytes.xml", std::string("\xFF\xFE<\0a\0>\0\r\0\n\0<\0/\0a\0>\0", 20)));
    EXPECT_EQ(treeOf(result), "a('\n')");
    EXPECT_EQ(prologOf(*result).newline, "\r\n");
}

TEST(ReadSourcesTest, NamesTheFile) {
    const fs::path path = fileOf("broken.xml", "<a>\n</b>");
    ReadOptions options;
    options.source = "another name";
    const Problem problem = problemOf(readFile(path, options));
    EXPECT_EQ(problem.source, path.string());
    EXPECT_EQ(problem.toString(), path.string() + ":2:1: error: </a> expected, found </b> (<a> began at 1:1)");
}

TEST(ReadSourcesTest, SaysWhyAFileCannotBeRead) {
    const fs::path missing = inScratch("missing.xml");
    const Problem notThere = problemOf(readFile(missing));
    EXPECT_EQ(notThere.kind, Kind::NotFound);
    EXPECT_EQ(notThere.toString(), missing.string() + ": error: the file cannot be read: there is no such file");
    EXPECT_EQ(notThere.place.offset, -1);

    EXPECT_EQ(problemOf(readFile("")).kind, Kind::NotFound);
    EXPECT_EQ(problemOf(readFile(fileOf("file", "<a/>") / "below")).kind, Kind::NotFound);
    EXPECT_EQ(problemOf(readFile(fileOf("name", "<a/>").string() + std::string(1, '\0') + "more")).kind,
              Kind::NotFound);

    const Problem directory = problemOf(readFile(scratchFolder()));
    EXPECT_EQ(directory.kind, Kind::Unreadable);
    EXPECT_EQ(directory.text, "the file cannot be read: it is a directory");

    const Problem longName = problemOf(readFile(inScratch(std::string(5000, 'x'))));
    EXPECT_EQ(longName.kind, Kind::Unreadable);
    EXPECT_EQ(longName.text, "the file cannot be read: its name is too long");

    const fs::path round = inScratch("round");
    fs::remove(round);
    fs::create_symlink(round, round);
    EXPECT_EQ(problemOf(readFile(round)).text, "the file cannot be read: too many links lead to each other");

    const Problem failing = problemOf(readFile("/proc/self/mem"));
    EXPECT_EQ(failing.kind, Kind::Unreadable);
    EXPECT_EQ(failing.text.substr(0, 50), "the file cannot be read: the system cannot read it");
}

TEST(ReadSourcesTest, SaysThatThereIsNoPermission) {
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const fs::path path = fileOf("secret.xml", "<a/>");
    fs::permissions(path, fs::perms::none);
    const Problem problem = problemOf(readFile(path));
    fs::permissions(path, fs::perms::owner_all);
    EXPECT_EQ(problem.kind, Kind::Unreadable);
    EXPECT_EQ(problem.text, "the file cannot be read: there is no permission to read it");
}

TEST(ReadSourcesTest, ReadsPipesAndFilesWithoutASize) {
    const fs::path pipe = inScratch("pipe");
    fs::remove(pipe);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string text = "<a>" + std::string(200000, 'x') + "</a>";
    std::thread writer([&] {
        std::ofstream out(pipe);
        out << text.substr(0, 5) << std::flush;
        std::this_thread::yield();
        out << text.substr(5);
    });
    const ReadResult result = readFile(pipe);
    writer.join();
    EXPECT_EQ(treeOf(result), "a('" + std::string(200000, 'x') + "')");

    const Problem problem = problemOf(readFile("/proc/self/stat"));
    EXPECT_EQ(problem.kind, Kind::Malformed) << problem.toString();
    EXPECT_EQ(problem.rule, "prolog");
}

TEST(ReadSourcesTest, ShowsNamesInOneLine) {
    const Problem problem = problemOf(readFile(fileOf("a\nb\x1B[2J.xml", "x")));
    EXPECT_NE(problem.source.find('\n'), std::string::npos);
    EXPECT_EQ(problem.toString().find_first_of("\n\x1B"), std::string::npos) << problem.toString();
}

// --- Streams ---

TEST(ReadSourcesTest, ReadsStreamsToTheirEnd) {
    std::istringstream in("skipped<a>text</a>\n<!--c-->");
    in.ignore(7);
    EXPECT_EQ(treeOf(readStream(in)), "a('text')");
    EXPECT_TRUE(in.eof());
    std::istringstream twice("<a/><b/>");
    EXPECT_EQ(problemOf(readStream(twice)).rule, "document");
    std::ifstream file(fileOf("stream.xml", "<a>" + std::string(200000, 'y') + "</a>"), std::ios::binary);
    EXPECT_EQ(treeOf(readStream(file)), "a('" + std::string(200000, 'y') + "')");
}

TEST(ReadSourcesTest, SaysThatAStreamCannotBeRead) {
    ReadOptions options;
    options.source = "input";
    std::ifstream missing(inScratch("missing.xml"));
    const Problem problem = problemOf(readStream(missing, options));
    EXPECT_EQ(problem.kind, Kind::Unreadable);
    EXPECT_EQ(problem.toString(), "input: error: the stream cannot be read: it has failed before");
    std::istringstream atEnd("<a/>");
    ASSERT_TRUE(readStream(atEnd));
    EXPECT_EQ(problemOf(readStream(atEnd)).text, "the stream cannot be read: it has come to its end before");

    struct Throwing : std::stringbuf {
        int_type underflow() override { throw 1; }
    };
    Throwing buffer;
    std::istream in(&buffer);
    EXPECT_EQ(problemOf(readStream(in)).kind, Kind::Unreadable);
    EXPECT_TRUE(in.bad());
}

// --- Options ---

TEST(ReadSourcesTest, RefusesMoreBytesThanAsked) {
    const std::string text = "<a>" + std::string(100000, 'x') + "</a>";
    const auto size = static_cast<std::int64_t>(text.size());
    const fs::path path = fileOf("limit.xml", text);
    for (const std::int64_t most : {std::int64_t{0}, size, size + 1, size - 1, std::int64_t{1}}) {
        SCOPED_TRACE(most);
        ReadOptions options;
        options.maxBytes = most;
        std::istringstream in(text);
        const ReadResult results[] = {readFile(path, options), readText(text, options), readStream(in, options)};
        for (const ReadResult& result : results) {
            ASSERT_EQ(result.isWellFormed(), most == 0 || most >= size);
            if (result) continue;
            EXPECT_EQ(problemOf(result).kind, Kind::Limit);
            EXPECT_EQ(problemOf(result).rule, "maxBytes");
            EXPECT_EQ(problemOf(result).text, "the source has more than " + std::to_string(most) + " bytes");
        }
    }
    ReadOptions options;
    options.maxBytes = 10;
    EXPECT_EQ(problemOf(readFile("/proc/self/stat", options)).kind, Kind::Limit);
}

TEST(ReadSourcesTest, SaysWhereTheLimitOfBytesIs) {
    const std::string kUmlaut = "<a>\n\t\xC3\xB6\xC3\xB6</a>";
    const struct {
        std::string text;
        std::int64_t most;
        int line, column;
        const char* excerpt;
    } kCases[] = {
        {"<a>\n<b/></a>", 6, 2, 3, "<b\n  ^"},
        {"<a>\n<b/></a>", 4, 2, 1, "\n^"},
        {kUmlaut, 7, 2, 3, "\t\xC3\xB6\n\t ^"},
        {kUmlaut, 8, 2, 3, "\t\xC3\xB6\n\t ^"},
        {std::string("\xFF\xFE<\0a\0\n\0/\0>\0", 12), 9, 2, 1, "\n^"},
        {"<?xml version='1.0' encoding='latin1'?><a>\xE4</a>", 43, 1, 44,
         "<?xml version='1.0' encoding='latin1'?><a>\xC3\xA4\n                                           ^"},
        {"<a>\xFF</a>", 6, 0, 0, ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        ReadOptions options;
        options.maxBytes = c.most;
        std::istringstream in(c.text);
        StreamReader events(c.text, options);
        EXPECT_EQ(events.next(), StreamReader::Event::Failed);
        const Problem problems[] = {problemOf(readFile(fileOf("limit.xml", c.text), options)),
                                    problemOf(readText(c.text, options)), problemOf(readStream(in, options)),
                                    events.problems().at(0)};
        for (const Problem& problem : problems) {
            EXPECT_EQ(problem.rule, "maxBytes");
            EXPECT_EQ(problem.place.offset, c.most);
            EXPECT_EQ(problem.place.line, c.line);
            EXPECT_EQ(problem.place.column, c.column);
            EXPECT_EQ(problem.excerpt, c.excerpt);
        }
        if (c.line == 0) continue;
        std::istringstream again(c.text);
        StreamReader reader(again, options);
        while (reader.next() != StreamReader::Event::Failed) {}
        const Problem& problem = reader.problems().at(0);
        EXPECT_EQ(problem.rule, "maxBytes") << problem.toString();
        EXPECT_EQ(problem.place.offset, c.most);
        EXPECT_EQ(problem.place.line, c.line);
        EXPECT_EQ(problem.place.column, c.column);
        EXPECT_EQ(problem.excerpt, c.excerpt);
    }
}

TEST(ReadSourcesTest, RefusesOptionsThatNothingHeeds) {
    const Dtd dtd("a");
    ReadOptions options;
    options.source = "s";
    options.validate = true;
    EXPECT_EQ(problemOf(readText("<a/>", options)).toString(), "s: error: the option validate is not supported");
    options.dtd = &dtd;
    options.resolver = [](const auto&, const auto&, const auto&) { return std::nullopt; };
    std::istringstream in("<a/>");
    const ReadResult results[] = {readFile(fileOf("fine.xml", "<a/>"), options), readText("<a", options),
                                  readStream(in, options)};
    for (const ReadResult& result : results) {
        EXPECT_FALSE(result.isWellFormed());
        ASSERT_EQ(result.problems().size(), 3U);
        const char* const kRules[] = {"validate", "dtd", "resolver"};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(result.problems()[i].kind, Kind::Unsupported);
            EXPECT_EQ(result.problems()[i].rule, kRules[i]);
        }
    }
    EXPECT_EQ(results[1].message(),
              "s: error: the option validate is not supported\ns: error: the option dtd is not supported\n"
              "s: error: the option resolver is not supported");
    options.maxProblems = 2;
    EXPECT_EQ(readText("<a/>", options).problems().size(), 2U);
    options.maxProblems = 0;
    EXPECT_EQ(readText("<a/>", options).problems().size(), 1U);
}

// --- Results ---

static_assert(!std::is_reference_v<decltype(std::declval<ReadResult>().problems())>,
              "a loop over the problems of what a call gives keeps them");
static_assert(!std::is_convertible_v<ReadResult, bool>, "only where a condition is asked for");
static_assert(!std::is_constructible_v<ReadResult, std::unique_ptr<Document>> &&
                  !std::is_constructible_v<ReadResult, std::vector<Problem>>,
              "only reading makes one");
static_assert(std::is_nothrow_move_constructible_v<ReadResult> && !std::is_copy_constructible_v<ReadResult>);

TEST(ReadSourcesTest, StaysWellFormedWhenTheDocumentIsTaken) {
    ReadResult result = readText("<a/>");
    EXPECT_EQ(dump(&*result), "a");
    EXPECT_EQ(result->getRoot()->getName(), "a");
    const std::unique_ptr<Document> document = result.take();
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(result.isWellFormed());
    EXPECT_TRUE(result);
    EXPECT_EQ(result.get(), nullptr);
    EXPECT_EQ(result.message(), "");
    ReadResult moved = std::move(result);
    EXPECT_TRUE(moved);
    moved = readText("<a");
    EXPECT_FALSE(moved);
    EXPECT_NE(moved.message(), "");
    EXPECT_EQ(moved.take(), nullptr);
    EXPECT_FALSE(moved.isWellFormed());
}

}  // namespace
}  // namespace Xml::test
