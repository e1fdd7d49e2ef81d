#include "xml/standard/Save.h"

#include "support/Places.h"
#include "support/Texts.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/Write.h"
#include "xml/standard/internal/FileReplacement.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Xml::test {
namespace {

namespace fs = std::filesystem;

// A folder of its own for each test, which goes with it.
class SaveTest : public testing::Test {
protected:
    SaveTest() : folder(fs::path(scratchFolder()) / ("save-" + std::to_string(::getpid()))) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        auto* const root = new Element("a");
        root->addChild(new CharData("new"));
        document = std::make_unique<Document>(root, nullptr);
        bare.declaration = false;
    }
    ~SaveTest() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    static void put(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
    static std::string textOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder)) all.push_back(entry.path().filename().string());
        std::sort(all.begin(), all.end());
        return all;
    }
    static mode_t modeOf(const fs::path& path) {
        struct stat info = {};
        EXPECT_EQ(::stat(path.c_str(), &info), 0);
        return info.st_mode & 07777;
    }

    const fs::path folder;
    std::unique_ptr<Document> document;
    WriteOptions bare;
    const std::string written = "<a>new</a>\n";
};

TEST_F(SaveTest, MakesAFileAndReplacesOne) {
    const fs::path path = folder / "file.xml";
    EXPECT_TRUE(saveFile(*document, path, bare));
    EXPECT_EQ(textOf(path), written);
    put(path, std::string(100000, 'x'));
    const WriteResult result = saveFile(*document, path, bare);
    EXPECT_TRUE(result) << result.message();
    EXPECT_EQ(result.text(), "");
    EXPECT_EQ(textOf(path), written);
    EXPECT_EQ(names(), std::vector<std::string>{"file.xml"});
}

TEST_F(SaveTest, NamesWithoutFolderAreThoseOfTheWorkingFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    EXPECT_TRUE(saveFile(*document, "plain.xml", bare));
    fs::create_symlink("plain.xml", "link.xml");
    EXPECT_TRUE(saveFile(*document, "link.xml", bare));
    fs::current_path(before);
    EXPECT_EQ(names(), (std::vector<std::string>{"link.xml", "plain.xml"}));
    EXPECT_TRUE(fs::is_symlink(folder / "link.xml"));
}

TEST_F(SaveTest, KeepsPermissionsAndGivesNewFilesThoseOfTheProcess) {
    const fs::path path = folder / "file.xml";
    const mode_t before = ::umask(027);
    EXPECT_TRUE(saveFile(*document, path, bare));
    EXPECT_EQ(modeOf(path), 0640U);
    for (const mode_t mode : {0600U, 0644U, 0777U, 0666U, 0604U}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        EXPECT_TRUE(saveFile(*document, path, bare));
        EXPECT_EQ(modeOf(path), mode);
    }
    ::umask(before);
}

TEST_F(SaveTest, KeepsTheOwnerWhereItMay) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
    const fs::path path = folder / "file.xml";
    put(path, "old");
    ASSERT_EQ(::chown(path.c_str(), 12, 34), 0);
    ASSERT_EQ(::chmod(path.c_str(), 04750), 0);
    EXPECT_TRUE(saveFile(*document, path, bare));
    struct stat info = {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 12U);
    EXPECT_EQ(info.st_gid, 34U);
    EXPECT_EQ(info.st_mode & 07777, 04750U);
}

TEST_F(SaveTest, FollowsLinks) {
    const fs::path inner = folder / "inner";
    fs::create_directory(inner);
    put(inner / "file.xml", "old");
    fs::create_symlink("inner/file.xml", folder / "link.xml");
    fs::create_symlink(folder / "link.xml", folder / "second.xml");
    EXPECT_TRUE(saveFile(*document, folder / "second.xml", bare));
    EXPECT_EQ(textOf(inner / "file.xml"), written);
    EXPECT_TRUE(fs::is_symlink(folder / "link.xml"));
    EXPECT_TRUE(fs::is_symlink(folder / "second.xml"));

    fs::create_symlink("inner/not-yet.xml", folder / "dangling.xml");
    EXPECT_TRUE(saveFile(*document, folder / "dangling.xml", bare));
    EXPECT_EQ(textOf(inner / "not-yet.xml"), written);

    fs::create_symlink(repeated("./", 1500) + "file.xml", folder / "long.xml");
    EXPECT_TRUE(saveFile(*document, folder / "long.xml", bare));
    EXPECT_TRUE(fs::is_symlink(folder / "long.xml"));
    EXPECT_EQ(textOf(folder / "file.xml"), written);

    fs::create_symlink("round.xml", folder / "round.xml");
    const WriteResult round = saveFile(*document, folder / "round.xml", bare);
    EXPECT_FALSE(round);
    EXPECT_EQ(round.problems()[0].text, "the file cannot be written: " + std::string(std::strerror(ELOOP)));
}

TEST_F(SaveTest, WritesToPipesAndDevices) {
    const fs::path pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = textOf(pipe); });
    EXPECT_TRUE(saveFile(*document, pipe, bare));
    reader.join();
    EXPECT_EQ(read, written);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_TRUE(saveFile(*document, "/dev/null", bare));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    const WriteResult full = saveFile(*document, "/dev/full", bare);
    EXPECT_FALSE(full);
    EXPECT_EQ(full.message(), "/dev/full: error: the file cannot be written: " + std::string(std::strerror(ENOSPC)));
    EXPECT_EQ(names(), std::vector<std::string>{"pipe"});
}

#ifdef __linux__
// The system's links to what is open say "pipe:[1]", or the name of a file with " (deleted)" after it.
TEST_F(SaveTest, WritesToWhatIsOpen) {
    const auto linkTo = [](int file) { return "/proc/self/fd/" + std::to_string(file); };
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const WriteResult piped = saveFile(*document, linkTo(ends[1]), bare);
    EXPECT_TRUE(piped) << piped.message();
    ::close(ends[1]);
    std::string read(100, ' ');
    read.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(ends[0], read.data(), read.size()), 0)));
    ::close(ends[0]);
    EXPECT_EQ(read, "<a>new</a>\n");

    const fs::path path = folder / "file";
    put(path, "what was there, which is longer");
    const int file = ::open(path.c_str(), O_RDWR);
    ASSERT_GE(file, 0);
    EXPECT_TRUE(saveFile(*document, linkTo(file), bare));
    EXPECT_EQ(textOf(path), "<a>new</a>\n") << "a file with a name is replaced";
    ::close(file);

    put(path, "what was there, which is longer");
    const int unnamed = ::open(path.c_str(), O_RDWR);
    ASSERT_GE(unnamed, 0);
    fs::remove(path);
    EXPECT_TRUE(saveFile(*document, linkTo(unnamed), bare));
    EXPECT_EQ(textOf(linkTo(unnamed)), "<a>new</a>\n");
    ::close(unnamed);
    EXPECT_EQ(names(), std::vector<std::string>());
}
#endif

TEST_F(SaveTest, WhatCannotBeWrittenIsAProblem) {
    const fs::path path = folder / "file.xml";
    put(path, "old");
    const WriteResult isFolder = saveFile(*document, folder, bare);
    ASSERT_FALSE(isFolder);
    EXPECT_EQ(isFolder.problems()[0].kind, Problem::Kind::Unwritable);
    EXPECT_EQ(isFolder.problems()[0].source, folder.string());
    const WriteResult missing = saveFile(*document, folder / "no" / "file.xml", bare);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.problems()[0].kind, Problem::Kind::NotFound);
    EXPECT_FALSE(saveFile(*document, path / "file.xml", bare));
    EXPECT_FALSE(saveFile(*document, "", bare));
    EXPECT_FALSE(saveFile(*document, folder / std::string("a\0b", 3), bare));
    EXPECT_FALSE(saveFile(*document, folder / std::string(300, 'x'), bare));

    document->getRoot()->addChild(new Comment("--"));
    const WriteResult unwritable = saveFile(*document, path, bare);
    ASSERT_FALSE(unwritable);
    EXPECT_EQ(unwritable.message(), path.string() + ": error: the comment has \"--\"");
    EXPECT_EQ(textOf(path), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"file.xml"});
}

// In a process without rights.
TEST_F(SaveTest, WhatMayNotBeWrittenStays) {
    const fs::path path = folder / "file.xml";
    put(path, "old");
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
    const auto savedByOther = [&](const fs::path& file) {
        const pid_t child = ::fork();
        if (child == 0) {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(2);
            ::_exit(saveFile(*document, file, bare) ? 1 : 0);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    EXPECT_EQ(savedByOther(path), 0);
    EXPECT_EQ(textOf(path), "old");
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    EXPECT_EQ(savedByOther(path), 0);
    EXPECT_EQ(textOf(path), "old");
    ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
    EXPECT_EQ(names(), std::vector<std::string>{"file.xml"});
}

// --- Call by call ---

// Asks `due` at each call that may change something, in the place of the call or after it.
class Watched : public FileCalls {
public:
    explicit Watched(std::function<void(int)> itsAfter) : after(std::move(itsAfter)) {}

    int failing = 0;  // the call of that number fails; 0: none
    int error = 0;
    std::size_t most = 0;  // that one write takes; 0: any
    int count = 0;

    int open(const char* path, int flags, mode_t mode) override {
        return made([&] { return FileCalls::open(path, flags, mode); });
    }
    ssize_t write(int file, const char* bytes, std::size_t size) override {
        return made([&] { return FileCalls::write(file, bytes, most > 0 ? std::min(most, size) : size); });
    }
    int changeOwner(int file, uid_t user, gid_t group) override {
        return made([&] { return FileCalls::changeOwner(file, user, group); });
    }
    int changeMode(int file, mode_t mode) override {
        return made([&] { return FileCalls::changeMode(file, mode); });
    }
    int sync(int file) override {
        return made([&] { return FileCalls::sync(file); });
    }
    int close(int file) override {
        // It fails after the descriptor is gone.
        const int result = FileCalls::close(file);
        return made([&] { return result; });
    }
    int rename(const char* from, const char* to) override {
        const int result = made([&] { return FileCalls::rename(from, to); });
        isRenamed |= result == 0;
        return result;
    }
    int unlink(const char* path) override {
        const int result = FileCalls::unlink(path);
        after(++count);
        return result;
    }

    bool isRenamed = false;

private:
    template <class Call>
    auto made(Call call) -> decltype(call()) {
        if (++count == failing) {
            errno = error;
            return -1;
        }
        const auto result = call();
        after(count);
        return result;
    }

    const std::function<void(int)> after;
};

constexpr std::size_t kLong = 300'000;

TEST_F(SaveTest, WhicheverCallFailsTheFileIsAsItWas) {
    const fs::path path = folder / "file.xml";
    const std::string oldText(kLong, 'o');
    const std::string newText(kLong + 1, 'n');
    for (const bool isThere : {true, false}) {
        for (int failing = 1;; ++failing) {
            SCOPED_TRACE(failing);
            fs::remove(path);
            if (isThere) put(path, oldText);
            Watched calls([](int) {});
            calls.failing = failing;
            calls.error = failing % 2 == 0 ? EIO : ENOSPC;
            calls.most = 100'000;
            Problem problem;
            const bool isDone = FileReplacement(calls).replace(path.string(), newText, problem);
            const bool isNew = fs::exists(path) && textOf(path) == newText;
            if (calls.isRenamed) {
                EXPECT_TRUE(isNew);
                EXPECT_TRUE(isDone || problem.text.find("is written, but its folder") != std::string::npos);
            } else {
                EXPECT_FALSE(isDone);
                EXPECT_EQ(fs::exists(path), isThere);
                if (isThere) {
                    EXPECT_TRUE(textOf(path) == oldText);
                }
                EXPECT_EQ(problem.text, "the file cannot be written: " + std::string(std::strerror(calls.error)));
            }
            EXPECT_EQ(names(),
                      calls.isRenamed || isThere ? std::vector<std::string>{"file.xml"} : std::vector<std::string>{});
            if (calls.count < failing) {
                EXPECT_TRUE(isDone);
                EXPECT_GE(failing, isThere ? 12 : 9);
                break;
            }
        }
    }
}

// Some file systems have nothing to sync.
TEST_F(SaveTest, WhatCannotBeSyncedIsSavedAndWhatFailsIsNot) {
    class Unsynced : public FileCalls {
    public:
        explicit Unsynced(int itsError) : error(itsError) {}
        int sync(int) override {
            errno = error;
            return -1;
        }

    private:
        int error;
    };
    const fs::path path = folder / "file.xml";
    for (const int error : {EINVAL, ENOTSUP, ENOSYS, EIO, ENOSPC}) {
        put(path, "old");
        Unsynced calls(error);
        Problem problem;
        const bool mayBeSaved = error != EIO && error != ENOSPC;
        EXPECT_EQ(FileReplacement(calls).replace(path.string(), written, problem), mayBeSaved) << std::strerror(error);
        EXPECT_EQ(textOf(path), mayBeSaved ? written : "old");
    }
}

// The folder of the test stands for the outermost one.
TEST_F(SaveTest, AFileMayStandInTheOutermostFolder) {
    class Below : public FileCalls {
    public:
        explicit Below(std::string itsFolder) : folder(std::move(itsFolder)) {}
        int open(const char* path, int flags, mode_t mode) override {
            return FileCalls::open(of(path).c_str(), flags, mode);
        }
        int rename(const char* from, const char* to) override {
            return FileCalls::rename(of(from).c_str(), of(to).c_str());
        }
        int unlink(const char* path) override { return FileCalls::unlink(of(path).c_str()); }
        int status(const char* path, struct stat& info) override { return FileCalls::status(of(path).c_str(), info); }
        bool readLink(const std::string& path, std::string& target) override {
            return FileCalls::readLink(of(path), target);
        }
        std::vector<std::string> asked;

    private:
        std::string of(const std::string& path) {
            asked.push_back(path);
            return folder + path;
        }
        const std::string folder;
    };
    fs::create_symlink("file.xml", folder / "link.xml");
    for (const char* const path : {"/file.xml", "/link.xml"}) {
        Below calls(folder.string());
        Problem problem;
        EXPECT_TRUE(FileReplacement(calls).replace(path, written, problem)) << problem.text;
        EXPECT_EQ(textOf(folder / "file.xml"), written);
        for (const std::string& asked : calls.asked) EXPECT_EQ(asked.substr(0, 1), "/") << asked;
        EXPECT_EQ(calls.asked.back(), "/");  // which is synced
        fs::remove(folder / "file.xml");
    }
}

TEST_F(SaveTest, NamesThatAreTakenArePassedOver) {
    const fs::path path = folder / "file.xml";
    put(path, "old");
    Watched calls([](int) {});
    calls.failing = 3;  // after the open and close of the old file: that of the new one
    calls.error = EEXIST;
    Problem problem;
    EXPECT_TRUE(FileReplacement(calls).replace(path.string(), written, problem)) << problem.text;
    EXPECT_EQ(textOf(path), written);
}

// Reads the file over and over, till a byte comes by the pipe: what it exits with is 0 where it was always one of both.
[[noreturn]] void watch(const fs::path& path, int pipe, const std::string& oldText, const std::string& newText) {
    ::fcntl(pipe, F_SETFL, O_NONBLOCK);
    for (char byte = 0; ::read(pipe, &byte, 1) != 1;) {
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        if (text != oldText && text != newText) ::_exit(1);
    }
    ::_exit(0);
}

TEST_F(SaveTest, AProcessThatEndsBetweenTwoCallsLeavesTheOldOrTheNewFile) {
    const fs::path path = folder / "file.xml";
    const std::string oldText(kLong, 'o');
    const std::string newText(kLong + 1, 'n');
    put(path, oldText);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t watcher = ::fork();
    if (watcher == 0) watch(path, ends[0], oldText, newText);

    int states = 0;
    for (int last = 1;; ++last) {
        SCOPED_TRACE(last);
        const fs::path made = folder / "made.xml";
        put(made, oldText);
        fs::rename(made, path);
        const pid_t child = ::fork();
        if (child == 0) {
            Watched calls([last](int count) {
                if (count == last) ::kill(::getpid(), SIGKILL);
            });
            calls.most = 100'000;
            Problem problem;
            ::_exit(FileReplacement(calls).replace(path.string(), newText, problem) ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        const std::string text = textOf(path);
        EXPECT_TRUE(text == oldText || text == newText);
        states |= text == oldText ? 1 : 2;
        for (const std::string& name : names()) {
            EXPECT_TRUE(name == "file.xml" || name.rfind(".orvxml-", 0) == 0) << name;
            if (name != "file.xml") fs::remove(folder / name);
        }
        if (!WIFEXITED(status)) continue;
        EXPECT_EQ(WEXITSTATUS(status), 0);
        EXPECT_GE(last, 12);
        break;
    }
    EXPECT_EQ(states, 3);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    int status = 0;
    ASSERT_EQ(::waitpid(watcher, &status, 0), watcher);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    ::close(ends[0]);
    ::close(ends[1]);
}

}  // namespace
}  // namespace Xml::test
