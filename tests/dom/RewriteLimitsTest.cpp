// Where a rewritten file does not read as a fresh one. A writer passes over what has no mark of change and stands where
// it was written last; these are the ways in which that place holds something else by then.
#include "dom/Settings.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/FileSpecOutStream.h"
#include <cstdio>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

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

TEST(RewriteLimitsTest, ANodePutBackWhereItWasWrittenIsTakenForWritten) {
    auto root = tree("<r><a/><b/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>& write) {
        Object* a = root->extractChild(0);
        write();  // now b stands at the place of a
        root->insertChild(root->getChild(0), a);
    });
    EXPECT_EQ(text, "<r>\n\t<b/>\n\t<b/>\n</r>");
    EXPECT_EQ(textOf(Element(*root)), "<r>\n\t<a/>\n\t<b/>\n</r>");
}

TEST(RewriteLimitsTest, ANodePutBackAsACopyIsWritten) {
    auto root = tree("<r><a/><b/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>& write) {
        const std::unique_ptr<Object> a(root->extractChild(0));
        write();
        root->insertChild(root->getChild(0), a->clone());
    });
    EXPECT_EQ(text, "<r>\n\t<a/>\n\t<b/>\n</r>");
}

TEST(RewriteLimitsTest, AnElementKeepsItsTabsWhereItComesToStandBesideText) {
    // The name is longer by what the line end was: the child's place stays, and so does what stands there.
    auto root = tree("<r><a/></r>");
    const std::string text = rewritten(*root, [&](const std::function<void()>&) {
        root->addChild(new CharData(DataHolder("t")));
        root->setName("rr");
    });
    EXPECT_EQ(text, "<rr>\t<a/>t</rr>");
    EXPECT_EQ(textOf(Element(*root)), "<rr><a/>t</rr>");
}

TEST(RewriteLimitsTest, AnElementStaysWithoutTabsWhereTheTextBesideItGoes) {
    auto root = tree("<rr><a/>t</rr>");
    const std::string text = rewritten(*root, [&](const std::function<void()>&) {
        delete root->extractChild(1);
        root->setName("r");
    });
    EXPECT_EQ(text, "<r>\n<a/>\n</r>");
    EXPECT_EQ(textOf(Element(*root)), "<r>\n\t<a/>\n</r>");
}

TEST(RewriteLimitsTest, ATextThatShrinksLeavesTheEndOfTheOldOne) {
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

TEST(RewriteLimitsTest, ASinkOpenedByPathAgainIsEmptyAndStaysSo) {
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
