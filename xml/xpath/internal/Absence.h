#pragma once

#include "xml/xpath/XPath.h"
#include <algorithm>

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
    unsigned deepestCleared = 0;  // of the steps that found nothing before another found something

    void found() {
        anyFound = true;
        if (code != XPath::NODE_NOT_FOUND) return;
        deepestCleared = std::max(deepestCleared, depth);
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

    // As if what `later` recorded, beginning with an empty book, had been recorded here. Where a depth stands alone, finding
    // something clears it only behind a deeper step that found nothing.
    void append(const Absence& later) {
        if (code != XPath::NONE && code != XPath::NODE_NOT_FOUND) return;
        const Absence before = *this;
        if (later.depth > depth || (isDepthAlone() ? later.deepestCleared > depth : later.anyFound)) *this = later;
        anyFound = before.anyFound || later.anyFound;
        deepestCleared = std::max({before.deepestCleared, later.deepestCleared, later.anyFound ? before.depth : 0});
    }

    // Without its code, which GetValue(index) forgets.
    bool isDepthAlone() const { return code == XPath::NONE && depth > 0; }
};

}  // namespace Xml
