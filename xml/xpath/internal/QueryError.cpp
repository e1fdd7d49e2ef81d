#include "xml/xpath/internal/QueryError.h"

#include "orvsys/Localization.h"
#include "xml/xpath/internal/PathText.h"
#include "xml/xpath/internal/Step.h"
#include <iterator>
#include <string>
#include <utility>

namespace Xml {

namespace {

// The names of the codes, in their order.
constexpr const char* kErrorNames[] = {"NONE",
                                       "INDEX OUT OF BOUNDS",
                                       "NODE NOT FOUND",
                                       "NODE CONTAINS NO DATA",
                                       "DOUBLE SLASH AT THE END NOT ALLOWED",
                                       "NO XPATH SPECIFIED",
                                       "ILLEGAL CHAR AFTER ATTRIBUTEVALUE",
                                       "ILLEGAL CHAR AFTER FUNCTION",
                                       "ILLEGAL CHAR AFTER KINDTEST",
                                       "ILLEGAL CHAR IN NUMBER",
                                       "ILLEGAL CHAR AFTER PREDICATE",
                                       "NO VALID ATTRIBUTE NAME",
                                       "NO VALID NAME OR TEST",
                                       "RELATIVE XPATH EXPRESSION NOT ALLOWED WITHOUT CONTEXT NODES",
                                       "SLASH AT END NOT ALLOWED",
                                       "NO VALID AXIS",
                                       "NO VALID INITIAL AXIS",
                                       "NO VALID COMPARISON OPERATOR",
                                       "MISSING QUOTE BEFORE ATTRIBUTE VALUE",
                                       "MISSING QUOTE AFTER ATTRIBUTE VALUE",
                                       "MISSING CLOSING BRACKET AFTER PREDICATE",
                                       "MISSING CLOSING PARENTHESE AFTER FUNCTION",
                                       "MISSING OPENING PARENTHESE AFTER FUNCTION",
                                       "MISSING CLOSING PARENTHESE AFTER KIND TEST",
                                       "MISSING OPENING PARENTHESE AFTER KIND TEST",
                                       "FIRST LAST OR NUMBER AFTER POSITION EXPECTED",
                                       "CONTEXT IS NOT A NODE",
                                       "EXPRESSION NESTED TOO DEEPLY",
                                       "EXPRESSION TOO COSTLY"};
static_assert(std::size(kErrorNames) == XPath::EXPRESSION_TOO_COSTLY + 1);

// Whether the message of an error ends with the part of the path that caused it.
bool namesAPart(XPath::ErrorCode code) {
    switch (code) {
    case XPath::NONE:
    case XPath::INDEX_OUT_OF_BOUNDS:
    case XPath::NO_XPATH_SPECIFIED:
    case XPath::CONTEXT_IS_NOT_A_NODE:
    case XPath::EXPRESSION_NESTED_TOO_DEEPLY:
    case XPath::EXPRESSION_TOO_COSTLY: return false;
    default: return true;
    }
}

OrvSys::Uni16String nameOf(const Missed& missed, const PathText& text) {
    return missed.name == Missed::Name::WithAxis ? missed.step->withAxis(text) : missed.step->withPredicates(text);
}

}  // namespace

OrvSys::Uni16String QueryError::textOf(XPath::ErrorCode code) {
    return OrvSys::Localization::GetString(std::string("xpat/xerr/") + kErrorNames[code], "XPath", {});
}

OrvSys::Uni16String QueryError::message() const {
    OrvSys::Uni16String text = textOf(code_);
    if (namesAPart(code_)) text += u" --> " + part_;
    return text;
}

void QueryError::reset() {
    code_ = XPath::NONE;
    depth = 0;
    part_.clear();
}

bool QueryError::set(XPath::ErrorCode code, OrvSys::Uni16String&& part) {
    code_ = code;
    part_ = std::move(part);
    return false;
}

// A step that is found clears the code of one that was not, and the depth with it; a depth that stands alone only after
// a deeper step that found nothing, which brings the code back.
bool QueryError::counts(const Absence& absence) const {
    if (code_ != XPath::NONE && code_ != XPath::NODE_NOT_FOUND) return false;
    if (depthAlone() > 0) return absence.deepest() > depth;
    return absence.anyFound() || (absence.missed() && absence.missed()->depth > depth);
}

void QueryError::takeOver(const Absence& absence, const PathError& error, const PathText& text) {
    const bool absenceCounts = counts(absence);
    const Missed* const missed = absenceCounts && absence.missed() ? &*absence.missed() : nullptr;
    const bool failed = error.code != XPath::NONE;
    OrvSys::Uni16String part;
    if (failed) {
        part = error.text;
    } else if (missed != nullptr) {
        part = nameOf(*missed, text);
    }
    if (absenceCounts) {
        code_ = missed != nullptr ? XPath::NODE_NOT_FOUND : XPath::NONE;
        depth = missed != nullptr ? missed->depth : 0;
    }
    if (failed) code_ = error.code;
    if (failed || missed != nullptr) part_ = std::move(part);
}

}  // namespace Xml
