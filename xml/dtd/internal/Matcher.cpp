#include "xml/dtd/internal/Matcher.h"

#include "xml/dom/internal/Linking.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <algorithm>
#include <atomic>
#include <utility>

namespace Xml {

namespace {

// What an element keeps of a run: its number in the upper bits, and these.
constexpr std::uint64_t kValid = 1;
constexpr std::uint64_t kLinked = 2;  // with its whole subtree
constexpr int kRunShift = 2;

// Runs of different threads, over trees of their own, need not agree on anything but on being different.
std::uint64_t newRun() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

// Of the models without steps of their own here.
bool isOwn(const ContentSpec& model) {
    return isExactlySpec<EmptySpec>(model) || isExactlySpec<AnySpec>(model) || isExactlySpec<CharSpec>(model);
}

}  // namespace

Matcher::~Matcher() {
    for (const Dtd* dtd : runs) dtd->validationRun = 0;
}

std::uint64_t Matcher::runOf(const Dtd& dtd) {
    if (dtd.validationRun == 0) {
        runs.push_back(&dtd);
        dtd.validationRun = newRun();
    } else if (!foreign && std::find(runs.begin(), runs.end(), &dtd) == runs.end()) {
        foreign = true;  // begun by the matcher that called a caller's code, which called this one
    }
    return dtd.validationRun;
}

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
    const std::uint64_t verdict = NodeAccess::verdict(element);
    if (verdict >> kRunShift == runOf(*dtd)) {
        matched = (verdict & kValid) != 0;
        return true;
    }
    const auto declaration = dtd->elements.find(element.getName());
    if (declaration == dtd->elements.end()) {
        decide(*dtd, element, false);
        return true;
    }

    const ContentSpec& model = *declaration->second;
    const bool isMixed = isExactlySpec<MixedSpec>(model);
    if (!isMixed && !isExactlySpec<ChildrenSpec>(model)) {
        if (!isOwn(model)) foreign = true;
        decide(*dtd, element, model.validate(NodeAccess::childList(element)));
        return true;
    }
    const NodeSpan children = NodeAccess::children(element);
    const ChildQueue all(children.begin(), children.end());
    push(Step::Element, &element, queue);
    frames.back().dtd = dtd;
    enclosing.push_back({std::exchange(repetitions, 0), outcomes.size()});
    if (isMixed) {
        queue = ChildQueue();
        push(Step::Mixed, &static_cast<const MixedSpec&>(model), all);
    } else {
        queue = all;
        push(Step::Repeated, &static_cast<const ChildrenSpec&>(model), queue);
    }
    return false;
}

void Matcher::resumeElement() {
    const Frame frame = frames.back();
    const bool fits = matched && queue.empty();
    queue = frame.queue;
    frames.pop_back();
    repetitions = enclosing.back().repetitions;
    if (outcomes.size() > enclosing.back().outcomes) outcomes.resize(enclosing.back().outcomes);
    enclosing.pop_back();
    decide(*frame.dtd, *static_cast<Element*>(const_cast<void*>(frame.subject)), fits);
}

// The content has come out as `fits`: what remains are the attributes, and the verdict.
void Matcher::decide(const Dtd& dtd, Element& element, bool fits) {
    matched = fits && attributesFit(dtd, element);
    // The link that has just been set, if any, marked the element as linked.
    const std::uint64_t linked =
        NodeAccess::verdict(element) >> kRunShift == runOf(dtd) ? NodeAccess::verdict(element) & kLinked : 0;
    NodeAccess::verdict(element) = runOf(dtd) << kRunShift | linked | (matched ? kValid : 0);
}

// Looks at the element's own attributes only: each has to be defined, and those that are required to be all there are.
bool Matcher::attributesFit(const Dtd& dtd, Element& element) {
    const AttributeSpan attributes = NodeAccess::attributes(element);
    const auto list = dtd.attributeLists.find(element.getName());
    if (list == dtd.attributeLists.end()) return attributes.empty();

    const auto& definitions = list->second.definitions;
    std::size_t required = 0;
    for (const Attribute* const attribute : attributes) {
        const auto definition = definitions.find(attribute->getName());
        if (definition == definitions.end()) return false;
        if (definition->second->isRequired()) ++required;
    }
    if (required != list->second.required) return false;
    NodeAccess::verdict(element) = runOf(dtd) << kRunShift;
    link(element, &dtd);
    return true;
}

// --- Links ---

void Matcher::link(Object& node, const Dtd* dtd) {
    if (!isExactly<Element>(node) || dtd == nullptr) {
        node.setDtd(dtd);
    } else {
        linkSubtree(static_cast<Element&>(node), dtd);
    }
}

// As Element::setDtd, but for the subtrees that have all their links already.
void Matcher::linkSubtree(Element& top, const Dtd* dtd) {
    const std::uint64_t run = runOf(*dtd);
    const bool linksStay = !foreign;
    linkBelow(top, dtd, [dtd, run, linksStay](Element& element) {
        std::uint64_t& verdict = NodeAccess::verdict(element);
        const bool mine = verdict >> kRunShift == run;
        if (mine && linksStay && (verdict & kLinked) != 0) return false;
        verdict = mine ? verdict | kLinked : 0;  // a verdict of another run may speak of links that are no more
        NodeAccess::setOwnDtd(element, dtd);
        return true;
    });
}

// --- The mixed model ---

void Matcher::resumeMixed() {
    const auto& model = *static_cast<const MixedSpec*>(frames.back().subject);
    const Dtd* const dtd = SpecAccess::dtd(model);
    const std::size_t mine = frames.size() - 1;
    if (frames[mine].started) {
        if (!matched) return finish(false);
        link(*frames[mine].queue.front(), dtd);
        frames[mine].queue.pop();
    }
    frames[mine].started = true;
    while (!frames[mine].queue.empty()) {
        Object* const child = frames[mine].queue.front();
        if (child->isElement()) {
            auto& element = static_cast<Element&>(*child);
            if (!model.hasName(element.getName())) return finish(false);
            if (!beginElement(dtd, element)) return;
            if (!matched) return finish(false);
            link(element, dtd);
        } else {
            if (!child->isCharData()) return finish(false);
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
    foreign = true;
    matched = particle.validate(queue);
    return true;
}

// Does not take the child: who asked does when it matched.
bool Matcher::beginName(const NameSpec& spec) {
    matched = false;
    const std::string& name = SpecAccess::name(spec);
    if (name.empty() || queue.empty() || !queue.front()->isElement()) return true;
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
    if (!frames[mine].started) {
        if (repeats) {
            frames[mine].nested = repetitions > 0;
            if (frames[mine].nested) {
                if (recall(spec)) return finish(matched);
                frames[mine].firstPass = static_cast<std::uint32_t>(passes.size());
                passes.push_back(queue);
            }
            ++repetitions;
        }
        frames[mine].started = true;
        if (!beginParticle(particle)) return;
    }
    for (;;) {
        Frame& frame = frames[mine];
        if (!matched) {
            giveUp(frame.queue);
            if (frame.nested) note(spec, frame.queue, repetition == REP_ZERO_OR_MORE);
            const bool fails = repetition == REP_ONCE || (repetition == REP_ONE_OR_MORE && frame.number == 0);
            if (!fails) queue = frame.queue;
            return repeats ? finishRepeated(!fails) : finish(!fails);
        }
        if (isName) queue.pop();
        if (!repeats) return finish(true);
        ++frame.number;
        if (queue.empty()) return finishRepeated(true);
        if (queue.size() == frame.queue.size()) {  // a pass that took nothing would go on for ever
            if (frame.nested) note(spec, frame.queue, true);
            return finishRepeated(true);
        }
        frame.queue = queue;
        if (frame.nested) {
            if (recall(spec)) {
                if (!matched) queue = frame.queue;
                return finishRepeated(true);
            }
            passes.push_back(queue);
        }
        if (!beginParticle(particle)) return;
    }
}

// The repetition on top, which has come out so, would have from the start of each of its passes: but for the last one of "+",
// which took nothing. Where the repetition around it began its pass at the same child, that one is asked there: repetitions right
// within each other need not all be kept for every child.
void Matcher::finishRepeated(bool outcome) {
    --repetitions;
    const Frame& frame = frames.back();
    if (!frame.nested) return finish(outcome);
    const auto& spec = *static_cast<const ChildrenSpec*>(frame.subject);
    const bool needsOne = SpecAccess::repetition(spec) == REP_ONE_OR_MORE;
    const bool isAskedThere = frame.firstPass > 0 && passes[frame.firstPass - 1] == passes[frame.firstPass];
    for (std::size_t i = frame.firstPass + (isAskedThere ? 1 : 0); i < passes.size() && !foreign; ++i) {
        const ChildQueue& start = passes[i];
        if (start.empty()) break;
        const bool matches = outcome && !(needsOne && i - frame.firstPass >= frame.number);
        if (matches || i == frame.firstPass) outcomes.push_back({{&spec, start.front()}, {matches, queue}});
    }
    passes.resize(frame.firstPass);
    return finish(outcome);
}

// Whether it is known what comes of the nested repetition here; that is in `matched` and `queue` then.
bool Matcher::recall(const ChildrenSpec& spec) {
    const Dtd* const dtd = SpecAccess::dtd(spec);
    if (dtd != nullptr && spec.triedRun == runOf(*dtd) && !foreign && spec.triedAt == queue) {
        matched = spec.triedMatched;
        queue = spec.triedLeft;
        return true;
    }
    if (foreign || queue.empty() || outcomeOf.empty()) return false;
    const auto found = outcomeOf.find({&spec, queue.front()});
    if (found == outcomeOf.end()) return false;
    matched = found->second.matched;
    queue = found->second.left;
    return true;
}

// Keeps what came of the nested repetition where its last pass began, which failed or took nothing.
void Matcher::note(const ChildrenSpec& spec, const ChildQueue& at, bool outcome) {
    const Dtd* const dtd = SpecAccess::dtd(spec);
    if (dtd == nullptr) return;
    spec.triedRun = runOf(*dtd);
    if (foreign) spec.triedRun = 0;
    spec.triedAt = at;
    spec.triedLeft = outcome ? at : queue;
    spec.triedMatched = outcome;
}

// Who comes back to `before` may try again what has been tried since.
void Matcher::giveUp(const ChildQueue& before) {
    if (queue.size() == before.size()) return;
    outcomeOf.insert(outcomes.begin(), outcomes.end());
    outcomes.clear();
}

void Matcher::resumeSequence() {
    const auto& members = SpecAccess::members(*static_cast<const GroupSpec*>(frames.back().subject));
    const std::size_t mine = frames.size() - 1;
    for (;;) {
        if (frames[mine].started && !matched) return finish(false);
        frames[mine].started = true;
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
        if (!frame.started) {
            // Of the leading names only the one that the next child has can match.
            frame.started = true;
            frame.number = choice.leadingCount;
            if (!queue.empty() && queue.front()->isElement()) {
                const auto found = choice.leadingNames.find(static_cast<const Element*>(queue.front())->getName());
                if (found != choice.leadingNames.end()) {
                    frame.number = found->second;
                    frame.alone = true;
                }
            }
        } else {
            if (matched) return finish(true);
            giveUp(frame.queue);
            queue = frame.queue;
            frame.number = frame.alone ? choice.leadingCount : frame.number + 1;
            frame.alone = false;
        }
        if (frame.number == members.size()) break;
        if (!beginRepeated(*members[frame.number])) return;
    }
    if (!SpecAccess::charData(choice)) return finish(false);
    if (queue.empty()) return finish(true);
    if (!queue.front()->isCharData()) return finish(false);
    queue.pop();
    return finish(true);
}

}  // namespace Xml
