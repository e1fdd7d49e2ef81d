#include "orvsys/Localization.h"
#include <map>
#include <mutex>
#include <utility>

namespace OrvSys {

namespace {

using Domain = std::map<std::string, Uni16String>;

struct EnglishText {
    const char* key;
    const uni16char* text;
};

constexpr EnglishText kXPathTexts[] = {
    {"xpat/xerr/NONE", u"No error occurred"},
    {"xpat/xerr/INDEX OUT OF BOUNDS", u"There is no result with this index"},
    {"xpat/xerr/NODE NOT FOUND", u"No node matches the path"},
    {"xpat/xerr/NODE CONTAINS NO DATA", u"The node contains no data"},
    {"xpat/xerr/DOUBLE SLASH AT THE END NOT ALLOWED", u"A path must not end with a double slash"},
    {"xpat/xerr/NO XPATH SPECIFIED", u"The path is empty"},
    {"xpat/xerr/ILLEGAL CHAR AFTER ATTRIBUTEVALUE", u"An attribute value is followed by an illegal character"},
    {"xpat/xerr/ILLEGAL CHAR AFTER FUNCTION", u"A function is followed by an illegal character"},
    {"xpat/xerr/ILLEGAL CHAR AFTER KINDTEST", u"A kind test is followed by an illegal character"},
    {"xpat/xerr/ILLEGAL CHAR IN NUMBER", u"A number contains an illegal character"},
    {"xpat/xerr/ILLEGAL CHAR AFTER PREDICATE", u"A predicate is followed by an illegal character"},
    {"xpat/xerr/NO VALID ATTRIBUTE NAME", u"This is not a valid attribute name"},
    {"xpat/xerr/NO VALID NAME OR TEST", u"This is neither a valid name nor a valid node test"},
    {"xpat/xerr/RELATIVE XPATH EXPRESSION NOT ALLOWED WITHOUT CONTEXT NODES",
     u"A relative path needs context nodes, and there are none"},
    {"xpat/xerr/SLASH AT END NOT ALLOWED", u"A path must not end with a slash"},
    {"xpat/xerr/NO VALID AXIS", u"This is not a valid axis"},
    {"xpat/xerr/NO VALID INITIAL AXIS", u"A path cannot begin with this axis"},
    {"xpat/xerr/NO VALID COMPARISON OPERATOR", u"This is not a valid comparison operator"},
    {"xpat/xerr/MISSING QUOTE BEFORE ATTRIBUTE VALUE", u"The quote before an attribute value is missing"},
    {"xpat/xerr/MISSING QUOTE AFTER ATTRIBUTE VALUE", u"The quote after an attribute value is missing"},
    {"xpat/xerr/MISSING CLOSING BRACKET AFTER PREDICATE", u"The closing bracket of a predicate is missing"},
    {"xpat/xerr/MISSING CLOSING PARENTHESE AFTER FUNCTION", u"The closing parenthesis of a function is missing"},
    {"xpat/xerr/MISSING OPENING PARENTHESE AFTER FUNCTION", u"The opening parenthesis of a function is missing"},
    {"xpat/xerr/MISSING CLOSING PARENTHESE AFTER KIND TEST", u"The closing parenthesis of a kind test is missing"},
    {"xpat/xerr/MISSING OPENING PARENTHESE AFTER KIND TEST", u"The opening parenthesis of a kind test is missing"},
    {"xpat/xerr/FIRST LAST OR NUMBER AFTER POSITION EXPECTED",
     u"A position can only be compared with first(), last() or a number"},
    {"xpat/xerr/CONTEXT IS NOT A NODE", u"The context of the path is not a node"},
    {"xpat/xerr/EXPRESSION NESTED TOO DEEPLY", u"The expression is nested too deeply"},
    {"xpat/xerr/EXPRESSION TOO COSTLY", u"The expression is too costly"},
};

// Nested maps, so that a look-up joins no strings.
struct Texts {
    std::mutex mutex;
    std::map<std::string, Domain> domains;

    Texts() {
        Domain& domain = domains["XPath"];
        for (const EnglishText& row : kXPathTexts) domain.emplace(row.key, row.text);
    }
};

// Made at the first use, not at load: other libraries' static objects may ask for texts before this source's are made.
// Never destroyed, since they may do so at exit too.
Texts& allTexts() {
    static Texts& texts = *new Texts;
    return texts;
}

}  // namespace

Uni16String Localization::GetString(const std::string& key, const std::string& domain, const Uni16String& fallback) {
    Texts& texts = allTexts();
    const std::lock_guard<std::mutex> lock(texts.mutex);
    const auto ofDomain = texts.domains.find(domain);
    if (ofDomain == texts.domains.end()) return fallback;
    const auto found = ofDomain->second.find(key);
    return found == ofDomain->second.end() ? fallback : found->second;
}

void Localization::SetString(const std::string& key, const std::string& domain, const Uni16String& text) {
    Texts& texts = allTexts();
    Uni16String copy = text;  // before the entry is made: a failed allocation must not leave an empty text installed
    const std::lock_guard<std::mutex> lock(texts.mutex);
    texts.domains[domain][key] = std::move(copy);
}

}  // namespace OrvSys
