// Sources, tokens and sinks while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "support/Sources.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/FileSpecOutStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace Xml::test {

namespace {

// All kinds of tokens, with line ends of two bytes, and nested ones that are tried and given up.
const std::string kTokens =
    "! word-longer-than-any-string-holds \r\n 'a string with \"quotes\" in it' <element-with-a-long-name "
    "attribute=\"the value "
    "of the attribute\"/>\r\n<!-- a comment --> &reference-with-a-long-name; <?xml-instruction and more?> "
    "<!DOCTYPE-and-more "
    "<![CDATA[text]]> <!<!<!<?<!x <?&another-reference-with-a-long-name; \r\n\r\n (a|b,c)*+? ] text up to <here\r\n "
    "tail";

// Goes through the text with every operation that reads, and gives `note` what each one gave.
template <class Note>
void readTokens(InStream& in, Note note) {
    std::string text;
    const auto token = [&](bool ok) {
        note(ok, text, in);
        text.clear();
    };
    token(in.getString(text));  // is none; from here on there is a message
    token(in.getName(text));
    token(in.getString(text));
    token(in.checkToken("<"));
    token(in.getName(text));
    token(in.checkToken("attribute-of-another-name-that-is-expected"));
    for (int i = 0; i < 3; ++i) token(in.getToken(text));
    token(in.checkToken("<!--"));
    token(in.skip("-->"));
    token(in.getName(text));  // is none: a reference
    for (int i = 0; i < 30; ++i) token(in.getToken(text));
    DataHolder data;
    const bool found = in.getCharData(data);
    note(found, data, in);
    token(in.getString(text));  // is none
    token(in.getTokenInParseBuffer());
    char c = 0;
    note(in.get(c), std::string(1, c), in);
}

std::string tokensOf(InStream& in) {
    std::ostringstream outcome;
    readTokens(in, [&outcome](bool ok, const std::string& text, InStream& stream) {
        outcome << ok << " " << text << " " << stream.getPosition() << " " << stream.getErrorMessage() << "\n";
    });
    outcome << "line " << in.getLine() << ", column " << in.getColumn();
    return outcome.str();
}

}  // namespace

TEST(StreamMemoryTest, ASourceGoesBackAndReadsEverythingAfterAllocationsHaveFailed) {
    const ScratchFile file("tokens", kTokens);
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        std::string expected;
        withSource(source, kTokens, file.path, [&expected](InStream& in) { expected = tokensOf(in); });
        forEachFailingAllocation([&](Attempt& attempt) {
            withSource(source, kTokens, file.path, [&](InStream& in) {
                attempt([&in] { readTokens(in, [](bool, const std::string&, const InStream&) {}); });
                in.setPosition(0);
                EXPECT_EQ(tokensOf(in), expected);
            });
        });
    }
}

TEST(StreamMemoryTest, AReferenceIsReadWholeAfterATrialWasCutShort) {
    const std::string reference = "&reference-with-a-long-name;";
    forEachFailingAllocation([&reference](Attempt& attempt) {
        StringInStream in(reference + " <!name-that-is-longer-than-any-string-holds");
        std::string token;
        in.setPosition(static_cast<int>(reference.size()));
        attempt([&] { in.getToken(token); });
        for (int i = 0; i < 3; ++i) {
            in.setPosition(0);
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, reference);
        }
    });
}

TEST(StreamMemoryTest, AMessageThatCannotBeMadeMovesNothingAndIsMadeWhenAskedForAgain) {
    const std::string reference = "&reference-with-a-long-name;";
    const std::string text = "<?" + reference + " rest";
    const ScratchFile file("message", text);
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        forEachFailingAllocation([&](Attempt& attempt) {
            withSource(source, text, file.path, [&](InStream& in) {
                std::string token;
                EXPECT_TRUE(in.getToken(token));
                const int position = in.getPosition();
                std::string message;
                attempt([&] { message = in.getErrorMessage(); });
                EXPECT_EQ(in.getPosition(), position);
                EXPECT_EQ(in.getErrorMessage(), "not a name: " + reference);
            });
        });
    }
}

// The message about a reference is put together when the reader ends, which must need no memory any more.
TEST(StreamMemoryTest, AReaderEndsWithItsMessageWholeWhereverAllocationsFailed) {
    const std::string reference = "&reference-with-a-long-name;";
    const std::string text = "<!<?" + reference + " <?" + reference + " rest";
    const ScratchFile file("reader", text);
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        forEachFailingAllocation([&](Attempt& attempt) {
            withSource(source, text, file.path, [&](InStream& in) {
                std::string token;
                const auto readTwo = [&] {
                    const StreamAccess::Session session(in);
                    for (int i = 0; i < 2; ++i) in.getToken(token);
                };
                attempt(readTwo);
                in.setPosition(0);
                const std::string& message = in.getErrorMessage();
                readTwo();
                EXPECT_EQ(token, "<?");
                EXPECT_EQ(message, "not a name: " + reference);
            });
        });
    }
}

// A long reading of a file goes on in blocks, and in a longer one where a block is too short.
TEST(StreamMemoryTest, ALongReadingGoesBackAndReadsEverythingAfterAllocationsHaveFailed) {
    const std::string text = std::string(100'000, 'a') + "<" + std::string(300'000, 'b') + "<";
    const ScratchFile file("blocks", text);
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        forEachFailingAllocation([&](Attempt& attempt) {
            withSource(source, text, file.path, [&](InStream& in) {
                DataHolder data;
                const auto readTwo = [&] {
                    data.clear();
                    const StreamAccess::Session session(in);
                    in.getCharData(data);
                    char c = 0;
                    in.get(c);
                    for (int i = 0; i < 3; ++i) StreamAccess::lendMore(in);
                    in.getCharData(data);
                };
                attempt(readTwo);
                in.setPosition(0);
                readTwo();
                EXPECT_EQ(data.size(), 400'000U);
                EXPECT_EQ(in.getPosition(), 400'001);
            });
        });
    }
}

TEST(StreamMemoryTest, ALineBreakThatCouldNotBeNotedIsNotedTheNextTime) {
    // Read from the end first, so that positions do not rise.
    const std::string text = "a\r\nb\r\nc\r\nd\r\ne\r\nf";
    const auto readBackwards = [](InStream& in) {
        for (const int position : {12, 9, 6, 3, 0}) {
            in.setPosition(position);
            char c = 0;
            for (int i = 0; i < 3; ++i) in.get(c);
        }
    };
    forEachFailingAllocation([&](Attempt& attempt) {
        StringInStream in(text);
        attempt([&] { readBackwards(in); });
        readBackwards(in);
        in.setPosition(16);
        EXPECT_EQ(in.getLine(), 5);
    });
}

TEST(StreamMemoryTest, ASourceThatCannotBeMadeLeavesNothingOpen) {
    const ScratchFile file("source", kTokens);
    const std::string missing = scratchPath("no-such-file-whose-name-is-not-short");
    const QuietMessages quiet;
    using Made = std::unique_ptr<InStream>;
    struct Case {
        const char* name;
        std::function<Made(std::ifstream&)> make;
        bool readable;
    };
    const Case kCases[] = {
        {"string", [](auto&) { return Made(new StringInStream(kTokens)); }, true},
        {"file stream", [&](auto& stream) { return Made(new FileInStream(file.path, &stream)); }, true},
        {"missing file", [&](auto& stream) { return Made(new FileInStream(missing, &stream)); }, false},
        {"platform file", [&](auto&) { return Made(new FileSpecInStream(OrvSys::FileSpec(file.path))); }, true},
        {"missing platform file", [&](auto&) { return Made(new FileSpecInStream(OrvSys::FileSpec(missing))); }, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            std::ifstream stream;
            Made in;
            if (attempt([&] { in = c.make(stream); })) {
                std::string text;
                EXPECT_EQ(in->getToken(text), c.readable);
            }
            in.reset();
            EXPECT_FALSE(stream.is_open());
        });
    }
}

TEST(StreamMemoryTest, ASinkThatCannotBeMadeEmptiesNoFile) {
    const ScratchFile file("sink", "what was there");
    using Made = std::unique_ptr<OutStream>;
    struct Case {
        const char* name;
        std::function<Made(std::ofstream&)> make;
        bool opensBeforeItAllocates;  // the standard's own order, which cannot be changed
    };
    const Case kCases[] = {
        {"file stream", [&](auto& stream) { return Made(new FileOutStream(file.path, &stream)); }, true},
        {"platform file", [&](auto&) { return Made(new FileSpecOutStream(OrvSys::FileSpec(file.path))); }, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            writeFile(file.path, "what was there");
            std::ofstream stream;
            Made out;
            if (attempt([&] { out = c.make(stream); })) {
                *out << kLong;
                out.reset();
                EXPECT_EQ(readFile(file.path), kLong);
            } else {
                EXPECT_FALSE(stream.is_open());
                if (!c.opensBeforeItAllocates) {
                    EXPECT_EQ(readFile(file.path), "what was there");
                }
            }
        });
    }
}

TEST(StreamMemoryTest, WhatAPlatformFileCouldNotTakeCanBeWrittenAgain) {
    const ScratchFile file("platform", "");
    forEachFailingAllocation([&file](Attempt& attempt) {
        {
            FileSpecOutStream out{OrvSys::FileSpec(file.path)};
            if (!attempt([&out] { out << kLong; })) {
                EXPECT_EQ(out.getPosition(), 0);
                out << kLong;
            }
            EXPECT_EQ(out.getPosition(), static_cast<int>(kLong.size()));
        }
        EXPECT_EQ(readFile(file.path), kLong);
    });
}

TEST(StreamMemoryTest, AStandardStreamThatCannotGrowShowsItInItsState) {
    forEachFailingAllocation([](Attempt& attempt) {
        std::ostringstream stream;
        FileOutStream out(&stream);
        attempt.absorbed([&out] {
            for (int i = 0; i < 100; ++i) out << kLong;
        });
        EXPECT_EQ(stream.good(), !attempt.hasFailed());
        EXPECT_EQ(out.getPosition() < 0, attempt.hasFailed());
        stream.clear();
        out.setPosition(0);
        out << "again";
        EXPECT_EQ(stream.str().substr(0, 5), "again");
    });
}

// Throwing for a stream whose exceptions are switched on needs memory itself.
TEST(StreamMemoryTest, AStreamIsClosedThoughSayingThatItFailedNeedsMemory) {
    if (std::FILE* const full = std::fopen("/dev/full", "w")) {
        std::fclose(full);
    } else {
        GTEST_SKIP() << "there is no /dev/full";
    }
    forEachFailingAllocation([](Attempt& attempt) {
        std::ofstream stream;
        auto out = std::make_unique<FileOutStream>("/dev/full", &stream);
        *out << kLong;
        stream.exceptions(std::ios_base::failbit | std::ios_base::badbit);
        attempt.absorbed([&out] { out.reset(); });
        EXPECT_FALSE(stream.is_open());
        EXPECT_TRUE(stream.fail());
        stream.exceptions(std::ios_base::goodbit);
    });
}

}  // namespace Xml::test
