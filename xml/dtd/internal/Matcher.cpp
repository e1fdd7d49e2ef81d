#include "xml/dtd/internal/Matcher.h"

#include "xml/dom/Element.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/internal/PlainModels.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <limits>

namespace Xml {

// --- Ways in ---

bool Matcher::validateElement(const Dtd& dtd, Element& element) {
    return beginElement(&dtd, element) ? matched : run();
}

bool Matcher::matchModel(const MixedSpec& model, const std::vector<Object*>& children) {
    push(Step::Mixed, &model, ChildQueue(children));
    return run();
}

bool Matcher::matchModel(const ChildrenSpec& model, const std::vector<Object*>& children) {
    ChildQueue all(children);
    return matchRepeated(model, all) && all.empty();
}

bool Matcher::matchParticle(const NameSpec& name, ChildQueue& children) {
    queue = children;
    const bool outcome = beginName(name) ? matched : run();
    if (outcome) children.pop();
    return outcome;
}

bool Matcher::matchParticle(const ChoiceSpec& choice, ChildQueue& children) {
    return matchGroup(Step::Choice, choice, children);
}

bool Matcher::matchParticle(const SeqSpec& sequence, ChildQueue& children) {
    return matchGroup(Step::Sequence, sequence, children);
}

bool Matcher::matchGroup(Step step, const GroupSpec& group, ChildQueue& children) {
    queue = children;
    push(step, &group, queue);
    const bool outcome = run();
    children = queue;
    return outcome;
}

bool Matcher::matchRepeated(const ChildrenSpec& spec, ChildQueue& children) {
    queue = children;
    const bool outcome = beginRepeated(spec) ? matched : run();
    children = queue;
    return outcome;
}

// --- The stack ---

bool Matcher::run() {
    while (!frames.empty()) resume();
    return matched;
}

void Matcher::push(Step step, const void* subject, const ChildQueue& itsQueue) {
    frames.emplace_back(step, subject, itsQueue);
}

void Matcher::resume() {
    switch (frames.back().step) {
    case Step::Element: return resumeElement();
    case Step::Mixed: return resumeMixed();
    case Step::Repeated: return resumeRepeated();
    case Step::Choice: return resumeChoice();
    case Step::Sequence: break;
    }
    return resumeSequence();
}

void Matcher::finish(bool outcome) {
    frames.pop_back();
    matched = outcome;
}

// --- Elements ---

bool Matcher::beginElement(const Dtd* dtd, Element& element) {
    matched = false;
    if (dtd == nullptr) return true;
    repetitions.noteDecision(*dtd);
    const Verdicts::Verdict verdict = verdicts.of(*dtd, element);
    if (verdict != Verdicts::Verdict::None) {
        matched = verdict == Verdicts::Verdict::Valid;
        return true;
    }
    const ContentSpec* const model = DtdAccess::findModel(*dtd, element.getName());
    if (model == nullptr) {
        matched = verdicts.decide(*dtd, element, false);
        return true;
    }

    const bool isMixed = isExactlySpec<MixedSpec>(*model);
    const NodeSpan children = NodeAccess::children(element);
    if (!isMixed && !isExactlySpec<ChildrenSpec>(*model)) {
        matched = verdicts.decide(*dtd, element, matchPlain(*model, children));
        return true;
    }
    const ChildQueue all(children.begin(), children.end());
    push(Step::Element, &element, queue);
    frames.back().dtd = dtd;
    repetitions.enterElement();
    if (isMixed) {
        queue = ChildQueue();
        push(Step::Mixed, static_cast<const MixedSpec*>(model), all);
    } else {
        queue = all;
        push(Step::Repeated, static_cast<const ChildrenSpec*>(model), queue);
    }
    return false;
}

// A model that has no steps of its own here: one of the library's plain ones, or a caller's.
bool Matcher::matchPlain(const ContentSpec& model, NodeSpan children) {
    if (isExactlySpec<EmptySpec>(model)) return isEmptyContent(children);
    if (isExactlySpec<AnySpec>(model)) return true;
    if (isExactlySpec<CharSpec>(model)) return matchCharData(children, SpecAccess::dtd(model));
    verdicts.noteCallersCode();
    return model.validate(contentOf(children));
}

void Matcher::resumeElement() {
    const Frame frame = frames.back();
    const bool fits = matched && queue.empty();
    queue = frame.queue;
    frames.pop_back();
    repetitions.leaveElement();
    matched = verdicts.decide(*frame.dtd, *static_cast<Element*>(const_cast<void*>(frame.subject)), fits);
}

// --- The mixed model ---

void Matcher::resumeMixed() {
    const auto& model = *static_cast<const MixedSpec*>(frames.back().subject);
    const Dtd* const dtd = SpecAccess::dtd(model);
    const std::size_t mine = frames.size() - 1;
    if (frames[mine].stage != Stage::Fresh) {
        if (!matched) return finish(false);
        verdicts.link(*frames[mine].queue.front(), dtd);
        frames[mine].queue.pop();
    }
    frames[mine].stage = Stage::Inside;
    while (!frames[mine].queue.empty()) {
        Object* const child = frames[mine].queue.front();
        if (isElement(*child)) {
            auto& element = static_cast<Element&>(*child);
            if (!SpecAccess::hasName(model, element.getName())) return finish(false);
            if (!beginElement(dtd, element)) return;
            if (!matched) return finish(false);
            verdicts.link(element, dtd);
        } else {
            if (!isCharData(*child)) return finish(false);
            child->setDtd(dtd);
        }
        frames[mine].queue.pop();
    }
    return finish(true);
}

// --- Particles ---

bool Matcher::beginParticle(const CpSpec& particle) {
    if (isExactlySpec<NameSpec>(particle)) return beginName(static_cast<const NameSpec&>(particle));
    if (const GroupSpec* group = SpecAccess::asGroup(particle)) {
        push(isExactlySpec<ChoiceSpec>(particle) ? Step::Choice : Step::Sequence, group, queue);
        return false;
    }
    verdicts.noteCallersCode();
    matched = particle.validate(queue);
    return true;
}

// Does not take the child: what asked does when it matched.
bool Matcher::beginName(const NameSpec& spec) {
    matched = false;
    const std::string& name = SpecAccess::name(spec);
    if (name.empty() || queue.empty() || !isElement(*queue.front())) return true;
    auto& element = static_cast<Element&>(*queue.front());
    return element.getName() != name || beginElement(SpecAccess::dtd(spec), element);
}

bool Matcher::beginRepeated(const ChildrenSpec& spec) {
    const std::size_t mine = frames.size();
    push(Step::Repeated, &spec, queue);
    resumeRepeated();
    return frames.size() == mine;
}

void Matcher::resumeRepeated() {
    const auto& spec = *static_cast<const ChildrenSpec*>(frames.back().subject);
    const CpSpec& particle = SpecAccess::particle(spec);
    const RepType repetition = SpecAccess::repetition(spec);
    const bool isName = isExactlySpec<NameSpec>(particle);
    const std::size_t mine = frames.size() - 1;
    const bool repeats = repetition == REP_ZERO_OR_MORE || repetition == REP_ONE_OR_MORE;
    if (frames[mine].stage == Stage::Fresh) {
        if (repeats) {
            frames[mine].passes = repetitions.anyUnderWay() ? Passes::ManyNested : Passes::Many;
            if (frames[mine].passes == Passes::ManyNested) {
                if (const Outcome* const known = recall(spec)) {
                    queue = known->left;
                    return finish(known->matched);
                }
                frames[mine].firstPass = repetitions.passCount();
                repetitions.beginPass(queue);
            }
            repetitions.begin();
        }
        frames[mine].stage = Stage::Inside;
        if (!beginParticle(particle)) return;
    }
    for (;;) {
        Frame& frame = frames[mine];
        const bool isNested = frame.passes == Passes::ManyNested;
        if (!matched) {
            giveUp(frame.queue);
            if (isNested) keepEnd(spec, frame.queue, repetition == REP_ZERO_OR_MORE);
            const bool fails = repetition == REP_ONCE || (repetition == REP_ONE_OR_MORE && frame.number == 0);
            if (!fails) queue = frame.queue;
            return repeats ? finishRepeated(!fails) : finish(!fails);
        }
        if (isName) queue.pop();
        if (!repeats) return finish(true);
        ++frame.number;
        if (queue.empty()) return finishRepeated(true);
        if (queue.size() == frame.queue.size()) {  // a pass that took nothing would go on for ever
            if (isNested) keepEnd(spec, frame.queue, true);
            return finishRepeated(true);
        }
        frame.queue = queue;
        if (isNested) {
            if (const Outcome* const known = recall(spec)) {
                queue = known->matched ? known->left : frame.queue;
                return finishRepeated(true);
            }
            repetitions.beginPass(queue);
        }
        if (!beginParticle(particle)) return;
    }
}

void Matcher::finishRepeated(bool outcome) {
    repetitions.end();
    const Frame& frame = frames.back();
    if (frame.passes == Passes::ManyNested) {
        const auto& spec = *static_cast<const ChildrenSpec*>(frame.subject);
        if (verdicts.areOfOwnCode()) {
            const bool needsOne = SpecAccess::repetition(spec) == REP_ONE_OR_MORE;
            const std::size_t matching = needsOne ? frame.number : std::numeric_limits<std::size_t>::max();
            repetitions.keepPasses(spec, frame.firstPass, matching, {outcome, queue});
        } else {
            repetitions.dropPasses(frame.firstPass);
        }
    }
    return finish(outcome);
}

// What is known to come of the nested repetition here.
const Outcome* Matcher::recall(const ChildrenSpec& spec) const {
    return verdicts.areOfOwnCode() ? repetitions.find(spec, queue) : nullptr;
}

// The nested repetition ends here with a pass that failed or took nothing; it would have come out so if it had begun
// here.
void Matcher::keepEnd(const ChildrenSpec& spec, const ChildQueue& start, bool outcome) {
    if (verdicts.areOfOwnCode()) repetitions.keepEnd(spec, start, {outcome, outcome ? start : queue});
}

// What comes back to `before` may try again what has been tried since.
void Matcher::giveUp(const ChildQueue& before) {
    if (queue.size() != before.size()) repetitions.giveUp();
}

void Matcher::resumeSequence() {
    const auto& members = SpecAccess::members(*static_cast<const GroupSpec*>(frames.back().subject));
    const std::size_t mine = frames.size() - 1;
    for (;;) {
        if (frames[mine].stage != Stage::Fresh && !matched) return finish(false);
        frames[mine].stage = Stage::Inside;
        if (frames[mine].number == members.size()) return finish(true);
        if (!beginRepeated(*members[frames[mine].number++])) return;
    }
}

void Matcher::resumeChoice() {
    const auto& choice = *static_cast<const ChoiceSpec*>(static_cast<const GroupSpec*>(frames.back().subject));
    const auto& members = SpecAccess::members(choice);
    const std::size_t mine = frames.size() - 1;
    for (;;) {
        Frame& frame = frames[mine];
        if (frame.stage == Stage::Fresh) {
            // Of the leading names only the one that the next child has can match.
            frame.stage = Stage::Inside;
            frame.number = SpecAccess::leadingCount(choice);
            if (!queue.empty() && isElement(*queue.front())) {
                const std::string& name = static_cast<const Element*>(queue.front())->getName();
                const std::size_t place = SpecAccess::findLeading(choice, name);
                if (place != NameIndex::kNone) {
                    frame.number = place;
                    frame.stage = Stage::InsideNamed;
                }
            }
        } else {
            if (matched) return finish(true);
            giveUp(frame.queue);
            queue = frame.queue;
            frame.number = frame.stage == Stage::InsideNamed ? SpecAccess::leadingCount(choice) : frame.number + 1;
            frame.stage = Stage::Inside;
        }
        if (frame.number == members.size()) break;
        if (!beginRepeated(*members[frame.number])) return;
    }
    if (!SpecAccess::charData(choice)) return finish(false);
    if (queue.empty()) return finish(true);
    if (!isCharData(*queue.front())) return finish(false);
    queue.pop();
    return finish(true);
}

}  // namespace Xml
