#include "xml/dom/internal/TreeBuilder.h"

#include "models/Snapshot.h"
#include "support/GiveAttributes.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>

namespace Xml::test {

namespace {

using Steps = std::vector<std::string>;

// "<a": a begins, with the attributes named after it, each with its place as value; "/": the innermost ends; anything
// else is text.
void build(TreeBuilder& tree, const std::string& step) {
    if (step == "/") return tree.end();
    if (step[0] != '<') return tree.addText(step);
    tree.begin(step.substr(1, 1));
    std::vector<std::pair<std::string, std::string>> attributes;
    for (std::size_t i = 2; i < step.size(); ++i) attributes.emplace_back(step.substr(i, 1), std::to_string(i - 1));
    giveAttributes(tree, attributes);
}

// The same by the operations of nodes.
class ByOperations {
public:
    void build(const std::string& step) {
        if (step == "/") {
            if (open.size() > 1) open[open.size() - 2]->addChild(open.back().release());
            if (open.size() == 1) root = std::move(open.back());
            return open.pop_back();
        }
        if (step[0] != '<') {
            auto text = std::make_unique<CharData>();
            text->data() = DataHolder(step);
            return open.back()->addChild(text.release());
        }
        open.push_back(std::make_unique<Element>(step.substr(1, 1)));
        for (std::size_t i = 2; i < step.size(); ++i)
            open.back()->setAttribute(step.substr(i, 1), DataHolder(std::to_string(i - 1)));
    }

    const Element* outermost() const { return !open.empty() ? open.front().get() : root.get(); }

private:
    std::vector<std::unique_ptr<Element>> open;
    std::unique_ptr<Element> root;
};

const Steps kSteps = {"<a", "<bxzy", "text", "/", " ", "<c", "<d", "/", "<exx",
                      "<f", "/",     "t",    "/", "/", "<g", "/",  "/"};

}  // namespace

TEST(TreeBuilderTest, LeavesWhatTheOperationsOfNodesLeaveAfterEachStep) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    ByOperations expected;
    for (std::size_t i = 0; i < kSteps.size(); ++i) {
        SCOPED_TRACE(std::to_string(i) + ": " + kSteps[i]);
        build(tree, kSteps[i]);
        expected.build(kSteps[i]);
        EXPECT_EQ(linksOf(root.get(), nullptr), linksOf(expected.outermost(), nullptr));
    }
    EXPECT_EQ(dump(root.get()), "a(b[x=1 y=3 z=2]('text') ' ' c(d e[x=2](f 't')) g)");
}

TEST(TreeBuilderTest, LeavesTheFinishedChildrenOfTheOutermostElementWhereverItStops) {
    const struct {
        std::size_t steps;
        const char* tree;
        std::size_t depth;
        const char* innermost;
    } kCases[] = {
        {0, "null", 0, ""},
        {1, "a", 1, "a"},
        {2, "a", 2, "b"},
        {3, "a", 2, "b"},
        {4, "a(b[x=1 y=3 z=2]('text'))", 1, "a"},
        {5, "a(b[x=1 y=3 z=2]('text') ' ')", 1, "a"},
        {7, "a(b[x=1 y=3 z=2]('text') ' ')", 3, "d"},
        {8, "a(b[x=1 y=3 z=2]('text') ' ')", 2, "c"},
        {10, "a(b[x=1 y=3 z=2]('text') ' ')", 4, "f"},
        {14, "a(b[x=1 y=3 z=2]('text') ' ' c(d e[x=2](f 't')))", 1, "a"},
        {17, "a(b[x=1 y=3 z=2]('text') ' ' c(d e[x=2](f 't')) g)", 0, ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.steps);
        std::unique_ptr<Element> root;
        {
            TreeBuilder tree(root);
            for (std::size_t i = 0; i < c.steps; ++i) build(tree, kSteps[i]);
            EXPECT_EQ(tree.depth(), c.depth);
            EXPECT_EQ(tree.isOpen(), c.depth > 0);
            EXPECT_EQ(tree.isOpen() ? tree.innermost().getName() : "", c.innermost);
        }
        EXPECT_EQ(dump(root.get()), c.tree);
    }
}

TEST(TreeBuilderTest, PutsAttributesInTheirOrderAndKeepsTheLastOfAName) {
    std::string names = "abcdab";
    std::sort(names.begin(), names.end());
    do {
        for (std::size_t count = 0; count <= names.size(); ++count) {
            std::unique_ptr<Element> root;
            TreeBuilder tree(root);
            build(tree, "<e" + names.substr(0, count));
            ByOperations expected;
            expected.build("<e" + names.substr(0, count));
            ASSERT_EQ(linksOf(root.get(), nullptr), linksOf(expected.outermost(), nullptr)) << names << " " << count;
            ASSERT_EQ(dump(root.get()), dump(expected.outermost())) << names << " " << count;
        }
    } while (std::next_permutation(names.begin(), names.end()));
}

TEST(TreeBuilderTest, AddsWholeElementsAsTheirPartsOneByOne) {
    const std::string texts[] = {"t", "a text of more bytes than fifteen"};
    for (const std::string& text : texts) {
        for (const bool isPadded : {false, true}) {
            std::unique_ptr<Element> parts;
            TreeBuilder one(parts);
            for (const std::string& step : Steps{"<a", "<bzx", "/", "<cyx", text, "/", "<d", "/", "/"})
                build(one, step);

            std::unique_ptr<Element> whole;
            TreeBuilder tree(whole);
            tree.begin("a");
            const auto add = [&](const char* name, const std::string& attributes, const char* itsText) {
                GivenAttributes given;
                std::string values;
                for (std::size_t i = 0; i < attributes.size(); ++i) values += std::to_string(i + 1);
                for (std::size_t i = 0; i < attributes.size(); ++i)
                    given.add(tree.name(attributes.substr(i, 1)), std::string_view(values).substr(i, 1));
                if (itsText == nullptr) return tree.addElement(tree.name(name), given);
                const std::string padded = itsText + std::string(internal::kShortText, '!');
                tree.addLeaf(tree.name(name), given, std::string_view(padded).substr(0, text.size()), isPadded);
            };
            add("b", "zx", nullptr);
            add("c", "yx", text.c_str());
            add("d", "", nullptr);
            tree.end();
            EXPECT_EQ(dump(whole.get()), dump(parts.get()));
            EXPECT_EQ(linksOf(whole.get(), nullptr), linksOf(parts.get(), nullptr));
        }
    }
}

TEST(TreeBuilderTest, GivesAttributesOfAnyNumberAndLength) {
    constexpr std::size_t kLengths[] = {0, 1, 14, 15, 16, 17, 32, 40, 64, 65, 300, 1024, 1025};
    std::mt19937 random(5);
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    std::string expected;
    for (int i = 0; i < rounds(3000); ++i) {
        std::map<std::string, std::string> values;
        const std::size_t lengths = random() % 3 == 0 ? std::size(kLengths) : 1 + random() % std::size(kLengths);
        for (std::size_t count = random() % (i % 50 == 0 ? 200 : 14); count > 0; --count)
            values[std::to_string(random() % 1000)] =
                std::string(kLengths[random() % lengths], static_cast<char>('a' + random() % 26));
        GivenAttributes given;
        for (const auto& [name, value] : values) given.add(tree.name(name), value);
        if (i == 0) {
            tree.begin("a");
            tree.setAttributes(given);
        } else {
            tree.addElement(tree.name("b"), given);
        }
        std::string shown;
        for (const auto& [name, value] : values) shown += (shown.empty() ? "" : " ") + name + '=' + value;
        if (!shown.empty()) shown = '[' + shown + ']';
        expected += i == 0 ? "a" + shown + '(' : (i == 1 ? "b" : " b") + shown;
    }
    tree.end();
    EXPECT_EQ(dump(root.get()), expected + ')');
}

TEST(TreeBuilderTest, ReplacesTheOutermostElementThatIsThereWhenItsOwnBegins) {
    auto root = std::make_unique<Element>("before");
    TreeBuilder tree(root);
    EXPECT_EQ(dump(root.get()), "before");
    tree.begin("after");
    EXPECT_EQ(dump(root.get()), "after");
    tree.end();
    EXPECT_EQ(dump(root.get()), "after");
}

}  // namespace Xml::test
