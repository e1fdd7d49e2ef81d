#pragma once

#include "models/TreeModel.h"
#include "support/Messages.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Xml::test {

// The same sequence on every machine.
class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}

    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }

    template <class T>
    const T& pick(const std::vector<T>& values) {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }

private:
    std::mt19937 engine;
};

// Some trees, in the library and in the model side by side, that random operations are done to.
class EditingWorld {
public:
    struct Top {
        std::unique_ptr<Object> real;
        std::unique_ptr<ModelNode> model;
    };

    explicit EditingWorld(unsigned seed);
    ~EditingWorld();

    // One random operation on both; what its results, the trees or the diagnostics differ in, "" when they agree.
    std::string edit();

    // Every search and accessor of one random element, const and not.
    std::string search();

    // What differs in the trees and in the diagnostics since the last call.
    std::string difference();

    // For reports: the operation done last.
    const std::string& lastOperation() const { return operation; }

    Dice dice;
    std::vector<Top> tops;

private:
    std::string operate();
    ModelNode* randomNode(ModelNode::Kind kind);
    ModelNode* randomElement() { return randomNode(ModelNode::Kind::Element); }
    Top* topOf(ModelNode::Kind kind);
    Top takeElement();
    void makeDtd(std::unique_ptr<Dtd> dtd, const DtdFacts& dtdFacts);
    std::string editElement(ModelNode& model, Element& element);
    std::string editDocument();
    std::string accept(std::unique_ptr<Object> real, const Object* expected, std::unique_ptr<ModelNode> model);

    MessageCollector collector;
    std::vector<std::unique_ptr<Dtd>> dtds;  // that no document owns; all live to the end
    FactsByDtd facts;
    std::string operation;
};

}  // namespace Xml::test
