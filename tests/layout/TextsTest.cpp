// How the files of the checkout read: words that say where a rule comes from instead of what it is, lines and files
// that are too long, and doors that headers leave open for tests.
#include "support/Pattern.h"
#include "support/Places.h"
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;
using Xml::test::Pattern;

constexpr std::size_t kMostColumns = 120;
constexpr std::size_t kMostLines = 350;

// A rule is stated as a rule; it is not told, intended or always so.
const Pattern kWords(R"(\b(told|tells of|as always|intended|always have|has always|callers rely on|as ever)\b)",
                     Pattern::Case::DoesNotMatter);
const Pattern kNames(R"([a-z](Told|Intended|AsAlways)(?![a-z]))");
const Pattern kAllowed(R"(\b(told apart)\b)", Pattern::Case::DoesNotMatter);

const Pattern kTestFriend(R"(\bfriend\b[^;]*\w*Test)");

// Whether the text has a word that it should not have. Where the words are spread over two lines they are not seen.
bool hasWord(const std::string& line) { return kWords.isIn(kAllowed.replaceIn(line, "")) || kNames.isIn(line); }

// Bytes of UTF-8 that begin a character.
std::size_t columnsOf(const std::string& line) {
    return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

bool isTooLong(const std::string& line) { return columnsOf(line) > kMostColumns; }

bool hasTestFriend(const std::string& line) { return kTestFriend.isIn(line); }

// Files below a folder of the checkout, or the file itself, as paths from the root. Inputs of fuzzers are no texts of
// ours, and this file has the words that it looks for.
Lines filesOf(const std::string& place, const std::vector<std::string>& extensions) {
    Lines files;
    const fs::path root = Xml::test::sourceFolder();
    const auto add = [&](const fs::path& path) {
        const std::string name = fs::relative(path, root).generic_string();
        const bool isWanted =
            std::find(extensions.begin(), extensions.end(), path.extension().string()) != extensions.end();
        const bool isInput = name.rfind("fuzz/corpus/", 0) == 0 || name.rfind("fuzz/findings/", 0) == 0;
        if (isWanted && !isInput && name != "tests/layout/TextsTest.cpp") files.push_back(name);
    };
    if (fs::is_regular_file(root / place)) {
        add(root / place);
    } else {
        for (const auto& entry : fs::recursive_directory_iterator(root / place)) {
            if (entry.is_regular_file()) add(entry.path());
        }
    }
    return files;
}

Lines linesOf(const std::string& file) {
    std::ifstream text(fs::path(Xml::test::sourceFolder()) / file);
    EXPECT_TRUE(text) << file;
    Lines lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

// Every line of the places that `isWrong` finds fault with is a failure. There must be something to look at.
void expectNoLine(const std::vector<std::string>& places, const std::vector<std::string>& extensions,
                  bool (*isWrong)(const std::string&)) {
    for (const std::string& place : places) {
        const Lines files = filesOf(place, extensions);
        EXPECT_FALSE(files.empty()) << place;
        for (const std::string& file : files) {
            const Lines lines = linesOf(file);
            for (std::size_t i = 0; i < lines.size(); ++i) {
                if (isWrong(lines[i])) ADD_FAILURE() << file << ":" << i + 1 << ": " << lines[i];
            }
        }
    }
}

const std::vector<std::string> kSources = {".h", ".cpp"};
const std::vector<std::string> kTexts = {".h", ".cpp", ".md", ".txt"};

const std::vector<std::string> kPlaces = {"xml",      "orvsys",    "docs",        "tests",       "fuzz",
                                          "examples", "README.md", "SECURITY.md", "CHANGELOG.md"};

TEST(TextsTest, KnowTheLinesThatTheyLookFor) {
    const struct {
        bool (*isWrong)(const std::string&);
        std::string line;
        bool wrong;
    } kCases[] = {
        {hasWord, "// The rules as they are told.", true},
        {hasWord, "// Told byte by byte.", true},
        {hasWord, "| this is intended |", true},
        {hasWord, "// as always, the position", true},
        {hasWord, "// unintended, a toldo, the bold", false},
        {hasWord, "// names are told apart by their prefixes", false},
        {hasWord, "// told apart as told", true},
        {hasWord, "TEST(RuleTest, AgreesWithTheRuleToldByteByByte) {", true},
        {hasWord, "TEST(RuleTest, HasUntoldColours) {", false},
        {isTooLong, std::string(120, 'x'), false},
        {isTooLong, std::string(121, 'x'), true},
        {isTooLong, "\xC3\xA9" + std::string(119, 'x'), false},
        {hasTestFriend, "    friend struct NodeTestAccess;", true},
        {hasTestFriend, "    friend class TestOf;", true},
        {hasTestFriend, "    friend class Element;", false},
        {hasTestFriend, "// friendly to Tests", false},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.isWrong(c.line), c.wrong) << c.line;
}

TEST(TextsTest, StateRulesAsRules) { expectNoLine(kPlaces, kTexts, hasWord); }

TEST(TextsTest, HaveLinesOfAtMost120Columns) {
    expectNoLine({"xml", "orvsys", "tests", "fuzz", "examples", "bench"}, kSources, isTooLong);
}

TEST(TextsTest, OfTheLibraryHaveAtMost350Lines) {
    for (const std::string& file : filesOf("xml", kSources)) EXPECT_LE(linesOf(file).size(), kMostLines) << file;
}

TEST(TextsTest, OfInstalledHeadersOpenNoDoorForTests) {
    for (const char* folder : {"xml", "orvsys"}) {
        for (const std::string& file : filesOf(folder, {".h"})) {
            if (file.find("/internal/") != std::string::npos) continue;
            for (const std::string& line : linesOf(file)) EXPECT_FALSE(hasTestFriend(line)) << file << ": " << line;
        }
    }
}

}  // namespace
