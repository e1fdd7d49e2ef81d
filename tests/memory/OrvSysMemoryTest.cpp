// The platform layer while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "orvsys/Files.h"
#include "orvsys/Localization.h"
#include "orvsys/Uni16.h"
#include "support/Sources.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Message.h"
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

const OrvSys::Uni16String kWide = u"longer than any string holds without an allocation, \u00e9 and \U0001F331";

std::string narrow(const OrvSys::Uni16String& text) { return OrvSys::Uni16CharToPlatformCString(text); }

std::string installed(const std::string& key, const std::string& domain) {
    return narrow(OrvSys::Localization::GetString(key, domain, u"none"));
}

}  // namespace

TEST(OrvSysMemoryTest, AFileKeepsItsPlaceAndItsBytesWhereItsBufferCannotBeMade) {
    const std::string path = scratchPath("file-whose-name-is-not-short");
    struct Case {
        const char* name;
        bool writes;
        std::function<int(OrvSys::FileIO&)> use;
        int expected;
        std::string bytes;  // of the file afterwards
        std::int64_t position;
    };
    const Case kCases[] = {
        {"read", false, [](OrvSys::FileIO& file) { return file.ReadUInt8(); }, 'c', "abcdef", 3},
        {"bytes at hand", false,
         [](OrvSys::FileIO& file) {
             std::size_t count = 0;
             file.BufferedBytes(count);
             return static_cast<int>(count);
         },
         4, "abcdef", 2},
        {"bytes read", false,
         [](OrvSys::FileIO& file) {
             char bytes[3];
             return static_cast<int>(file.ReadBytes(bytes, 3));
         },
         3, "abcdef", 5},
        {"byte written", true,
         [](OrvSys::FileIO& file) {
             file.WriteUInt8('x');
             return 0;
         },
         0, "abxdef", 3},
        {"bytes written", true,
         [](OrvSys::FileIO& file) {
             file.WriteBytes("xyz", 3);
             return 0;
         },
         0, "abxyzf", 5},
        {"read while writing", true, [](OrvSys::FileIO& file) { return file.ReadUInt8(); }, 'c', "abcdef", 3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            writeFile(path, "abcdef");
            {
                OrvSys::FileIO file{OrvSys::FileSpec(path)};
                ASSERT_TRUE(c.writes ? file.OpenForWriting() : file.OpenForReading());
                file.Seek(2);
                int result = -1;
                if (!attempt([&] { result = c.use(file); })) {
                    EXPECT_TRUE(file.IsOpen());
                    EXPECT_EQ(file.GetPosition(), 2);
                    EXPECT_EQ(file.GetLength(), 6);
                    EXPECT_EQ(readFile(path), "abcdef");
                    result = c.use(file);
                }
                EXPECT_EQ(result, c.expected);
                EXPECT_EQ(file.GetPosition(), c.position);
            }
            EXPECT_EQ(readFile(path), c.bytes);
        });
    }
    std::remove(path.c_str());
}

TEST(OrvSysMemoryTest, AFileThatCannotBeNamedIsNotTouched) {
    const std::string path = scratchPath("file-whose-name-is-not-short");
    forEachFailingAllocation([&path](Attempt& attempt) {
        writeFile(path, "abcdef");
        const bool complete = attempt([&path] {
            OrvSys::FileIO file{OrvSys::FileSpec(path)};
            OrvSys::FileSpecFunctions::CreateFile(OrvSys::FileSpec(path), 0);
            if (file.OpenForWriting()) file.WriteUInt8('x');
        });
        const std::string bytes = readFile(path);
        EXPECT_TRUE(complete ? bytes == "x" : bytes == "abcdef" || bytes.empty()) << bytes;
    });
    std::remove(path.c_str());
}

TEST(OrvSysMemoryTest, NoTextIsConvertedWrongForLackOfMemory) {
    struct Case {
        const char* name;
        std::function<OrvSys::Uni16String()> make;
        OrvSys::Uni16String expected;
    };
    const std::string bytes = narrow(kWide);
    const Case kCases[] = {
        {"widened", [&] { return OrvSys::UTF8ToUni16Char(bytes); }, kWide},
        {"widened characters", [&] { return OrvSys::PlatformCStringToUni16Char(bytes.c_str()); }, kWide},
        {"widened bytes that are no text", [] { return OrvSys::UTF8ToUni16Char(std::string(40, '\xFF')); },
         OrvSys::Uni16String(40, u'\xFFFD')},
        {"narrowed, and widened again", [] { return OrvSys::UTF8ToUni16Char(narrow(kWide)); }, kWide},
        {"lone surrogates",
         [] { return OrvSys::UTF8ToUni16Char(narrow(OrvSys::Uni16String(40, static_cast<char16_t>(0xD800)))); },
         OrvSys::Uni16String(40, u'\xFFFD')},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            OrvSys::Uni16String text;
            if (attempt([&] { text = c.make(); })) {
                EXPECT_EQ(narrow(text), narrow(c.expected));
            }
        });
    }
}

TEST(OrvSysMemoryTest, ATextThatCannotBeInstalledLeavesTheOneThatWasThere) {
    OrvSys::Localization::SetString("another-key-that-is-not-short", "domain-that-is-not-short", u"another text");
    forEachFailingAllocation([](Attempt& attempt) {
        const std::string key = "key-that-is-not-short";
        const std::string domain = "domain-that-is-not-short";
        OrvSys::Localization::SetString(key, domain, u"text of before, which is not short either");
        const bool complete = attempt([&] { OrvSys::Localization::SetString(key, domain, kWide); });
        EXPECT_EQ(installed(key, domain), complete ? narrow(kWide) : "text of before, which is not short either");
        std::string answer;
        if (attempt([&] { answer = installed(key, domain); })) {
            EXPECT_EQ(answer, installed(key, domain));
        }
        EXPECT_EQ(installed("another-key-that-is-not-short", domain), "another text");
    });
}

// What is installed stays, so each round takes a key and a domain of its own and nothing is counted as lost.
TEST(OrvSysMemoryTest, ATextThatCannotBeInstalledIsNotThereAtAll) {
    bool complete = false;
    long number = 0;
    while (!complete) {
        ++number;
        const std::string key = "key-that-is-not-short-" + std::to_string(number);
        const std::string domain = "domain-that-is-not-short-" + std::to_string(number);
        Attempt attempt(number);
        complete = attempt([&] { OrvSys::Localization::SetString(key, domain, kWide); });
        EXPECT_EQ(installed(key, domain), complete ? narrow(kWide) : "none");
        if (!complete) {
            OrvSys::Localization::SetString(key, domain, kWide);
            EXPECT_EQ(installed(key, domain), narrow(kWide));
        }
    }
    EXPECT_GT(number, 5) << "a text, two names and two places for them can fail";
}

// In a process of its own, in which nothing has been used before.
TEST(OrvSysMemoryTest, WhatIsMadeAtTheFirstUseIsMadeAtTheNextOne) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto useForTheFirstTime = [] {
        struct Case {
            const char* name;
            std::function<std::string()> use;
            std::string expected;
        };
        const Case kCases[] = {
            {"localised texts", [] { return installed("xpat/xerr/NODE NOT FOUND", "XPath"); },
             "No node matches the path"},
            {"text of a Dtd", [] { return Dtd("a").toString(); }, "<Document Type Description>"},
            {"last message",
             [] {
                 const Message message(kLong);
                 return Message::lastMessage();
             },
             kLong},
        };
        const QuietMessages quiet;
        for (const auto& c : kCases) {
            bool complete = false;
            long number = 0;
            while (!complete) {
                Attempt attempt(++number);
                std::string answer;
                complete = attempt([&] { answer = c.use(); });
                EXPECT_EQ(answer, complete ? c.expected : "") << c.name;
            }
            EXPECT_GT(number, 1) << c.name << ": nothing was allocated that could fail";
        }
        std::exit(::testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(useForTheFirstTime(), ::testing::ExitedWithCode(0), "");
}

}  // namespace Xml::test
