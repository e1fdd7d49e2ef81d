#include "standard/Models.h"

#include "xml/dtd/AnySpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <algorithm>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

struct Particle {
    char between = 0;     // ',' or '|' of a group, 0 of a name
    char repetition = 0;  // 0, '?', '*' or '+'
    std::string name;
    std::vector<Particle> members;
};

bool mayBeNothing(char repetition) { return repetition == '?' || repetition == '*'; }

// (a,(b,c)) is (a,b,c).
void flatten(Particle& particle) {
    std::vector<Particle> flat;
    for (Particle& member : particle.members) {
        if (member.between == particle.between && member.repetition == 0) {
            for (Particle& inner : member.members) flat.push_back(std::move(inner));
        } else {
            flat.push_back(std::move(member));
        }
    }
    particle.members = std::move(flat);
}

// (a|b*)+ is (a|b)*, and what is flattened by that is looked at again.
void normalise(Particle& particle) {
    for (Particle& member : particle.members) normalise(member);
    flatten(particle);
    const bool isRepeatedChoice = particle.between == '|' && (particle.repetition == '*' || particle.repetition == '+');
    const auto repeats = [](const Particle& member) { return member.repetition != 0; };
    while (isRepeatedChoice && std::any_of(particle.members.begin(), particle.members.end(), repeats)) {
        for (Particle& member : particle.members) {
            if (mayBeNothing(std::exchange(member.repetition, char{0}))) particle.repetition = '*';
        }
        flatten(particle);
    }
}

std::string textOf(const Particle& particle) {
    std::string text = particle.name;
    for (std::size_t i = 0; i < particle.members.size(); ++i) {
        text += i == 0 ? '(' : particle.between;
        text += textOf(particle.members[i]);
    }
    if (!particle.members.empty()) text += ')';
    if (particle.repetition != 0) text += particle.repetition;
    return text;
}

std::string normalText(Particle particle) {
    normalise(particle);
    return textOf(particle);
}

std::string mixedText(const std::vector<std::string>& names) {
    std::string text = "#PCDATA";
    std::set<std::string> seen;
    for (const std::string& name : names) {
        if (seen.insert(name).second) text += "|" + name;
    }
    return text;
}

Particle particleOf(const ChildrenSpec& model) {
    Particle result;
    constexpr char kMarks[] = {0, '?', '*', '+'};
    result.repetition = kMarks[SpecAccess::repetition(model)];
    const CpSpec& particle = SpecAccess::particle(model);
    if (const auto* const name = dynamic_cast<const NameSpec*>(&particle)) {
        result.name = SpecAccess::name(*name);
        return result;
    }
    result.between = dynamic_cast<const SeqSpec*>(&particle) != nullptr ? ',' : '|';
    for (const auto& member : SpecAccess::members(dynamic_cast<const GroupSpec&>(particle))) {
        result.members.push_back(particleOf(*member));
    }
    return result;
}

// --- libxml2 ---

std::string nameOf(const xmlElementContent& content) {
    const std::string local = reinterpret_cast<const char*>(content.name);
    return content.prefix == nullptr ? local : reinterpret_cast<const char*>(content.prefix) + (":" + local);
}

Particle particleOf(const xmlElementContent& content) {
    Particle result;
    if (content.ocur == XML_ELEMENT_CONTENT_OPT) result.repetition = '?';
    if (content.ocur == XML_ELEMENT_CONTENT_MULT) result.repetition = '*';
    if (content.ocur == XML_ELEMENT_CONTENT_PLUS) result.repetition = '+';
    if (content.type == XML_ELEMENT_CONTENT_ELEMENT) {
        result.name = nameOf(content);
        return result;
    }
    result.between = content.type == XML_ELEMENT_CONTENT_SEQ ? ',' : '|';
    result.members.push_back(particleOf(*content.c1));
    result.members.push_back(particleOf(*content.c2));
    return result;
}

// Its tree leans to the right, (#PCDATA | (a | b)), and begins with the text.
std::vector<std::string> mixedNames(const xmlElementContent* content) {
    std::vector<std::string> names;
    for (; content != nullptr; content = content->c2) {
        const xmlElementContent* const here = content->type == XML_ELEMENT_CONTENT_OR ? content->c1 : content;
        if (here->type == XML_ELEMENT_CONTENT_ELEMENT) names.push_back(nameOf(*here));
        if (here == content) break;
    }
    return names;
}

}  // namespace

std::string normalModel(const ContentSpec& model) {
    if (isExactlySpec<EmptySpec>(model)) return "EMPTY";
    if (isExactlySpec<AnySpec>(model)) return "ANY";
    if (isExactlySpec<MixedSpec>(model)) return mixedText(SpecAccess::names(static_cast<const MixedSpec&>(model)));
    return normalText(particleOf(dynamic_cast<const ChildrenSpec&>(model)));
}

std::string normalModel(const void* libxml2Element) {
    const auto& element = *static_cast<const xmlElement*>(libxml2Element);
    switch (element.etype) {
    case XML_ELEMENT_TYPE_EMPTY: return "EMPTY";
    case XML_ELEMENT_TYPE_ANY: return "ANY";
    case XML_ELEMENT_TYPE_MIXED: return mixedText(mixedNames(element.content));
    default: return normalText(particleOf(*element.content));
    }
}

}  // namespace Xml::test
