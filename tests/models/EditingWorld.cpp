#include "models/EditingWorld.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Entity.h"
#include "xml/dtd/AttStringType.h"
#include <utility>

namespace Xml::test {

namespace {

using Kind = ModelNode::Kind;

const std::vector<std::string> kNames = {"a", "b", "c", "a:b", "_", "longer.name"};
const std::vector<std::string> kNamesToSet = {"a", "b", "c", "a", "b", "", "1a", "a b", "-", "\xC3\xA4"};
const std::vector<std::string> kAttributes = {"x", "y", "z", "B", "x", "y", "", "1a", "a\nb", "\xC3\xA4"};
const std::vector<std::string> kValues = {"", "1", "2", "default", "x\ny", "a<b\"c"};
const std::vector<std::string> kTexts = {
    "", "t", "a<b", "&amp;", "one\ntwo\n", "\n", "'q'", "\xC3\xA4 ", "text that is longer", "1"};
const std::vector<std::string> kHeldTexts = {"&e;",  "&f;&lt;", "&",       "x&y", "&#65;&#x41;",
                                             "&#0;", "&;",      "&none;z", "",    "&void;"};

constexpr int kNodesAtMost = 70;

void collectNodes(ModelNode& node, Kind kind, std::vector<ModelNode*>& found) {
    if (node.kind == kind) found.push_back(&node);
    for (auto& child : node.children) collectNodes(*child, kind, found);
}

// Null or what `node` stands for, as the class that it is.
const Element* elementOf(const ModelNode* node) { return node != nullptr ? node->real->toElement() : nullptr; }

}  // namespace

EditingWorld::EditingWorld(unsigned seed) : dice(seed) {
    ModelNode::messages.clear();
    for (const char* name : {"first", "second"}) {
        auto dtd = std::make_unique<Dtd>(name);
        DtdFacts known;
        known.entities["e"] = std::string(name) + "<";
        dtd->setEntity("e", known.entities["e"]);
        if (*name == 'f') {
            known.entities["void"] = "";
            dtd->setEntity("void", DataHolder());
            known.defaults[{"a", "x"}] = "default";
            dtd->addAttDecl("a", "x", new AttStringType(DEFAULT, "default"));
            dtd->addAttDecl("a", "y", REQUIRED);
        }
        known.defaults[{"b", "z"}] = "1";
        dtd->addAttDecl("b", "z", new AttStringType(FIXED, "1"));
        dtd->addElementDecl("a");
        makeDtd(std::move(dtd), known);
    }
    for (int i = 0; i < 3; ++i) {
        const std::string& name = dice.pick(kNames);
        tops.push_back({std::make_unique<Element>(name), ModelNode::element(name)});
    }
}

// Nodes go before any Dtd that they may link to.
EditingWorld::~EditingWorld() {
    for (auto& top : tops) {
        if (top.model->kind == Kind::Document) dtds.emplace_back(top.real->toDocument()->extractDtd());
    }
    tops.clear();
}

void EditingWorld::makeDtd(std::unique_ptr<Dtd> dtd, const DtdFacts& dtdFacts) {
    facts[dtd.get()] = dtdFacts;
    dtds.push_back(std::move(dtd));
}

ModelNode* EditingWorld::randomNode(Kind kind) {
    std::vector<ModelNode*> nodes;
    for (auto& top : tops) collectNodes(*top.model, kind, nodes);
    return nodes.empty() ? nullptr : dice.pick(nodes);
}

EditingWorld::Top* EditingWorld::topOf(Kind kind) {
    std::vector<Top*> fitting;
    for (auto& top : tops) {
        if (top.model->kind == kind) fitting.push_back(&top);
    }
    return fitting.empty() ? nullptr : dice.pick(fitting);
}

// An element without owner: a tree that was taken out before, or a new one.
EditingWorld::Top EditingWorld::takeElement() {
    std::vector<std::size_t> fitting;
    for (std::size_t i = 0; i < tops.size(); ++i) {
        if (tops[i].model->isElement()) fitting.push_back(i);
    }
    if (fitting.size() > 1) {
        const std::size_t index = dice.pick(fitting);
        Top top = std::move(tops[index]);
        tops.erase(tops.begin() + static_cast<std::ptrdiff_t>(index));
        return top;
    }
    const std::string& name = dice.pick(kNames);
    const std::string& text = dice.pick(kTexts);
    return {std::make_unique<Element>(name, text), ModelNode::element(name, text)};
}

// Takes over what an operation handed out.
std::string EditingWorld::accept(std::unique_ptr<Object> real, const Object* expected,
                                 std::unique_ptr<ModelNode> model) {
    const bool same = real.get() == expected;
    if (model != nullptr && real != nullptr) tops.push_back({std::move(real), std::move(model)});
    return same ? "" : operation + " handed out something else";
}

std::string EditingWorld::edit() {
    const std::string text = operate();
    return text.empty() ? difference() : text;
}

std::string EditingWorld::operate() {
    int nodes = 0;
    for (const auto& top : tops) nodes += top.model->nodeCount();
    if (nodes > kNodesAtMost && tops.size() > 1) {
        // Documents stay: others may link to their Dtd.
        for (std::size_t i = 0; i < tops.size(); ++i) {
            if (tops[i].model->kind == Kind::Document) continue;
            operation = "delete a whole tree";
            tops.erase(tops.begin() + static_cast<std::ptrdiff_t>(i));
            break;
        }
    }
    if (dice.chance(6)) return editDocument();
    if (dice.chance(3)) {
        if (ModelNode* comment = randomNode(Kind::Comment)) {
            operation = "setText";
            const std::string& value = dice.pick(kTexts);
            static_cast<Comment*>(comment->real)->setText(value);
            comment->setComment(value);
            return "";
        }
    }
    if (dice.chance(10)) {
        if (ModelNode* text = randomNode(Kind::Text)) {
            CharData& data = *text->real->toCharData();
            if (dice.chance(50)) {
                operation = "setData";
                const std::string& value = dice.pick(kTexts);
                data.setData(DataHolder(value));
                text->setData(value);
            } else if (dice.chance(50)) {
                operation = "setData of an entity";
                data.setData(Entity("e"));
                text->data = "&e;";
                text->touch();
            } else {
                operation = "data()";
                const std::string& value = dice.pick(kHeldTexts);
                data.data() = value;
                text->data = value;
            }
            return "";
        }
    }
    ModelNode* model = randomElement();
    if (model == nullptr) {
        tops.push_back(takeElement());
        return "";
    }
    return editElement(*model, *model->real->toElement());
}

std::string EditingWorld::editElement(ModelNode& model, Element& element) {
    const int childCount = static_cast<int>(model.children.size());
    const int attributeCount = static_cast<int>(model.attributes.size());
    switch (dice.below(26)) {
    case 0:
    case 1:
    case 2: {
        operation = "addElement";
        const std::string& name = dice.chance(90) ? dice.pick(kNames) : dice.pick(kNamesToSet);
        const std::string& text = dice.pick(kTexts);
        element.addElement(name, text);
        model.addChild(ModelNode::element(name, text));
        return "";
    }
    case 3:
    case 4:
    case 5: {
        operation = "addChild of an element";
        const std::string& name = dice.pick(kNames);
        element.addChild(new Element(name));
        model.addChild(ModelNode::element(name));
        return "";
    }
    case 6: {
        operation = "addChild of text";
        const std::string& text = dice.pick(kTexts);
        if (dice.chance(30)) {
            operation = "addChild of a comment";
            element.addChild(new Comment(text));
            model.addChild(ModelNode::comment(text));
            return "";
        }
        element.addChild(new CharData(DataHolder(text)));
        model.addChild(ModelNode::text(text));
        return "";
    }
    case 7:
    case 8:
    case 9: {
        operation = "insertChild";
        const ModelNode* before = childCount > 0 && dice.chance(80)
                                      ? model.children[static_cast<std::size_t>(dice.below(childCount))].get()
                                      : randomElement();
        const Object* beforeReal = before->real;
        if (dice.chance(10)) {
            before = nullptr;
            beforeReal = nullptr;
        }
        if (dice.chance(40)) {
            const std::string& text = dice.pick(kTexts);
            element.insertChild(beforeReal, new CharData(DataHolder(text)));
            model.insertChild(before, ModelNode::text(text));
        } else {
            const std::string& name = dice.pick(kNames);
            element.insertChild(beforeReal, new Element(name));
            model.insertChild(before, ModelNode::element(name));
        }
        return "";
    }
    case 10: {
        operation = "addChild or insertChild of a whole tree";
        std::vector<std::size_t> fitting;  // trees that this element is not in
        ModelNode* own = &model;
        while (own->parent != nullptr) own = own->parent;
        for (std::size_t i = 0; i < tops.size(); ++i) {
            if (tops[i].model->kind != Kind::Document && tops[i].model.get() != own) fitting.push_back(i);
        }
        if (fitting.empty()) return "";
        const std::size_t index = dice.pick(fitting);
        Top top = std::move(tops[index]);
        tops.erase(tops.begin() + static_cast<std::ptrdiff_t>(index));
        if (dice.chance(50)) {
            element.addChild(top.real.release());
            model.addChild(std::move(top.model));
        } else {
            const ModelNode* before = childCount > 0 ? model.children[0].get() : nullptr;
            element.insertChild(before != nullptr ? before->real : nullptr, top.real.release());
            model.insertChild(before, std::move(top.model));
        }
        return "";
    }
    case 11: {
        operation = "extractChild by index";
        const int i = dice.below(childCount + 2) - 1;
        std::unique_ptr<Object> real(element.extractChild(i));
        auto taken = model.extractChild(i);
        const Object* expected = taken != nullptr ? taken->real : nullptr;
        return accept(std::move(real), expected, std::move(taken));
    }
    case 12: {
        operation = "extractChild";
        const ModelNode* child = childCount > 0 && dice.chance(70)
                                     ? model.children[static_cast<std::size_t>(dice.below(childCount))].get()
                                     : randomElement();
        std::unique_ptr<Object> real(element.extractChild(child->real));
        auto taken = model.extractChild(child);
        const Object* expected = taken != nullptr ? taken->real : nullptr;
        return accept(std::move(real), expected, std::move(taken));
    }
    case 13: {
        if (!dice.chance(25)) return "";
        operation = "killChildren";
        element.killChildren();
        model.killChildren();
        return "";
    }
    case 14: {
        operation = "setName";
        const std::string& name = dice.pick(kNamesToSet);
        element.setName(name);
        model.setName(name);
        return "";
    }
    case 15:
    case 16:
    case 17: {
        operation = "setAttribute";
        const std::string& name = dice.pick(kAttributes);
        const std::string& value = dice.pick(kValues);
        element.setAttribute(name, value);
        model.setAttribute(name, value);
        return "";
    }
    case 18: {
        operation = "removeAttribute";
        if (dice.chance(50)) {
            const std::string& name = dice.pick(kAttributes);
            element.removeAttribute(name);
            model.removeAttribute(name);
        } else {
            const int i = dice.below(attributeCount + 2) - 1;
            element.removeAttribute(i);
            model.removeAttribute(i);
        }
        return "";
    }
    case 19: {
        operation = "setValue of an attribute";
        if (attributeCount == 0) return "";
        auto place = std::next(model.attributes.begin(), dice.below(attributeCount));
        const std::string& value = dice.pick(kValues);
        element.getAttribute(place->first)->setValue(value);
        place->second.value = value;
        return "";
    }
    case 20: {
        operation = "setCharData";
        const std::string& text = dice.pick(kTexts);
        element.setCharData(text);
        model.setCharData(text);
        return "";
    }
    case 21: {
        const std::string& name = dice.pick(kNames);
        const std::string& text = dice.pick(kTexts);
        const ModelNode::Wanted wanted = [&name](const ModelNode& node) { return node.name == name; };
        const ModelNode* target = nullptr;
        if (dice.chance(50)) {
            operation = "setElementCharData";
            element.setElementCharData(name, text);
            target = model.getElement(wanted, 0);
        } else {
            operation = "findAndSetElementCharData";
            element.findAndSetElementCharData(name, text);
            int n = 0;
            target = model.find(wanted, n);
        }
        if (target != nullptr) const_cast<ModelNode*>(target)->setCharData(text);
        return "";
    }
    case 22: {
        operation = "setDtd";
        const Dtd* dtd = dice.chance(25) ? nullptr : dice.pick(dtds).get();
        element.setDtd(dtd);
        model.setDtd(dtd);
        return "";
    }
    case 23: {
        operation = "touch";
        if (attributeCount > 0 && dice.chance(30)) {
            const std::string name = std::next(model.attributes.begin(), dice.below(attributeCount))->first;
            element.getAttribute(name)->touch();
            model.touchAttribute(name);
        } else {
            element.touch();
            model.touch();
        }
        return "";
    }
    case 24: {
        operation = "clone";
        if (dice.chance(50)) {
            tops.push_back({std::unique_ptr<Object>(element.clone()), model.clone()});
        } else {
            tops.push_back({std::make_unique<Element>(element), model.clone()});
        }
        return "";
    }
    default: {
        operation = "delete a child";
        if (childCount == 0) return "";
        const int i = dice.below(childCount);
        delete element.extractChild(i);
        model.extractChild(i);
        return "";
    }
    }
}

std::string EditingWorld::editDocument() {
    Top* top = topOf(Kind::Document);
    int documents = 0;
    for (const auto& each : tops) documents += each.model->kind == Kind::Document ? 1 : 0;
    if (top == nullptr || (documents < 4 && dice.chance(20))) {
        operation = "a new document";
        auto model = std::make_unique<ModelNode>(Kind::Document);
        Dtd* dtd = nullptr;
        if (dice.chance(70)) {
            const Dtd* original = dtds[static_cast<std::size_t>(dice.below(2))].get();
            dtd = new Dtd(*original);
            model->dtd.real = dtd;
            facts[dtd] = facts.at(original);
        }
        Element* root = nullptr;
        if (dice.chance(80)) {
            Top taken = takeElement();
            root = taken.real.release()->toElement();
            taken.model->setDtd(dtd);
            taken.model->parent = model.get();
            model->children.push_back(std::move(taken.model));
        }
        tops.push_back({std::make_unique<Document>(root, dtd), std::move(model)});
        return "";
    }
    Document& document = *top->real->toDocument();
    ModelNode& model = *top->model;
    switch (dice.below(4)) {
    case 0: {
        operation = "extractRoot";
        std::unique_ptr<Element> real(document.extractRoot());
        if (model.children.empty()) return real == nullptr ? "" : "extractRoot made something up";
        auto taken = std::move(model.children[0]);
        model.children.clear();
        taken->parent = nullptr;
        taken->setDtd(nullptr);
        const Object* expected = taken->real;
        return accept(std::move(real), expected, std::move(taken));
    }
    case 1: {
        operation = "extractDtd";
        Dtd* real = document.extractDtd();
        if (real != model.dtd.real) return "extractDtd handed out something else";
        if (real == nullptr) return "";
        model.dtd = ModelNode::OwnedDtd();
        model.link = nullptr;
        for (auto& child : model.children) child->setDtd(nullptr);
        const bool cleared = real->getParent() == nullptr;
        makeDtd(std::unique_ptr<Dtd>(real), facts.at(real));
        return cleared ? "" : "the Dtd that was taken out keeps its parent";
    }
    case 2: {
        if (documents > 3 || model.children.empty()) return "";
        operation = "copy of a document";
        std::unique_ptr<Object> real(document.clone());
        auto copy = model.clone();
        copy->dtd.real = real->toDocument()->getDtd();
        if ((copy->dtd.real != nullptr) != (model.dtd.real != nullptr))
            return "the copy of a document differs in its Dtd";
        if (copy->dtd.real != nullptr) facts[copy->dtd.real] = facts.at(model.dtd.real);
        copy->children[0]->setDtd(copy->dtd.real);
        tops.push_back({std::move(real), std::move(copy)});
        return "";
    }
    default: {
        operation = "searches from the document";
        const std::string& name = dice.pick(kNames);
        const ModelNode::Wanted wanted = [&name](const ModelNode& node) { return node.name == name; };
        const int n = dice.below(5) - 1;
        int left = n;
        const Document& constant = document;
        const Element* expected = elementOf(model.find(wanted, left));
        std::vector<const ModelNode*> all;
        model.findAll(wanted, all);
        std::vector<const Element*> expectedAll;
        for (const ModelNode* node : all) expectedAll.push_back(elementOf(node));
        const std::vector<Element*> found = document.findAll(name);
        if (document.find(name, n) != expected || constant.find(name, n) != expected) return "Document::find";
        if (std::vector<const Element*>(found.begin(), found.end()) != expectedAll) return "Document::findAll";
        if (constant.findAll(name) != expectedAll) return "Document::findAll const";
        return "";
    }
    }
}

std::string EditingWorld::search() {
    const ModelNode* chosen = randomElement();
    if (chosen == nullptr) return "";
    const ModelNode& model = *chosen;
    Element& element = *model.real->toElement();
    const Element& constant = element;
    operation = "searches below <" + model.startTag() + ">";

    const std::string name = dice.pick(kNames);
    const std::string attribute = dice.pick(kAttributes);
    const DataHolder value = dice.pick(kValues);
    const ModelNode::Wanted named = [&name](const ModelNode& node) { return node.name == name; };
    const ModelNode::Wanted holding = [&](const ModelNode& node) {
        auto found = node.attributes.find(attribute);
        return found != node.attributes.end() && found->second.value == value;
    };
    const ModelNode::Wanted valued = [&](const ModelNode& node) {
        return node.attributeValue(attribute, facts) == value;
    };

    for (int n = 0; n < 4; ++n) {
        if (const Element* e = elementOf(model.getElement(n));
            element.getElement(n) != e || constant.getElement(n) != e) {
            return "getElement by index";
        }
        if (const Element* e = elementOf(model.getElement(named, n));
            element.getElement(name, n) != e || constant.getElement(name, n) != e) {
            return "getElement by name";
        }
        if (const Element* e = elementOf(model.getElement(holding, n));
            element.getElementByAttribute(attribute, value, n) != e ||
            constant.getElementByAttribute(attribute, value, n) != e) {
            return "getElementByAttribute";
        }
    }
    for (int n = -1; n < 5; ++n) {
        int left = n;
        const Element* e = elementOf(model.find(named, left));
        int mutableLeft = n;
        int constLeft = n;
        if (element.findElement(name, n) != e || constant.findElement(name, n) != e) return "findElement";
        if (element.findElement(name, &mutableLeft) != e || mutableLeft != left) return "findElement counting";
        if (constant.findElement(name, &constLeft) != e || constLeft != left) return "findElement const counting";

        left = mutableLeft = constLeft = n;
        e = elementOf(model.find(valued, left));
        if (element.findElementByAttribute(attribute, value, n) != e ||
            constant.findElementByAttribute(attribute, value, n) != e) {
            return "findElementByAttribute";
        }
        if (element.findElementByAttribute(attribute, value, &mutableLeft) != e || mutableLeft != left) {
            return "findElementByAttribute counting";
        }
        if (constant.findElementByAttribute(attribute, value, &constLeft) != e || constLeft != left) {
            return "findElementByAttribute const counting";
        }
    }

    std::vector<const ModelNode*> matches;
    model.findAll(named, matches);
    std::vector<Element*> found = {&element};
    std::vector<const Element*> constFound = {&element};
    std::vector<const Element*> expected = {&element};
    for (const ModelNode* match : matches) expected.push_back(elementOf(match));
    element.findAllElements(name, found);
    constant.findAllElements(name, constFound);
    if (std::vector<const Element*>(found.begin(), found.end()) != expected) return "findAllElements";
    if (constFound != expected) return "findAllElements const";

    if (element.getCharData() != model.charData(facts)) return "getCharData";
    const ModelNode* first = model.getElement(named, 0);
    if (element.getElementCharData(name) != (first != nullptr ? first->charData(facts) : ""))
        return "getElementCharData";
    int zero = 0;
    first = model.find(named, zero);
    if (element.findElementCharData(name) != (first != nullptr ? first->charData(facts) : ""))
        return "findElementCharData";
    if (element.getAttributeValue(attribute) != model.attributeValue(attribute, facts)) return "getAttributeValue";

    for (const auto& child : model.children) {
        if (!element.isChild(child->real)) return "isChild";
        if (child->isText()) {
            const CharData& data = *child->real->toCharData();
            DataHolder holder("before");
            data.getData(&holder);
            const std::string text = child->decoded(facts);
            if (holder != text || data.getData() != text || data.toString() != text)
                return "the decoded text of " + child->data;
        }
    }
    const ModelNode* other = randomElement();
    if (element.isChild(other->real) != (other->parent == chosen) || element.isChild(nullptr))
        return "isChild of another";
    return "";
}

std::string EditingWorld::difference() {
    const std::vector<std::string> issued = collector.take();
    const std::vector<std::string> expected = std::exchange(ModelNode::messages, {});
    if (issued != expected) {
        return "diagnostics: " + std::to_string(issued.size()) + " instead of " + std::to_string(expected.size()) +
               (issued.empty() ? "" : ", " + issued[0]);
    }
    for (auto& top : tops) {
        const std::string text = top.model->difference(*top.real);
        if (!text.empty()) return text;
    }
    return "";
}

}  // namespace Xml::test
