#include "xml/dtd/internal/Verdicts.h"

#include "xml/dom/internal/Linking.h"
#include "xml/dom/internal/NodeClasses.h"
#include <algorithm>
#include <atomic>

namespace Xml {

namespace {

// The last number of a run. No element keeps it, and all runs have it that begin when no other is left: these decide an
// element as often as it is asked about.
constexpr std::uint64_t kLastRun = Marks::kMostNumber >> 2;

// Runs of different threads, over trees of their own, need not agree on anything but on being different.
std::uint64_t newRun() {
    static std::atomic<std::uint64_t> last{0};
    return std::min(++last, kLastRun);
}

}  // namespace

Verdicts::~Verdicts() {
    for (const Dtd* dtd : runs) DtdAccess::validationRun(*dtd) = 0;
}

std::uint64_t Verdicts::findRun(const Dtd& dtd) {
    std::uint64_t& run = DtdAccess::validationRun(dtd);
    if (run == 0) {
        runs.push_back(&dtd);
        run = newRun();
    } else if (std::find(runs.begin(), runs.end(), &dtd) == runs.end()) {
        noteCallersCode();  // the run began in the matcher that called the caller's code that this one is called from
    }
    lastAsked = &dtd;
    return run;
}

bool Verdicts::decide(const Dtd& dtd, Element& element, bool fits) {
    const bool valid = fits && attributesFit(dtd, element);
    const std::uint64_t run = runOf(dtd);
    // The link that has just been set, if any, marked the element as linked.
    const std::uint64_t before = verdictOf(element);
    const std::uint64_t linked = before >> kRunShift == run ? before & kLinked : 0;
    keep(element, run << kRunShift | linked | (valid ? kValid : 0));
    return valid;
}

// Looks at the element's own attributes only: each has to be defined, and those that are required to be all there are.
bool Verdicts::attributesFit(const Dtd& dtd, Element& element) {
    const AttributeSpan attributes = NodeAccess::attributes(element);
    const DtdAccess::AttributeList* const list = DtdAccess::findList(dtd, element.getName());
    if (list == nullptr) return attributes.empty();

    std::size_t required = 0;
    for (const Attribute* const attribute : attributes) {
        const auto definition = list->definitions.find(attribute->getName());
        if (definition == list->definitions.end()) return false;
        if (definition->second->isRequired()) ++required;
    }
    if (required != list->required) return false;
    keep(element, runOf(dtd) << kRunShift);
    link(element, &dtd);
    return true;
}

void Verdicts::keep(const Element& element, std::uint64_t verdict) {
    NodeAccess::marks(element).setNumber(verdict >> kRunShift != kLastRun ? verdict : 0);
}

void Verdicts::link(Object& node, const Dtd* dtd) {
    if (!isExactly<Element>(node) || dtd == nullptr) {
        node.setDtd(dtd);
    } else {
        linkSubtree(static_cast<Element&>(node), dtd);
    }
}

void Verdicts::linkSubtree(Element& top, const Dtd* dtd) {
    const std::uint64_t run = runOf(*dtd);
    const bool linksStay = areOfOwnCode();
    Preorder<Element> walk;
    linkBelow(walk, top, dtd, [dtd, run, linksStay](Element& element) {
        const std::uint64_t verdict = verdictOf(element);
        const bool mine = verdict >> kRunShift == run;
        if (mine && linksStay && (verdict & kLinked) != 0) return false;
        keep(element, mine ? verdict | kLinked : 0);  // a verdict of another run may speak of links that are no more
        NodeAccess::setOwnDtd(element, dtd);
        return true;
    });
}

}  // namespace Xml
