// Random documents as XML 1.0 and as the dialect reads them: where both accept one, the trees are the same but for what
// docs/standard.md has in its table of the two.
#include "standard/Documents.h"
#include "support/Dice.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/standard/Read.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace Xml::test {
namespace {

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The tree without what the two may have otherwise: values are compared with spaces for white space, adjacent texts as
// one, defaults as what they are in the dialect, nothing. Around comments white space counts in one of them alone.
std::string plain(const Element& element, bool hasComments) {
    std::string all = element.getName() + "[";
    for (int i = 0; i < element.getAttributeCount(); ++i) {
        const Attribute& attribute = *element.getAttribute(i);
        if (isDefault(attribute)) continue;
        std::string value = attribute.getValue();
        std::replace_if(value.begin(), value.end(), isWhiteSpace, ' ');
        all += attribute.getName() + "='" + value + "' ";
    }
    all += "](";
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object& child = *element.getChild(i);
        if (child.isElement()) {
            all += plain(*child.toElement(), hasComments);
            continue;
        }
        std::string text = child.toCharData()->getData();
        if (hasComments) text.erase(std::remove_if(text.begin(), text.end(), isWhiteSpace), text.end());
        all += text;
    }
    return all + ")";
}

// Line ends and references to characters are other rules, and so are entities that are empty or have markup.
bool isSameInBoth(const std::string& text) {
    static const std::regex entity("<!ENTITY[^>]*(['\"])(\\1|[^>]*[<&])");
    return text.find('\r') == std::string::npos && text.find("&#") == std::string::npos &&
           !std::regex_search(text, entity);
}

TEST(BothFacesTest, HaveTheSameTreeWhereBothAcceptADocument) {
    const MessageCollector quiet;
    ReadOptions options;
    options.space = Space::Dropped;
    options.keepComments = options.keepInstructions = false;
    Dice dice(31);
    int compared = 0;
    for (int i = 0; i < rounds(20'000) && !HasFailure(); ++i) {
        std::string text = randomDocument(dice);
        const std::size_t from = text.find("<!DOCTYPE");
        const std::size_t to = text.find("]>");
        if (dice.chance(70) && from < to && to != std::string::npos) text.erase(from, to + 2 - from);
        if (!isSameInBoth(text)) continue;
        const ReadResult ours = readText(text, options);
        if (!ours) continue;
        const Outcome dialect = readDocument(text);
        if (dialect.document == nullptr) continue;
        ++compared;
        const bool hasComments = text.find("<!--") != std::string::npos;
        EXPECT_EQ(plain(*ours->getRoot(), hasComments), plain(*dialect.document->getRoot(), hasComments)) << text;
    }
    EXPECT_GT(compared, atLeast(3000));
}

}  // namespace
}  // namespace Xml::test
