// What the short ways cost grows as the tree does.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "support/Texts.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/easy.h"
#include "xml/standard/Read.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

std::unique_ptr<Document> read(const std::string& text) {
    ReadResult result = readText(text, everything());
    EXPECT_TRUE(result) << result.message();
    return result.take();
}

const TextCase kShapes[] = {
    {"siblings", [](int n) { return "<r>" + repeated("<a k='1' m='2'>x</a>", n) + "</r>"; }},
    {"levels", [](int n) { return "<r>" + repeated("<a k='1'>x", n) + repeated("</a>", n) + "</r>"; }},
    {"texts", [](int n) { return "<r>" + repeated("x&amp;<!--c-->", n) + "</r>"; }},
    {"attributes",
     [](int n) { return "<r" + pieces(n, [n](int i) { return numbered(" a", n - i) + "='v'"; }) + "/>"; }},
};

struct Way {
    const char* name;
    std::function<bool(Document&)> go;
};

// Looks, and changes that one call makes.
const Way kWays[] = {
    {"ranges",
     [](Document& d) {
         Element& root = *d.getRoot();
         return children(root).size() >= elements(root).size() && descendants(root).size() >= elements(root).size() &&
                attributes(root).size() == static_cast<std::size_t>(root.getAttributeCount());
     }},
    {"steps from child to child",
     [](Document& d) {
         int count = 0;
         for (Object* at = children(*d.getRoot()).first(); at != nullptr; at = nextOf(*at))
             count += indexOf(*at) == count;
         return count == d.getRoot()->getChildCount();
     }},
    {"values",
     [](Document& d) {
         for (Element& element : descendants(*d.getRoot())) {
             if (value<int>(element, "k") != 1) return false;
         }
         return true;
     }},
    {"text", [](Document& d) { return textOf(d) == textOf(*copyOf(*d.getRoot())); }},
    {"asking", [](Document& d) { return ask(d, "//a[@k = 1]").size() == descendants(*d.getRoot()).size(); }},
    {"asking a part",
     [](Document& d) {
         const auto root = detach(*d.getRoot());
         const std::size_t found = ask(*root, "/descendant-or-self::node()").size();
         setRoot(d, copyOf(*root));
         return found == ask(d, "//node()").size();
     }},
    {"comparing with a copy", [](Document& d) { return sameTree(d, *copyOf(d)) && firstDifference(d, d).empty(); }},
    {"sorting",
     [](Document& d) {
         sortChildren(*d.getRoot(), [](const Object& one, const Object& other) { return &one > &other; });
         return true;
     }},
    {"moving everything",
     [](Document& d) {
         const auto other = makeDocument("other");
         const Range<Object> all = children(*d.getRoot());
         for (std::size_t i = all.size(); i-- > 0;) append(*other->getRoot(), detach(all[i]));
         setRoot(d, detach(*other->getRoot()));
         setText(*d.getRoot(), "x");
         return textOf(d) == "x";
     }},
};

TEST(EasyGrowthTest, WaysAreLinearInTheTree) {
    for (const TextCase& shape : kShapes) {
        for (const Way& way : kWays) {
            const std::string name = std::string(shape.name) + ", " + way.name;
            expectAtMostLinear(
                name,
                [&](int n) {
                    return [document = std::shared_ptr<Document>(read(shape.text(n))), &way] {
                        EXPECT_TRUE(way.go(*document));
                    };
                },
                AllocatedBytes, 1'000);
        }
    }
}

// Work that is no allocation shows by size: where it is quadratic this takes minutes to days.
TEST(EasyGrowthTest, WaysThroughManyOfEachEnd) {
    constexpr int kMany = 300'000 / kScale;
    for (const TextCase& shape : kShapes) {
        const auto document = read(shape.text(kMany));
        for (const Way& way : kWays) {
            SCOPED_TRACE(std::string(shape.name) + ", " + way.name);
            EXPECT_TRUE(way.go(*document));
        }
    }
}

}  // namespace
}  // namespace Xml::test
