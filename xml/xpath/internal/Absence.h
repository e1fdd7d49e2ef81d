#pragma once

#include "xml/xpath/XPath.h"

namespace Xml {

struct Step;

// The book that an evaluation keeps of steps that found nothing: which one NODE_NOT_FOUND names. That is the deepest one since
// a step last found something. Another error that stands already is left alone.
struct Absence {
    XPath::ErrorCode code = XPath::NONE;
    unsigned depth = 0;
    const Step* step = nullptr;  // null where the one that stood before this evaluation still stands
    bool withPredicates = false;
    bool anyFound = false;

    void found() {
        anyFound = true;
        if (code != XPath::NODE_NOT_FOUND) return;
        code = XPath::NONE;
        depth = 0;
    }

    void foundNothing(const Step& itsStep, unsigned itsDepth, bool itsPredicates) {
        if (depth >= itsDepth || (code != XPath::NONE && code != XPath::NODE_NOT_FOUND)) return;
        code = XPath::NODE_NOT_FOUND;
        depth = itsDepth;
        step = &itsStep;
        withPredicates = itsPredicates;
    }

    // As if what `later` recorded, beginning with an empty book, had been recorded here.
    void append(const Absence& later) {
        if (code != XPath::NONE && code != XPath::NODE_NOT_FOUND) return;
        const bool anyFoundBefore = anyFound;
        if (later.anyFound || later.depth > depth) *this = later;
        anyFound = anyFound || anyFoundBefore;
    }

    // Whether append would tell the same. Not where a depth stands without its code: then finding something does not clear it.
    bool canAppend() const { return code != XPath::NONE || depth == 0; }
};

}  // namespace Xml
