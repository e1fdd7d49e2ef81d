// Which files a folder's resolver gives, and which it does not.
#include "support/Places.h"
#include "xml/standard.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace Xml::test {
namespace {

namespace fs = std::filesystem;

// Beside the folder "in", which has files and links, stands "out". What a file holds is its name.
class FilesBelowTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::remove_all(scratch);
        fs::create_directories(scratch / "in" / "sub");
        fs::create_directories(scratch / "out");
        fs::create_directories(scratch / "inner");
        for (const char* const name : {"in/a.dtd", "in/sub/b.ent", "in/sub/a.dtd", "in/two words", "in/50%", "in/c:d",
                                       "in/gr\xC3\xB6\xC3\x9F"
                                       "e",
                                       "out/secret", "inner/secret"}) {
            std::ofstream(scratch / name) << name;
        }
        fs::create_symlink("sub/b.ent", scratch / "in" / "link");
        fs::create_symlink(scratch / "in" / "sub", scratch / "in" / "folder");
        fs::create_symlink("../out/secret", scratch / "in" / "leak");
        fs::create_symlink(scratch / "out", scratch / "in" / "hole");
        fs::create_symlink("/dev/zero", scratch / "in" / "zeros");
        fs::create_symlink("round", scratch / "in" / "round");
        fs::create_symlink("in", scratch / "alias");
        ASSERT_EQ(mkfifo((scratch / "in" / "pipe").c_str(), 0600), 0);
    }
    void TearDown() override { fs::remove_all(scratch); }

    std::string in(const std::string& name) const { return (scratch / "in" / name).string(); }

    const fs::path scratch = fs::canonical(scratchFolder()) / "FilesBelow";
};

TEST_F(FilesBelowTest, GivesRegularFilesThatAreInTheFolder) {
    const struct {
        std::string base, name, text, found;
    } kCases[] = {
        {"", "a.dtd", "in/a.dtd", "a.dtd"},
        {"", "./sub/b.ent", "in/sub/b.ent", "sub/b.ent"},
        {"", "sub/../a.dtd", "in/a.dtd", "a.dtd"},
        {"", "missing/../a.dtd", "in/a.dtd", "a.dtd"},
        {"", "../in/a.dtd", "in/a.dtd", "a.dtd"},
        {"", "link", "in/sub/b.ent", "sub/b.ent"},
        {"", "folder/b.ent", "in/sub/b.ent", "sub/b.ent"},
        {"", "folder/../a.dtd", "in/a.dtd", "a.dtd"},
        {"", "two%20words", "in/two words", "two words"},
        {"", "two words", "in/two words", "two words"},
        {"", "50%25", "in/50%", "50%"},
        {"", "%67r\xC3\xB6%c3%9Fe",
         "in/gr\xC3\xB6\xC3\x9F"
         "e",
         "gr\xC3\xB6\xC3\x9F"
         "e"},
        {"", "./c:d", "in/c:d", "c:d"},
        {in("sub/b.ent"), "a.dtd", "in/sub/a.dtd", "sub/a.dtd"},
        {in("sub/b.ent"), "../a.dtd", "in/a.dtd", "a.dtd"},
        {in("link"), "a.dtd", "in/sub/a.dtd", "sub/a.dtd"},
        {in("sub/missing"), "a.dtd", "in/a.dtd", "a.dtd"},
        {in("."), "a.dtd", "in/a.dtd", "a.dtd"},
        {"/dev/null", "a.dtd", "in/a.dtd", "a.dtd"},
        {"https://example.org/doc.xml", "a.dtd", "in/a.dtd", "a.dtd"},
    };
    for (const fs::path& folder : {scratch / "in", scratch / "in" / "", scratch / "alias"}) {
        const Resolver resolver = filesBelow(folder);
        for (const auto& c : kCases) {
            SCOPED_TRACE(folder.string() + ", " + c.base + ", " + c.name);
            const std::optional<Resolved> resolved = resolver("-//public//", c.name, c.base);
            ASSERT_TRUE(resolved);
            EXPECT_EQ(resolved->text, c.text);
            EXPECT_EQ(resolved->name, in(c.found));
        }
    }
}

TEST_F(FilesBelowTest, HasNoAnswerForAnythingElse) {
    const Resolver resolver = filesBelow(scratch / "in");
    const std::string kNames[] = {
        "",
        ".",
        "sub",
        "sub/",
        "missing",
        "a.dtd/",
        "a.dtd/b",
        "pipe",
        "zeros",
        "round",
        // out of the folder
        "..",
        "../out/secret",
        "../inner/secret",
        "sub/../../out/secret",
        "../../in/a.dtd",
        "%2e%2E/out/secret",
        "..%2Fout/secret",
        "leak",
        "hole/secret",
        "hole/../in/leak",
        "folder/../../out/secret",
        // no relative references, or none to a file
        in("a.dtd"),
        "/dev/null",
        "//host/a.dtd",
        "file:a.dtd",
        "file://" + in("a.dtd"),
        "http://example.org/a.dtd",
        "c:d",
        "a.dtd?",
        "a.dtd#",
        "#",
        "50%",
        "%5",
        "%zz",
        "%-1",
        "a.dtd%00",
        std::string("a.dtd\0", 6),
        "sub%2Fb.ent",
        std::string(5000, 'x'),
    };
    for (const std::string& name : kNames) EXPECT_FALSE(resolver("", name, "")) << name;
    EXPECT_FALSE(resolver("", "../../out/secret", in("sub/b.ent")));
    EXPECT_FALSE(resolver("", "secret", (scratch / "out" / "secret").string())) << "that base is elsewhere";
    EXPECT_FALSE(resolver("", "secret", in("leak"))) << "that base is elsewhere once links are followed";
}

TEST_F(FilesBelowTest, HasNoAnswerWithoutAFolder) {
    for (const fs::path& folder : {fs::path(), scratch / "missing", scratch / "in" / "a.dtd"}) {
        EXPECT_FALSE(filesBelow(folder)("", "a.dtd", "")) << folder;
    }
}

TEST_F(FilesBelowTest, FindsARelativeFolderFromWhereTheProcessStood) {
    const fs::path before = fs::current_path();
    fs::current_path(scratch);
    const Resolver resolver = filesBelow("in");
    EXPECT_EQ(resolver("", "a.dtd", "in/sub/b.ent")->text, "in/sub/a.dtd");
    fs::current_path(before);
    EXPECT_EQ(resolver("", "a.dtd", "")->text, "in/a.dtd");
}

TEST_F(FilesBelowTest, TakesBytesAsTheyAre) {
    const std::string bytes("\xFF\xFE<\0\r\n\0", 7);
    std::ofstream(scratch / "in" / "a.dtd", std::ios::binary) << bytes;
    std::ofstream(scratch / "in" / "empty");
    std::ofstream(scratch / "in" / "large") << std::string(300000, 'x');
    const Resolver resolver = filesBelow(scratch / "in");
    EXPECT_EQ(resolver("", "a.dtd", "")->text, bytes);
    EXPECT_EQ(resolver("", "empty", "")->text, "");
    EXPECT_EQ(resolver("", "large", "")->text, std::string(300000, 'x'));
}

}  // namespace
}  // namespace Xml::test
