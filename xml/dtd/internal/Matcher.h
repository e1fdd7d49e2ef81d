#pragma once

#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ContentSpec.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Xml {

class ChildrenSpec;
class ChoiceSpec;
class CpSpec;
class Dtd;
class Element;
class GroupSpec;
class MixedSpec;
class NameSpec;
class Object;
class SeqSpec;

// Matches children against content models and validates the elements that the models ask for.
//
// The told way is a recursion: an element asks its model, the model its particles, a name validates the child, and so on
// down the document. Here every step of it is a frame on one stack in the heap, in the same order: links are set and models
// of callers are asked when and where the recursion would. A document or a model may be as deep as memory holds. Only code of
// callers (a model, particle or element class of their own) is called, and may call back, which starts a matcher of its own.
//
// An element is decided once in a run (the outermost validation by one Dtd): its verdict stays with it until the run ends.
// That keeps alternatives that try the same children again from costing 2^depth. Only where a caller's models of two Dtds take
// turns does each of these decide it again, since the other one has set links meanwhile. Linking a subtree goes over it once for
// the same reason: an element remembers that everything below it has been linked already.
//
// A repetition within another one is tried in front of a child once: "((a*, b) | a)*" would look at all that follows from
// every "a" again, and nested ones would multiply. What came of it is noted for each place where a pass began, as it would
// have come out the same from there; nobody asks for it before a group gives up something that it had taken. Only where it
// ended is it asked for at once, by the repetitions around it: so the ChildrenSpec itself keeps that, which costs no memory
// for each child.
class Matcher {
public:
    Matcher() = default;
    ~Matcher();
    Matcher(const Matcher&) = delete;
    Matcher& operator=(const Matcher&) = delete;

    // What the operations of these names do: Dtd::validate, and validate of the library's own models and particles.
    bool validateElement(const Dtd& dtd, Element& element);
    bool matchModel(const MixedSpec& model, const std::vector<Object*>& children);
    bool matchModel(const ChildrenSpec& model, const std::vector<Object*>& children);
    bool matchParticle(const NameSpec& name, ChildQueue& children);
    bool matchParticle(const ChoiceSpec& choice, ChildQueue& children);
    bool matchParticle(const SeqSpec& sequence, ChildQueue& children);
    bool matchRepeated(const ChildrenSpec& spec, ChildQueue& children);

private:
    enum class Step : std::uint8_t { Element, Mixed, Repeated, Choice, Sequence };

    // One step under way. What `subject`, `number` and `queue` are depends on the step:
    //   Element   the element; its Dtd in `dtd`; the queue of the enclosing model, to come back to
    //   Mixed     the model; the children still to look at
    //   Repeated  the ChildrenSpec; the number of passes; the queue before the current pass
    //   Choice    the group; the number of the alternative being tried; the queue before it
    //   Sequence  the group; the number of the member being matched
    struct Frame {
        Frame(Step itsStep, const void* itsSubject, const ChildQueue& itsQueue)
            : step(itsStep), subject(itsSubject), number(0), queue(itsQueue) {}

        Step step;
        bool started = false;
        bool alone = false;           // Choice: the other leading names need not be tried
        bool nested = false;          // Repeated: within another one
        std::uint32_t firstPass = 0;  // Repeated, nested: its first in `passes`
        const void* subject;
        union {
            std::size_t number;
            const Dtd* dtd;
        };
        ChildQueue queue;
    };

    // A repetition and the child in front of which it began.
    struct Place {
        const ChildrenSpec* spec;
        const Object* child;
        bool operator==(const Place& other) const { return spec == other.spec && child == other.child; }
    };
    struct PlaceHash {
        std::size_t operator()(const Place& place) const {
            return 31 * std::hash<const void*>()(place.spec) + std::hash<const void*>()(place.child);
        }
    };
    struct Outcome {
        bool matched;
        ChildQueue left;
    };

    // What is to come back to behind an element's model.
    struct Enclosing {
        std::uint32_t repetitions;
        std::size_t outcomes;
    };

    bool matchGroup(Step step, const GroupSpec& group, ChildQueue& children);
    bool run();
    void push(Step step, const void* subject, const ChildQueue& itsQueue);

    // These begin a step: true when its outcome is known at once (in `matched`), else its frame is on the stack. They begin
    // no element or group within it, or they would call each other as deep as those are nested.
    bool beginElement(const Dtd* dtd, Element& element);
    bool beginRepeated(const ChildrenSpec& spec);
    bool beginParticle(const CpSpec& particle);
    bool beginName(const NameSpec& name);

    // These start the step on top, or go on with it when its inner step has come out as `matched`. When the step has its own
    // outcome, that is in `matched` and its frame is gone.
    void resume();
    void resumeElement();
    void resumeMixed();
    void resumeRepeated();
    void resumeChoice();
    void resumeSequence();
    void finish(bool outcome);
    void finishRepeated(bool outcome);
    bool recall(const ChildrenSpec& spec);
    void note(const ChildrenSpec& spec, const ChildQueue& at, bool outcome);
    void giveUp(const ChildQueue& before);

    bool attributesFit(const Dtd& dtd, Element& element);
    void decide(const Dtd& dtd, Element& element, bool fits);
    void link(Object& node, const Dtd* dtd);
    void linkSubtree(Element& top, const Dtd* dtd);
    std::uint64_t runOf(const Dtd& dtd);

    std::vector<Frame> frames;
    ChildQueue queue;  // what the particles on the stack take from
    bool matched = false;

    std::uint32_t repetitions = 0;                            // under way in the model of the innermost element
    std::vector<Enclosing> enclosing;                         // one an element under way
    std::vector<ChildQueue> passes;                           // where those of the nested repetitions under way began
    std::vector<std::pair<Place, Outcome>> outcomes;          // of nested repetitions, while nobody gives up
    std::unordered_map<Place, Outcome, PlaceHash> outcomeOf;  // the same, once somebody did

    // Whether code of callers has been called: what it does, and answers, may differ each time, so nothing is left out then.
    bool foreign = false;
    std::vector<const Dtd*> runs;  // that this matcher began
};

}  // namespace Xml
