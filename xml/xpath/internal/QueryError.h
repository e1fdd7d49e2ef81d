#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/XPath.h"
#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/PathError.h"

namespace Xml {

class PathText;

// The error that a query object holds: a code, the part of a path that it is about, and how deep the step is that
// NODE_NOT_FOUND names. The depth outlives the code where only that is forgotten. tests/xpath/XPathTest.cpp holds it.
class QueryError {
public:
    // The localised text of a code.
    static OrvSys::Uni16String textOf(XPath::ErrorCode code);

    XPath::ErrorCode code() const { return code_; }

    // The localised text.
    OrvSys::Uni16String message() const;

    void reset();

    // For returning at once.
    bool set(XPath::ErrorCode code, OrvSys::Uni16String&& part);

    // Sets the code and leaves the rest.
    void setCode(XPath::ErrorCode code) { code_ = code; }

    // The depth where it stands without its code; else 0.
    unsigned depthAlone() const { return code_ == XPath::NONE ? depth : 0; }

    // Takes over what a query left: first which step found nothing, then what ended it. A step does not count where
    // another error stands, nor one that is no deeper than that of an earlier query where nothing was found since. All
    // or, where memory runs out, nothing is set.
    void takeOver(const Absence& absence, const PathError& error, const PathText& text);

private:
    bool counts(const Absence& absence) const;

    XPath::ErrorCode code_ = XPath::NONE;
    unsigned depth = 0;
    OrvSys::Uni16String part_;
};

}  // namespace Xml
