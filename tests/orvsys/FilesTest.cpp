#include "orvsys/Files.h"
#include "support/Rounds.h"
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace {

namespace fs = std::filesystem;
using OrvSys::FileIO;
using OrvSys::FileIOBase;
using OrvSys::FileSpec;
using OrvSys::FileSpecFunctions;
using OrvSys::FromCurrent;
using OrvSys::FromEnd;
using OrvSys::FromStart;

static_assert(!std::is_copy_constructible_v<FileIO> && !std::is_copy_assignable_v<FileIO>);
static_assert(!std::is_convertible_v<std::string, FileSpec> && !std::is_convertible_v<FileSpec, FileIO>);

constexpr std::int64_t kBuffer = 64 * 1024;
constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::uint32_t kText = 0x54455854;  // 'TEXT'

// Each test works in a folder of its own, so that tests may run side by side.
class FilesTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "/orvsys-files-XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder = name;
    }

    void TearDown() override {
        std::error_code ignored;
        if (!folder.empty()) fs::remove_all(folder, ignored);
    }

    std::string pathOf(const std::string& name) const { return folder + "/" + name; }

    // A file with these bytes, made without the library.
    FileSpec make(const std::string& bytes, const std::string& name = "file") const {
        std::ofstream out(pathOf(name), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return FileSpec(pathOf(name));
    }

    // What a file holds, read without the library.
    static std::string contents(const FileSpec& spec) {
        std::ifstream in(spec.GetPath(), std::ios::binary);
        EXPECT_TRUE(in.is_open()) << spec.GetPath();
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    // Changes bytes behind the back of who has the file open.
    static void patch(const FileSpec& spec, std::int64_t place, const std::string& bytes) {
        std::fstream out(spec.GetPath(), std::ios::binary | std::ios::in | std::ios::out);
        out.seekp(place);
        out << bytes;
        EXPECT_TRUE(out.good());
    }

    std::string folder;
};

// Bytes without a period that a wrong offset could hide in.
std::string noise(std::int64_t count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::string bytes;
    for (std::int64_t i = 0; i < count; ++i) bytes += static_cast<char>(random());
    return bytes;
}

std::uint8_t byteAt(const std::string& bytes, std::int64_t place) {
    return static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(place)]);
}

void write(FileIO& file, const std::string& bytes) { file.WriteBytes(bytes.data(), bytes.size()); }

std::string readAll(FileIOBase& file) {
    std::string bytes;
    file.Seek(0);
    const std::int64_t length = file.GetLength();
    while (file.GetPosition() < length) bytes += static_cast<char>(file.ReadUInt8());
    return bytes;
}

// Root may do everything to every file; for as long as one of these lives the process is nobody instead.
class WithoutPrivileges {
public:
    WithoutPrivileges() : wasRoot(::geteuid() == 0) {
        if (wasRoot) effective = ::seteuid(65534) == 0;
    }
    ~WithoutPrivileges() {
        if (wasRoot && effective && ::seteuid(0) != 0) ADD_FAILURE() << "cannot become root again";
    }
    bool effective = true;

private:
    bool wasRoot;
};

// Files cannot grow beyond a number of bytes as long as one of these lives, as on a disk that is full. The test's own
// output may be a file too, so nothing is asserted meanwhile.
class FullDisk {
public:
    explicit FullDisk(rlim_t byteCount) : before(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small{byteCount, limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, before);
    }

private:
    void (*before)(int);
    rlimit limit{};
};

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

TEST_F(FilesTest, AFileSpecKeepsItsPathAsGiven) {
    for (const std::string& path : {std::string(), std::string("a/../b.xml"), std::string("a\0b", 3)}) {
        EXPECT_EQ(FileSpec(path).GetPath(), path);
    }
}

TEST_F(FilesTest, ReadsEachByteOnceAndStaysAtTheEnd) {
    for (const std::int64_t length :
         {std::int64_t(0), std::int64_t(1), kBuffer - 1, kBuffer, kBuffer + 1, 3 * kBuffer}) {
        SCOPED_TRACE(length);
        const std::string bytes = noise(length);
        FileIO file(make(bytes));
        ASSERT_TRUE(file.OpenForReading());
        EXPECT_EQ(file.GetLength(), length);
        std::string read;
        for (std::int64_t i = 0; i < length; ++i) {
            ASSERT_EQ(file.GetPosition(), i);
            read += static_cast<char>(file.ReadUInt8());
        }
        EXPECT_TRUE(read == bytes);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(file.ReadUInt8(), 0);
            EXPECT_EQ(file.GetPosition(), length);
        }
    }
}

TEST_F(FilesTest, ReadsTheBytesThatAFileGainsAtItsEnd) {
    const FileSpec spec = make("ab");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(2);
    EXPECT_EQ(file.ReadUInt8(), 0);
    patch(spec, 2, "c");
    EXPECT_EQ(file.GetLength(), 3);
    EXPECT_EQ(file.ReadUInt8(), 'c');
}

// To open a pipe lets go whoever waits at its other end.
TEST_F(FilesTest, DoesNotOpenAPipeToSeeThatItIsNone) {
    const std::string pipe = pathOf("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(::inotify_add_watch(watch, pipe.c_str(), IN_OPEN), 0);
    FileIO file{FileSpec(pipe)};
    EXPECT_FALSE(file.OpenForReading());
    EXPECT_FALSE(file.OpenForWriting());
    inotify_event event;
    EXPECT_EQ(::read(watch, &event, sizeof event), -1) << "it was opened";
    EXPECT_EQ(errno, EAGAIN);
    ::close(watch);
}

TEST_F(FilesTest, OpensRegularFilesAndLinksToThemAndNothingElse) {
    make("text");
    fs::create_symlink("file", pathOf("link"));
    fs::create_symlink("missing", pathOf("dangling"));
    fs::create_directory(pathOf("directory"));
    ASSERT_EQ(::mkfifo(pathOf("pipe").c_str(), 0600), 0);
    const struct {
        const char* name;
        std::string path;
        bool reads, writes, creates;
    } kCases[] = {
        {"regular file", pathOf("file"), true, true, true},
        {"link to one", pathOf("link"), true, true, true},
        {"missing", pathOf("new"), false, true, true},
        {"link to a missing one", pathOf("dangling"), false, true, true},
        {"directory", pathOf("directory"), false, false, false},
        {"pipe nobody else has open", pathOf("pipe"), false, false, false},
        {"device that swallows", "/dev/null", false, false, false},
        {"device that never ends", "/dev/zero", false, false, false},
        {"in a missing directory", pathOf("nowhere/file"), false, false, false},
        {"below a file", pathOf("file/x"), false, false, false},
        {"no name", "", false, false, false},
        {"zero byte inside", pathOf(std::string("file\0x", 6)), false, false, false},
        {"zero byte at the end", pathOf(std::string("file\0", 5)), false, false, false},
        {"name too long", pathOf(std::string(300, 'n')), false, false, false},
    };
    const auto descriptors = openDescriptors();
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const FileSpec spec(c.path);
        FileIO file(spec);
        EXPECT_EQ(file.OpenForReading(), c.reads);
        EXPECT_EQ(file.IsOpen(), c.reads);
        EXPECT_EQ(file.OpenForWriting(), c.writes);
        EXPECT_EQ(file.IsOpen(), c.writes);
        file.Close();
        EXPECT_FALSE(file.IsOpen());
        fs::remove(pathOf("new"));
        fs::remove(pathOf("missing"));
        EXPECT_EQ(FileSpecFunctions::CreateFile(spec, kText), c.creates);
        fs::remove(pathOf("new"));
        fs::remove(pathOf("missing"));
    }
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(FilesTest, OpeningForWritingKeepsWhatTheFileHoldsAndStandsAtItsStart) {
    const FileSpec spec = make("<old/>");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    EXPECT_EQ(file.GetPosition(), 0);
    EXPECT_EQ(file.GetLength(), 6);
    write(file, "<new");
    EXPECT_EQ(file.GetPosition(), 4);
    file.Close();
    EXPECT_EQ(contents(spec), "<new/>");
}

TEST_F(FilesTest, CreateFileMakesAnEmptyFileWhateverWasThere) {
    const FileSpec fresh(pathOf("fresh"));
    EXPECT_TRUE(FileSpecFunctions::CreateFile(fresh, kText));
    EXPECT_EQ(contents(fresh), "");
    const FileSpec used = make(noise(1000));
    EXPECT_TRUE(FileSpecFunctions::CreateFile(used, 0));
    EXPECT_EQ(contents(used), "");
    EXPECT_EQ(fs::file_size(used.GetPath()), 0u);
}

TEST_F(FilesTest, PermissionsDecideWhatAnOpenFileCanDo) {
    ::chmod(folder.c_str(), 0755);
    const FileSpec readOnly = make("read", "readonly");
    const FileSpec writeOnly = make("write", "writeonly");
    ASSERT_EQ(::chmod(readOnly.GetPath().c_str(), 0444), 0);
    ASSERT_EQ(::chmod(writeOnly.GetPath().c_str(), 0222), 0);
    {
        const WithoutPrivileges nobody;
        if (!nobody.effective) GTEST_SKIP() << "cannot give up root";

        FileIO toRead(readOnly);
        EXPECT_FALSE(toRead.OpenForWriting());
        EXPECT_FALSE(FileSpecFunctions::CreateFile(readOnly, kText));
        EXPECT_TRUE(toRead.OpenForReading());
        EXPECT_EQ(toRead.ReadUInt8(), 'r');

        FileIO toWrite(writeOnly);
        EXPECT_FALSE(toWrite.OpenForReading());
        ASSERT_TRUE(toWrite.OpenForWriting());
        EXPECT_EQ(toWrite.GetLength(), 5);
        toWrite.Seek(1);
        toWrite.WriteUInt8('R');
        // Not even what was just written can be read, though it is in memory.
        toWrite.Seek(1);
        EXPECT_EQ(toWrite.ReadUInt8(), 0);
        EXPECT_EQ(toWrite.GetPosition(), 1);
        toWrite.Seek(0);
        EXPECT_EQ(toWrite.ReadUInt8(), 0);
        EXPECT_EQ(toWrite.GetPosition(), 0);
        std::size_t count = 99;
        EXPECT_EQ(toWrite.BufferedBytes(count), nullptr);
        EXPECT_EQ(count, 0u);
        // The bytes between two separate writes stay, although nobody here can know them.
        toWrite.Seek(4);
        toWrite.WriteUInt8('E');
    }
    ::chmod(writeOnly.GetPath().c_str(), 0644);
    EXPECT_EQ(contents(writeOnly), "wRitE");
    EXPECT_EQ(contents(readOnly), "read");
}

TEST_F(FilesTest, WritingToAFileOpenedForReadingDoesNothing) {
    const FileSpec spec = make("abc");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForReading());
    file.WriteUInt8('x');
    write(file, "yz");
    EXPECT_EQ(file.GetPosition(), 0);
    EXPECT_EQ(file.GetLength(), 3);
    EXPECT_EQ(readAll(file), "abc");
    file.Close();
    EXPECT_EQ(contents(spec), "abc");
}

TEST_F(FilesTest, AFileThatIsNotOpenIsEmptyAndTakesNothing) {
    const FileSpec spec = make("abc");
    FileIO file(spec);
    const auto expectClosed = [&] {
        EXPECT_FALSE(file.IsOpen());
        file.WriteUInt8('x');
        write(file, "yz");
        for (const auto origin : {FromStart, FromCurrent, FromEnd}) {
            file.Seek(2, origin);
            EXPECT_EQ(file.GetPosition(), 0);
        }
        EXPECT_EQ(file.GetLength(), 0);
        EXPECT_EQ(file.ReadUInt8(), 0);
        std::size_t count = 99;
        EXPECT_EQ(file.BufferedBytes(count), nullptr);
        EXPECT_EQ(count, 0u);
        file.Close();
    };
    {
        SCOPED_TRACE("never opened");
        expectClosed();
    }
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(1);
    EXPECT_EQ(file.ReadUInt8(), 'b');
    file.Close();
    {
        SCOPED_TRACE("closed");
        expectClosed();
    }
    EXPECT_EQ(contents(spec), "abc");
}

TEST_F(FilesTest, OpeningAnOpenFileWritesAndClosesItFirst) {
    const FileSpec spec(pathOf("file"));
    const auto descriptors = openDescriptors();
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    write(file, "first");
    ASSERT_TRUE(file.OpenForReading());
    EXPECT_EQ(file.GetPosition(), 0);
    EXPECT_EQ(readAll(file), "first");
    write(file, "no");
    ASSERT_TRUE(file.OpenForWriting());
    EXPECT_EQ(file.GetPosition(), 0);
    write(file, "F");
    EXPECT_EQ(openDescriptors(), descriptors + 1);

    fs::rename(spec.GetPath(), pathOf("moved"));
    EXPECT_FALSE(file.OpenForReading());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(contents(FileSpec(pathOf("moved"))), "First");
}

TEST_F(FilesTest, TheDestructorWritesAndClosesAlsoThroughTheBase) {
    const FileSpec spec(pathOf("file"));
    const auto descriptors = openDescriptors();
    auto file = std::make_unique<FileIO>(spec);
    ASSERT_TRUE(file->OpenForWriting());
    std::unique_ptr<FileIOBase> base = std::move(file);
    base->WriteUInt8(0xFF);
    base->WriteUInt8(0);
    base.reset();
    EXPECT_EQ(contents(spec), std::string("\xFF\0", 2));
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(FilesTest, SeeksFromEachOriginAndIgnoresWhatLeadsOutside) {
    FileIO file(make("0123456789"));
    ASSERT_TRUE(file.OpenForReading());
    const struct {
        const char* name;
        std::int64_t from, offset;
        OrvSys::SeekOrigin origin;
        std::int64_t position;
    } kCases[] = {
        {"start", 5, 0, FromStart, 0},
        {"inside", 5, 7, FromStart, 7},
        {"at the end", 5, 10, FromStart, 10},
        {"past the end", 5, 1000, FromStart, 1000},
        {"last position", 5, kLast, FromStart, kLast},
        {"before the start", 5, -1, FromStart, 5},
        {"smallest offset", 5, std::numeric_limits<std::int64_t>::min(), FromStart, 5},
        {"nowhere", 5, 0, FromCurrent, 5},
        {"forward", 5, 3, FromCurrent, 8},
        {"back", 5, -3, FromCurrent, 2},
        {"back to the start", 5, -5, FromCurrent, 0},
        {"back before the start", 5, -6, FromCurrent, 5},
        {"forward to the last position", 5, kLast - 5, FromCurrent, kLast},
        {"forward beyond it", 5, kLast - 4, FromCurrent, 5},
        {"smallest offset from the last position", kLast, std::numeric_limits<std::int64_t>::min(), FromCurrent, kLast},
        {"end", 5, 0, FromEnd, 10},
        {"last byte", 5, -1, FromEnd, 9},
        {"length back", 5, -10, FromEnd, 0},
        {"more than the length back", 5, -11, FromEnd, 5},
        {"behind the end", 5, 4, FromEnd, 14},
        {"behind the last position", 5, kLast, FromEnd, 5},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        file.Seek(c.from);
        file.Seek(c.offset, c.origin);
        EXPECT_EQ(file.GetPosition(), c.position);
        const bool inside = c.position < 10;
        EXPECT_EQ(file.ReadUInt8(), inside ? '0' + c.position : 0);
        EXPECT_EQ(file.GetPosition(), inside ? c.position + 1 : c.position);
    }
    file.Seek(3);
    file.Seek(3 - 1);
    EXPECT_EQ(file.GetPosition(), 2) << "the origin is the start unless another is named";
}

TEST_F(FilesTest, LengthCountsWrittenBytesBeforeTheyReachTheFile) {
    const FileSpec spec = make("abcdef");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    write(file, "ABC");
    EXPECT_EQ(file.GetLength(), 6);
    file.Seek(4);
    write(file, "EFGH");
    EXPECT_EQ(file.GetLength(), 8);
    file.Seek(-1, FromEnd);
    EXPECT_EQ(file.GetPosition(), 7);
    EXPECT_EQ(file.ReadUInt8(), 'H');
    file.Seek(20);
    EXPECT_EQ(file.GetLength(), 8) << "a position past the end alone adds nothing";
    file.WriteUInt8('!');
    EXPECT_EQ(file.GetLength(), 21);
    file.Close();
    EXPECT_EQ(contents(spec), "ABCdEFGH" + std::string(12, '\0') + "!");
}

TEST_F(FilesTest, WritingPastTheEndLeavesZerosBetween) {
    const FileSpec spec = make("ab");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    file.Seek(2 * kBuffer);
    file.WriteUInt8('z');
    file.Seek(1);
    EXPECT_EQ(file.ReadUInt8(), 'b');
    EXPECT_EQ(file.ReadUInt8(), 0);
    EXPECT_EQ(file.GetPosition(), 3);
    file.Close();
    EXPECT_TRUE(contents(spec) == "ab" + std::string(2 * kBuffer - 2, '\0') + "z");
}

TEST_F(FilesTest, WritingLeavesTheBytesBetweenAloneThatSomebodyElseChanged) {
    const FileSpec spec = make("abcdefgh");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    EXPECT_EQ(file.ReadUInt8(), 'a');
    file.Seek(3);
    file.WriteUInt8('D');
    patch(spec, 2, "?");
    patch(spec, 4, "?");
    file.Seek(5);
    file.WriteUInt8('F');
    file.Seek(1);
    file.WriteUInt8('B');
    file.Close();
    EXPECT_EQ(contents(spec), "aB?D?Fgh");
}

TEST_F(FilesTest, RunsOfAnyLengthAreWrittenAsTheirBytesOneByOne) {
    for (const std::int64_t length :
         {std::int64_t(0), std::int64_t(1), kBuffer - 1, kBuffer, kBuffer + 1, 5 * kBuffer + 17}) {
        for (const std::int64_t start : {std::int64_t(0), std::int64_t(3), kBuffer - 1}) {
            SCOPED_TRACE(std::to_string(length) + " bytes at " + std::to_string(start));
            const std::string run = noise(length);
            const FileSpec asRun = make("", "run");
            const FileSpec asBytes = make("", "bytes");
            {
                FileIO a(asRun);
                FileIO b(asBytes);
                ASSERT_TRUE(a.OpenForWriting() && b.OpenForWriting());
                a.Seek(start);
                b.Seek(start);
                write(a, run);
                for (const char c : run) b.WriteUInt8(static_cast<std::uint8_t>(c));
                EXPECT_EQ(a.GetPosition(), start + length);
                EXPECT_EQ(b.GetPosition(), start + length);
            }
            const std::string expected = length == 0 ? "" : std::string(static_cast<std::size_t>(start), '\0') + run;
            EXPECT_TRUE(contents(asRun) == expected);
            EXPECT_TRUE(contents(asBytes) == expected);
        }
    }
}

TEST_F(FilesTest, BufferedBytesGoThroughTheWholeFileWithoutMovingThePosition) {
    const std::string bytes = noise(3 * kBuffer + 5);
    FileIO file(make(bytes));
    ASSERT_TRUE(file.OpenForReading());
    std::string read;
    for (;;) {
        std::size_t count = 0;
        const char* run = file.BufferedBytes(count);
        EXPECT_EQ(file.GetPosition(), static_cast<std::int64_t>(read.size()));
        if (count == 0) {
            EXPECT_EQ(run, nullptr);
            break;
        }
        std::size_t again = 0;
        EXPECT_EQ(file.BufferedBytes(again), run);
        EXPECT_EQ(again, count);
        // Part of the run first: the rest must stay at hand where it is.
        const std::size_t part = (count + 1) / 2;
        read.append(run, part);
        file.SkipBuffered(part);
        if (part < count) {
            EXPECT_EQ(file.BufferedBytes(again), run + part);
            EXPECT_EQ(again, count - part);
        }
    }
    EXPECT_TRUE(read == bytes);
    file.Seek(kBuffer + 1);
    EXPECT_EQ(file.ReadUInt8(), byteAt(bytes, kBuffer + 1));
}

TEST_F(FilesTest, ReadsManyBytesAtOnceAsItReadsEach) {
    const std::string bytes = noise(5 * kBuffer + 5);
    const FileSpec spec = make(bytes);
    for (const std::int64_t from : {std::int64_t{0}, std::int64_t{7}, kBuffer, 5 * kBuffer, 5 * kBuffer + 5}) {
        for (const std::int64_t count : {std::int64_t{0}, std::int64_t{3}, kBuffer / 2 - 1, kBuffer / 2, 6 * kBuffer}) {
            SCOPED_TRACE(std::to_string(count) + " from " + std::to_string(from));
            FileIO file(spec);
            std::string read(static_cast<std::size_t>(count), '#');
            EXPECT_EQ(file.ReadBytes(read.data(), read.size()), 0U) << "not open";
            ASSERT_TRUE(file.OpenForReading());
            if (from == 7) {
                EXPECT_EQ(file.ReadUInt8(), byteAt(bytes, 0));
            }
            file.Seek(from);
            const std::string expected = bytes.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(count));
            EXPECT_EQ(file.ReadBytes(read.data(), read.size()), expected.size());
            EXPECT_TRUE(read.compare(0, expected.size(), expected) == 0);
            EXPECT_EQ(file.GetPosition(), from + static_cast<std::int64_t>(expected.size()));
            if (file.GetPosition() < 5 * kBuffer + 5) {
                EXPECT_EQ(file.ReadUInt8(), byteAt(bytes, from + count));
            }
        }
    }
}

// Many bytes go past the buffer, which keeps what it holds.
TEST_F(FilesTest, ReadsManyBytesThatWereWrittenAndAreStillInTheBuffer) {
    const std::string bytes = noise(3 * kBuffer);
    FileIO file(make(bytes));
    ASSERT_TRUE(file.OpenForWriting());
    file.Seek(kBuffer + 2);
    write(file, "written");
    file.Seek(0);
    std::string expected = bytes;
    expected.replace(static_cast<std::size_t>(kBuffer + 2), 7, "written");
    std::string read(bytes.size() + 1, '#');
    EXPECT_EQ(file.ReadBytes(read.data(), read.size()), bytes.size());
    EXPECT_TRUE(read == expected + "#");
}

TEST_F(FilesTest, BufferedBytesShowWhatWasWritten) {
    FileIO file(make("abcdef"));
    ASSERT_TRUE(file.OpenForWriting());
    EXPECT_EQ(file.ReadUInt8(), 'a');
    write(file, "BC");
    file.Seek(0);
    std::size_t count = 0;
    const char* run = file.BufferedBytes(count);
    EXPECT_EQ(std::string(run, count), "aBCdef");
}

// Whether a byte comes from memory shows when somebody else changes the file.
TEST_F(FilesTest, SeekingInsideTheBufferKeepsIt) {
    const FileSpec spec = make(std::string(static_cast<std::size_t>(2 * kBuffer), 'o'));
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForReading());
    EXPECT_EQ(file.ReadUInt8(), 'o');
    patch(spec, 0, std::string(static_cast<std::size_t>(2 * kBuffer), 'n'));
    const struct {
        const char* name;
        std::int64_t place;
        char byte;
    } kCases[] = {
        {"second byte", 1, 'o'},
        {"last one held", kBuffer - 1, 'o'},
        {"back to the first", 0, 'o'},
        {"past the end", 5 * kBuffer, '\0'},
        {"still the first", 0, 'o'},
        {"first one not held", kBuffer, 'n'},
        {"last of the file", 2 * kBuffer - 1, 'n'},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        file.Seek(c.place);
        EXPECT_EQ(file.ReadUInt8(), c.byte);
    }
}

TEST_F(FilesTest, SteppingBackOutOfTheBufferBringsTheBytesBeforeToo) {
    const FileSpec spec = make(std::string(static_cast<std::size_t>(4 * kBuffer), 'o'));
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(2 * kBuffer);
    EXPECT_EQ(file.ReadUInt8(), 'o');
    file.Seek(2 * kBuffer - 1);
    EXPECT_EQ(file.ReadUInt8(), 'o');
    patch(spec, 0, std::string(static_cast<std::size_t>(4 * kBuffer), 'n'));
    const std::int64_t first = 2 * kBuffer - 1 - kBuffer / 2;
    file.Seek(first);
    EXPECT_EQ(file.ReadUInt8(), 'o');
    file.Seek(first + kBuffer - 1);
    EXPECT_EQ(file.ReadUInt8(), 'o');
    file.Seek(first - 1);
    EXPECT_EQ(file.ReadUInt8(), 'n');
}

TEST_F(FilesTest, AFileThatLostItsEndIsReadUpToWhereItEndsNow) {
    const std::string bytes = noise(4 * kBuffer);
    const FileSpec spec = make(bytes);
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForReading());
    file.Seek(3 * kBuffer);
    EXPECT_EQ(file.ReadUInt8(), byteAt(bytes, 3 * kBuffer));
    fs::resize_file(spec.GetPath(), static_cast<std::uintmax_t>(2 * kBuffer));
    // Not held any more, and only the bytes before it are there to be read.
    file.Seek(2 * kBuffer + 10);
    EXPECT_EQ(file.ReadUInt8(), 0);
    EXPECT_EQ(file.GetPosition(), 2 * kBuffer + 10);
    file.Seek(2 * kBuffer - 1);
    EXPECT_EQ(file.ReadUInt8(), byteAt(bytes, 2 * kBuffer - 1));
    EXPECT_EQ(file.ReadUInt8(), 0);
}

TEST_F(FilesTest, BytesThatTheSystemRefusesAreDropped) {
    const std::string bytes = noise(100000);
    const std::size_t room = 70000;
    const FileSpec spec(pathOf("file"));
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    std::uint8_t last, behind;
    std::int64_t position, length;
    {
        const FullDisk disk(room);
        write(file, bytes);
        position = file.GetPosition();
        // Reading elsewhere needs the buffer, so what is in it has to go to the file now.
        file.Seek(0);
        file.ReadUInt8();
        file.Seek(static_cast<std::int64_t>(room) - 1);
        last = file.ReadUInt8();
        behind = file.ReadUInt8();
        length = file.GetLength();
    }
    EXPECT_EQ(position, 100000);
    EXPECT_EQ(last, byteAt(bytes, static_cast<std::int64_t>(room) - 1));
    EXPECT_EQ(behind, 0);
    EXPECT_EQ(length, static_cast<std::int64_t>(room));
    EXPECT_TRUE(contents(spec) == bytes.substr(0, room));

    // The file takes bytes again when there is room again.
    file.Seek(0, FromEnd);
    write(file, "more");
    file.Close();
    EXPECT_TRUE(contents(spec) == bytes.substr(0, room) + "more");
}

TEST_F(FilesTest, RefusedBytesAreNotReadFromMemoryEither) {
    const FileSpec spec = make("0123456789");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    std::uint8_t read[] = {file.ReadUInt8(), 0, 0, 0};
    {
        const FullDisk disk(12);
        file.Seek(10);
        write(file, "abcd");
        // Looking for more at the end lets the written bytes go to the file, and changes nothing else.
        file.Seek(14);
        read[1] = file.ReadUInt8();
        file.Seek(11);
        read[2] = file.ReadUInt8();
        read[3] = file.ReadUInt8();
    }
    EXPECT_EQ(read[0], '0');
    EXPECT_EQ(read[1], 0);
    EXPECT_EQ(read[2], 'b');
    EXPECT_EQ(read[3], 0);
    EXPECT_EQ(file.GetPosition(), 12);
    EXPECT_EQ(file.GetLength(), 12);
    EXPECT_EQ(contents(spec), "0123456789ab");
}

TEST_F(FilesTest, NothingIsWrittenBeyondTheLastPosition) {
    const FileSpec spec = make("abc");
    FileIO file(spec);
    ASSERT_TRUE(file.OpenForWriting());
    file.Seek(kLast);
    file.WriteUInt8('x');
    EXPECT_EQ(file.GetPosition(), kLast);
    EXPECT_EQ(file.GetLength(), 3);
    file.Seek(kLast - 2);
    write(file, "vwxyz");
    EXPECT_EQ(file.GetPosition(), kLast);
    // No file system holds files of this length, so the two bytes that had a place are refused in the end.
    file.Seek(0);
    EXPECT_EQ(file.ReadUInt8(), 'a');
    EXPECT_EQ(file.GetLength(), 3);
    file.Close();
    EXPECT_EQ(contents(spec), "abc");
}

// The file as it would be without a buffer.
struct NaiveFile {
    std::string bytes;
    std::int64_t position = 0;

    std::int64_t length() const { return static_cast<std::int64_t>(bytes.size()); }

    std::uint8_t read() { return position < length() ? byteAt(bytes, position++) : std::uint8_t(0); }

    void write(char byte) {
        if (position >= length()) bytes.resize(static_cast<std::size_t>(position) + 1, '\0');
        bytes[static_cast<std::size_t>(position++)] = byte;
    }

    void seek(std::int64_t offset, OrvSys::SeekOrigin origin) {
        const std::int64_t base = origin == FromStart ? 0 : origin == FromCurrent ? position : length();
        if (base + offset >= 0) position = base + offset;
    }
};

// One random program on a file and on its model; stops at the first operation after which they differ.
class RandomProgram {
public:
    RandomProgram(const FileSpec& spec, unsigned seed) : file(spec), random(seed) {}

    void run(int operations) {
        ASSERT_TRUE(file.OpenForWriting());
        for (int i = 0; i < operations; ++i) {
            const int operation = pick(0, 99);
            SCOPED_TRACE("operation " + std::to_string(i) + ", kind " + std::to_string(operation));
            step(operation);
            ASSERT_EQ(file.GetPosition(), model.position);
            ASSERT_EQ(file.GetLength(), model.length());
            if (testing::Test::HasFatalFailure()) return;
        }
        ASSERT_TRUE(readAll(file) == model.bytes);
        file.Close();
    }

    NaiveFile model;

private:
    static constexpr int kLongestFile = 5 * static_cast<int>(kBuffer);

    int pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }

    void step(int operation) {
        if (operation < 20) {
            read(1);
        } else if (operation < 30) {
            read(pick(1, 500));
        } else if (operation < 45) {
            const auto byte = static_cast<std::uint8_t>(pick(0, 255));
            file.WriteUInt8(byte);
            model.write(static_cast<char>(byte));
        } else if (operation < 55) {
            writeRun(pick(0, 300));
        } else if (operation < 57) {
            writeRun(pick(0, 2 * static_cast<int>(kBuffer)));
        } else if (operation < 62) {
            takeBuffered();
        } else if (operation < 64) {
            readRun(pick(0, 300));
        } else if (operation < 65) {
            readRun(pick(0, 3 * static_cast<int>(kBuffer)));
        } else if (operation < 67) {
            file.Close();
            ASSERT_TRUE(file.OpenForWriting());
            model.position = 0;
        } else if (operation < 75) {
            seek(pick(-10, kLongestFile), FromStart);
        } else if (operation < 83) {
            seek(pick(0, 4) * kBuffer + pick(-3, 3), FromStart);
        } else if (operation < 95) {
            seek(pick(-200, 200), FromCurrent);
        } else {
            seek(pick(-1000, 50), FromEnd);
        }
        // Runs of growth would make the file as long as the program.
        if (model.position > kLongestFile) seek(pick(0, kLongestFile), FromStart);
    }

    void read(int count) {
        for (int i = 0; i < count; ++i) ASSERT_EQ(file.ReadUInt8(), model.read());
    }

    void readRun(int count) {
        std::string bytes(static_cast<std::size_t>(count), '#');
        const std::int64_t left = std::max<std::int64_t>(0, model.length() - model.position);
        const std::int64_t expected = std::min<std::int64_t>(left, count);
        ASSERT_EQ(static_cast<std::int64_t>(file.ReadBytes(bytes.data(), bytes.size())), expected);
        for (std::int64_t i = 0; i < expected; ++i)
            ASSERT_EQ(static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(i)]), model.read());
        ASSERT_EQ(bytes.find_first_not_of('#', static_cast<std::size_t>(expected)), std::string::npos);
    }

    void writeRun(int count) {
        const std::string run = noise(count, static_cast<unsigned>(random()));
        file.WriteBytes(run.data(), run.size());
        for (const char c : run) model.write(c);
    }

    void takeBuffered() {
        std::size_t count = 99;
        const char* run = file.BufferedBytes(count);
        ASSERT_EQ(count > 0, model.position < model.length());
        ASSERT_LE(static_cast<std::int64_t>(count), std::max<std::int64_t>(0, model.length() - model.position));
        if (count == 0) return;
        ASSERT_EQ(model.bytes.compare(static_cast<std::size_t>(model.position), count, run, count), 0);
        const int part = pick(0, static_cast<int>(count));
        file.SkipBuffered(static_cast<std::size_t>(part));
        model.position += part;
    }

    void seek(std::int64_t offset, OrvSys::SeekOrigin origin) {
        file.Seek(offset, origin);
        model.seek(offset, origin);
    }

    FileIO file;
    std::mt19937 random;
};

TEST_F(FilesTest, AnyMixOfReadsWritesAndSeeksGivesWhatAnUnbufferedFileGives) {
    for (unsigned seed = 1; seed <= static_cast<unsigned>(Xml::test::rounds(10)); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const FileSpec spec = make("");
        RandomProgram program(spec, seed);
        program.run(4000);
        if (HasFatalFailure()) return;
        EXPECT_GT(program.model.length(), 3 * kBuffer);
        EXPECT_TRUE(contents(spec) == program.model.bytes);
    }
}

}  // namespace
