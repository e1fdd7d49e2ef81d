#include "xml/xpath/internal/Step.h"

#include "xml/xpath/internal/PathText.h"
#include <algorithm>

namespace Xml {

namespace {

struct AxisName {
    const char* text;
    Axis axis;
};

constexpr AxisName kAxisNames[] = {{"descendant-or-self", Axis::DescendantOrSelf},
                                   {"ancestor-or-self", Axis::AncestorOrSelf},
                                   {"attribute", Axis::Attribute},
                                   {"child", Axis::Child},
                                   {"descendant", Axis::Descendant},
                                   {"parent", Axis::Parent},
                                   {"ancestor", Axis::Ancestor},
                                   {"following-sibling", Axis::FollowingSibling},
                                   {"preceding-sibling", Axis::PrecedingSibling},
                                   {"following", Axis::Following},
                                   {"preceding", Axis::Preceding},
                                   {"self", Axis::Self}};

// The first "::"; the end where there is none.
Unit findColons(Unit begin, Unit end) {
    for (Unit at = begin;; ++at) {
        at = std::find(at, end, u':');
        if (at == end || (at + 1 != end && at[1] == u':')) return at;
    }
}

}  // namespace

bool Step::read(const PathText& text, Unit& at, Unit end, PathError& error) {
    for (; at != end && *at == u'/'; ++slashes) {
        if (++at == end) return error.set(XPath::DOUBLE_SLASH_AT_THE_END_NOT_ALLOWED, u"//");
    }
    whole.begin = at;
    const Unit nameEnd = afterNCChars(at, end);
    const bool isWord = readWord(nameEnd, end);
    if (!isWord) findEnd(text, nameEnd, end);
    isLast = whole.end == end;
    at = isLast ? end : whole.end + 1;
    if (!isLast && at == end) {
        return error.set(XPath::SLASH_AT_END_NOT_ALLOWED, text.written(whole.begin, end));
    }
    if (isWord) return readTest(text, nameEnd, error);
    return extractPredicates(text, error) && extractAxis(text, nameEnd, error);
}

// Most steps are a name, with a prefix or without one. One pass finds out and says where it ends.
inline bool Step::readWord(Unit nameEnd, Unit end) {
    const bool hasPrefix = nameEnd != end && *nameEnd == u':';
    headEnd = hasPrefix ? afterNCChars(nameEnd + 1, end) : nameEnd;
    whole.end = headEnd;
    return headEnd == end || *headEnd == u'/';
}

// A slash ends the step where as many brackets were closed as opened. A bracket that is closed without being opened
// counts too: no slash ends the step then until one more is opened.
void Step::findEnd(const PathText& text, Unit nameEnd, Unit end) {
    headEnd = nullptr;
    long open = 0;
    Unit at = nameEnd;
    for (; at != end && (*at != u'/' || open != 0); at = afterNCChars(at, end)) {
        const Unit after = text.after(at);
        if (*at == u'[' && headEnd == nullptr) headEnd = at;
        if (*at == u'[' && (open < 0 || after == at + 1)) {
            ++open;
            ++at;
        } else {
            if (*at == u']') --open;
            at = after;
        }
    }
    whole.end = at;
    if (headEnd == nullptr) headEnd = at;
}

bool Step::extractPredicates(const PathText& text, PathError& error) {
    Unit last = headEnd;
    for (Unit at = headEnd; at != whole.end;) {
        if (*at != u'[') {
            return error.set(XPath::ILLEGAL_CHAR_AFTER_PREDICATE, text.written(last, at));
        }
        const Unit after = text.after(at);
        if (after == at + 1 || after > whole.end) {
            return error.set(XPath::MISSING_CLOSING_BRACKET_AFTER_PREDICATE, text.written(at, whole.end));
        }
        last = at;
        predicates.push_back({at + 1, after - 1});
        at = after;
    }
    return true;
}

bool Step::extractAxis(const PathText& text, Unit nameEnd, PathError& error) {
    Unit begin = whole.begin;
    const Unit separator = findColons(nameEnd, headEnd);
    if (separator != headEnd) {
        const auto row = std::find_if(std::begin(kAxisNames), std::end(kAxisNames),
                                      [&](const AxisName& name) { return equals(whole.begin, separator, name.text); });
        if (row == std::end(kAxisNames)) return error.set(XPath::NO_VALID_AXIS, text.written(whole.begin, headEnd));
        axis = row->axis;
        begin = separator + 2;
    } else if (startsWith(whole.begin, headEnd, "@")) {
        axis = Axis::Attribute;
        begin = whole.begin + 1;
    } else {
        return readTest(text, nameEnd, error);
    }
    testBegin = begin;
    return test.read(text, {begin, afterNCChars(begin, headEnd), headEnd}, error);
}

// Reads a step without an axis before its test.
bool Step::readTest(const PathText& text, Unit nameEnd, PathError& error) {
    const bool parent = equals(whole.begin, headEnd, "..");
    if (parent || equals(whole.begin, headEnd, ".")) {
        axis = parent ? Axis::Parent : Axis::Self;
        return true;  // tests for any node, as a test does that was not read
    }
    testBegin = whole.begin;
    return test.read(text, {whole.begin, nameEnd, headEnd}, error);
}

bool Step::isReverse() const {
    return axis == Axis::Parent || axis == Axis::Ancestor || axis == Axis::PrecedingSibling ||
           axis == Axis::Preceding || axis == Axis::AncestorOrSelf;
}

OrvSys::Uni16String Step::withAxis(const PathText& text) const { return text.written(whole.begin, headEnd); }

OrvSys::Uni16String Step::withPredicates(const PathText& text) const {
    const OrvSys::Uni16String afterAxis = testBegin == nullptr ? u"node()" : text.written(testBegin, headEnd);
    return afterAxis + text.written(headEnd, whole.end);
}

}  // namespace Xml
