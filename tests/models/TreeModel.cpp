#include "models/TreeModel.h"

#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include <cctype>
#include <sstream>

namespace Xml::test {

std::vector<std::string> ModelNode::messages;

namespace {

std::string quoted(const std::string& text) { return '"' + naiveEscaped(text) + '"'; }

std::string entityValue(const std::string& name, const DtdFacts* facts) {
    const std::map<std::string, std::string> kStandard = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};
    if (auto found = kStandard.find(name); found != kStandard.end()) return found->second;
    if (name.size() >= 2 && name[0] == '#') {
        unsigned number = 0;
        std::istringstream digits(name.substr(name[1] == 'x' ? 2 : 1));
        digits >> (name[1] == 'x' ? std::hex : std::dec) >> number;
        if (number % 256 != 0) return std::string(1, static_cast<char>(number % 256));
    }
    if (facts != nullptr) {
        if (auto found = facts->entities.find(name); found != facts->entities.end()) return found->second;
    }
    return "&" + name + ";";
}

}  // namespace

std::string naiveEscaped(const std::string& text) {
    std::string result;
    for (char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else if (c == '"') {
            result += "&quot;";
        } else if (c == '\'') {
            result += "&apos;";
        } else {
            result += c;
        }
    }
    return result;
}

bool naiveIsName(const std::string& text) {
    const std::string kFirst = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_:";
    const std::string kLater = kFirst + "0123456789-.";
    if (text.empty() || kFirst.find(text[0]) == std::string::npos) return false;
    return text.find_first_not_of(kLater) == std::string::npos;
}

std::unique_ptr<ModelNode> ModelNode::element(const std::string& name) {
    auto node = std::make_unique<ModelNode>(Kind::Element);
    node->setName(name);
    return node;
}

std::unique_ptr<ModelNode> ModelNode::element(const std::string& name, const std::string& text) {
    auto node = element(name);
    node->addChild(ModelNode::text(text));
    return node;
}

std::unique_ptr<ModelNode> ModelNode::text(const std::string& text) {
    auto node = std::make_unique<ModelNode>(Kind::Text);
    node->data = naiveEscaped(text);
    return node;
}

std::unique_ptr<ModelNode> ModelNode::comment(const std::string& text) {
    auto node = std::make_unique<ModelNode>(Kind::Comment);
    node->data = text;
    return node;
}

void ModelNode::touch() {
    for (ModelNode* node = this; node != nullptr; node = node->parent) {
        node->dirty = true;
        node->link = nullptr;
    }
}

void ModelNode::setDtd(const Dtd* newLink) {
    link = newLink;
    if (!isElement()) return;
    for (auto& child : children) child->setDtd(newLink);
    for (auto& [key, attribute] : attributes) attribute.link = newLink;
}

std::unique_ptr<ModelNode> ModelNode::clone() const {
    auto copy = std::make_unique<ModelNode>(kind);
    copy->name = name;
    copy->data = data;
    if (isText() || isComment()) copy->link = link;
    for (const auto& [key, attribute] : attributes) {
        copy->attributes[key] = Attribute{attribute.value, attribute.link, !key.empty(), nullptr};
    }
    for (const auto& child : children) {
        copy->children.push_back(child->clone());
        copy->children.back()->parent = copy.get();
    }
    if (isElement()) copy->touch();
    return copy;
}

void ModelNode::setName(const std::string& newName) {
    if (naiveIsName(newName)) {
        name = newName;
        touch();
    } else {
        messages.push_back("<Element::setName> not a valid name " + newName);
    }
}

void ModelNode::addChild(std::unique_ptr<ModelNode> child) {
    children.push_back(std::move(child));
    children.back()->parent = this;
    children.back()->setDtd(link);
    touch();
}

void ModelNode::insertChild(const ModelNode* before, std::unique_ptr<ModelNode> child) {
    auto place = children.begin();
    while (place != children.end() && place->get() != before) ++place;
    ModelNode& inserted = **children.insert(place, std::move(child));
    inserted.parent = this;
    inserted.setDtd(link);
    touch();
}

std::unique_ptr<ModelNode> ModelNode::extractChild(int i) {
    if (i < 0 || i >= static_cast<int>(children.size())) return nullptr;
    std::unique_ptr<ModelNode> child = std::move(children[static_cast<std::size_t>(i)]);
    children.erase(children.begin() + i);
    touch();
    child->parent = nullptr;
    child->setDtd(nullptr);
    return child;
}

std::unique_ptr<ModelNode> ModelNode::extractChild(const ModelNode* child) {
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (children[i].get() == child) return extractChild(static_cast<int>(i));
    }
    return nullptr;
}

void ModelNode::killChildren() {
    children.clear();
    touch();
}

void ModelNode::setAttribute(const std::string& attribute, const std::string& value) {
    if (!naiveIsName(attribute)) messages.push_back("<Attribute::Attribute> not a valid name");
    attributes[attribute] = Attribute{value, link, true, nullptr};
    touch();
}

void ModelNode::removeAttribute(const std::string& attribute) {
    if (attributes.erase(attribute) > 0) touch();
}

void ModelNode::removeAttribute(int i) {
    if (i < 0 || i >= static_cast<int>(attributes.size())) return;
    attributes.erase(std::next(attributes.begin(), i));
    touch();
}

void ModelNode::touchAttribute(const std::string& attribute) {
    Attribute& touched = attributes.at(attribute);
    touched.link = nullptr;
    if (touched.hasParent) touch();
}

void ModelNode::setCharData(const std::string& newText) {
    for (int i = 0; i < static_cast<int>(children.size()); ++i) {
        if (children[static_cast<std::size_t>(i)]->isText()) extractChild(i);
    }
    addChild(text(newText));
}

void ModelNode::setData(const std::string& newText) {
    data = naiveEscaped(newText);
    touch();
}

void ModelNode::setComment(const std::string& newText) {
    data = newText;
    touch();
}

const ModelNode* ModelNode::getElement(int n) const {
    return getElement([](const ModelNode&) { return true; }, n);
}

const ModelNode* ModelNode::getElement(const Wanted& wanted, int n) const {
    std::vector<const ModelNode*> matches;
    for (const auto& child : children) {
        if (child->isElement() && wanted(*child)) matches.push_back(child.get());
    }
    return n >= 0 && n < static_cast<int>(matches.size()) ? matches[static_cast<std::size_t>(n)] : nullptr;
}

const ModelNode* ModelNode::find(const Wanted& wanted, int& n) const {
    for (const auto& child : children) {
        if (!child->isElement()) continue;
        if (wanted(*child)) {
            if (n < 1) return child.get();
            --n;
        }
        if (const ModelNode* found = child->find(wanted, n)) return found;
    }
    return nullptr;
}

void ModelNode::findAll(const Wanted& wanted, std::vector<const ModelNode*>& found) const {
    for (const auto& child : children) {
        if (!child->isElement()) continue;
        if (wanted(*child)) found.push_back(child.get());
        child->findAll(wanted, found);
    }
}

std::string ModelNode::attributeValue(const std::string& attribute, const FactsByDtd& facts) const {
    if (auto found = attributes.find(attribute); found != attributes.end()) return found->second.value;
    if (link == nullptr) return "";
    const auto& defaults = facts.at(link).defaults;
    auto found = defaults.find({name, attribute});
    return found != defaults.end() ? found->second : "";
}

std::string ModelNode::decoded(const FactsByDtd& facts) const {
    const DtdFacts* ofLink = link != nullptr ? &facts.at(link) : nullptr;
    std::string result;
    std::size_t place = 0;
    for (;;) {
        const std::size_t reference = data.find('&', place);
        if (reference == std::string::npos) break;
        const std::size_t terminator = data.find(';', reference);
        const std::size_t after = terminator == std::string::npos ? data.size() : terminator;
        result += data.substr(place, reference - place);
        result += entityValue(data.substr(reference + 1, after - reference - 1), ofLink);
        place = terminator == std::string::npos ? data.size() : terminator + 1;
    }
    result += data.substr(place);
    return result.empty() ? data : result;
}

std::string ModelNode::charData(const FactsByDtd& facts) const {
    for (const auto& child : children) {
        if (child->isText()) return child->decoded(facts);
    }
    return "";
}

std::string ModelNode::startTag() const {
    std::string text = name;
    for (const auto& [key, attribute] : attributes) {
        if (!key.empty()) text += " " + key + "=" + quoted(attribute.value);
    }
    return text;
}

void ModelNode::toStream(NaiveSink& out) {
    if (Object::useRWOptimization && !dirty && start == out.getPosition()) {
        out.setPosition(end);
        return;
    }
    start = out.getPosition();
    write(out);
    end = out.getPosition();
    dirty = false;
}

void ModelNode::write(NaiveSink& out) {
    if (isText()) {
        out.putRaw(data);
        return;
    }
    if (isComment()) {
        out.put("<!--");
        out.putRaw(data + "-->");
        return;
    }
    if (kind == Kind::Document) {
        out.put("<?xml version = \"1.0\" ?>\n");
        if (dtd.real != nullptr) {
            if (Object::useRWOptimization && !dtd.dirty && dtd.start == out.getPosition()) {
                out.setPosition(dtd.end);
            } else {
                dtd.start = out.getPosition();
                out.put(textOf(Dtd(*dtd.real)));
                dtd.end = out.getPosition();
                dtd.dirty = false;
            }
        }
        for (auto& child : children) child->toStream(out);
        out.put('\n');
        return;
    }
    out.put("<" + startTag());
    if (children.empty() && Element::mUseShortNotationForEmptyTags) {
        out.put("/>");
        return;
    }
    out.put('>');
    out.incTab();
    bool mixed = false;
    for (auto& child : children) mixed = mixed || child->isText();
    const bool lines = !mixed && !children.empty();
    if (lines) out.put('\n');
    for (auto& child : children) {
        child->toStream(out);
        if (lines) out.put('\n');
    }
    out.decTab();
    out.put("</" + name + ">");
}

std::string ModelNode::difference(const Object& node) {
    const std::string label = isText()      ? "'" + data + "'"
                              : isComment() ? "<!--" + data + "-->"
                              : isElement() ? "<" + startTag() + ">"
                                            : "document";
    auto differs = [&label](const std::string& what, auto model, auto library) {
        std::ostringstream text;
        text << label << ": " << what << " should be " << model << ", is " << library;
        return text.str();
    };
    if (real == nullptr) real = const_cast<Object*>(&node);
    if (real != &node) return label + ": another node";
    if (node.isElement() != isElement() || node.isCharData() != isText() ||
        node.isDocument() != (kind == Kind::Document) || node.isDtd() || node.isAttribute()) {
        return label + ": another kind of node";
    }
    if (NodeTestAccess::dtd(node) != link) return differs("link", link, NodeTestAccess::dtd(node));
    if (NodeTestAccess::dirty(node) != dirty) return differs("mark", dirty, NodeTestAccess::dirty(node));
    if (NodeTestAccess::writeStart(node) != start) return differs("start", start, NodeTestAccess::writeStart(node));
    if (NodeTestAccess::writeEnd(node) != end) return differs("end", end, NodeTestAccess::writeEnd(node));
    const Object* parentNode = parent != nullptr ? parent->real : nullptr;
    if (node.getParent() != parentNode) return differs("parent", parentNode, node.getParent());

    if (isComment()) return dump(&node) == label ? "" : differs("comment", label, dump(&node));
    if (isText()) {
        const std::string& held = node.toCharData()->data();
        return held == data ? "" : differs("text", data, held);
    }
    if (kind == Kind::Document) {
        const Document& document = *node.toDocument();
        const Dtd* owned = document.getDtd();
        if (owned != dtd.real) return differs("Dtd", dtd.real, owned);
        if (owned != nullptr) {
            if (NodeTestAccess::dtd(*owned) != dtd.link || owned->getParent() != real)
                return label + ": links of the Dtd";
            if (NodeTestAccess::dirty(*owned) != dtd.dirty) return label + ": mark of the Dtd";
            if (NodeTestAccess::writeStart(*owned) != dtd.start || NodeTestAccess::writeEnd(*owned) != dtd.end) {
                return label + ": record of the Dtd";
            }
        }
        if ((document.getRoot() != nullptr) != !children.empty()) return label + ": root";
        return children.empty() ? "" : children[0]->difference(*document.getRoot());
    }

    const Element& element = *node.toElement();
    if (element.getName() != name) return differs("name", name, element.getName());
    if (element.toString() != startTag()) return differs("text", startTag(), element.toString());
    if (const std::string text = differenceOfAttributes(element); !text.empty()) return label + text;
    const int count = element.getChildCount();
    if (count != static_cast<int>(children.size())) return differs("child count", children.size(), count);
    for (int i = 0; i < count; ++i) {
        const std::string text = children[static_cast<std::size_t>(i)]->difference(*element.getChild(i));
        if (!text.empty()) return text;
    }
    if (element.getChild(-1) != nullptr || element.getChild(count) != nullptr) return label + ": a child out of range";
    return "";
}

std::string ModelNode::differenceOfAttributes(const Element& element) {
    if (element.getAttributeCount() != static_cast<int>(attributes.size())) return ": attribute count";
    int i = 0;
    for (auto& [key, attribute] : attributes) {
        const Xml::Attribute* held = element.getAttribute(i++);
        if (held == nullptr || held->getName() != key) return ": attribute order at " + key;
        if (element.getAttribute(key) != held) return ": attribute by name: " + key;
        if (attribute.real == nullptr) attribute.real = held;
        if (attribute.real != held) return ": attribute moved: " + key;
        if (held->getValue() != attribute.value) return ": attribute value: " + key;
        if (NodeTestAccess::dtd(*held) != attribute.link) return ": attribute link: " + key;
        if (!NodeTestAccess::dirty(*held) || NodeTestAccess::writeStart(*held) != -1 ||
            NodeTestAccess::writeEnd(*held) != -1) {
            return ": attribute was taken for written: " + key;
        }
        if (held->getParent() != (attribute.hasParent ? real : nullptr)) return ": attribute parent: " + key;
    }
    if (element.getAttribute(-1) != nullptr || element.getAttribute(i) != nullptr) return ": attribute out of range";
    return "";
}

int ModelNode::nodeCount() const {
    int count = 1;
    for (const auto& child : children) count += child->nodeCount();
    return count;
}

}  // namespace Xml::test
