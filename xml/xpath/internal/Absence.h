#pragma once

#include <algorithm>
#include <optional>

namespace Xml {

struct Step;

// A step that found nothing, and how an error names it.
struct Missed {
    enum class Name { WithAxis, WithPredicates };

    const Step* step;
    unsigned depth;  // of the step in the query, from 1
    Name name;
};

// What some steps, taken one after the other, leave to say about those that found nothing: the deepest one since a step
// last found something. NODE_NOT_FOUND names it.
//
// Absences of parts of a walk are put together as the parts are, so that one can be kept and used again.
// tests/xpath/AbsenceTest.cpp holds that.
class Absence {
public:
    void found() {
        anyFound_ = true;
        missed_.reset();
    }

    void foundNothing(const Missed& missed) {
        deepest_ = std::max(deepest_, missed.depth);
        if (!missed_ || missed.depth > missed_->depth) missed_ = missed;
    }

    // As if the steps of `later` had been taken after these.
    void append(const Absence& later) {
        if (later.anyFound_) missed_.reset();
        if (later.missed_ && (!missed_ || later.missed_->depth > missed_->depth)) missed_ = later.missed_;
        anyFound_ = anyFound_ || later.anyFound_;
        deepest_ = std::max(deepest_, later.deepest_);
    }

    const std::optional<Missed>& missed() const { return missed_; }

    // Whether any step found something.
    bool anyFound() const { return anyFound_; }

    // The depth of the deepest step that found nothing, also where one found something after it; 0 for none.
    unsigned deepest() const { return deepest_; }

private:
    std::optional<Missed> missed_;
    bool anyFound_ = false;
    unsigned deepest_ = 0;
};

}  // namespace Xml
