#include "dom/Settings.h"
#include "dom/Sinks.h"
#include "orvsys/Files.h"
#include "support/NodeTestAccess.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/FileSpecOutStream.h"
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::string record(const Object& node) {
    return std::to_string(NodeTestAccess::writeStart(node)) + "-" + std::to_string(NodeTestAccess::writeEnd(node)) +
           (NodeTestAccess::dirty(node) ? "*" : "");
}

// <r>, <a>one</a>, <b/>, <c>, <d>two</d>, </c>, </r>, a line each.
std::unique_ptr<Element> sampleTree() {
    auto root = std::make_unique<Element>("r");
    root->addElement("a", "one");
    root->addChild(new Element("b"));
    auto* c = new Element("c");
    root->addChild(c);
    c->addElement("d", "two");
    return root;
}
const char* const kSampleText = "<r>\n\t<a>one</a>\n\t<b/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n</r>";
const int kSampleLength = 50;

TEST(RewriteTest, TheSwitchIsOffAtFirstAndSettingItReturnsWhatWasSet) {
    EXPECT_FALSE(Object::useRWOptimization);
    EXPECT_FALSE(Object::setRWOptimization(true));
    EXPECT_TRUE(Object::useRWOptimization);
    EXPECT_TRUE(Object::setRWOptimization(true));
    EXPECT_TRUE(Object::setRWOptimization(false));
    EXPECT_FALSE(Object::setRWOptimization(false));
    EXPECT_FALSE(Object::useRWOptimization);
}

TEST(RewriteTest, AnUnchangedTreeIsPassedOverByOneMoveOfThePosition) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    BareOutStream out;
    root->toStream(out);
    EXPECT_EQ(out.bytes, kSampleText);
    EXPECT_EQ(out.putCount, kSampleLength);
    EXPECT_TRUE(out.movedTo.empty());

    out.setPosition(0);
    out.reset();
    root->toStream(out);
    EXPECT_EQ(out.putCount, 0);
    EXPECT_EQ(out.movedTo, std::vector<int>{kSampleLength});
    EXPECT_EQ(out.getPosition(), kSampleLength);
    EXPECT_EQ(out.bytes, kSampleText);
}

TEST(RewriteTest, RecordsWhereEachNodeBeginsBeforeItsTabsAndWhereItEnds) {
    for (bool use : {false, true}) {
        SCOPED_TRACE(use);
        RewriteSetting rewrite(use);
        auto root = sampleTree();
        BareOutStream out;
        root->toStream(out);
        EXPECT_EQ(record(*root), "0-50");
        EXPECT_EQ(record(*root->getElement("a")), "4-15");
        EXPECT_EQ(record(*root->getElement("a")->getChild(0)), "8-11");
        EXPECT_EQ(record(*root->getElement("b")), "16-21");
        EXPECT_EQ(record(*root->getElement("c")), "22-45");
        EXPECT_EQ(record(*root->findElement("d")), "27-39");
        EXPECT_EQ(record(*root->findElement("d")->getChild(0)), "32-35");
    }
}

TEST(RewriteTest, WithTheSwitchOffEverythingIsWrittenAgainAndRecordedAnew) {
    RewriteSetting rewrite(false);
    auto root = sampleTree();
    BareOutStream out;
    root->toStream(out);
    out.setPosition(0);
    out.reset();
    root->toStream(out);
    EXPECT_EQ(out.putCount, kSampleLength);
    EXPECT_TRUE(out.movedTo.empty());
    root->toStream(out);
    EXPECT_EQ(record(*root), "50-100");
    EXPECT_EQ(record(*root->getElement("b")), "66-71");
}

struct EditCase {
    const char* name;
    void (*edit)(Element& root);
    int written;               // bytes put by the second write
    std::vector<int> movedTo;  // where it moved to
    const char* text;          // what the sink holds then
};

TEST(RewriteTest, TheChangedPathIsWrittenAgainAndUnchangedSubtreesAreSkippedWhereTheyStandAtTheirPlace) {
    const EditCase kCases[] = {
        {"text of the same length",
         [](Element& root) { root.findAndSetElementCharData("d", "TWO"); },
         4 + 1 + 1 + 23 + 1 + 4,
         {15, 21},
         "<r>\n\t<a>one</a>\n\t<b/>\n\t<c>\n\t\t<d>TWO</d>\n\t</c>\n</r>"},
        {"an earlier text of the same length",
         [](Element& root) { root.setElementCharData("a", "ONE"); },
         4 + 11 + 1 + 1 + 1 + 4,
         {21, 45},
         "<r>\n\t<a>ONE</a>\n\t<b/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n</r>"},
        {"a longer text moves what is after it",
         [](Element& root) { root.setElementCharData("a", "longer"); },
         kSampleLength + 3,
         {},
         "<r>\n\t<a>longer</a>\n\t<b/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n</r>"},
        {"a node at the end",
         [](Element& root) { root.addChild(new Element("e")); },
         4 + 1 + 1 + 1 + 5 + 1 + 4,
         {15, 21, 45},
         "<r>\n\t<a>one</a>\n\t<b/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n\t<e/>\n</r>"},
        {"only the root is touched", [](Element& root) { root.touch(); }, 4 + 1 + 1 + 1 + 4, {15, 21, 45}, kSampleText},
        {"a shorter name of the root moves all",
         [](Element& root) { root.setName("rr"); },
         kSampleLength + 2,
         {},
         "<rr>\n\t<a>one</a>\n\t<b/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n</rr>"},
        {"an attribute more",
         [](Element& root) { root.getElement("b")->setAttribute("x", "1"); },
         4 + 1 + 11 + 1 + 23 + 1 + 4,
         {15},
         "<r>\n\t<a>one</a>\n\t<b x=\"1\"/>\n\t<c>\n\t\t<d>two</d>\n\t</c>\n</r>"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        RewriteSetting rewrite(true);
        auto root = sampleTree();
        BareOutStream out;
        root->toStream(out);
        c.edit(*root);
        out.setPosition(0);
        out.reset();
        root->toStream(out);
        EXPECT_EQ(out.putCount, c.written);
        EXPECT_EQ(out.movedTo, c.movedTo);
        EXPECT_EQ(out.bytes, c.text);
        EXPECT_EQ(textOf(Element(*root)), c.text);
    }
}

TEST(RewriteTest, ValuesChangedWithoutMarksAreNotNoticed) {
    RewriteSetting rewrite(true);
    Element root("r");
    root.setAttribute("x", "1");
    root.addChild(new CharData(DataHolder("text")));
    BareOutStream out;
    root.toStream(out);
    root.getAttribute("x")->setValue("2");
    root.getChild(0)->toCharData()->data() = "TEXT";
    out.setPosition(0);
    root.toStream(out);
    EXPECT_EQ(out.bytes, "<r x=\"1\">text</r>");

    // Once the element is marked its attributes are written, for they are never taken for written; the text is not.
    root.touch();
    out.setPosition(0);
    root.toStream(out);
    EXPECT_EQ(out.bytes, "<r x=\"2\">text</r>");
}

TEST(RewriteTest, ACleanTreeAtAnotherPositionIsWritten) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    BareOutStream out;
    root->toStream(out);
    out.reset();
    root->toStream(out);
    EXPECT_EQ(out.putCount, kSampleLength);
    EXPECT_TRUE(out.movedTo.empty());
    EXPECT_EQ(out.bytes, std::string(kSampleText) + kSampleText);
    EXPECT_EQ(record(*root), "50-100");
}

TEST(RewriteTest, TheRecordHoldsAPositionAndNotASink) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    BareOutStream first;
    root->toStream(first);
    BareOutStream second;
    root->toStream(second);
    EXPECT_EQ(second.bytes, "");
    EXPECT_EQ(second.movedTo, std::vector<int>{kSampleLength});

    // A subtree that stands on its own at the place of its record is passed over as well.
    BareOutStream third;
    third.setPosition(22);
    third.reset();
    root->getElement("c")->toStream(third);
    EXPECT_EQ(third.putCount, 0);
    EXPECT_EQ(third.movedTo, std::vector<int>{45});
}

TEST(RewriteTest, AWriteThatIsNotByToStreamNeitherSkipsNorRecordsTheNodeItself) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    BareOutStream out;
    root->write(out);
    EXPECT_EQ(record(*root), "-1--1*");
    EXPECT_EQ(record(*root->getElement("a")), "4-15");
    EXPECT_EQ(record(*root->findElement("d")), "27-39");
    out.setPosition(0);
    out.reset();
    root->write(out);
    EXPECT_EQ(out.movedTo, (std::vector<int>{15, 21, 45}));
}

TEST(RewriteTest, AnAttributeWrittenByItselfIsPassedOverLikeAnyNode) {
    RewriteSetting rewrite(true);
    const Attribute attribute("x", "1");
    BareOutStream out;
    attribute.toStream(out);
    EXPECT_EQ(record(attribute), "0-5");
    out.setPosition(0);
    out.reset();
    attribute.toStream(out);
    EXPECT_EQ(out.putCount, 0);
    EXPECT_EQ(out.movedTo, std::vector<int>{5});
}

TEST(RewriteTest, AnElementWithACleanAttributeWritesIt) {
    RewriteSetting rewrite(true);
    Element root("r");
    root.setAttribute("x", "1");
    BareOutStream attributeOut;
    attributeOut.setPosition(3);
    root.getAttribute("x")->toStream(attributeOut);
    ASSERT_EQ(record(*root.getAttribute("x")), "3-8");
    BareOutStream out;
    root.toStream(out);
    EXPECT_EQ(out.bytes, "<r x=\"1\"/>");
    EXPECT_EQ(record(*root.getAttribute("x")), "3-8");
}

TEST(RewriteTest, ASinkWithoutPositionsRecordsMinusOneAndThenCountsAsTheSamePlace) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    PositionlessOutStream out;
    root->toStream(out);
    EXPECT_EQ(out.bytes, kSampleText);
    EXPECT_TRUE(out.movedTo.empty());
    EXPECT_EQ(record(*root), "-1--1");
    EXPECT_EQ(record(*root->findElement("d")), "-1--1");

    root->toStream(out);
    EXPECT_EQ(out.bytes, kSampleText);
    EXPECT_EQ(out.movedTo, std::vector<int>{-1});

    root->findElement("d")->touch();
    root->toStream(out);
    EXPECT_EQ(out.bytes, std::string(kSampleText) + "<r>\n\n\n\t<c>\n\t\t<d></d>\n\t</c>\n</r>");
    EXPECT_EQ(out.movedTo, (std::vector<int>{-1, -1, -1, -1}));

    RewriteSetting off(false);
    out.bytes.clear();
    root->toStream(out);
    EXPECT_EQ(out.bytes, kSampleText);
}

TEST(RewriteTest, TheStandardStreamWithoutPositionsIsTreatedAlike) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    OddBuffer buffer;
    buffer.hasPositions = false;
    std::ostream stream(&buffer);
    FileOutStream out(&stream);
    root->toStream(out);
    EXPECT_EQ(buffer.bytes, kSampleText);
    EXPECT_EQ(record(*root), "-1--1");
    EXPECT_EQ(record(*root->findElement("d")), "-1--1");
}

TEST(RewriteTest, AStandardStreamThatStoresMoreThanItIsGivenGivesItsOwnPositions) {
    RewriteSetting rewrite(true);
    auto root = sampleTree();
    OddBuffer buffer;
    buffer.expandsLines = true;
    std::ostream stream(&buffer);
    FileOutStream out(&stream);
    root->toStream(out);
    EXPECT_EQ(record(*root), "0-56");
    EXPECT_EQ(record(*root->getElement("a")), "5-16");
    EXPECT_EQ(record(*root->findElement("d")), "31-43");
    const std::string once = buffer.bytes;

    root->findAndSetElementCharData("d", "TWO");
    out.setPosition(0);
    root->toStream(out);
    EXPECT_EQ(buffer.bytes.size(), once.size());
    EXPECT_NE(buffer.bytes.find("<d>TWO</d>"), std::string::npos);
}

TEST(RewriteTest, AStreamThatFailsInTheMiddleLeavesMinusOneFromThereOn) {
    for (bool exceptions : {false, true}) {
        for (int limit = 0; limit <= kSampleLength; ++limit) {
            SCOPED_TRACE(limit);
            auto root = sampleTree();
            OddBuffer buffer;
            buffer.limit = static_cast<std::size_t>(limit);
            std::ostream stream(&buffer);
            if (exceptions) stream.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
            FileOutStream out(&stream);
            EXPECT_NO_THROW(root->toStream(out));
            EXPECT_EQ(buffer.bytes, std::string(kSampleText).substr(0, static_cast<std::size_t>(limit)));

            auto expected = [limit](int start, int end) {
                return std::to_string(start <= limit ? start : -1) + "-" + std::to_string(end <= limit ? end : -1);
            };
            EXPECT_EQ(record(*root), expected(0, 50));
            EXPECT_EQ(record(*root->getElement("a")), expected(4, 15));
            EXPECT_EQ(record(*root->getElement("a")->getChild(0)), expected(8, 11));
            EXPECT_EQ(record(*root->getElement("b")), expected(16, 21));
            EXPECT_EQ(record(*root->getElement("c")), expected(22, 45));
            EXPECT_EQ(record(*root->findElement("d")), expected(27, 39));
            EXPECT_EQ(record(*root->findElement("d")->getChild(0)), expected(32, 35));
        }
    }
}

TEST(RewriteTest, APlatformFileThatCouldNotBeOpenedGivesMinusOne) {
    auto root = sampleTree();
    FileSpecOutStream out{OrvSys::FileSpec("/nowhere/at/all")};
    ASSERT_FALSE(out.isValid());
    root->toStream(out);
    EXPECT_EQ(record(*root), "-1--1");
    EXPECT_EQ(record(*root->getElement("b")), "-1--1");
}

// A node of a caller that does something to the sink while it is written.
class Meddler : public Object {
public:
    explicit Meddler(std::function<void(OutStream&)> whenWritten) : meddle(std::move(whenWritten)) {}

    Object* clone() const override { return new Meddler(meddle); }
    const std::string& toString() const override { return name; }
    void write(OutStream& out) const override { meddle(out); }

private:
    std::function<void(OutStream&)> meddle;
    std::string name = "meddler";
};

TEST(RewriteTest, PositionsAreTheSinksOwnWhateverHappensToItWhileTheTreeIsWritten) {
    std::ostringstream stream;
    struct Case {
        const char* name;
        std::function<void(OutStream&)> meddle;
        const char* records;  // of the meddler, of the element after it, of the root
    } const kCases[] = {
        {"nothing", [](OutStream&) {}, "4-4 5-10 0-15"},
        {"writes by the sink", [](OutStream& out) { out << std::string("12345"); }, "4-10 11-16 0-21"},
        {"writes raw bytes", [](OutStream& out) { out.putChar('1'); }, "4-5 6-11 0-16"},
        {"writes raw data", [](OutStream& out) { out.writeDataHolder("1\n2"); }, "4-7 8-13 0-18"},
        {"moves the sink", [](OutStream& out) { out.setPosition(1); }, "4-1 2-7 0-12"},
        {"writes past the sink", [&stream](OutStream&) { stream << "123"; }, "4-7 8-13 0-18"},
        {"moves past the sink", [&stream](OutStream&) { stream.seekp(0); }, "4-0 1-6 0-11"},
        {"makes the stream fail", [&stream](OutStream&) { stream.setstate(std::ios::failbit); }, "4--1 -1--1 0--1"},
        {"makes the stream fail and recover",
         [&stream](OutStream& out) {
             stream.setstate(std::ios::failbit);
             out << std::string("lost");
             stream.clear();
         },
         "4-4 5-10 0-15"},
        {"writes another tree",
         [](OutStream& out) {
             const Element other("other", "x");
             other.toStream(out);
         },
         "4-21 22-27 0-32"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        stream.clear();
        stream.str("");
        Element root("r");
        auto* meddler = new Meddler(c.meddle);
        root.addChild(meddler);
        root.addChild(new Element("b"));
        FileOutStream out(&stream);
        root.toStream(out);
        EXPECT_EQ(record(*meddler) + " " + record(*root.getElement("b")) + " " + record(root), c.records);
    }
}

// A class of a caller over a sink of the library: its own operations count.
class EveryOther : public FileOutStream {
public:
    using FileOutStream::FileOutStream;

    int puts = 0;

    void putChar(char c) override {
        ++puts;
        FileOutStream::putChar(c);
    }
    int getPosition() const override { return puts * 2; }
};

TEST(RewriteTest, AClassDerivedFromALibrarySinkGetsItsOwnPutCharAndGetPosition) {
    auto root = sampleTree();
    std::ostringstream stream;
    EveryOther out(&stream);
    root->toStream(out);
    EXPECT_EQ(stream.str(), kSampleText);
    EXPECT_EQ(out.puts, kSampleLength);
    EXPECT_EQ(record(*root), "0-100");
    EXPECT_EQ(record(*root->getElement("a")), "8-30");
    EXPECT_EQ(record(*root->findElement("d")), "54-78");
}

TEST(RewriteTest, AStreamThatWasWrittenBeforeCountsFromWhereItStands) {
    std::ostringstream stream;
    stream << "before";
    FileOutStream out(&stream);
    Element root("r");
    root.toStream(out);
    EXPECT_EQ(record(root), "6-10");
    stream << "between";
    root.toStream(out);
    EXPECT_EQ(record(root), "17-21");
    EXPECT_EQ(stream.str(), "before<r/>between<r/>");
}

// Writes each line end as two bytes, as a file does on other systems.
class TwoByteLineEnds : public std::codecvt<char, char, std::mbstate_t> {
protected:
    bool do_always_noconv() const noexcept override { return false; }
    int do_encoding() const noexcept override { return 0; }
    int do_max_length() const noexcept override { return 2; }
    result do_out(std::mbstate_t&, const char* from, const char* end, const char*& fromNext, char* to, char* toEnd,
                  char*& toNext) const override {
        for (; from != end; ++from) {
            if (toEnd - to < 2) break;
            if (*from == '\n') *to++ = '\r';
            *to++ = *from;
        }
        fromNext = from;
        toNext = to;
        return from == end ? ok : partial;
    }
};

TEST(RewriteTest, AFileWhoseLocaleConvertsIsPassedOverToWhereItsStreamStood) {
    const RewriteSetting rewriting(true);
    const ScratchFile scratch("converted", "");
    std::ofstream file;
    file.imbue(std::locale(std::locale::classic(), new TwoByteLineEnds));
    FileOutStream out(scratch.path, &file);
    const auto root = sampleTree();
    root->toStream(out);
    const int end = out.getPosition();
    out.setPosition(0);
    root->toStream(out);
    EXPECT_EQ(out.getPosition(), end);
    file.close();
    EXPECT_EQ(static_cast<int>(readFile(scratch.path).size()), end);
}

TEST(RewriteTest, APlaceThatAnIntCannotHoldIsNotRecorded) {
    const RewriteSetting rewriting(true);
    const ScratchFile scratch("far", "");
    const struct {
        const char* name;
        std::int64_t place;
        const char* record;
        bool isPassedOver;
    } kCases[] = {
        {"ends at the last place", 2'147'483'643, "2147483643-2147483647", true},
        {"ends one after it", 2'147'483'644, "2147483644--2147483648", false},
        {"begins at it", 2'147'483'647, "2147483647--2147483648", false},
        {"begins after it", 2'147'483'648, "-2147483648--2147483648", false},
        {"begins far after it", 5'000'000'000, "-2147483648--2147483648", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::ofstream file;
        FileOutStream out(scratch.path, &file);
        const Element root("r");
        for (int times = 0; times < 2; ++times) {
            file.seekp(c.place);
            root.toStream(out);
            EXPECT_EQ(file.tellp(), c.place + 4);
            EXPECT_EQ(record(root), c.record);
        }
        // What comes over it meanwhile stays only where the element is passed over.
        file.seekp(c.place);
        file << "????";
        file.seekp(c.place);
        root.toStream(out);
        file.close();
        std::ifstream written(scratch.path, std::ios::binary);
        written.seekg(c.place);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), c.isPassedOver ? "????" : "<r/>");
    }
}

// --- Where a rewritten file does not read as a fresh one ---
//
// A writer passes over what has no mark of change and stands where it was written last; these are the ways in which
// that place holds something else by then.

// What stands in one open stream after a write, a change and a second write from its start, up to where that ended.
std::string rewritten(Element& root, const std::function<void(const std::function<void()>& write)>& change) {
    const RewriteSetting rewriting(true);
    std::stringstream stream;
    FileOutStream out(&stream);
    const auto write = [&] {
        out.setPosition(0);
        root.toStream(out);
    };
    write();
    change(write);
    write();
    return stream.str().substr(0, static_cast<std::size_t>(out.getPosition()));
}

std::unique_ptr<Element> tree(const std::string& text) {
    return std::unique_ptr<Element>(readDocument(text).document->extractRoot());
}

TEST(RewriteTest, ANodePutBackWhereItWasWrittenIsTakenForWritten) {
    auto root = tree("<r><a/><b/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>& write) {
        Object* a = root->extractChild(0);
        write();  // now b stands at the place of a
        root->insertChild(root->getChild(0), a);
    });
    EXPECT_EQ(text, "<r>\n\t<b/>\n\t<b/>\n</r>");
    EXPECT_EQ(textOf(Element(*root)), "<r>\n\t<a/>\n\t<b/>\n</r>");
}

TEST(RewriteTest, ANodePutBackAsACopyIsWritten) {
    auto root = tree("<r><a/><b/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>& write) {
        const std::unique_ptr<Object> a(root->extractChild(0));
        write();
        root->insertChild(root->getChild(0), a->clone());
    });
    EXPECT_EQ(text, "<r>\n\t<a/>\n\t<b/>\n</r>");
}

TEST(RewriteTest, AnElementKeepsItsTabsWhereItComesToStandBesideText) {
    // The name is longer by what the line end was: the child's place stays, and so does what stands there.
    auto root = tree("<r><a/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>&) {
        root->addChild(new CharData(DataHolder("t")));
        root->setName("rr");
    });
    EXPECT_EQ(text, "<rr>\t<a/>t</rr>");
    EXPECT_EQ(textOf(Element(*root)), "<rr><a/>t</rr>");
}

TEST(RewriteTest, AnElementStaysWithoutTabsWhereTheTextBesideItGoes) {
    auto root = tree("<rr><a/>t</rr>");
    const std::string text = rewritten(*root, [&](const std::function<void()>&) {
        delete root->extractChild(1);
        root->setName("r");
    });
    EXPECT_EQ(text, "<r>\n<a/>\n</r>");
    EXPECT_EQ(textOf(Element(*root)), "<r>\n\t<a/>\n</r>");
}

TEST(RewriteTest, ATextThatShrinksLeavesTheEndOfTheOldOne) {
    const RewriteSetting rewriting(true);
    auto root = tree("<r>a long text</r>");
    std::stringstream stream;
    FileOutStream out(&stream);
    root->toStream(out);
    root->setCharData("short");
    out.setPosition(0);
    root->toStream(out);
    EXPECT_EQ(out.getPosition(), 12);
    EXPECT_EQ(stream.str(), "<r>short</r>xt</r>");
}

TEST(RewriteTest, ASinkOpenedByPathAgainIsEmptyAndStaysSo) {
    const std::string path = scratchPath("rewrite-limits");
    const RewriteSetting rewriting(true);
    auto root = tree("<r><a/></r>");
    const auto writeToStream = [&] {
        std::ofstream file;
        FileOutStream out(path, &file);
        root->toStream(out);
    };
    const auto writeToPlatformFile = [&] {
        FileSpecOutStream out{OrvSys::FileSpec(path)};
        root->toStream(out);
    };
    writeToStream();
    EXPECT_EQ(readFile(path), "<r>\n\t<a/>\n</r>");
    writeToStream();
    EXPECT_EQ(readFile(path), "");
    root->touch();
    writeToStream();
    EXPECT_EQ(readFile(path), std::string("<r>\n") + std::string(5, '\0') + "\n</r>") << "the child is passed over";
    writeToPlatformFile();
    EXPECT_EQ(readFile(path), "");
    std::remove(path.c_str());
}

}  // namespace
}  // namespace Xml::test
