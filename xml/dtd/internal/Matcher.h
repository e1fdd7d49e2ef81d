#pragma once

#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/internal/Repetitions.h"
#include "xml/dtd/internal/Verdicts.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

class ChildrenSpec;
class ChoiceSpec;
class ContentSpec;
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
// The rule is a recursion: an element asks its model, the model its particles, a name validates the child, and so on
// down the document. Here every step of it is a frame on one stack in the heap, in the same order: links are set and
// models of callers are asked when and where the recursion would. A document or a model may be as deep as memory holds.
// Only code of callers (a model, particle or element class of their own) is called, and may call back, which starts a
// matcher of its own.
//
// What an element has come out as is remembered by Verdicts, what a nested repetition has come out as by Repetitions.
class Matcher {
public:
    Matcher() = default;
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

    enum class Stage : std::uint8_t {
        Fresh,        // not begun
        Inside,       // its inner step is under way, or has come out
        InsideNamed,  // Choice: so is the one leading name that the child can match
    };

    // Of a Repeated step: whether passes may follow the first, and then, whether those are of a repetition within
    // another one.
    enum class Passes : std::uint8_t { One, Many, ManyNested };

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
        Stage stage = Stage::Fresh;
        Passes passes = Passes::One;  // Repeated
        std::uint32_t firstPass = 0;  // Repeated, ManyNested: the number of its first pass
        const void* subject;
        union {
            std::size_t number;
            const Dtd* dtd;
        };
        ChildQueue queue;
    };

    bool matchGroup(Step step, const GroupSpec& group, ChildQueue& children);
    bool run();
    void push(Step step, const void* subject, const ChildQueue& itsQueue);

    // These begin a step: true when its outcome is known at once (in `matched`), else its frame is on the stack. They
    // begin no element or group within it, or they would call each other as deep as those are nested.
    bool beginElement(const Dtd* dtd, Element& element);
    bool matchPlain(const ContentSpec& model, NodeSpan children);
    bool beginRepeated(const ChildrenSpec& spec);
    bool beginParticle(const CpSpec& particle);
    bool beginName(const NameSpec& name);

    // These start the step on top, or go on with it when its inner step has come out as `matched`. When the step has
    // its own outcome, that is in `matched` and its frame is gone.
    void resume();
    void resumeElement();
    void resumeMixed();
    void resumeRepeated();
    void resumeChoice();
    void resumeSequence();
    void finish(bool outcome);
    void finishRepeated(bool outcome);

    const Outcome* recall(const ChildrenSpec& spec) const;
    void keepEnd(const ChildrenSpec& spec, const ChildQueue& start, bool outcome);
    void giveUp(const ChildQueue& before);

    std::vector<Frame> frames;
    ChildQueue queue;  // what the particles on the stack take from
    bool matched = false;

    Verdicts verdicts;
    Repetitions repetitions;
};

}  // namespace Xml
