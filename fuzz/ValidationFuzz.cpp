// Validation: verdict and links must be those of the naive matcher, for the root by its declaration and then for each
// of its children by theirs, over the links that were set before; and then for an element with each of a few short
// contents, so that a model need not meet a tree by chance. All that once as validation is elsewhere, and once by the
// Matcher alone.
//
// Input: a line of declarations and a line with the tree, in the short texts of the tests: "a: (b, c?)*; b: ANY; a@x
// REQUIRED" and "a[x=1](b 'text')". What does not fit these is no input.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "models/NaiveMatcher.h"
#include "support/Messages.h"
#include "support/WithoutFastValidation.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Names.h"
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

using test::DtdValue;
using test::NaiveMatcher;
using test::NodeValue;
using test::ParticleValue;

constexpr long kMostSteps = 4'000;

// As the library holds them: a name that is none is empty, and characters that are held escaped stay out of texts.
void adaptToLibrary(NodeValue& node) {
    if (node.kind == NodeValue::ElementNode && !isName(node.name)) node.name.clear();
    if (node.kind == NodeValue::Text) {
        for (char& c : node.name) {
            if (c == '&' || c == '<' || c == '>' || c == '"') c = '_';
        }
    }
    for (NodeValue& child : node.children) adaptToLibrary(child);
}

// Takes one after the other of the ways in which a member can be added to its group.
void spreadForms(ParticleValue& particle, int& next) {
    particle.form = next++ % 4;
    for (ParticleValue& member : particle.members) spreadForms(member, next);
}

struct Case {
    DtdValue declarations;
    NodeValue root;
};

// Throws where the input is none.
Case caseOf(const std::string& input) {
    const std::size_t end = input.find('\n');
    if (end == std::string::npos) throw std::logic_error("one line");
    Case made;
    made.declarations = test::dtdValueOf(input.substr(0, end));
    int form = 0;
    for (auto& element : made.declarations.elements) spreadForms(element.second.particle, form);
    std::vector<NodeValue> nodes = test::nodesOf(input.substr(end + 1));
    if (nodes.size() != 1 || nodes[0].kind != NodeValue::ElementNode) throw std::logic_error("not one element");
    made.root = std::move(nodes[0]);
    adaptToLibrary(made.root);
    return made;
}

// A tree, in the library and for the naive matcher.
class Tree {
public:
    explicit Tree(NodeValue node) : root(std::move(node)), made(test::makeNode(root)) {}

    // False where the naive matcher does not come to an end: the two trees differ from there on.
    bool check(const std::vector<DtdValue>& values, const Dtd& dtd, NodeValue& node) {
        const bool actual = dtd.validate(const_cast<Object*>(node.object)->toElement());
        bool expected = false;
        try {
            expected = NaiveMatcher(values, kMostSteps).validateElement(0, node);
        } catch (const test::TooManySteps&) {
            return false;
        }
        const std::string links = test::linksOf(*root.object, {&dtd});
        const auto verdict = [](bool valid) { return std::string(valid ? "valid" : "invalid"); };
        if (actual != expected) expectSame("the verdict on " + links, verdict(expected), verdict(actual));
        expectSame("the links after validation are the naive matcher's", test::linksOf(root), links);
        return true;
    }

    bool checkRoot(const std::vector<DtdValue>& values, const Dtd& dtd) { return check(values, dtd, root); }

    void checkAll(const std::vector<DtdValue>& values, const Dtd& dtd) {
        bool goesOn = checkRoot(values, dtd);
        for (NodeValue& child : root.children) {
            if (goesOn && child.kind == NodeValue::ElementNode) goesOn = check(values, dtd, child);
        }
    }

private:
    NodeValue root;
    std::unique_ptr<Object> made;
};

// The contents of up to three nodes, those of three only of elements a and b.
std::vector<std::string> shortContents() {
    const char* const kNodes[] = {"a", "b", "c", "'t'"};
    std::vector<std::string> contents{""};
    for (const char* first : kNodes) {
        contents.emplace_back(first);
        for (const char* second : kNodes) contents.push_back(std::string(first) + " " + second);
    }
    for (int i = 0; i < 8; ++i) {
        std::string content;
        for (int bit = 1; bit < 8; bit *= 2) content += (i & bit) != 0 ? "a " : "b ";
        contents.push_back(content);
    }
    return contents;
}

const std::vector<NodeValue>& shortElements() {
    static const std::vector<NodeValue> elements = [] {
        std::vector<NodeValue> made;
        for (const std::string& content : shortContents()) made.push_back(test::nodesOf("a(" + content + ")").at(0));
        return made;
    }();
    return elements;
}

}  // namespace

const std::size_t kLongestInput = 2048;

void check(const std::string& input) {
    const test::MessageCollector messages;
    std::unique_ptr<Case> made;
    try {
        made = std::make_unique<Case>(caseOf(input));
    } catch (const std::logic_error&) {
        return;
    }
    const std::vector<DtdValue> values{made->declarations};
    Dtd dtd("fuzz");
    test::declare(dtd, made->declarations, {&dtd});
    Tree trees[] = {Tree(made->root), Tree(made->root)};
    const std::size_t before = messages.texts().size();
    for (const bool byMatcher : {false, true}) {
        const test::WithoutFastValidation off(byMatcher);
        trees[byMatcher ? 1 : 0].checkAll(values, dtd);
        for (const NodeValue& element : shortElements()) Tree(element).checkRoot(values, dtd);
    }
    expectTrue("validation reports nothing", messages.texts().size() == before, input);
}

}  // namespace Xml::fuzz
