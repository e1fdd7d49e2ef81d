#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/internal/DtdAccess.h"
#include <cstdint>
#include <vector>

namespace Xml {

// The verdicts on elements in the runs that a matcher takes part in, and the links that they bring.
//
// A run is the outermost validation by one Dtd. An element is decided once in it: the verdict stays in the element,
// with the number of the run. That keeps alternatives that try the same children again from costing 2^depth. Only where
// the models of two Dtds take turns does each of these decide an element again, since the other one has set links
// meanwhile. Linking a subtree goes over it once for the same reason: an element remembers that everything below it has
// been linked already.
class Verdicts {
public:
    enum class Verdict : std::uint8_t { None, Invalid, Valid };

    Verdicts() = default;
    Verdicts(const Verdicts&) = delete;
    Verdicts& operator=(const Verdicts&) = delete;

    // Ends the runs that it began.
    ~Verdicts();

    // What has been decided about the element in the run of this Dtd, which begins here unless it is under way.
    Verdict of(const Dtd& dtd, const Element& element) {
        const std::uint64_t kept = verdictOf(element);
        if (kept >> kRunShift != runOf(dtd)) return Verdict::None;
        return (kept & kValid) != 0 ? Verdict::Valid : Verdict::Invalid;
    }

    // Decides an element whose content has come out as `fits`: looks at its attributes and keeps the verdict, which it
    // returns.
    bool decide(const Dtd& dtd, Element& element, bool fits);

    // Links the node, with all below it, to the Dtd: as its setDtd does, but for subtrees that have all their links
    // already.
    void link(Object& node, const Dtd* dtd);

    // Code of callers is asked: what it does to the tree, and answers, may differ each time. From then on links are set
    // again, and what came of anything may not be used again.
    void noteCallersCode() { asked = Asked::CallersCode; }
    bool areOfOwnCode() const { return asked == Asked::OwnCode; }

private:
    enum class Asked : std::uint8_t { OwnCode, CallersCode };

    // What an element keeps of a run: its number in the upper bits, and these.
    static constexpr std::uint64_t kValid = 1;
    static constexpr std::uint64_t kLinked = 2;  // with its whole subtree
    static constexpr int kRunShift = 2;

    static std::uint64_t verdictOf(const Element& element) { return NodeAccess::marks(element).number(); }
    static void keep(const Element& element, std::uint64_t verdict);

    std::uint64_t runOf(const Dtd& dtd) { return &dtd == lastAsked ? DtdAccess::validationRun(dtd) : findRun(dtd); }
    std::uint64_t findRun(const Dtd& dtd);
    bool attributesFit(const Dtd& dtd, Element& element);
    void linkSubtree(Element& top, const Dtd* dtd);

    Asked asked = Asked::OwnCode;
    const Dtd* lastAsked = nullptr;  // whose run is known to be under way
    std::vector<const Dtd*> runs;    // that began here
};

}  // namespace Xml
