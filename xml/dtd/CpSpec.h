#pragma once

#include "xml/Export.h"

namespace Xml {

class ChildQueue;
class Dtd;
class OutStream;

// A content particle: what a children model is made of. A name, a choice or a sequence.
//
// Matching is greedy and commits: a particle takes all it can from the head of the queue, and what has matched is not
// tried another way when something after it fails.
class ORVXML_API CpSpec {
public:
    explicit CpSpec(Dtd* dtd);
    CpSpec& operator=(const CpSpec&) = delete;
    virtual ~CpSpec();

    // Takes what matches from the head of the queue; returns whether it matched. After a failure the queue may have
    // lost nodes: what tries an alternative takes a copy first.
    virtual bool validate(ChildQueue& children) const = 0;

    // Writes the particle as it stands in a declaration; `outermost` when it is the whole model.
    virtual void toStream(OutStream& out, bool outermost) const = 0;

    // A deep copy that belongs to `dtd`; the caller owns it.
    virtual CpSpec* clone(Dtd* dtd) const = 0;

protected:
    CpSpec(const CpSpec&) = default;

private:
    friend struct SpecAccess;

    Dtd* dtd;
};

}  // namespace Xml
