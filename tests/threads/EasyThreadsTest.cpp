// What several threads may do at the same time with the short ways: look, and change trees of their own.
#include "support/Trees.h"
#include "threads/InThreads.h"
#include "xml/dom/Document.h"
#include "xml/easy.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

const std::string kText =
    "<!DOCTYPE r [<!ATTLIST a d CDATA '7'>]><r xmlns:p='urn:p'><p:a l='1'>text &amp; more than a short string "
    "holds</p:a>"
    "<a k='2'>x<b/><![CDATA[<]]></a><!--c--><?t c?></r>";

const std::string kShown = "text & more than a short string holds";

// All that a look by short ways gives.
std::string looksOf(const Document& document) {
    std::string looks = Xml::textOf(document);
    for (const Element& element : descendants(*document.getRoot())) {
        looks += std::string(nameOf(element)) + namespaceOf(element) + prefixOf(element) + localNameOf(element) +
                 std::to_string(indexOf(element)) + std::to_string(valueOr(element, "k", 0)) +
                 std::to_string(valueOr(element, "d", 0)) + content<std::string>(element).value_or("");
        for (const Attribute& attribute : attributes(element)) looks += nameOf(attribute);
        for (const Object& child : children(element)) looks += nextOf(child) != nullptr ? "+" : "-";
        looks += parentOf(element) == document.getRoot() ? "^" : "";
    }
    return looks;
}

TEST(EasyThreadsTest, OneTreeIsLookedAtByAll) {
    for (int round = 0; round < kRounds; ++round) {
        const ReadResult result = readText(kText, everything());
        ASSERT_TRUE(result) << result.message();
        const Document& document = *result;
        std::vector<std::string> looks(kThreads);
        std::vector<int> failures(kThreads);
        inThreads([&](int number) {
            const auto index = static_cast<std::size_t>(number);
            looks[index] = looksOf(document);
            failures[index] += ask(document, "//a[@d = 7]").size() != 1;
            failures[index] += ask(document, "//p:*[. = '" + kShown + "']").text(0) != kShown;
            failures[index] += !ask(document, "//a[1]").problem();
            failures[index] += !sameTree(document, *copyOf(document));
            failures[index] += !firstDifference(*document.getRoot(), *copyOf(*document.getRoot())).empty();
        });
        EXPECT_EQ(failures, std::vector<int>(kThreads));
        EXPECT_EQ(looks, std::vector<std::string>(kThreads, looksOf(document)));
    }
}

TEST(EasyThreadsTest, EachChangesATreeOfItsOwn) {
    const auto changed = [] {
        ReadResult result = readText(kText);
        Element& root = *result->getRoot();
        for (Element& element : elements(root)) {
            setValue(element, "k", valueOr(element, "k", 1) + 0.5);
            append(element, "new", "text");
            replace(element, copyOf(element));
        }
        sortChildren(root, [](const Object& one, const Object& other) { return nameOf(one) < nameOf(other); });
        append(root, detach(*children(root).first()));
        return dump(result.get());
    };
    const std::string expected = changed();
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round)
            failures[static_cast<std::size_t>(number)] += changed() != expected;
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace Xml::test
