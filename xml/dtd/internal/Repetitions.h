#pragma once

#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/internal/OutcomeStack.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

class Dtd;

// What came of repetitions within repetitions, so that each is tried at a child once. That is control of cost: a
// matcher that finds nothing here does the same. Without it "((a*, b) | a)*" would look at all that follows from every
// "a" again, and nested ones would multiply.
//
// A repetition is asked for again in two cases. The repetitions around it try it again where it ended, each of them:
// that is kept for one place, the last. And a group that fails gives up what was taken in it, which other alternatives
// then try: so for each pass it is kept what would have come out from its start on. Nothing asks for these before
// something is given up, and they are indexed then.
//
// All this is about the children of one element and is dropped with it. What came of something may stand for trying it
// again only where that would set no link otherwise. So it may where one Dtd has decided children ever since it was
// begun: each child then has the links that deciding it by this Dtd again would set. Where another Dtd takes its turn,
// its links come over those: what has been kept is dropped then, and passes under way are not kept.
class Repetitions {
public:
    // The children of an element are matched: what is kept is about them, until it is left.
    void enterElement();
    void leaveElement();

    // A name of this Dtd has a child decided.
    void noteDecision(const Dtd& dtd) {
        if (here.decidedBy != &dtd) turnTo(dtd);
    }

    // Repetitions under way, of the element.
    bool anyUnderWay() const { return here.underWay > 0; }
    void begin() { ++here.underWay; }
    void end() { --here.underWay; }

    // Of those within another one: where each pass begins. They are numbered on.
    std::uint32_t passCount() const { return static_cast<std::uint32_t>(passes.size()); }
    void beginPass(const ChildQueue& start) { passes.push_back(start); }

    // The repetition ends with the pass begun last, from here, which failed or took nothing.
    void keepEnd(const ChildrenSpec& spec, const ChildQueue& start, const Outcome& outcome);

    // Ends the passes from number `first` on: they are those of the repetition, which has come out so. From each of
    // them the outcome would have been the same, but from the start of the last one on where that one failed and the
    // repetition needs one that matches: `matching` is the number of passes that come out as `outcome`.
    void keepPasses(const ChildrenSpec& spec, std::uint32_t first, std::size_t matching, const Outcome& outcome);
    void dropPasses(std::uint32_t first) {
        passes.resize(first);
        if (here.firstOfOneDtd > first) here.firstOfOneDtd = first;  // those that get these numbers are new
    }

    // A group has failed after it took something: what has been tried since may be tried again.
    void giveUp();

    // What is known to come of the repetition here; null if nothing is.
    const Outcome* find(const ChildrenSpec& spec, const ChildQueue& start) const {
        if (ends.size() > here.firstEnd && ends.lastStart() == start) {
            if (const Outcome* const outcome = ends.find(spec, start)) return outcome;
        }
        return here.indexed > here.firstOutcome ? outcomes.find(spec, start) : nullptr;
    }

private:
    struct Level {
        const Dtd* decidedBy = nullptr;  // last
        std::size_t firstEnd = 0;
        std::size_t firstOutcome = 0;
        std::size_t indexed = 0;          // the outcomes before this one can be found
        std::uint32_t firstOfOneDtd = 0;  // passes from this number on began after the last turn
        std::uint32_t underWay = 0;
    };

    void turnTo(const Dtd& dtd);
    void forget();

    Level here;
    std::vector<Level> outer;        // of the elements around
    std::vector<ChildQueue> passes;  // of the repetitions under way
    OutcomeStack ends;               // at one place an element
    OutcomeStack outcomes;
};

}  // namespace Xml
