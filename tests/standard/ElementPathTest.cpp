#include "xml/dom/Document.h"
#include "xml/standard.h"
#include "xml/standard/internal/ElementPath.h"
#include <cstddef>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

std::string pathOfSteps(std::size_t count) {
    ElementPath path(count);
    for (std::size_t i = 0; i < count; ++i) path.add("s" + std::to_string(i), i % 3);
    return path.text();
}

std::string depths(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

TEST(ElementPathTest, CountsWhatWasCounted) {
    EXPECT_EQ(pathOfSteps(0), "");
    EXPECT_EQ(pathOfSteps(4), "/s0/s1[1]/s2[2]/s3");
}

TEST(ElementPathTest, ShowsBothEndsOfALongOne) {
    const std::string first = "/s0/s1[1]/s2[2]/s3/s4[1]/s5[2]/s6/s7[1]/s8[2]/s9/s10[1]/s11[2]/s12/s13[1]/s14[2]/s15";
    EXPECT_EQ(pathOfSteps(32), first +
                                   "/s16[1]/s17[2]/s18/s19[1]/s20[2]/s21/s22[1]/s23[2]/s24/s25[1]/s26[2]/s27/s28[1]"
                                   "/s29[2]/s30/s31[1]");
    EXPECT_EQ(pathOfSteps(33), first +
                                   "/.../s17[2]/s18/s19[1]/s20[2]/s21/s22[1]/s23[2]/s24/s25[1]/s26[2]/s27/s28[1]"
                                   "/s29[2]/s30/s31[1]/s32[2]");
}

TEST(ElementPathTest, ShortensLongNames) {
    ElementPath path(1);
    path.add(std::string(1000, 'x'), 2);
    EXPECT_EQ(path.text(), "/" + std::string(45, 'x') + "..." + std::string(30, 'x') + "[2]");
}

// Whatever makes a problem: a message about a document of a million levels is as short as any other.
TEST(ElementPathTest, HoldsForProblems) {
    const std::string text = depths("<a>", 1000) + "</b>";
    const std::string counted = depths("/a[1]", 16) + "/..." + depths("/a[1]", 16);
    const std::string named = depths("/a", 16) + "/..." + depths("/a", 16);
    EXPECT_EQ(readText(text).problems().at(0).path, counted);
    std::istringstream stream(text);
    StreamReader reader(stream);
    while (reader.next() != StreamReader::Event::Failed) {}
    EXPECT_EQ(reader.problems().at(0).path, named);
    EXPECT_EQ(readText("<a>" + depths("x", 2000) + "<" + depths("y", 2000) + " z/></a>").problems().at(0).path.size(),
              87U);

    std::ostringstream out;
    StreamWriter writer(out);
    for (int i = 0; i < 1000; ++i) writer.start("a");
    writer.comment("--");
    EXPECT_EQ(writer.problems().at(0).path, named);

    ReadResult deep = readText(depths("<a>", 1000) + "<!--c-->" + depths("</a>", 1000));
    ASSERT_TRUE(deep);
    Object* innermost = deep->getRoot();
    while (kindOf(*innermost) == NodeKind::Element) innermost = innermost->toElement()->getChild(0);
    static_cast<Comment*>(innermost)->setText("--");
    EXPECT_EQ(writeText(*deep).problems().at(0).path, counted);
}

}  // namespace
}  // namespace Xml::test
