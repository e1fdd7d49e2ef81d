// The lexer reads the documents of docs/standard-constraints.md as the page says, and names the same rules.
#include "standard/ConstraintsPage.h"
#include "standard/Events.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// What is there as UTF-8: other encodings, and what a declaration says of them, are not the lexer's affair.
bool isForLexer(const ConstraintRow& row, const PageDocument& document) {
    const std::string& bytes = document.bytes;
    return row.setting == Setting::Whole && row.rule != "Character Encoding in Entities" &&
           Utf8::check(bytes.data(), bytes.data() + bytes.size()).ending == Utf8::Ending::Whole &&
           bytes.find('\0') == std::string::npos && bytes.compare(0, 3, "\xEF\xBB\xBF") != 0;
}

std::string ruleOf(const std::string& text, bool hasNamespaces) {
    Lexer::Options options;
    options.namespaces = hasNamespaces;
    const Lexed lexed = lex(text, options);
    for (const std::size_t chunk : {1, 4}) {
        EXPECT_STREQ(lex(text, options, chunk).fault.rule, lexed.fault.rule);
    }
    return lexed.isAccepted ? "accepted" : lexed.fault.rule;
}

TEST(LexerConstraintsTest, ReadsTheDocumentsOfThePageAsItSays) {
    int count = 0;
    for (const ConstraintRow& row : constraintsPage().rows) {
        SCOPED_TRACE("line " + std::to_string(row.line));
        if (row.accepted && isForLexer(row, *row.accepted)) {
            ++count;
            EXPECT_EQ(ruleOf(row.accepted->bytes, true), "accepted") << row.accepted->cell;
            EXPECT_EQ(ruleOf(row.accepted->bytes, false), "accepted") << row.accepted->cell;
        }
        if (row.refused && isForLexer(row, *row.refused)) {
            ++count;
            EXPECT_EQ(ruleOf(row.refused->bytes, true), row.fallsUnder) << row.refused->cell;
            EXPECT_EQ(ruleOf(row.refused->bytes, false), row.isOfNamespaces() ? "accepted" : row.fallsUnder)
                << row.refused->cell;
        }
    }
    EXPECT_GT(count, 500);
}

}  // namespace
}  // namespace Xml::test
