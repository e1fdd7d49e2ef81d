// Paths that were written to break a query, over trees that were.
#include "hostile/Inputs.h"
#include "orvsys/Uni16.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

using OrvSys::Uni16String;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

// A query keeps some 30 bytes a character.
constexpr int kLong = kLongName / 8;

constexpr int kMany = kMillion / 5;

// A query's results, or the code of the error; the same of the check of its syntax.
std::string asked(const std::string& document, const Uni16String& path) {
    const Outcome outcome = readDocument(document);
    if (!outcome.ok) return "not read";
    XPath query(outcome.document.get());
    const unsigned count = query.GetValues(path);
    const std::string results =
        count > 0 ? std::to_string(count) + " results" : "error " + std::to_string(query.GetErrorCode());
    XPath check(outcome.document.get());  // the failed query has no context for a relative path any more
    const bool ok = check.SyntaxOK(path);
    return results + (ok ? ", well-formed" : ", error " + std::to_string(check.GetErrorCode()));
}

std::function<std::string()> asking(const Uni16String& path, const std::string& document = "<r k='v'><r/>x</r>") {
    return [path, document] { return asked(document, path); };
}

std::function<std::string()> asking(const std::string& path, const std::string& document = "<r k='v'><r/>x</r>") {
    return asking(wide(path), document);
}

TEST(HostilePathTest, DepthOfAPathIsBounded) {
    const std::string open = repeated("[", kBrackets);
    const std::string close = repeated("]", kBrackets);
    const auto predicates = [](int levels) { return "/r" + repeated("[.", levels) + repeated("]", levels); };
    expectOutcomes({
        {"as many as are allowed", asking(predicates(1'000)), "1 results, well-formed"},
        {"one more", asking(predicates(1'001)), "error 27, error 27"},
        {"a hundred thousand", asking(predicates(kBrackets)), "error 27, error 27"},
        {"that are never closed", asking("/r" + open), "error 27, error 27"},
        {"that are never opened", asking("/r" + close), "error 12, error 12"},
        {"in a literal", asking("'" + open + "'"), "1 results, well-formed"},
        {"in a literal of a predicate", asking("/r[. = '" + open + close + "']"), "error 2, well-formed"},
        {"with other things between", asking("/r" + repeated("[@k = 'v' ][r/", kBrackets)), "error 27, error 27"},
        {"parentheses", asking("/r[" + repeated("(", kBrackets) + repeated(")", kBrackets) + "]"), "error 0, error 0"},
        {"parentheses after a name", asking("/r" + repeated("(", kBrackets)), "error 12, error 12"},
    });
}

TEST(HostilePathTest, AQueryThatWasRefusedForItsDepthIsRefusedAgain) {
    const auto checks = [] {
        const Outcome outcome = readDocument("<r><r/></r>");
        XPath query(outcome.document.get());
        const auto nested = [](int levels) { return u"/r" + repeated(u"[.", levels) + repeated(u"]", levels); };
        EXPECT_EQ(query.GetValues(nested(1'000)), 1u);
        EXPECT_TRUE(query.SyntaxOK(nested(1'000)));
        for (const int levels : {1'001, kBrackets}) {
            EXPECT_EQ(query.GetValues(nested(levels)), 0u);
            EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
            EXPECT_FALSE(query.SyntaxOK(nested(levels)));
            EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
        }
        EXPECT_EQ(query.GetValues(repeated(u"[", kBrackets)), 0u);
        EXPECT_EQ(query.GetErrorCode(), XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES);
        EXPECT_EQ(query.GetValues(u"/" + repeated(u"[", kBrackets)), 0u);
        EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
    };
    expectToHold({{"by the same query", checks}});
}

TEST(HostilePathTest, EveryAxisWalksADeepTree) {
    constexpr unsigned all = kMillion;
    const struct {
        const char16_t* path;
        unsigned results;
    } kCases[] = {
        {u"//a", all},
        {u"//z/ancestor::a", all},
        {u"//z/ancestor-or-self::*", all + 2},
        {u"//z/..", 1},
        {u"//@k/ancestor::*", all + 2},
        {u"//@k/preceding::*", 0},
        {u"//z/preceding::*", 0},
        {u"/a/descendant::*", all},
        {u"//a/descendant-or-self::a", all},
        {u"//a/following::*", 0},
        {u"//a/following-sibling::*", 0},
        {u"//a/preceding-sibling::*", 0},
        {u"//a[a]", all - 1},
        {u"//a[../a]", all},
        {u"//a[z/@k = 'v']", 1},
        {u"//a//a//z", 1},
    };
    // One process for all, since to read the tree takes longer than a query.
    const auto checks = [&kCases] {
        const Outcome outcome = readDocument(repeated("<a>", kMillion) + "<z k='v'/>" + repeated("</a>", kMillion));
        ASSERT_TRUE(outcome.ok) << outcome.error;
        XPath query(outcome.document.get());
        for (const auto& c : kCases) {
            nowAt(narrow(c.path));
            EXPECT_EQ(query.GetValues(c.path), c.results) << narrow(c.path);
        }
    };
    expectToHold({{"of a million levels", checks}});
}

TEST(HostilePathTest, LengthOfAPathIsNone) {
    expectOutcomes({
        {"steps", asking("/r" + repeated("/.", kMillion)), "1 results, well-formed", kLarge},
        {"steps up and down", asking("/r" + repeated("/r/..", kBrackets)), "1 results, well-formed"},
        {"steps that find nothing", asking("/r" + repeated("/x", kMillion)), "error 2, well-formed", kLarge},
        {"double slashes", asking("/r" + repeated("//.", kBrackets)), "3 results, well-formed"},
        {"slashes", asking(repeated("/", kMillion)), "error 4, error 4", kLarge},
        {"predicates", asking("/r" + repeated("[@k]", kBrackets)), "1 results, well-formed"},
        {"operands", asking("1" + repeated(" + 1", kBrackets)), "1 results, well-formed"},
        {"operators", asking("1" + repeated(" + ", kBrackets)), "error 0, error 0"},
        {"comparisons", asking("@k" + repeated(" = 'v'", kBrackets)), "error 2, well-formed"},
        {"lone quotes", asking(repeated("'", kBrackets - 1)), "1 results, well-formed"},
        {"colons", asking(repeated(":", kLong)), "error 15, error 15", kLarge},
        {"blanks", asking(repeated(" ", kLong) + "r" + repeated("\t", kLong)), "1 results, well-formed", kLarge},
        {"a name", asking(repeated("n", kLong)), "error 2, well-formed", kLarge},
        {"a literal", asking("'" + repeated("n", kLong) + "'"), "1 results, well-formed", kLarge},
        {"a number", asking(repeated("9", kLong)), "1 results, well-formed", kLarge},
        {"nothing", asking(""), "error 5, error 5"},
    });
}

// Whether the message of a code ends with the part of the path in question.
bool namesAPart(XPath::ErrorCode code) {
    return code > XPath::INDEX_OUT_OF_BOUNDS && code != XPath::NO_XPATH_SPECIFIED &&
           code < XPath::CONTEXT_IS_NOT_A_NODE;
}

// Which of the promises that hold for every path this one breaks, "" for none. The check stands on the document.
std::string broken(const Uni16String& path, XPath& query, XPath& check) {
    const bool wellFormed = check.SyntaxOK(path);
    const XPath::ErrorCode refusal = check.GetErrorCode();
    if (wellFormed && refusal != XPath::NONE) return "well-formed, with an error";
    if (check.GetNrOfResults() != 1) return "a check changed the results";

    query.GetValues(u"/");
    const unsigned count = query.GetValues(path);
    query.GetValues(u"/");
    const bool wentWell = query.FindNodes(path);
    if (count != query.GetNrOfResults()) return "other results than were counted";
    if (count > 0 && !wentWell) return "results of a failure";

    // Steps after one that finds nothing are not read; SyntaxOK reads them.
    const XPath::ErrorCode code = query.GetErrorCode();
    if (wellFormed && !wentWell) return "well-formed, and refused";
    if (!wellFormed && wentWell && (count > 0 || code != XPath::NODE_NOT_FOUND)) return "not well-formed, and answered";
    if (!wentWell && code != refusal) return "refused for another reason";
    if (wentWell && code != XPath::NONE && code != XPath::NODE_NOT_FOUND) return "answered, with an error";

    const Uni16String message = query.GetErrorString();
    if ((message == u"No error occurred") != (code == XPath::NONE)) return "a message without an error, or none";
    if ((message.find(u" --> ") != Uni16String::npos) != namesAPart(code)) return "a part named in vain, or none";
    for (unsigned i = 0; i < count; ++i) {
        const XPath::ResultItem& result = query.GetResult(i);
        if (result.kind < 0 || result.kind > 2) return "a result of no kind";
        if ((result.kind == 0) != (result.node != nullptr)) return "a node that is none";
    }
    return {};
}

TEST(HostilePathTest, EveryUnitOfAPathIsReadOrRefused) {
    // Each of the 65,536 units in each of these places.
    const auto job = [] {
        const Outcome outcome = readDocument("<r k='v'><r/>x</r>");
        XPath query(outcome.document.get());
        XPath check(outcome.document.get());
        const char16_t* const kPlaces[][2] = {{u"", u""},       {u"/", u""},     {u"r", u"r"}, {u"'", u"'"},
                                              {u"r[", u"]"},    {u"1 ", u" 1"},  {u"@", u""},  {u"r::", u""},
                                              {u"text(", u")"}, {u"//r", u"//r"}};
        int count = 0;
        for (unsigned unit = 0; unit < 0x10000; unit += kScale) {
            for (const auto& place : kPlaces) {
                const Uni16String path = place[0] + Uni16String(1, static_cast<char16_t>(unit)) + place[1];
                const std::string what = broken(path, query, check);
                if (!what.empty()) return narrow(path) + ": " + what;
                ++count;
            }
        }
        return std::to_string(count);
    };
    expectOutcomes({{"units", job, std::to_string((0xFFFF / kScale + 1) * 10)}});
}

TEST(HostilePathTest, ATreeOfAnyShapeIsWalkedInTurn) {
    const auto flat = [](const std::string& path) {
        return asking(path, "<a>" + repeated("<b/>x", kMany / 2) + "</a>");
    };
    const std::string half = std::to_string(kMany / 2) + " results, well-formed";
    constexpr Bounds bounds = {400 * kMiB};
    expectOutcomes({
        {"beside", flat("//b/following-sibling::b"), std::to_string(kMany / 2 - 1) + " results, well-formed", bounds},
        {"before", flat("//b/preceding::text()"), std::to_string(kMany / 2 - 1) + " results, well-formed", bounds},
        {"with a predicate each", flat("//b[../b]"), half, bounds},
        {"by position", flat("/a/b[position() = last()]"), "1 results, well-formed", bounds},
    });
}

TEST(HostilePathTest, ArithmeticOverMorePairsThanAreMadeIsRefused) {
    const char* const kRefused = "error 28, well-formed";
    constexpr Bounds bounds = {400 * kMiB};
    expectOutcomes({
        {"of many nodes", asking("/a/b + /a/b", "<a>" + repeated("<b/>", 5'000) + "</a>"), kRefused, bounds},
        {"of few nodes again and again", asking("//b" + repeated(" * //b", 8), "<a>" + repeated("<b/>", 8) + "</a>"),
         kRefused, bounds},
    });
}

TEST(HostilePathTest, NumbersOfAnySizeAreNumbers) {
    const auto valueOf = [](const std::string& path, const std::string& document = "<r/>") {
        return [path, document] {
            const Outcome outcome = readDocument(document);
            XPath query(outcome.document.get());
            return narrow(query.GetValue(wide(path), -1));
        };
    };
    const auto printed = [](double value) {
        std::array<char, 512> text{};
        std::snprintf(text.data(), text.size(), "%f", value);
        return std::string(text.data());
    };
    const std::string many = "1" + repeated("0", 299);
    // A literal is what its digits give one after the other, an attribute the nearest number.
    double inTurn = 1;
    for (int i = 0; i < 299; ++i) inTurn *= 10;
    const std::string digits = repeated("9", 309);
    expectOutcomes({
        {"300 digits", valueOf(many), printed(inTurn)},
        {"more than there are numbers", valueOf(digits), "inf"},
        {"300 digits of an attribute", valueOf("/r/@n + 0", "<r n='" + many + "'/>"), printed(1e299)},
        {"more than there are, of an attribute", valueOf("/r/@n + 0", "<r n='-" + digits + "'/>"), "-inf"},
        {"more than there are, of an exponent", valueOf("'1e999999999999' * 1"), "inf"},
        {"neither", valueOf("'inf' - 'inf'"), "-nan"},
        {"by nothing", valueOf("1 div 0"), "inf"},
        {"digits after the point", valueOf("0." + repeated("0", kBrackets) + "1"), "0.000000"},
        {"a word that is far",
         [] {
             const Outcome outcome = readDocument("<r n='" + repeated("w ", 1'000) + "'/>");
             XPath query(outcome.document.get());
             query.GetValue(u"/r/@n", 2'000'000'000);
             return std::to_string(query.GetErrorCode());
         },
         "1"},
        {"a word below none",
         [] {
             const Outcome outcome = readDocument("<r n='a b'/>");
             XPath query(outcome.document.get());
             query.GetValue(u"/r/@n", -2'000'000'000);
             return std::to_string(query.GetErrorCode());
         },
         "1"},
        {"a result that is far",
         [] {
             const Outcome outcome = readDocument("<r/>");
             XPath query(outcome.document.get());
             query.GetValues(u"/r");
             query.GetValue(4'294'967'295u, -1);
             return std::to_string(query.GetErrorCode());
         },
         "1"},
    });
}

}  // namespace
}  // namespace Xml::test
