#pragma once

#include "xml/dom/Marks.h"
#include "xml/dom/Object.h"
#include "xml/stream/internal/OutStreamAccess.h"

namespace Xml {

using internal::Marks;

// The rule of rewriting: with the RW optimisation on, a node that has not changed and whose record begins where the
// stream stands is there already, and the stream moves past it. Any other is written, and its record made anew.
//
//     if (!beginWriting(marks, out)) return;  // it is there
//     ...                                     // write it
//     endWriting(marks, out);

inline bool beginWriting(const Marks& marks, OutStream& out) {
    const int position = OutStreamAccess::position(out);
    if (Object::useRWOptimization && !marks.isDirty() &&
        OutStreamAccess::standsAt(out, position, marks.writeStart(), marks.writeEnd())) {
        out.setPosition(marks.writeEnd());
        return false;
    }
    // Where it ends is not known before it is written, and never if it cannot be.
    marks.record(position, OutStreamAccess::kUnrecordable);
    return true;
}

inline void endWriting(const Marks& marks, OutStream& out) {
    marks.record(marks.writeStart(), OutStreamAccess::position(out));
    marks.setDirty(false);
}

}  // namespace Xml
