#pragma once

#include "models/Models.h"
#include <deque>

namespace Xml::test {

// Thrown when a matching takes more steps than it was given: the naive matcher tries everything again and again.
struct TooManySteps {};

// Validation in the plainest words, over values: queues are copied node by node, every group and every element is
// decided by recursion, as often as the walk comes by. It is what the library is compared with.
class NaiveMatcher {
public:
    using Queue = std::deque<NodeValue*>;

    NaiveMatcher(const std::vector<DtdValue>& values, long steps) : dtds(values), stepsLeft(steps) {}

    // A Dtd, by number, over an element.
    bool validateElement(std::size_t dtd, NodeValue& element);

    // A model over the children of an element.
    bool validateModel(const ModelValue& model, std::vector<NodeValue>& children);

    // A particle with its repetition, and without it.
    bool validateRepeated(const ParticleValue& particle, Queue& queue);
    bool validateParticle(const ParticleValue& particle, Queue& queue);

    static Queue queueOf(std::vector<NodeValue>& nodes);

    // The nodes and what belongs to them get the link.
    static void setLink(NodeValue& node, int link);

    const OwnLog& log() const { return ownLog; }

private:
    void step();

    const std::vector<DtdValue>& dtds;
    long stepsLeft;
    OwnLog ownLog;
};

// What a model writes, and the diagnostics that it causes.
std::string naiveText(const ModelValue& model, std::vector<std::string>& messages);
std::string naiveText(const ParticleValue& particle, bool outermost, std::vector<std::string>& messages);

}  // namespace Xml::test
