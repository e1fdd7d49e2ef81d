#include "models/Models.h"

#include "support/NodeTestAccess.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/stream/FileOutStream.h"
#include <sstream>
#include <stdexcept>

namespace Xml::test {

namespace {

// A cursor over one of the short texts. A text that does not fit its grammar is an error in a test.
class Scanner {
public:
    explicit Scanner(const std::string& scanned) : text(scanned) {}

    void skipBlanks() {
        while (at < text.size() && text[at] == ' ') ++at;
    }
    bool done() {
        skipBlanks();
        return at >= text.size();
    }
    char peek() {
        skipBlanks();
        return at < text.size() ? text[at] : '\0';
    }
    // Without skipping blanks: what stands directly after the last token.
    char next() const { return at < text.size() ? text[at] : '\0'; }
    bool take(char c) {
        if (peek() != c) return false;
        ++at;
        return true;
    }
    void expect(char c) {
        if (!take(c)) fail();
    }
    std::string until(const char* ends) {
        skipBlanks();
        const std::size_t from = at;
        at = std::min(text.find_first_of(ends, at), text.size());
        return text.substr(from, at - from);
    }
    void advance() { ++at; }
    [[noreturn]] void fail() const { throw std::logic_error("bad text at " + std::to_string(at) + ": " + text); }

private:
    const std::string& text;
    std::size_t at = 0;
};

const char* const kNameEnds = " ,|()?*+";

RepType scanRepetition(Scanner& scanner) {
    RepType repetition = REP_ONCE;
    if (scanner.next() == '?') repetition = REP_OPTIONAL;
    if (scanner.next() == '*') repetition = REP_ZERO_OR_MORE;
    if (scanner.next() == '+') repetition = REP_ONE_OR_MORE;
    if (repetition != REP_ONCE) scanner.advance();
    return repetition;
}

ParticleValue scanParticle(Scanner& scanner) {
    ParticleValue particle;
    if (scanner.take('(')) {
        particle.kind = ParticleValue::Sequence;
        while (!scanner.take(')')) {
            if (scanner.take('|')) {
                particle.kind = ParticleValue::Choice;
            } else if (scanner.take(',')) {
                if (particle.kind == ParticleValue::Choice) scanner.fail();
            } else if (scanner.peek() == '#') {
                scanner.until(kNameEnds);
                particle.charData = true;
            } else {
                particle.members.push_back(scanParticle(scanner));
            }
        }
    } else {
        particle.name = scanner.until(kNameEnds);
        if (particle.name.empty()) scanner.fail();
    }
    particle.repetition = scanRepetition(scanner);
    return particle;
}

std::vector<NodeValue> scanNodes(Scanner& scanner) {
    std::vector<NodeValue> nodes;
    while (!scanner.done() && scanner.peek() != ')') {
        NodeValue node;
        if (scanner.take('\'')) {
            node.kind = NodeValue::Text;
            while (scanner.next() != '\'') {
                if (scanner.next() == '\0') scanner.fail();
                node.name += scanner.next();
                scanner.advance();
            }
            scanner.advance();
        } else if (scanner.take('"')) {
            node.kind = NodeValue::Section;
            node.name = "section";
        } else if (scanner.take('#')) {
            node.kind = NodeValue::Comment;
        } else if (scanner.take('?')) {
            node.kind = NodeValue::Instruction;
        } else if (scanner.take('@')) {
            node.kind = NodeValue::Other;
        } else {
            if (!scanner.take('!')) {
                node.name = scanner.until(" [(')@!#?\"");
                if (node.name.empty()) scanner.fail();
            }
            if (scanner.next() == '[') {
                scanner.advance();
                while (!scanner.take(']')) {
                    if (scanner.done()) scanner.fail();
                    node.attributes.emplace(scanner.until("= ]"), kNoLink);
                    if (scanner.take('=')) scanner.until(" ]");
                }
            }
            if (scanner.next() == '(') {
                scanner.advance();
                node.children = scanNodes(scanner);
                scanner.expect(')');
            }
        }
        nodes.push_back(std::move(node));
    }
    return nodes;
}

template <class Group>
void addMember(Group& group, void (Group::*addSpec)(ChildrenSpec*), void (Group::*addName)(const std::string&, RepType),
               void (Group::*addParticle)(CpSpec*, RepType), const ParticleValue& member, const Dtds& dtds,
               OwnLog* log) {
    if (member.form == 1 && member.kind == ParticleValue::Name) {
        (group.*addName)(member.name, member.repetition);
    } else if (member.form == 2) {
        (group.*addParticle)(makeParticle(member, dtds, log), member.repetition);
    } else {
        (group.*addSpec)(makeChildren(member, dtds, log));
    }
}

template <class Writable, class... More>
std::string writtenBy(const Writable& writable, More... more) {
    std::ostringstream text;
    FileOutStream out(&text);
    writable.toStream(out, more...);
    return text.str();
}

const char* markOf(int link) {
    const char* const kMarks[] = {"", "*", "+", "-", "?"};
    return kMarks[link + 1];
}

void appendLinks(const Object& node, const std::vector<const Dtd*>& dtds, std::string& text) {
    const auto mark = [&dtds](const Object& marked) {
        const Dtd* dtd = NodeTestAccess::dtd(marked);
        if (dtd == nullptr) return markOf(kNoLink);
        for (std::size_t i = 0; i < dtds.size(); ++i) {
            if (dtds[i] == dtd) return markOf(static_cast<int>(i));
        }
        return markOf(3);
    };
    if (dynamic_cast<const Comment*>(&node) != nullptr) {
        text += std::string("#") + mark(node);
    } else if (dynamic_cast<const Instruction*>(&node) != nullptr) {
        text += std::string("?") + mark(node);
    } else if (node.isCharData()) {
        text += "'" + node.toCharData()->data() + "'" + mark(node);
    } else if (const auto* element = dynamic_cast<const Element*>(&node)) {
        text += (element->getName().empty() ? "!" : element->getName()) + mark(node);
        if (element->getAttributeCount() > 0) {
            text += '[';
            for (int i = 0; i < element->getAttributeCount(); ++i) {
                const Attribute& attribute = *element->getAttribute(i);
                text += (i > 0 ? " " : "") + attribute.getName() + mark(attribute);
            }
            text += ']';
        }
        if (element->getChildCount() > 0) {
            text += '(';
            for (int i = 0; i < element->getChildCount(); ++i) {
                if (i > 0) text += ' ';
                appendLinks(*element->getChild(i), dtds, text);
            }
            text += ')';
        }
    } else {
        text += std::string("@") + mark(node);
    }
}

void appendLinks(const NodeValue& node, std::string& text) {
    if (node.isText()) {
        text += "'" + node.name + "'" + markOf(node.link);
    } else if (node.isPassedOver()) {
        text += (node.kind == NodeValue::Comment ? "#" : "?") + std::string(markOf(node.link));
    } else if (node.kind == NodeValue::Other) {
        text += std::string("@") + markOf(node.link);
    } else {
        text += (node.name.empty() ? "!" : node.name) + markOf(node.link);
        if (!node.attributes.empty()) {
            text += '[';
            const char* separator = "";
            for (const auto& attribute : node.attributes) {
                text += separator + attribute.first + markOf(attribute.second);
                separator = " ";
            }
            text += ']';
        }
        if (!node.children.empty()) {
            text += '(';
            const char* separator = "";
            for (const NodeValue& child : node.children) {
                text += separator;
                appendLinks(child, text);
                separator = " ";
            }
            text += ')';
        }
    }
}

}  // namespace

// --- Texts into values ---

ParticleValue particleOf(const std::string& text) {
    Scanner scanner(text);
    ParticleValue particle = scanParticle(scanner);
    if (!scanner.done()) scanner.fail();
    return particle;
}

ModelValue modelOf(const std::string& text) {
    ModelValue model;
    if (text == "EMPTY") {
        model.kind = ModelValue::Empty;
    } else if (text == "ANY") {
        model.kind = ModelValue::Any;
    } else if (text == "CHARS") {
        model.kind = ModelValue::Chars;
    } else if (text.rfind("(#PCDATA", 0) == 0) {
        model.kind = ModelValue::Mixed;
        Scanner scanner(text);
        scanner.expect('(');
        scanner.until(kNameEnds);
        while (!scanner.take(')')) {
            scanner.expect('|');
            model.names.push_back(scanner.until(kNameEnds));
        }
    } else {
        model.kind = ModelValue::Children;
        model.particle = particleOf(text);
    }
    return model;
}

DtdValue dtdValueOf(const std::string& text) {
    DtdValue dtd;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line, ';');) {
        line.erase(0, line.find_first_not_of(' '));
        if (line.empty()) continue;
        const std::size_t mark = line.find_first_of(":@");
        if (mark == std::string::npos) throw std::logic_error("bad declaration: " + line);
        const std::string element = line.substr(0, mark);
        if (line[mark] == ':') {
            dtd.elements[element] = modelOf(line.substr(line.find_first_not_of(' ', mark + 1)));
        } else {
            std::istringstream words(line.substr(mark + 1));
            std::string attribute, rule, value;
            words >> attribute >> rule >> value;
            const std::map<std::string, AttType> kRules = {
                {"DEFAULT", DEFAULT}, {"REQUIRED", REQUIRED}, {"IMPLIED", IMPLIED}, {"FIXED", FIXED}};
            dtd.attributeLists[element][attribute] = {kRules.at(rule), value};
        }
    }
    return dtd;
}

std::vector<NodeValue> nodesOf(const std::string& text) {
    Scanner scanner(text);
    std::vector<NodeValue> nodes = scanNodes(scanner);
    if (!scanner.done()) scanner.fail();
    return nodes;
}

// --- Values into the library's objects ---

CpSpec* makeParticle(const ParticleValue& particle, const Dtds& dtds, OwnLog* log) {
    Dtd* dtd = dtds[particle.dtd];
    switch (particle.kind) {
    case ParticleValue::Name: return new NameSpec(dtd, particle.name);
    case ParticleValue::Own: return new OwnParticle(dtd, particle.name, log);
    case ParticleValue::Sequence: {
        auto* sequence = new SeqSpec(dtd);
        for (const ParticleValue& member : particle.members) {
            addMember<SeqSpec>(*sequence, &SeqSpec::add, &SeqSpec::add, &SeqSpec::add, member, dtds, log);
        }
        return sequence;
    }
    case ParticleValue::Choice: {
        auto* choice = new ChoiceSpec(dtd);
        for (const ParticleValue& member : particle.members) {
            addMember<ChoiceSpec>(*choice, &ChoiceSpec::addChoice, &ChoiceSpec::addChoice, &ChoiceSpec::addChoice,
                                  member, dtds, log);
        }
        choice->addCharDataAsChoice(particle.charData);
        return choice;
    }
    }
    return nullptr;
}

ChildrenSpec* makeChildren(const ParticleValue& particle, const Dtds& dtds, OwnLog* log) {
    if (particle.kind == ParticleValue::Name && particle.form == 3) {
        return new ChildrenSpec(dtds[particle.dtd], particle.name, particle.repetition);
    }
    return new ChildrenSpec(dtds[particle.dtd], makeParticle(particle, dtds, log), particle.repetition);
}

ContentSpec* makeModel(const ModelValue& model, const Dtds& dtds, OwnLog* log) {
    Dtd* dtd = dtds[model.dtd];
    switch (model.kind) {
    case ModelValue::Empty: return new EmptySpec(dtd);
    case ModelValue::Any: return new AnySpec(dtd);
    case ModelValue::Chars: return new CharSpec(dtd);
    case ModelValue::Children: return makeChildren(model.particle, dtds, log);
    case ModelValue::Own: return new OwnSpec(dtd, model.ownName, model.ownRule, log);
    case ModelValue::Mixed: {
        auto* mixed = new MixedSpec(dtd);
        for (const std::string& name : model.names) mixed->addName(name);
        return mixed;
    }
    }
    return nullptr;
}

void declare(Dtd& dtd, const DtdValue& value, const Dtds& dtds, OwnLog* log) {
    for (const auto& element : value.elements) dtd.addElementDecl(element.first, makeModel(element.second, dtds, log));
    for (const auto& list : value.attributeLists) {
        for (const auto& definition : list.second) {
            dtd.addAttDecl(list.first, definition.first,
                           new AttStringType(definition.second.rule, definition.second.value));
        }
    }
}

Object* makeNode(const NodeValue& node) {
    Object* made = nullptr;
    if (node.kind == NodeValue::Text) {
        made = new CharData(node.name);
    } else if (node.kind == NodeValue::Section) {
        made = new CDataSection(node.name);
    } else if (node.kind == NodeValue::Comment) {
        made = new Comment("comment");
    } else if (node.kind == NodeValue::Instruction) {
        made = new Instruction("go", "there");
    } else if (node.kind == NodeValue::Other) {
        made = new Attribute("attribute", "in the place of a child");
    } else {
        auto* element = new Element(node.name);
        for (const auto& attribute : node.attributes) element->setAttribute(attribute.first, "value");
        for (const NodeValue& child : node.children) element->addChild(makeNode(child));
        made = element;
    }
    node.object = made;
    return made;
}

std::unique_ptr<Dtd> dtdOf(const std::string& text) {
    auto dtd = std::make_unique<Dtd>("test");
    declare(*dtd, dtdValueOf(text), {dtd.get()});
    return dtd;
}

std::unique_ptr<ContentSpec> specOf(const std::string& text, Dtd* dtd) {
    return std::unique_ptr<ContentSpec>(makeModel(modelOf(text), {dtd}));
}

std::unique_ptr<Element> elementOf(const std::string& text) {
    const std::vector<NodeValue> nodes = nodesOf(text);
    if (nodes.size() != 1) throw std::logic_error("not one element: " + text);
    return std::unique_ptr<Element>(makeNode(nodes[0])->toElement());
}

NodeList::NodeList(const std::string& text) : NodeList(nodesOf(text)) {}

NodeList::NodeList(const std::vector<NodeValue>& values) {
    for (const NodeValue& value : values) {
        owned.emplace_back(makeNode(value));
        nodes.push_back(owned.back().get());
    }
}

bool accepts(const std::string& model, const std::string& children) {
    const std::unique_ptr<Dtd> dtd = dtdOf("a: ANY; b: ANY; c: ANY; d: ANY; e: ANY");
    return specOf(model, dtd.get())->validate(NodeList(children).list());
}

std::string written(const ContentSpec& model) { return writtenBy(model); }
std::string written(const CpSpec& particle, bool outermost) { return writtenBy(particle, outermost); }
std::string written(const AttDef& definition) { return writtenBy(definition); }
std::string written(const Object& node) { return writtenBy(node); }

std::string linksOf(const Object& node, const std::vector<const Dtd*>& dtds) {
    std::string text;
    appendLinks(node, dtds, text);
    return text;
}

std::string linksOf(const NodeValue& node) {
    std::string text;
    appendLinks(node, text);
    return text;
}

// --- Models of a caller's own ---

bool OwnSpec::validate(const std::vector<Object*>& children) const {
    log->entries.emplace_back(name, std::vector<const Object*>(children.begin(), children.end()));
    return rule == 0 || (rule == 2 && children.size() % 2 == 0);
}

void OwnSpec::toStream(OutStream& out) const { out << "own " << name; }

ContentSpec* OwnSpec::clone(Dtd* owner) const { return new OwnSpec(owner, name, rule, log); }

bool OwnParticle::validate(ChildQueue& children) const {
    std::vector<const Object*> waiting;
    for (ChildQueue rest = children; !rest.empty(); rest.pop()) waiting.push_back(rest.front());
    log->entries.emplace_back(name, waiting);
    if (children.empty()) return false;
    children.pop();
    if (children.empty()) return false;
    children.pop();
    return true;
}

void OwnParticle::toStream(OutStream& out, bool outermost) const {
    out << (outermost ? "outermost " : "inner ") << name;
}

CpSpec* OwnParticle::clone(Dtd* owner) const { return new OwnParticle(owner, name, log); }

}  // namespace Xml::test
