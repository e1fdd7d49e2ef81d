#include "xml/stream/internal/OutRun.h"

#include "support/Rounds.h"
#include "xml/stream/FileOutStream.h"
#include "xml/text/internal/Escape.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

// A sink that takes byte by byte.
class Bytes : public OutStream {
public:
    void putChar(char c) override { text += c; }
    int getPosition() const override { return static_cast<int>(text.size()); }
    void setPosition(int) override {}

    std::string text;
};

// The same pieces by the operations of the stream.
class Plain {
public:
    explicit Plain(OutStream& stream) : out(stream) {}
    void put(const std::string& text) { out.put(text); }
    void put(const std::string& a, const std::string& b, const std::string& c) { out.put(a + b + c); }
    void putAttribute(const std::string& name, const std::string& value) {
        std::string escaped;
        appendEscaped(escaped, value);
        out.put(" " + name + "=\"" + escaped + "\"");
    }
    void incTab() { out.incTab(); }
    void decTab() { out.decTab(); }
    void putLineFeed() { out.put('\n'); }
    void putAny(const std::string& text) { out.put(text); }
    void putEscaped(const std::string& text) {
        std::string escaped;
        appendEscaped(escaped, text);
        out.put(escaped);
    }
    void putAsIs(const std::string& text) { out.writeDataHolder(text); }
    int position() const { return out.getPosition(); }
    void flush() {}

private:
    OutStream& out;
};

// Random pieces; their positions.
template <class Run>
std::vector<int> putPieces(OutStream& out, Run& run, unsigned seed) {
    std::mt19937 dice(seed);
    const auto next = [&dice](unsigned below) { return static_cast<unsigned>(dice() % below); };
    const auto text = [&](const char* letters, unsigned count) {
        std::string made;
        const std::string all(letters);
        for (unsigned i = 0; i < count; ++i) made += all[next(static_cast<unsigned>(all.size()))];
        return made;
    };
    std::vector<int> positions;
    for (int i = 0; i < 60; ++i) {
        const unsigned length = next(40) == 0 ? 3000U + next(4000) : next(20);
        const std::string plain = text("abc", length);
        const std::string special = text("abc<>&\"'\n", next(20));
        switch (next(12)) {
        case 0: run.putLineFeed(); break;
        case 1: run.putAny(text("ab\n", length)); break;
        case 2: run.putEscaped(text("abc<>&\"'\n", length)); break;
        case 3: run.putAsIs(text("ab\n<", length)); break;
        case 4: out.incTab(); break;
        case 5: run.incTab(); break;
        case 6: run.decTab(); break;
        case 7: run.put("<", plain, text("/>", next(3))); break;
        case 8: run.putAttribute(plain, plain); break;
        case 9: run.putAttribute("name", special); break;
        case 10: run.putAttribute(special, plain); break;
        default: run.put(text("ab<", length + 1));
        }
        if (next(30) == 0) run.flush();
        positions.push_back(run.position());
    }
    return positions;
}

TEST(OutRunTest, WritesTheSameBytesAtTheSamePlacesAsTheStream) {
    for (int round = 0; round < rounds(400); ++round) {
        SCOPED_TRACE(round);
        const auto seed = static_cast<unsigned>(round);
        Bytes expected;
        Plain plain(expected);
        const std::vector<int> positions = putPieces(expected, plain, seed);
        {
            Bytes sink;
            OutRun run(sink);
            EXPECT_EQ(putPieces(sink, run, seed), positions);
            EXPECT_EQ(sink.text, expected.text) << "each piece comes at once";
        }
        std::ostringstream text;
        FileOutStream sink(&text);
        {
            const OutStreamAccess::Counting counting(sink);
            OutRun run(sink);
            EXPECT_EQ(putPieces(sink, run, seed), positions);
        }
        EXPECT_EQ(text.str(), expected.text);
        sink.put("x\ny");
        expected.put("x\ny");
        EXPECT_EQ(text.str(), expected.text) << "the stream goes on as it stands";
    }
}

// A sink that takes runs, and is indented further with each of them.
class Deepening : public OutStream {
public:
    void putChar(char c) override { text += c; }
    int getPosition() const override { return static_cast<int>(text.size()); }
    void setPosition(int) override {}

    std::string text;

protected:
    std::int64_t countFrom() const override { return getPosition(); }
    bool putChars(const char* bytes, std::size_t count) override {
        text.append(bytes, count);
        wrote(count);
        for (int i = 0; i < 5000; ++i) incTab();
        return true;
    }
};

TEST(OutRunTest, HasRoomForTheTabsThatASinkAddsWhileItTakesARun) {
    for (std::size_t length = 4070; length < 4100; ++length) {
        Deepening sink;
        const std::string line(length, 'x');
        {
            const OutStreamAccess::Counting counting(sink);
            OutRun run(sink);
            run.put(line);
            run.putLineFeed();
            run.put("<", "name", ">");
            run.flush();
        }
        sink.text.erase(std::remove(sink.text.begin(), sink.text.end(), '\t'), sink.text.end());
        EXPECT_EQ(sink.text, line + "\n<name>");
    }
}

TEST(OutRunTest, GivesASinkThatFailsNothingMore) {
    std::ostringstream text;
    FileOutStream sink(&text);
    const OutStreamAccess::Counting counting(sink);
    OutRun run(sink);
    run.put("before");
    run.flush();
    run.put("lost");
    text.setstate(std::ios_base::badbit);
    run.flush();
    EXPECT_EQ(run.position(), -1);
    run.put("lost too");
    text.clear();
    run.put(" after");
    EXPECT_EQ(text.str(), "before after");
}

}  // namespace
}  // namespace Xml::test
