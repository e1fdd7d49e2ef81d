#pragma once

#include "xml/dom/Element.h"
#include "xml/dtd/AttDef.h"
#include "xml/dtd/ContentSpec.h"
#include "xml/dtd/CpSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/RepType.h"
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Content models, declarations and nodes as plain values of the tests' own, made from short texts or at random. The
// library's objects and what the naive matcher works on are made from the same value.
namespace Xml {
class ChildrenSpec;
}

namespace Xml::test {

// What the models of a caller's own were asked, in order: which one, and the nodes it was given.
struct OwnLog {
    using Entry = std::pair<std::string, std::vector<const Object*>>;
    std::vector<Entry> entries;
};

// A particle with its repetition.
struct ParticleValue {
    enum Kind { Name, Sequence, Choice, Own };

    Kind kind = Name;
    RepType repetition = REP_ONCE;
    std::string name;                    // as it is given, a name or not; for Own what stands in the log
    std::vector<ParticleValue> members;  // of sequences and choices
    bool charData = false;               // of choices
    std::size_t dtd = 0;                 // which of the Dtds the back-pointer designates
    int form = 0;                        // which of the ways of adding it to a group is taken
};

struct ModelValue {
    enum Kind { Empty, Any, Chars, Mixed, Children, Own };

    Kind kind = Empty;
    std::vector<std::string> names;  // of mixed models
    ParticleValue particle;          // of children models
    std::size_t dtd = 0;
    std::string ownName;  // what stands in the log
    int ownRule = 0;      // 0 accepts, 1 refuses, 2 accepts an even number of children
};

struct DefinitionValue {
    AttType rule = IMPLIED;
    std::string value;
};

struct DtdValue {
    std::map<std::string, ModelValue> elements;
    std::map<std::string, std::map<std::string, DefinitionValue>> attributeLists;
};

constexpr int kNoLink = -1;

struct NodeValue {
    enum Kind { ElementNode, Text, Section, Comment, Instruction, Other };

    bool isText() const { return kind == Text || kind == Section; }
    bool isPassedOver() const { return kind == Comment || kind == Instruction; }

    Kind kind = ElementNode;
    std::string name;                       // of elements; the text of character data
    std::map<std::string, int> attributes;  // to the link of each
    std::vector<NodeValue> children;
    int link = kNoLink;                      // number of the Dtd
    mutable const Object* object = nullptr;  // the library's node made from this
};

// "(a, b?, (c | d | #PCDATA)+)": names, sequences and choices with their repetitions. "()" is an empty sequence, "(|)"
// an empty choice, "(a |)" a choice of one. What is no name is kept as it is given.
ParticleValue particleOf(const std::string& text);

// EMPTY, ANY, CHARS (character data only), "(#PCDATA)" and "(#PCDATA | a)*" (mixed), else a particle.
ModelValue modelOf(const std::string& text);

// "a: (b, c?); b: EMPTY; a@x REQUIRED; a@y DEFAULT value".
DtdValue dtdValueOf(const std::string& text);

// "a[x=1 y=2](b 'text' c)": elements with attributes and children, and text; "\"" is a section, "#" a comment, "?" an
// instruction, "!" an element with an empty name, "@" an attribute in the place of a child.
std::vector<NodeValue> nodesOf(const std::string& text);

using Dtds = std::vector<Dtd*>;

CpSpec* makeParticle(const ParticleValue& particle, const Dtds& dtds, OwnLog* log = nullptr);
ChildrenSpec* makeChildren(const ParticleValue& particle, const Dtds& dtds, OwnLog* log = nullptr);
ContentSpec* makeModel(const ModelValue& model, const Dtds& dtds, OwnLog* log = nullptr);
void declare(Dtd& dtd, const DtdValue& value, const Dtds& dtds, OwnLog* log = nullptr);
Object* makeNode(const NodeValue& node);

// The same straight from a text, for one Dtd.
std::unique_ptr<Dtd> dtdOf(const std::string& text);
std::unique_ptr<ContentSpec> specOf(const std::string& text, Dtd* dtd);
std::unique_ptr<Element> elementOf(const std::string& text);

// A list of nodes that owns them.
class NodeList {
public:
    explicit NodeList(const std::string& text);
    explicit NodeList(const std::vector<NodeValue>& nodes);
    const std::vector<Object*>& list() const { return nodes; }

private:
    std::vector<std::unique_ptr<Object>> owned;
    std::vector<Object*> nodes;
};

// Whether a model, given as text, accepts the nodes, given as text; all of a, b, c, d and e are declared ANY.
bool accepts(const std::string& model, const std::string& children);

// What they write.
std::string written(const ContentSpec& model);
std::string written(const CpSpec& particle, bool outermost);
std::string written(const AttDef& definition);
std::string written(const Object& node);

// The tree with the mark of the linked Dtd after each linked name or text: "*" for the first of the Dtds, "+" for the
// second, "-" for the third, "?" for any other: a*[x*](b 'text'*).
std::string linksOf(const Object& node, const std::vector<const Dtd*>& dtds);
std::string linksOf(const NodeValue& node);

// Models of a caller's own, which write what they are asked into the log.
class OwnSpec : public ContentSpec {
public:
    OwnSpec(Dtd* owner, std::string logName, int verdictRule, OwnLog* target)
        : ContentSpec(owner), name(std::move(logName)), rule(verdictRule), log(target) {}

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* owner) const override;

private:
    std::string name;
    int rule;
    OwnLog* log;
};

// Takes two nodes of any kind; takes a single one too, but fails then.
class OwnParticle : public CpSpec {
public:
    OwnParticle(Dtd* owner, std::string logName, OwnLog* target)
        : CpSpec(owner), name(std::move(logName)), log(target) {}

    bool validate(ChildQueue& children) const override;
    void toStream(OutStream& out, bool outermost) const override;
    CpSpec* clone(Dtd* owner) const override;

private:
    std::string name;
    OwnLog* log;
};

}  // namespace Xml::test
