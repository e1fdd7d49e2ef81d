// Trees that were made to break what walks, changes and compares them in short ways.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/easy.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {900 * kMiB};

std::unique_ptr<Document> read(const std::string& text) {
    ReadResult result = readText(text, everything());
    EXPECT_TRUE(result) << result.message().substr(0, 200);
    return result.take();
}

// Levels in each other, each with an attribute and a text beside the inner one.
std::unique_ptr<Document> deep(int levels = kMillion, const std::string& innermost = "<z/>") {
    return read(repeated("<a k='1'>t", levels) + innermost + repeated("</a>", levels));
}

std::unique_ptr<Document> wide(int children = kMillion) {
    return read("<r>" + pieces(children, [](int i) { return "<a k='" + std::to_string(i * 7 % 1000) + "'/>"; }) +
                "</r>");
}

TEST(HostileEasyTest, AMillionLevels) {
    expectToHold({
        {"walked",
         [] {
             const auto document = deep();
             EXPECT_EQ(descendants(*document->getRoot(), "a").size(), static_cast<std::size_t>(kMillion - 1));
             int levels = 0;
             Element* at = document->getRoot();
             for (; at != nullptr; at = elements(*at).first()) ++levels;
             EXPECT_EQ(levels, kMillion + 1);
             for (at = &descendants(*document->getRoot(), "z")[0]; at != nullptr; at = parentOf(*at)) --levels;
             EXPECT_EQ(levels, 0);
         },
         kLarge},
        {"texts",
         [] {
             const auto document = deep();
             EXPECT_EQ(Xml::textOf(*document).size(), static_cast<std::size_t>(kMillion));
             setText(*document->getRoot(), "x");
             EXPECT_EQ(Xml::textOf(*document), "x");
         },
         kLarge},
        {"compared",
         [] {
             const auto document = deep();
             const auto other = deep(kMillion, "<y/>");
             EXPECT_TRUE(sameTree(*document, *document));
             EXPECT_FALSE(sameTree(*document, *other));
             const std::string difference = firstDifference(*document, *other);
             const std::string end = "/a[1]/a[1]: element z and element y";
             EXPECT_EQ(difference.size(), static_cast<std::size_t>(kMillion - 2) * 5 + end.size());
             EXPECT_EQ(difference.substr(difference.size() - end.size()), end);
         },
         kLarge},
        {"copied, moved and destroyed",
         [] {
             const auto document = deep();
             auto copy = copyOf(*document->getRoot());
             EXPECT_TRUE(sameTree(*copy, *document->getRoot()));
             Element& inner = *asElement(*document->getRoot()->getChild(1));
             auto taken = detach(inner);
             EXPECT_EQ(document->getRoot()->getChildCount(), 1);
             append(*document->getRoot(), std::move(taken));
             EXPECT_TRUE(sameTree(*copy, *document->getRoot()));
             const auto old = replace(*document->getRoot(), std::move(copy));
             EXPECT_TRUE(sameTree(*old, *document->getRoot()));
         },
         kLarge},
        {"sorted",
         [] {
             const auto document = deep();
             const auto byName = [](const Object& one, const Object& other) { return nameOf(one) < nameOf(other); };
             for (Element& element : descendants(*document->getRoot())) sortChildren(element, byName);
             EXPECT_TRUE(sameTree(*document, *deep()));
         },
         kLarge},
        {"namespace of the innermost",
         [] {
             const auto document =
                 read("<a xmlns='u'>" + repeated("<a>", kMillion) + repeated("</a>", kMillion) + "</a>");
             const Range<Element> all = descendants(*document->getRoot());
             EXPECT_EQ(namespaceOf(all[all.size() - 1]), "u");
         },
         kLarge},
    });
}

TEST(HostileEasyTest, AMillionChildren) {
    expectToHold({
        {"walked from one to the next and back",
         [] {
             const auto document = wide();
             int count = 0;
             Object* last = nullptr;
             for (Object* at = children(*document->getRoot()).first(); at != nullptr; at = nextOf(*at)) {
                 if (indexOf(*at) != count++) break;
                 last = at;
             }
             EXPECT_EQ(count, kMillion);
             for (Object* at = last; at != nullptr; at = previousOf(*at)) --count;
             EXPECT_EQ(count, 0);
         },
         kLarge},
        {"walked level by level",
         [] {
             // Down and up again by steps from child to child, in rows that are wide at every level.
             const int count = kMillion / 100;
             const auto document =
                 read("<r>" + repeated("<a>" + repeated("<b><c/><c/></b>", 10) + "</a>", count) + "</r>");
             int nodes = 0;
             for (const Object* at = document->getRoot(); at != nullptr;) {
                 ++nodes;
                 const Element* const element = asElement(*at);
                 const Object* next = element != nullptr ? children(*element).first() : nullptr;
                 for (; next == nullptr && at != nullptr; at = parentOf(*at)) next = nextOf(*at);
                 at = next;
             }
             EXPECT_EQ(nodes, 1 + count * 31);
         },
         kLarge},
        {"sorted",
         [] {
             const auto document = wide();
             sortChildren(*document->getRoot(), [](const Object& one, const Object& other) {
                 return value<int>(*asElement(one), "k") < value<int>(*asElement(other), "k");
             });
             int last = -1;
             bool isSorted = true;
             for (const Element& element : elements(*document->getRoot())) {
                 isSorted = isSorted && last <= valueOr(element, "k", -2);
                 last = valueOr(element, "k", -2);
             }
             EXPECT_TRUE(isSorted);
         },
         kLarge},
        {"appended and taken from the end",
         [] {
             Element root("r");
             for (int i = 0; i < kMillion; ++i) append(root, "a");
             const Range<Object> all = children(root);
             for (std::size_t i = all.size(); i-- > 0;) detach(all[i]);
             EXPECT_EQ(root.getChildCount(), 0);
         },
         kLarge},
        {"texts side by side",
         [] {
             Element one("r"), other("r");
             for (int i = 0; i < kMillion; ++i) append(one, std::make_unique<CharData>("x"));
             setText(other, std::string(static_cast<std::size_t>(kMillion), 'x'));
             EXPECT_TRUE(sameTree(one, other));
         },
         kLarge},
        {"attributes",
         [] {
             Element root("r");
             for (int i = kMillion / 20; i-- > 0;) setValue(root, "k" + std::to_string(i), i);
             int expected = kMillion / 20;
             for (const Attribute& attribute : attributes(root))
                 EXPECT_EQ(valueOr(root, attribute.getName(), 0), --expected);
             EXPECT_EQ(expected, 0);
         },
         kLarge},
    });
}

TEST(HostileEasyTest, Paths) {
    const auto problemOf = [](const std::string& path) {
        const auto found = ask(*read("<r><a/></r>"), path);
        return found.problem() ? std::to_string(found.problem()->place.offset) + ": " + found.problem()->text : "";
    };
    const std::string missing = "The closing bracket of a predicate is missing";
    const std::string unclosed = "The closing quote of a literal is missing";
    const std::string tooDeep = "The expression is nested too deeply";
    expectOutcomes({
        {"predicates in each other", [&] { return problemOf("//a" + repeated("[a", 1000) + repeated("]", 1000)); }, ""},
        {"too many of them", [&] { return problemOf("//a" + repeated("[a", kBrackets) + repeated("]", kBrackets)); },
         "0: " + tooDeep},
        {"brackets without an end", [&] { return problemOf("//a" + repeated("[", kMillion)); }, "3: " + missing},
        {"steps", [&] { return problemOf(repeated("/a", kMillion)); }, "", kLarge},
        {"operands", [&] { return problemOf("1" + repeated("=1", kMillion)); }, "", kLarge},
        {"quotes", [&] { return problemOf(repeated("''", kMillion) + "'"); }, "0: " + unclosed, kLarge},
        {"a literal of quotes", [&] { return problemOf(repeated("''", kMillion)); }, "", kLarge},
        {"a name", [&] { return problemOf("//" + repeated("\xC3\xB6", kMillion)); }, "", kLarge},
        {"characters that are in no name", [&] { return problemOf(repeated("\xC3\x97", kMillion)); },
         "0: This character belongs to no name, and stands in no literal", kLarge},
        {"wrong at the end", [&] { return problemOf(repeated("/a[b = 'c']", kMillion / 10) + "/7"); },
         std::to_string(kMillion / 10 * 11 + 1) + ": This is neither a step nor a literal nor a number", kLarge},
    });
    expectToHold({
        {"a million levels",
         [] {
             const auto document = deep();
             EXPECT_EQ(ask(*document, "//a[@k = 1]").size(), static_cast<std::size_t>(kMillion));
             const auto part = detach(*document->getRoot());
             EXPECT_EQ(ask(*part, "//z").size(), 1u);
             EXPECT_EQ(ask(*ask(*part, "//z").first(), "ancestor::a").size(), static_cast<std::size_t>(kMillion));
         },
         kLarge},
        {"a million children",
         [] {
             const auto document = wide();
             EXPECT_EQ(ask(*document, "/r/a[@k = 7]").size(), static_cast<std::size_t>(kMillion / 1000));
         },
         kLarge},
    });
}

TEST(HostileEasyTest, LongValues) {
    expectToHold({
        {"digits",
         [] {
             Element element("e");
             setValue(element, "v", repeated("9", kLongName));
             EXPECT_EQ(value<int>(element, "v"), std::nullopt);
             EXPECT_EQ(value<double>(element, "v"), std::nullopt);
             setValue(element, "v", "0." + repeated("0", kLongName) + "1");
             EXPECT_EQ(value<int>(element, "v"), std::nullopt);
             setValue(element, "v", repeated(" ", kLongName) + "7" + repeated("\n", kLongName));
             EXPECT_EQ(value<int>(element, "v"), 7);
         },
         kLarge},
        {"texts that differ at the end",
         [] {
             Element one("a"), other("a");
             setText(one, repeated("x", kLongText / 4));
             setText(other, repeated("x", kLongText / 4 - 1) + "y");
             EXPECT_EQ(firstDifference(one, other),
                       "/a[1]: text \"..." + repeated("x", 21) + "\" and text \"..." + repeated("x", 20) + "y\"");
         },
         kLarge},
    });
}

}  // namespace
}  // namespace Xml::test
