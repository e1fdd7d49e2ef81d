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

// What is noted of a node that is written, where the positions are known: it begins there; it has ended there. Where it
// ends is not known before it is written, and never if it cannot be.
inline void beginRecord(const Marks& marks, int position) { marks.record(position, OutStreamAccess::kUnrecordable); }

inline void endRecord(const Marks& marks, int position) {
    marks.record(marks.writeStart(), position);
    marks.setDirty(false);
}

inline bool beginWriting(const Marks& marks, OutStream& out) {
    const int position = OutStreamAccess::position(out);
    if (Object::useRWOptimization && !marks.isDirty() &&
        OutStreamAccess::standsAt(out, position, marks.writeStart(), marks.writeEnd())) {
        out.setPosition(marks.writeEnd());
        return false;
    }
    beginRecord(marks, position);
    return true;
}

inline void endWriting(const Marks& marks, OutStream& out) { endRecord(marks, OutStreamAccess::position(out)); }

}  // namespace Xml
