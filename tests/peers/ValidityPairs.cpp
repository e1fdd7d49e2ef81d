#include "peers/ValidityPairs.h"

#include <algorithm>

namespace Xml::test {

namespace {

// Some end with others, some look like keywords. None has a prefix, which would have to be declared over there.
const Names kElementNames = {"a", "b", "c", "d", "aa", "ba", "e", "f-1", "_g.h", "ANY", "EMPTY"};
const Names kAttributeNames = {"x", "y", "xy", "id", "CDATA", "a"};
const Names kValues = {"", "1", "v", "two words", " 1", "1 "};
const Names kTexts = {"text", " x ", "1 > 0", "x &amp; y", "]", "?=/", "a\n\tb"};
const Names kBlanks = {" ", "\n", "\t", "\n\t", "  "};
const Names kBlankReferences = {"&#32;", "&#x9;", "&#10;"};

bool contains(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

// --- Values ---

const ContentModel* DocumentType::modelOf(const std::string& element) const {
    for (const ElementDeclaration& declaration : elements) {
        if (declaration.element == element) return &declaration.model;
    }
    return nullptr;
}

const AttributeDeclaration* DocumentType::attributeOf(const std::string& element, const std::string& attribute) const {
    for (const AttributeDeclaration& declaration : attributes) {
        if (declaration.element == element && declaration.attribute == attribute) return &declaration;
    }
    return nullptr;
}

std::vector<const AttributeDeclaration*> DocumentType::attributesOf(const std::string& element) const {
    std::vector<const AttributeDeclaration*> found;
    for (const AttributeDeclaration& declaration : attributes) {
        if (declaration.element == element && attributeOf(element, declaration.attribute) == &declaration)
            found.push_back(&declaration);
    }
    return found;
}

Names childNames(const DocumentNode& node) {
    Names names;
    for (const DocumentNode& child : node.children) {
        if (child.kind == DocumentNode::Element) names.push_back(child.name);
    }
    return names;
}

// --- Text ---

namespace {

class DocumentWriter {
public:
    DocumentWriter(unsigned seed, Dialect itsDialect) : random(seed), dialect(itsDialect) {}

    std::string text;

    void writeType(const DocumentType& type) {
        text += "<!DOCTYPE " + type.name + blanks(1) + "[" + blanks(0);
        std::size_t element = 0, attribute = 0;
        while (element < type.elements.size() || attribute < type.attributes.size()) {
            if (random() % 16 == 0) text += "<!-- <!ELEMENT a ANY> -->" + blanks(0);
            const bool noAttributesLeft = attribute == type.attributes.size();
            if (element < type.elements.size() && (noAttributesLeft || random() % 2 == 0)) {
                writeElement(type.elements[element++]);
            } else {
                attribute = writeAttributes(type, attribute);
            }
            text += blanks(0);
        }
        text += "]" + blanks(0) + ">" + blanks(0);
    }

    void writeNode(const DocumentNode& node) {
        if (node.kind != DocumentNode::Element) {
            text += node.text;
            return;
        }
        text += "<" + node.name;
        for (const auto& [name, value] : node.attributes) {
            text += blanks(1) + name + blanks(0) + "=" + blanks(0) + quoted(value);
        }
        text += blanks(0);
        if (node.children.empty() && random() % 2 == 0) {
            text += "/>";
            return;
        }
        text += ">";
        for (const DocumentNode& child : node.children) writeNode(child);
        text += "</" + node.name + blanks(0) + ">";
    }

private:
    std::string blanks(unsigned least) {
        const unsigned way = random() % 8;
        return way == 0 ? "\n" : way == 1 ? " \t" : way == 2 ? " " : std::string(least, ' ');
    }

    std::string quoted(const std::string& value) {
        const std::string quote = random() % 2 == 0 ? "\"" : "'";
        const std::size_t one = random() % 4 == 0 ? value.find('1') : std::string::npos;
        if (one == std::string::npos) return quote + value + quote;
        return quote + value.substr(0, one) + "&#49;" + value.substr(one + 1) + quote;
    }

    void writeElement(const ElementDeclaration& declaration) {
        text += "<!ELEMENT " + declaration.element + blanks(1);
        const ContentModel& model = declaration.model;
        switch (model.kind) {
        case ContentModel::Empty: text += "EMPTY"; break;
        case ContentModel::Any: text += "ANY"; break;
        case ContentModel::Children: writeGroup(model.particle); break;
        case ContentModel::Mixed: writeMixed(model); break;
        }
        text += blanks(0) + ">";
    }

    void writeMixed(const ContentModel& model) {
        const bool charDataLast = dialect == Dialect::Ours && model.charDataLast && !model.names.empty();
        std::string list = charDataLast ? "" : "#PCDATA";
        for (const std::string& name : model.names) {
            const std::string bar = blanks(0) + "|" + blanks(0);
            list += list.empty() ? name : bar + name;
        }
        if (charDataLast) list += " | #PCDATA";
        text += "(" + list + ")" + (!model.names.empty() || random() % 4 == 0 ? "*" : "");
    }

    // A content model and whatever stands in it are groups, or names where that is allowed.
    void writeGroup(const ContentParticle& particle) {
        text += "(" + blanks(0);
        if (particle.kind == ContentParticle::Name) text += particle.name;
        const char* separator = "";
        for (const ContentParticle& member : particle.members) {
            if (*separator != '\0') text += blanks(0) + separator + blanks(0);
            separator = particle.kind == ContentParticle::Choice ? "|" : ",";
            if (member.kind == ContentParticle::Name) {
                text += member.name + member.mark;
            } else {
                writeGroup(member);
            }
        }
        text += blanks(0) + ")" + particle.mark;
    }

    // Writes the attributes that follow of the same element, or some of them, as one list; returns where the rest
    // begins.
    std::size_t writeAttributes(const DocumentType& type, std::size_t at) {
        const std::string& element = type.attributes[at].element;
        text += "<!ATTLIST " + element;
        do {
            const AttributeDeclaration& declaration = type.attributes[at++];
            text += blanks(1) + declaration.attribute + " CDATA" + blanks(1);
            switch (declaration.rule) {
            case AttributeDeclaration::Required: text += "#REQUIRED"; break;
            case AttributeDeclaration::Implied: text += "#IMPLIED"; break;
            case AttributeDeclaration::Default: text += quoted(declaration.value); break;
            case AttributeDeclaration::Fixed: text += "#FIXED" + blanks(1) + quoted(declaration.value); break;
            }
        } while (at < type.attributes.size() && type.attributes[at].element == element && random() % 4 != 0);
        text += blanks(0) + ">";
        return at;
    }

    std::minstd_rand random;
    Dialect dialect;
};

}  // namespace

std::string documentText(const DocumentType& type, const DocumentNode& root, unsigned seed, Dialect dialect) {
    DocumentWriter writer(seed, dialect);
    writer.writeType(type);
    writer.writeNode(root);
    return writer.text;
}

// --- Document types ---

DocumentType PairMaker::makeType() {
    alphabet = kElementNames;
    std::shuffle(alphabet.begin(), alphabet.end(), random);
    alphabet.resize(3 + below(5));

    DocumentType type;
    type.name = alphabet[0];
    for (const std::string& name : alphabet) {
        if (name != type.name && percent(6)) continue;  // undeclared
        type.elements.push_back({name, makeModel()});
    }
    // A document that is but one element shows little.
    ContentModel& model = type.elements[0].model;
    for (int i = 0; i < 3 && model.kind != ContentModel::Children; ++i) model = makeModel();
    if (percent(5)) type.elements.push_back({oneOf(alphabet), makeModel()});  // a second declaration
    std::shuffle(type.elements.begin() + 1, type.elements.end(), random);
    makeAttributes(type);
    return type;
}

ContentModel PairMaker::makeModel() {
    ContentModel model;
    const std::size_t kind = below(100);
    if (kind < 18) return model;
    if (kind < 25) {
        model.kind = ContentModel::Any;
        return model;
    }
    if (kind < 45) {
        model.kind = ContentModel::Mixed;
        if (percent(60)) {
            for (std::size_t i = below(4) + 1; i > 0; --i) {
                const std::string& name = oneOf(alphabet);
                if (!contains(model.names, name) || percent(20)) model.names.push_back(name);
            }
        }
        model.charDataLast = percent(30);
        return model;
    }
    model.kind = ContentModel::Children;
    // Where each name stands in one place alone, the model is deterministic.
    Names unused = alphabet;
    std::shuffle(unused.begin(), unused.end(), random);
    model.particle = makeParticle(0, percent(75) ? &unused : nullptr);
    return model;
}

ContentParticle PairMaker::makeParticle(int depth, Names* unused) {
    static const Names kMarks = {"", "", "", "?", "?", "*", "*", "+"};
    ContentParticle particle;
    particle.mark = oneOf(kMarks);
    if (depth == 3 || (depth > 0 && percent(55)) || (unused != nullptr && unused->size() <= 1)) {
        if (unused != nullptr && !unused->empty()) {
            particle.name = unused->back();
            unused->pop_back();
        } else {
            particle.name = oneOf(alphabet);
        }
        // The outermost one is a group.
        if (depth > 0) return particle;
        particle.kind = ContentParticle::Sequence;
        ContentParticle member;
        member.name = particle.name;
        particle.members.push_back(member);
        return particle;
    }
    particle.kind = percent(50) ? ContentParticle::Sequence : ContentParticle::Choice;
    std::size_t count = below(3) + (particle.kind == ContentParticle::Choice ? 2 : 1);
    if (unused != nullptr) count = std::min(count, std::max<std::size_t>(unused->size(), 2));
    for (std::size_t i = 0; i < count; ++i) {
        if (unused != nullptr && unused->empty() && i >= 2) break;
        particle.members.push_back(makeParticle(depth + 1, unused));
        // Of alternatives that can be empty only the last lets those beside it be reached in our dialect.
        std::string& mark = particle.members.back().mark;
        const bool mayBeAbsent = mark == "?" || mark == "*";
        if (particle.kind == ContentParticle::Choice && i + 1 < count && mayBeAbsent && percent(75)) mark.clear();
    }
    return particle;
}

void PairMaker::makeAttributes(DocumentType& type) {
    for (const std::string& element : alphabet) {
        if (percent(50)) continue;
        for (std::size_t i = 1 + below(3); i > 0; --i) {
            AttributeDeclaration declaration;
            declaration.element = element;
            declaration.attribute = oneOf(kAttributeNames);
            if (type.attributeOf(element, declaration.attribute) != nullptr && percent(80)) continue;
            declaration.rule = static_cast<AttributeDeclaration::Rule>(below(4));
            if (declaration.rule == AttributeDeclaration::Default || declaration.rule == AttributeDeclaration::Fixed)
                declaration.value = oneOf(kValues);
            type.attributes.push_back(declaration);
        }
    }
}

// --- Documents ---

DocumentNode PairMaker::makeDocument(const DocumentType& type) {
    elementsLeft = 20;
    DocumentNode root = grow(type, percent(3) ? oneOf(alphabet) : type.name, 0);
    if (percent(40)) indent(type, root);
    const std::size_t dice = below(100);
    for (std::size_t changes = dice < 50 ? 0 : dice < 88 ? 1 : dice < 95 ? 2 : 3; changes > 0; --changes)
        change(type, root);
    return root;
}

DocumentNode PairMaker::grow(const DocumentType& type, const std::string& name, int depth) {
    --elementsLeft;
    DocumentNode node;
    node.name = name;
    growAttributes(type, node);
    const ContentModel* model = type.modelOf(name);
    if (model == nullptr || depth > 8) return node;
    switch (model->kind) {
    case ContentModel::Empty: break;
    case ContentModel::Any:
    case ContentModel::Mixed: {
        const bool any = model->kind == ContentModel::Any;
        const Names& names = any ? alphabet : model->names;
        for (std::size_t i = below(4); i > 0; --i) {
            if (percent(50) || names.empty()) {
                node.children.push_back(makeText());
            } else if (elementsLeft > 0) {
                node.children.push_back(grow(type, oneOf(names), depth + 1));
            }
        }
        break;
    }
    case ContentModel::Children: growParticle(type, model->particle, depth, node); break;
    }
    return node;
}

void PairMaker::growParticle(const DocumentType& type, const ContentParticle& particle, int depth,
                             DocumentNode& parent) {
    const bool mayBeAbsent = particle.mark == "?" || particle.mark == "*";
    const bool repeats = particle.mark == "+" || particle.mark == "*";
    if (mayBeAbsent && (elementsLeft <= 0 || depth > 5 || percent(40))) return;
    do {
        switch (particle.kind) {
        case ContentParticle::Name: parent.children.push_back(grow(type, particle.name, depth + 1)); break;
        case ContentParticle::Choice: growParticle(type, oneOf(particle.members), depth, parent); break;
        case ContentParticle::Sequence:
            for (const ContentParticle& member : particle.members) growParticle(type, member, depth, parent);
            break;
        }
    } while (repeats && elementsLeft > 0 && percent(45));
}

void PairMaker::growAttributes(const DocumentType& type, DocumentNode& node) {
    for (const AttributeDeclaration* declaration : type.attributesOf(node.name)) {
        if (declaration->rule != AttributeDeclaration::Required && percent(50)) continue;
        const bool fixed = declaration->rule == AttributeDeclaration::Fixed && !percent(4);
        node.attributes.emplace_back(declaration->attribute, fixed ? declaration->value : oneOf(kValues));
    }
    std::shuffle(node.attributes.begin(), node.attributes.end(), random);
}

DocumentNode PairMaker::makeText() {
    DocumentNode node;
    const std::size_t kind = below(10);
    node.kind = kind == 0 ? DocumentNode::Blank : kind == 1 ? DocumentNode::BlankReference : DocumentNode::Text;
    node.text = oneOf(kind == 0 ? kBlanks : kind == 1 ? kBlankReferences : kTexts);
    return node;
}

// Blanks between the children of element content, and comments.
void PairMaker::indent(const DocumentType& type, DocumentNode& node) {
    const ContentModel* model = type.modelOf(node.name);
    if (node.kind != DocumentNode::Element || model == nullptr) return;
    for (DocumentNode& child : node.children) indent(type, child);
    if (model->kind != ContentModel::Children) return;
    std::vector<DocumentNode> children;
    for (std::size_t i = 0; i <= node.children.size(); ++i) {
        DocumentNode between;
        between.kind = DocumentNode::Blank;
        between.text = oneOf(kBlanks);
        children.push_back(between);
        if (percent(10)) {
            between.kind = DocumentNode::Comment;
            between.text = "<!-- <a/> -->";
            children.push_back(between);
        }
        if (i < node.children.size()) children.push_back(std::move(node.children[i]));
    }
    node.children = std::move(children);
}

void PairMaker::change(const DocumentType& type, DocumentNode& root) {
    std::vector<DocumentNode*> elements = {&root};
    for (std::size_t i = 0; i < elements.size(); ++i) {
        DocumentNode* const element = elements[i];
        for (DocumentNode& child : element->children) {
            if (child.kind == DocumentNode::Element) elements.push_back(&child);
        }
    }
    DocumentNode& node = *oneOf(elements);
    if (percent(5)) {
        node.name = percent(80) ? oneOf(alphabet) : "undeclared";
    } else if (percent(65)) {
        changeChildren(type, node);
    } else {
        changeAttributes(type, node);
    }
}

void PairMaker::changeChildren(const DocumentType& type, DocumentNode& node) {
    std::vector<DocumentNode>& children = node.children;
    const auto place = [this, &children](std::size_t more) {
        return children.begin() + static_cast<std::ptrdiff_t>(below(children.size() + more));
    };
    const auto insert = [&](DocumentNode::Kind kind, const std::string& text) {
        DocumentNode inserted;
        inserted.kind = kind;
        inserted.text = text;
        children.insert(place(1), inserted);
    };
    const std::size_t dice = below(100);
    if (dice < 45 && !children.empty()) {
        const auto child = place(0);
        if (dice < 12) {
            children.erase(child);
        } else if (dice < 22) {
            const DocumentNode copy = *child;
            children.insert(child, copy);
        } else if (dice < 32) {
            std::iter_swap(child, place(0));
        } else if (dice < 37) {
            std::vector<DocumentNode> inner = std::move(child->children);
            children.insert(children.erase(child), inner.begin(), inner.end());
        } else if (child->kind == DocumentNode::Element) {
            child->name = oneOf(alphabet);
        }
        return;
    }
    elementsLeft = 5;
    if (dice < 58) {
        children.insert(place(1), grow(type, oneOf(alphabet), 3));
    } else if (dice < 66) {
        insert(DocumentNode::Text, oneOf(kTexts));
    } else if (dice < 77) {
        insert(DocumentNode::Blank, oneOf(kBlanks));
    } else if (dice < 87) {
        insert(DocumentNode::Comment, percent(50) ? "<!---->" : "<!-- text <b> -->");
    } else if (dice < 95) {
        insert(DocumentNode::BlankReference, oneOf(kBlankReferences));
    } else if (dice < 98) {
        insert(DocumentNode::Instruction, "<?target data?>");
    } else {
        insert(DocumentNode::CData, "<![CDATA[text]]>");
    }
}

void PairMaker::changeAttributes(const DocumentType& type, DocumentNode& node) {
    auto& attributes = node.attributes;
    const std::size_t dice = below(100);
    if (dice < 65 && !attributes.empty()) {
        const auto attribute = attributes.begin() + static_cast<std::ptrdiff_t>(below(attributes.size()));
        if (dice < 20) {
            attributes.erase(attribute);
        } else if (dice < 35) {
            attribute->first = oneOf(kAttributeNames);
        } else if (dice < 55) {
            attribute->second = oneOf(kValues);
        } else {
            const auto copy = *attribute;
            attributes.push_back(copy);
        }
        return;
    }
    const std::vector<const AttributeDeclaration*> declared = type.attributesOf(node.name);
    const bool known = !declared.empty() && percent(60);
    attributes.emplace_back(known ? oneOf(declared)->attribute : oneOf(kAttributeNames), oneOf(kValues));
}

}  // namespace Xml::test
