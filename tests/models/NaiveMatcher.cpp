#include "models/NaiveMatcher.h"

#include <algorithm>

namespace Xml::test {

namespace {

bool isLetterOrMark(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':'; }

std::string storedName(const std::string& given) {
    if (given.empty() || !isLetterOrMark(given[0])) return "";
    const auto fits = [](char c) { return isLetterOrMark(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
    return std::all_of(given.begin(), given.end(), fits) ? given : "";
}

std::vector<const Object*> objectsOf(const NaiveMatcher::Queue& queue) {
    std::vector<const Object*> objects;
    for (const NodeValue* node : queue) objects.push_back(node->object);
    return objects;
}

const char* markOf(RepType repetition) {
    const char* const kMarks[] = {"", "?", "*", "+"};
    return kMarks[repetition];
}

}  // namespace

void NaiveMatcher::step() {
    if (--stepsLeft < 0) throw TooManySteps();
}

NaiveMatcher::Queue NaiveMatcher::queueOf(std::vector<NodeValue>& nodes) {
    Queue queue;
    for (NodeValue& node : nodes) {
        if (!node.isPassedOver()) queue.push_back(&node);
    }
    return queue;
}

void NaiveMatcher::setLink(NodeValue& node, int link) {
    node.link = link;
    for (auto& attribute : node.attributes) attribute.second = link;
    for (NodeValue& child : node.children) setLink(child, link);
}

bool NaiveMatcher::validateElement(std::size_t dtd, NodeValue& element) {
    step();
    const auto declaration = dtds[dtd].elements.find(element.name);
    if (declaration == dtds[dtd].elements.end()) return false;
    if (!validateModel(declaration->second, element.children)) return false;

    const auto list = dtds[dtd].attributeLists.find(element.name);
    if (list == dtds[dtd].attributeLists.end()) return element.attributes.empty();
    for (const auto& definition : list->second) {
        if (definition.second.rule != REQUIRED) continue;
        if (element.attributes.count(definition.first) == 0) return false;
    }
    for (const auto& attribute : element.attributes) {
        if (list->second.count(attribute.first) == 0) return false;
    }
    setLink(element, static_cast<int>(dtd));
    return true;
}

bool NaiveMatcher::validateModel(const ModelValue& model, std::vector<NodeValue>& children) {
    step();
    switch (model.kind) {
    case ModelValue::Empty: return queueOf(children).empty();
    case ModelValue::Any: return true;
    case ModelValue::Chars:
        for (NodeValue* child : queueOf(children)) {
            if (!child->isText()) return false;
            setLink(*child, static_cast<int>(model.dtd));
        }
        return true;
    case ModelValue::Mixed:
        for (NodeValue* child : queueOf(children)) {
            if (child->kind != NodeValue::ElementNode) {
                if (!child->isText()) return false;
            } else {
                if (std::count(model.names.begin(), model.names.end(), child->name) == 0) return false;
                if (!validateElement(model.dtd, *child)) return false;
            }
            setLink(*child, static_cast<int>(model.dtd));
        }
        return true;
    case ModelValue::Children: {
        Queue queue = queueOf(children);
        return validateRepeated(model.particle, queue) && queue.empty();
    }
    case ModelValue::Own:
        ownLog.entries.emplace_back(model.ownName, objectsOf(queueOf(children)));
        return model.ownRule == 0 || (model.ownRule == 2 && queueOf(children).size() % 2 == 0);
    }
    return false;
}

bool NaiveMatcher::validateRepeated(const ParticleValue& particle, Queue& queue) {
    for (int passes = 0;;) {
        step();
        const Queue snapshot = queue;
        if (!validateParticle(particle, queue)) {
            if (particle.repetition == REP_ONCE) return false;
            if (particle.repetition == REP_ONE_OR_MORE && passes == 0) return false;
            queue = snapshot;
            return true;
        }
        if (particle.repetition == REP_ONCE || particle.repetition == REP_OPTIONAL) return true;
        ++passes;
        if (queue.empty() || queue.size() == snapshot.size()) return true;
    }
}

bool NaiveMatcher::validateParticle(const ParticleValue& particle, Queue& queue) {
    step();
    switch (particle.kind) {
    case ParticleValue::Name: {
        if (queue.empty() || queue.front()->kind != NodeValue::ElementNode) return false;
        const std::string name = storedName(particle.name);
        if (name.empty() || queue.front()->name != name) return false;
        if (!validateElement(particle.dtd, *queue.front())) return false;
        queue.pop_front();
        return true;
    }
    case ParticleValue::Sequence:
        for (const ParticleValue& member : particle.members) {
            if (!validateRepeated(member, queue)) return false;
        }
        return true;
    case ParticleValue::Choice:
        for (const ParticleValue& member : particle.members) {
            const Queue before = queue;
            if (validateRepeated(member, queue)) return true;
            queue = before;
        }
        if (!particle.charData) return false;
        if (queue.empty()) return true;
        if (!queue.front()->isText()) return false;
        queue.pop_front();
        return true;
    case ParticleValue::Own:
        ownLog.entries.emplace_back(particle.name, objectsOf(queue));
        for (int taken = 0; taken < 2; ++taken) {
            if (queue.empty()) return false;
            queue.pop_front();
        }
        return true;
    }
    return false;
}

std::string naiveText(const ParticleValue& particle, bool outermost, std::vector<std::string>& messages) {
    std::string text;
    const auto joinMembers = [&particle, &messages, &text](const char* separator) {
        for (std::size_t i = 0; i < particle.members.size(); ++i) {
            if (i > 0) text += separator;
            text += naiveText(particle.members[i], false, messages) + markOf(particle.members[i].repetition);
        }
    };
    switch (particle.kind) {
    case ParticleValue::Name: return outermost ? "(" + storedName(particle.name) + ")" : storedName(particle.name);
    case ParticleValue::Own: return (outermost ? "outermost " : "inner ") + particle.name;
    case ParticleValue::Sequence: {
        if (particle.members.empty()) {
            messages.push_back("<SeqSpec::toStream> need at least 1 element");
            return "";
        }
        joinMembers(", ");
        return outermost || particle.members.size() > 1 ? "(" + text + ")" : text;
    }
    case ParticleValue::Choice:
        if (particle.members.size() < 2) {
            messages.push_back("<ChoiceSpec::toStream> need at least 2 items");
            return "";
        }
        joinMembers(" | ");
        return "(" + text + (particle.charData ? " | #PCDATA)" : ")");
    }
    return text;
}

std::string naiveText(const ModelValue& model, std::vector<std::string>& messages) {
    switch (model.kind) {
    case ModelValue::Empty: return "EMPTY";
    case ModelValue::Any: return "ANY";
    case ModelValue::Chars: return "(#PCDATA)";
    case ModelValue::Own: return "own " + model.ownName;
    case ModelValue::Children: return naiveText(model.particle, true, messages) + markOf(model.particle.repetition);
    case ModelValue::Mixed: {
        if (model.names.empty()) return "(#PCDATA)";
        std::string text = "(#PCDATA";
        for (const std::string& name : model.names) text += " | " + name;
        return text + ")*";
    }
    }
    return "";
}

}  // namespace Xml::test
