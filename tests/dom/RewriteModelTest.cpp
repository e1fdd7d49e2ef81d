// Rewriting beside the naive writer: random trees, edits, seeks and settings, over every kind of sink.
//
// To add a kind of sink: a class that makes the library's and the naive one, and a row of kSinks.
#include "dom/Settings.h"
#include "dom/Sinks.h"
#include "models/EditingWorld.h"
#include "models/NaiveSink.h"
#include "orvsys/Files.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/FileSpecOutStream.h"
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

// A sink of the library and the naive one of the same kind, in the same state.
class SinkPair {
public:
    virtual ~SinkPair() = default;

    OutStream& real() { return *realSink; }
    NaiveSink& naive() { return *naiveSink; }

    virtual std::string realBytes() = 0;
    virtual std::string naiveBytes() = 0;
    virtual void recover() {}

    // Called in front of every write.
    virtual void begin() {}

protected:
    std::unique_ptr<OutStream> realSink;
    std::unique_ptr<NaiveSink> naiveSink;
};

class StreamPair : public SinkPair {
public:
    StreamPair() {
        realSink = std::make_unique<FileOutStream>(&realStream);
        naiveSink = std::make_unique<NaiveStreamSink>(naiveStream);
    }
    std::string realBytes() override { return realStream.str(); }
    std::string naiveBytes() override { return naiveStream.str(); }
    void recover() override {
        realStream.clear();
        naiveStream.clear();
    }

private:
    std::stringstream realStream;
    std::stringstream naiveStream;
};

// A stream of its own for every write, into which nothing was written before.
class FreshPair : public SinkPair {
public:
    FreshPair() { begin(); }
    std::string realBytes() override { return realWritten + realStream->str(); }
    std::string naiveBytes() override { return naiveWritten + naiveStream->str(); }
    void begin() override {
        if (realStream) realWritten += realStream->str();
        if (naiveStream) naiveWritten += naiveStream->str();
        auto real = std::make_unique<std::ostringstream>();
        auto naive = std::make_unique<std::ostringstream>();
        realSink = std::make_unique<FileOutStream>(real.get());
        naiveSink = std::make_unique<NaiveStreamSink>(*naive);
        realStream = std::move(real);
        naiveStream = std::move(naive);
    }

private:
    std::unique_ptr<std::ostringstream> realStream;
    std::unique_ptr<std::ostringstream> naiveStream;
    std::string realWritten;
    std::string naiveWritten;
};

class OddPair : public SinkPair {
public:
    explicit OddPair(const std::function<void(OddBuffer&)>& set) : realStream(&realBuffer), naiveStream(&naiveBuffer) {
        set(realBuffer);
        set(naiveBuffer);
        realSink = std::make_unique<FileOutStream>(&realStream);
        naiveSink = std::make_unique<NaiveStreamSink>(naiveStream);
    }
    std::string realBytes() override { return realBuffer.bytes; }
    std::string naiveBytes() override { return naiveBuffer.bytes; }
    void recover() override {
        realStream.clear();
        naiveStream.clear();
    }

private:
    OddBuffer realBuffer;
    OddBuffer naiveBuffer;
    std::ostream realStream;
    std::ostream naiveStream;
};

class FilePair : public SinkPair {
public:
    FilePair() : path(scratchPath("rewrite")) {
        realSink = std::make_unique<FileSpecOutStream>(OrvSys::FileSpec(path));
        auto sink = std::make_unique<NaiveFileSink>();
        naiveFile = sink.get();
        naiveSink = std::move(sink);
    }
    ~FilePair() override {
        realSink.reset();
        std::remove(path.c_str());
    }
    // Closes the file: for the end.
    std::string realBytes() override {
        realSink.reset();
        return readFile(path);
    }
    std::string naiveBytes() override { return naiveFile->bytes; }

private:
    std::string path;
    NaiveFileSink* naiveFile;
};

class BarePair : public SinkPair {
public:
    BarePair() {
        auto bare = std::make_unique<BareOutStream>();
        realBare = bare.get();
        realSink = std::move(bare);
        auto sink = std::make_unique<NaiveFileSink>();
        naiveFile = sink.get();
        naiveSink = std::move(sink);
    }
    std::string realBytes() override { return realBare->bytes; }
    std::string naiveBytes() override { return naiveFile->bytes; }

private:
    BareOutStream* realBare;
    NaiveFileSink* naiveFile;
};

struct SinkCase {
    const char* name;
    std::function<std::unique_ptr<SinkPair>()> make;
};

const SinkCase kSinks[] = {
    {"string stream", [] { return std::make_unique<StreamPair>(); }},
    {"a string stream for every write", [] { return std::make_unique<FreshPair>(); }},
    {"platform file", [] { return std::make_unique<FilePair>(); }},
    {"bare sink", [] { return std::make_unique<BarePair>(); }},
    {"failing stream", [] { return std::make_unique<OddPair>([](OddBuffer& buffer) { buffer.limit = 300; }); }},
    {"line expanding stream",
     [] { return std::make_unique<OddPair>([](OddBuffer& buffer) { buffer.expandsLines = true; }); }},
    {"stream without positions",
     [] { return std::make_unique<OddPair>([](OddBuffer& buffer) { buffer.hasPositions = false; }); }},
};

const Object& randomNodeBelow(const Object& node, Dice& dice) {
    if (node.isDocument()) {
        const Element* root = node.toDocument()->getRoot();
        return root != nullptr && dice.chance(40) ? randomNodeBelow(*root, dice) : node;
    }
    if (!node.isElement() || node.toElement()->getChildCount() == 0 || dice.chance(60)) return node;
    return randomNodeBelow(*node.toElement()->getChild(dice.below(node.toElement()->getChildCount())), dice);
}

ModelNode* modelOf(ModelNode& model, const Object& node) {
    if (model.real == &node) return &model;
    for (auto& child : model.children) {
        if (ModelNode* found = modelOf(*child, node)) return found;
    }
    return nullptr;
}

void compareWithNaiveWriter(const SinkCase& sink) {
    const auto kPrograms = static_cast<unsigned>(rounds(60));
    constexpr int kWrites = 40;
    for (unsigned seed = 1; seed <= kPrograms; ++seed) {
        EditingWorld world(seed * 7919);
        Dice& dice = world.dice;
        ASSERT_EQ(world.difference(), "");
        for (int i = 0; i < 40; ++i) ASSERT_EQ(world.edit(), "");
        ASSERT_EQ(world.difference(), "") << "seed " << seed;
        auto pair = sink.make();
        std::size_t favourite = static_cast<std::size_t>(dice.below(static_cast<int>(world.tops.size())));
        for (int i = 0; i < kWrites; ++i) {
            RewriteSetting rewrite(dice.chance(70));
            ShortNotation notation(dice.chance(70));
            for (int edits = dice.chance(40) ? 0 : dice.below(4); edits > 0; --edits) ASSERT_EQ(world.edit(), "");
            ASSERT_EQ(world.difference(), "") << "seed " << seed << ", before write " << i;

            if (favourite >= world.tops.size() || dice.chance(10)) {
                favourite = static_cast<std::size_t>(dice.below(static_cast<int>(world.tops.size())));
            }
            pair->begin();
            if (dice.chance(30)) pair->recover();
            if (dice.chance(60)) {
                pair->real().setPosition(0);
                pair->naive().setPosition(0);
            } else if (dice.chance(30)) {
                const int place = dice.below(400);
                pair->real().setPosition(place);
                pair->naive().setPosition(place);
            }
            if (dice.chance(5)) {
                pair->real().incTab();
                pair->naive().incTab();
            } else if (dice.chance(10)) {
                pair->real().decTab();
                pair->naive().decTab();
            }
            EditingWorld::Top& top = world.tops[favourite];
            const Object& node = dice.chance(75) ? *top.real : randomNodeBelow(*top.real, dice);
            ModelNode* model = modelOf(*top.model, node);
            ASSERT_NE(model, nullptr);
            node.toStream(pair->real());
            model->toStream(pair->naive());
            ASSERT_EQ(pair->real().getPosition(), pair->naive().getPosition()) << "seed " << seed << ", write " << i;
            ASSERT_EQ(world.difference(), "") << "seed " << seed << ", after write " << i;
        }
        ASSERT_EQ(pair->realBytes(), pair->naiveBytes()) << "seed " << seed;
    }
}

TEST(RewriteModelTest, BytesPositionsAndMarksAreThoseOfTheNaiveWriterOverRandomTreesEditsAndSeeks) {
    for (const SinkCase& sink : kSinks) {
        SCOPED_TRACE(sink.name);
        compareWithNaiveWriter(sink);
    }
}

}  // namespace
}  // namespace Xml::test
