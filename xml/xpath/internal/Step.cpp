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
    return split(text, at, end, error) && extractPredicates(text, error) && extractAxis(text, error);
}

// A slash ends the step where as many brackets were closed as opened. A bracket that is closed without being opened
// counts too: no slash ends the step then until one more is opened.
bool Step::split(const PathText& text, Unit& next, Unit end, PathError& error) {
    Unit at = next;
    whole.begin = at;
    headEnd = nullptr;
    long open = 0;
    for (;;) {
        while (at != end && isNCChar(*at)) ++at;
        if (at == end || (*at == u'/' && open == 0)) break;
        if (*at == u'[' && headEnd == nullptr) headEnd = at;
        if (*at == u'[' && (open < 0 || !text.isClosedBracket(at))) {
            ++open;
            ++at;
        } else {
            if (*at == u']') --open;
            at = text.after(at);
        }
    }
    whole.end = at;
    if (headEnd == nullptr) headEnd = at;
    isLast = at == end;
    next = isLast ? at : at + 1;
    if (isLast || next != end) return true;
    return error.set(XPath::SLASH_AT_END_NOT_ALLOWED, text.written(whole.begin, end));
}

bool Step::extractPredicates(const PathText& text, PathError& error) {
    Unit last = headEnd;
    for (Unit at = headEnd; at != whole.end; at = text.after(at)) {
        if (*at != u'[') {
            return error.set(XPath::ILLEGAL_CHAR_AFTER_PREDICATE, text.written(last, at));
        }
        if (!text.isClosedBracket(at) || text.after(at) > whole.end) {
            return error.set(XPath::MISSING_CLOSING_BRACKET_AFTER_PREDICATE, text.written(at, whole.end));
        }
        last = at;
        predicates.push_back({at + 1, text.after(at) - 1});
    }
    return true;
}

bool Step::extractAxis(const PathText& text, PathError& error) {
    const bool parent = equals(whole.begin, headEnd, "..");
    if (parent || equals(whole.begin, headEnd, ".")) {
        axis = parent ? Axis::Parent : Axis::Self;
        return true;  // tests for any node, as a test does that was not read
    }
    testBegin = whole.begin;
    const Unit separator = findColons(whole.begin, headEnd);
    if (separator != headEnd) {
        const auto row = std::find_if(std::begin(kAxisNames), std::end(kAxisNames),
                                      [&](const AxisName& name) { return equals(whole.begin, separator, name.text); });
        if (row == std::end(kAxisNames)) return error.set(XPath::NO_VALID_AXIS, text.written(whole.begin, headEnd));
        axis = row->axis;
        testBegin = separator + 2;
    } else if (startsWith(whole.begin, headEnd, "@")) {
        axis = Axis::Attribute;
        testBegin = whole.begin + 1;
    }
    return test.read(text, testBegin, headEnd, error);
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
