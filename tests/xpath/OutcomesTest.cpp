// What came of a walk is kept only to save walks: queries give the same without room to keep anything.
#include "xml/xpath/internal/Outcomes.h"

#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/internal/Evaluation.h"
#include "xml/xpath/internal/PathText.h"
#include "xpath/Queries.h"
#include "xpath/RandomPaths.h"
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Text = OrvSys::Uni16String;

// All that an evaluation gives.
std::string evaluated(const RandomTree& tree, const Text& path, const std::vector<Object*>& contexts,
                      std::size_t mostKept) {
    const PathText text(path);
    Expressions expressions(text);
    Evaluation evaluation(expressions, tree.document.get(), VisitBudget(0), mostKept);
    const bool ok = evaluation.run(*expressions.add({text.begin(), text.end()}), {contexts, false, 0});
    std::string result = ok ? "ok" : "failed " + std::to_string(evaluation.error().code);
    if (ok) {
        for (const Object* node : evaluation.nodes) result += " " + tree.placeOf(node);
        for (const Value& value : evaluation.values) {
            result += " " + std::to_string(value.tag) + ":";
            if (value.kind == Value::Kind::Node) result += tree.placeOf(value.node);
            if (value.kind == Value::Kind::Number) result += narrow(textOf(value.number));
            if (value.kind == Value::Kind::String) result += value.string->bytes;
        }
    }
    const Absence absence = evaluation.absence();
    result += absence.anyFound() ? ", found" : "";
    result += ", deepest " + std::to_string(absence.deepest());
    if (absence.missed()) {
        const Missed& missed = *absence.missed();
        result += ", missed " + std::to_string(missed.depth) + " " +
                  narrow(missed.name == Missed::Name::WithAxis ? missed.step->withAxis(text)
                                                               : missed.step->withPredicates(text));
    }
    return result;
}

TEST(OutcomesTest, ChangeNothingThatAQueryGives) {
    const std::vector<Text> kSteps = {u"a", u"b", u"*", u"..", u"..", u"..", u".", u"@n", u"node()"};
    Dice dice(1);
    const auto appendPath = [&](Text& text, const Text& start, int most) {
        text += start + dice.pick(kSteps);
        for (int steps = dice.below(most); steps > 0; --steps)
            text += (dice.chance(20) ? u"//" : u"/") + dice.pick(kSteps);
    };
    RandomPaths paths(dice);
    int found = 0;
    for (int trees = 0; trees < 400; ++trees) {
        const RandomTree tree(dice);
        std::vector<Object*> contexts;
        for (Object* const node : tree.nodes()) {
            if (dice.chance(60)) contexts.push_back(node);
        }
        if (contexts.empty()) continue;
        for (int i = 0; i < 25; ++i) {
            Text path;
            if (dice.chance(30)) {
                path = paths.wellFormed(dice.chance(30));
            } else {
                appendPath(path, u"", 3);
                for (int levels = 1 + dice.below(4); levels > 0; --levels) {
                    Text outer;
                    appendPath(outer, dice.chance(15) ? u"//" : u"", 3);
                    path = outer + u"[" + path + u"]";
                    if (dice.chance(30)) appendPath(path, u"/", 2);
                    if (dice.chance(20)) appendPath(path, u" = ", 2);
                }
            }
            if (PathText(path).begin() == PathText(path).end()) continue;
            const std::string kept = evaluated(tree, path, contexts, Evaluation::kMostKept);
            ASSERT_EQ(kept, evaluated(tree, path, contexts, 0)) << narrow(path) << " of " << tree.text();
            ASSERT_EQ(kept, evaluated(tree, path, contexts, 7)) << narrow(path) << " of " << tree.text();
            if (kept.rfind("ok ", 0) == 0) ++found;
        }
    }
    EXPECT_GE(found, 1'500);
}

// Whether the path finds `count` nodes from the root while it looks at few more nodes than that.
bool isCheap(const Tree& tree, const Text& path, std::size_t count, std::size_t mostKept) {
    const PathText text(path);
    Expressions expressions(text);
    Evaluation evaluation(expressions, tree.document(), VisitBudget(static_cast<std::int64_t>(20 * count)), mostKept);
    return evaluation.run(*expressions.add({text.begin(), text.end()}), {{tree.root()}, false, 0}) &&
           evaluation.nodes.size() == count;
}

TEST(OutcomesTest, AreKeptAsLongAsThereIsRoom) {
    const int count = 200;
    const Tree tree("<r>" + repeated("<a><b/></a>", count - 1) + "<a><b><c/></b></a></r>");
    EXPECT_TRUE(isCheap(tree, u"*[..[*/b/c]]", count, 20));
    EXPECT_FALSE(isCheap(tree, u"*[..[*/b/c]]", count, 0));
    // Walks that never come again leave the room to those that do.
    EXPECT_TRUE(isCheap(tree, u"*[b][..[*/b/c]]", count, 20));
}

TEST(OutcomesTest, AreFoundByTheNodeThatTheyWereKeptFor) {
    Element one("a");
    Element other("a");
    Outcomes outcomes;
    OutcomeRoom room(4);
    Absence absence;
    absence.found();
    EXPECT_EQ(outcomes.find(&one), nullptr);
    outcomes.keep(&one, {&other, &one}, absence, room);
    ASSERT_NE(outcomes.find(&one), nullptr);
    EXPECT_EQ(outcomes.find(&one)->found, (std::vector<Object*>{&other, &one}));
    EXPECT_TRUE(outcomes.find(&one)->absence.anyFound());
    EXPECT_EQ(outcomes.find(&other), nullptr);
    EXPECT_TRUE(room.isLeft());
    outcomes.keep(&other, {}, absence, room);
    EXPECT_FALSE(room.isLeft());
    EXPECT_NE(outcomes.find(&one), nullptr);
}

}  // namespace
}  // namespace Xml::test
