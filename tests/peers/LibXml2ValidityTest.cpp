// Whether documents are valid, asked of this library and of libxml2: over random document types and documents. The two
// must agree except where the dialect means a difference. Every difference is known by a rule (see Rule), which is
// computed from the document type and the document, and whatever no rule speaks of both must see alike.
//
// What libxml2 has to say is compared fault by fault, by the codes of its errors, so that one fault does not hide what
// is thought of another; our verdict has no reasons.
#include "peers/ContentMatchers.h"
#include "peers/ValidityPairs.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include <algorithm>
#include <array>
#include <bitset>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <libxml/parser.h>
#include <libxml/valid.h>
#include <libxml/xmlautomata.h>
#include <libxml/xmlregexp.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

enum Verdict { Valid, Invalid, NotRead };

std::ostream& operator<<(std::ostream& out, Verdict verdict) {
    return out << (verdict == Valid ? "valid" : verdict == Invalid ? "invalid" : "not read");
}

// --- libxml2 ---

struct Free {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlValidCtxt* context) const { xmlFreeValidCtxt(context); }
    void operator()(xmlAutomata* automaton) const { xmlFreeAutomata(automaton); }
    void operator()(xmlRegexp* compiled) const { xmlRegFreeRegexp(compiled); }
    void operator()(xmlRegExecCtxt* run) const { xmlRegFreeExecCtxt(run); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

using Codes = std::set<int>;

// Collects the errors that libxml2 raises while it lives; nothing is printed.
class PeerErrors {
public:
    PeerErrors() { xmlSetStructuredErrorFunc(this, add); }
    ~PeerErrors() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
    PeerErrors(const PeerErrors&) = delete;
    PeerErrors& operator=(const PeerErrors&) = delete;

    Codes codes;
    std::set<std::string> ambiguous;  // elements whose models it finds ambiguous

private:
    static void add(void* self, xmlErrorPtr error) {
        auto& errors = *static_cast<PeerErrors*>(self);
        if (error->code == XML_DTD_CONTENT_NOT_DETERMINIST) {
            errors.ambiguous.insert(error->str1);
        } else {
            errors.codes.insert(error->code);
        }
    }
};

struct PeerOpinion {
    Verdict verdict = NotRead;
    Codes faults;
    std::set<std::string> ambiguous;
};

PeerOpinion peerOpinion(const std::string& text) {
    PeerErrors errors;
    const Owned<xmlParserCtxt> parser(xmlNewParserCtxt());
    const Owned<xmlDoc> document(xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr,
                                                   nullptr, XML_PARSE_NONET | XML_PARSE_COMPACT));
    if (!document) return {NotRead, errors.codes, {}};
    errors.codes.clear();
    const Owned<xmlValidCtxt> context(xmlNewValidCtxt());
    const bool valid = xmlValidateDocument(context.get(), document.get()) == 1;
    // Where the root has another name than the document type it stops there.
    if (errors.codes.count(XML_DTD_ROOT_NAME) != 0)
        xmlValidateElement(context.get(), document.get(), xmlDocGetRootElement(document.get()));
    return {valid ? Valid : Invalid, errors.codes, errors.ambiguous};
}

// What an automaton of libxml2 thinks of names as the content of an element. It does not mind ambiguity: it goes back.
class PeerAutomaton {
public:
    explicit PeerAutomaton(const ContentParticle& particle) {
        const Owned<xmlAutomata> automaton(xmlNewAutomata());
        xmlAutomataSetFinalState(automaton.get(),
                                 add(automaton.get(), particle, xmlAutomataGetInitState(automaton.get())));
        compiled.reset(xmlAutomataCompile(automaton.get()));
    }

    bool fits(const Names& names) const {
        const Owned<xmlRegExecCtxt> run(xmlRegNewExecCtxt(compiled.get(), nullptr, nullptr));
        for (const std::string& name : names) {
            if (xmlRegExecPushString(run.get(), text(name), nullptr) < 0) return false;
        }
        return xmlRegExecPushString(run.get(), nullptr, nullptr) == 1;
    }

private:
    static const xmlChar* text(const std::string& name) { return reinterpret_cast<const xmlChar*>(name.c_str()); }

    // Each particle has states of its own at both ends, so that its repetition repeats nothing else.
    static xmlAutomataState* add(xmlAutomata* automaton, const ContentParticle& particle, xmlAutomataState* from) {
        xmlAutomataState* const begin = xmlAutomataNewEpsilon(automaton, from, nullptr);
        xmlAutomataState* last = begin;
        xmlAutomataState* const end = xmlAutomataNewState(automaton);
        if (particle.kind == ContentParticle::Name) {
            last = xmlAutomataNewTransition(automaton, begin, nullptr, text(particle.name), nullptr);
        } else if (particle.kind == ContentParticle::Sequence) {
            for (const ContentParticle& member : particle.members) last = add(automaton, member, last);
        } else {
            last = xmlAutomataNewState(automaton);
            for (const ContentParticle& member : particle.members)
                xmlAutomataNewEpsilon(automaton, add(automaton, member, begin), last);
        }
        xmlAutomataNewEpsilon(automaton, last, end);
        if (particle.mark == "*" || particle.mark == "+") xmlAutomataNewEpsilon(automaton, last, begin);
        if (particle.mark == "*" || particle.mark == "?") xmlAutomataNewEpsilon(automaton, begin, end);
        return end;
    }

    Owned<xmlRegexp> compiled;
};

// --- This library ---

// How it comes by a document and its type: from their text, or node by node and declaration by declaration.
enum Way { Read, Built };

Verdict verdictOnText(const std::string& text) {
    const Outcome outcome = readDocument(text);
    if (outcome.ok) return Valid;
    if (outcome.error.find("Doc could not be validated") != std::string::npos) return Invalid;
    EXPECT_NE(outcome.error.find("unexpected markup"), std::string::npos) << outcome.error;
    return NotRead;
}

RepType repetitionOf(const ContentParticle& particle) {
    return particle.mark == "?"   ? REP_OPTIONAL
           : particle.mark == "*" ? REP_ZERO_OR_MORE
           : particle.mark == "+" ? REP_ONE_OR_MORE
                                  : REP_ONCE;
}

CpSpec* buildParticle(Dtd* dtd, const ContentParticle& particle) {
    if (particle.kind == ContentParticle::Name) return new NameSpec(dtd, particle.name);
    if (particle.kind == ContentParticle::Sequence) {
        auto* sequence = new SeqSpec(dtd);
        for (const ContentParticle& member : particle.members)
            sequence->add(buildParticle(dtd, member), repetitionOf(member));
        return sequence;
    }
    auto* choice = new ChoiceSpec(dtd);
    for (const ContentParticle& member : particle.members)
        choice->addChoice(buildParticle(dtd, member), repetitionOf(member));
    return choice;
}

ContentSpec* buildModel(Dtd* dtd, const ContentModel& model) {
    switch (model.kind) {
    case ContentModel::Empty: return new EmptySpec(dtd);
    case ContentModel::Any: return new AnySpec(dtd);
    case ContentModel::Children:
        return new ChildrenSpec(dtd, buildParticle(dtd, model.particle), repetitionOf(model.particle));
    case ContentModel::Mixed: break;
    }
    auto* mixed = new MixedSpec(dtd);
    for (const std::string& name : model.names) mixed->addName(name);
    return mixed;
}

// What is refused because it is declared already stays ours.
Dtd* buildDtd(const DocumentType& type) {
    auto* dtd = new Dtd(type.name);
    for (const ElementDeclaration& declaration : type.elements) {
        if (type.modelOf(declaration.element) == &declaration.model)
            dtd->addElementDecl(declaration.element, buildModel(dtd, declaration.model));
    }
    const std::map<AttributeDeclaration::Rule, AttType> kRules = {{AttributeDeclaration::Required, REQUIRED},
                                                                  {AttributeDeclaration::Implied, IMPLIED},
                                                                  {AttributeDeclaration::Default, DEFAULT},
                                                                  {AttributeDeclaration::Fixed, FIXED}};
    for (const AttributeDeclaration& declaration : type.attributes) {
        if (type.attributeOf(declaration.element, declaration.attribute) == &declaration)
            dtd->addAttDecl(declaration.element, declaration.attribute,
                            new AttStringType(kRules.at(declaration.rule), declaration.value));
    }
    return dtd;
}

// Comments and processing instructions have no place in a tree; a CDATA section is text.
Element* buildElement(const DocumentNode& node) {
    auto* element = new Element(node.name);
    for (const auto& [name, value] : node.attributes) element->setAttribute(name, value);
    for (const DocumentNode& child : node.children) {
        if (child.kind == DocumentNode::Element) {
            element->addChild(buildElement(child));
        } else if (child.kind != DocumentNode::Comment && child.kind != DocumentNode::Instruction) {
            element->addChild(new CharData(child.text));
        }
    }
    return element;
}

Verdict verdictOnTree(const DocumentType& type, const DocumentNode& root) {
    Document document(buildElement(root), buildDtd(type));
    return document.validate() ? Valid : Invalid;
}

// --- Where they differ ---

enum Rule {
    // (a? | b): an alternative that can be empty matches before those after it are looked at, so here they never are.
    HidesAlternatives,

    // (a*, a), (a | (a, b)): an ambiguous model. Nothing that was taken is given back here. libxml2 complains of most
    // such models instead of judging the content; then its automata are asked.
    CommitsInAmbiguousModels,

    // Nothing below an ANY element is looked at here.
    IgnoresWhatIsBelowAny,

    // FIXED values and the name of the root are not compared here.
    IgnoresFixedValues,
    IgnoresRootName,

    // White space between tags, and comments, are dropped here as they are read, so that an EMPTY element may have
    // them.
    DropsBlanksAndComments,

    // White space is text here where it was not dropped: written as a reference, or put into a tree by hand. libxml2
    // passes over it in element content.
    TakesBlanksForText,

    // Of several attributes of one name the last counts here. libxml2 does not read such a document.
    LetsTheLastAttributeCount,

    // Processing instructions and CDATA sections are not read here.
    DoesNotReadMarkup,

    RuleCount
};

constexpr const char* kRuleNames[] = {
    "hides alternatives",    "commits in ambiguous models",   "ignores what is below ANY",
    "ignores FIXED values",  "ignores the root's name",       "drops blanks and comments",
    "takes blanks for text", "lets the last attribute count", "does not read markup"};
static_assert(std::size(kRuleNames) == RuleCount);

// What both libraries are expected to say.
struct Expectation {
    Verdict ours = Valid;
    Verdict theirs = Valid;
    Codes theirFaults;  // where they read the document

    // What one of them refuses and the other does not.
    std::bitset<RuleCount> rules;

    // Content that libxml2 does not judge: the names that are to fit, and whether there is text among them, which never
    // does.
    struct Unjudged {
        const ContentParticle* particle;
        Names names;
        bool hasText;
    };
    std::vector<Unjudged> unjudged;
};

class Judge {
public:
    // `unjudged` names the elements whose models libxml2 finds ambiguous: it does not judge their content.
    Judge(const DocumentType& itsType, Way itsWay, const std::set<std::string>& itsUnjudged)
        : type(itsType), way(itsWay), unjudged(itsUnjudged) {}

    Expectation judge(const DocumentNode& root) {
        if (root.name != type.name) refusedByThem(IgnoresRootName, XML_DTD_ROOT_NAME);
        judgeElement(root, false);
        if (refusedReading.test(Theirs)) said.theirs = NotRead;
        if (refusedReading.test(Ours)) said.ours = NotRead;
        return std::move(said);
    }

private:
    enum { Ours, Theirs };
    static constexpr int kNoCode = 0;

    void refusedByThem(Rule rule, int code) {
        said.theirs = Invalid;
        said.theirFaults.insert(code);
        said.rules.set(rule);
    }
    void refusedByUs(Rule rule) {
        said.ours = Invalid;
        said.rules.set(rule);
    }
    void refused(int code, bool belowAny) {
        said.theirs = Invalid;
        if (code != kNoCode) said.theirFaults.insert(code);
        if (belowAny) {
            said.rules.set(IgnoresWhatIsBelowAny);
        } else {
            said.ours = Invalid;
        }
    }

    void judgeElement(const DocumentNode& node, bool belowAny) {
        const ContentModel* model = type.modelOf(node.name);
        const bool isAny = model != nullptr && model->kind == ContentModel::Any;
        for (const DocumentNode& child : node.children) {
            if (child.kind == DocumentNode::Element) judgeElement(child, belowAny || isAny);
            const bool isMarkup = child.kind == DocumentNode::Instruction || child.kind == DocumentNode::CData;
            if (isMarkup && way == Read) {
                refusedReading.set(Ours);
                said.rules.set(DoesNotReadMarkup);
            }
        }
        judgeAttributes(node, belowAny, model != nullptr);
        if (model == nullptr) {
            refused(XML_DTD_UNKNOWN_ELEM, belowAny);
        } else if (model->kind == ContentModel::Empty) {
            judgeEmpty(node, belowAny);
        } else if (model->kind == ContentModel::Mixed) {
            judgeMixed(node, *model, belowAny);
        } else if (model->kind == ContentModel::Children) {
            judgeChildren(node, model->particle, belowAny);
        }
    }

    void judgeAttributes(const DocumentNode& node, bool belowAny, bool isDeclared) {
        std::set<std::string> names;
        for (const auto& [name, value] : node.attributes) {
            if (!names.insert(name).second) {
                refusedReading.set(Theirs);
                said.rules.set(LetsTheLastAttributeCount);
            }
            const AttributeDeclaration* declaration = type.attributeOf(node.name, name);
            if (declaration == nullptr) {
                refused(XML_DTD_UNKNOWN_ATTRIBUTE, belowAny);
            } else if (declaration->rule == AttributeDeclaration::Fixed && declaration->value != value) {
                refusedByThem(IgnoresFixedValues, XML_DTD_ATTRIBUTE_DEFAULT);
                refusedByThem(IgnoresFixedValues, XML_DTD_ATTRIBUTE_VALUE);
            }
        }
        if (!isDeclared) return;
        for (const AttributeDeclaration* declaration : type.attributesOf(node.name)) {
            if (declaration->rule == AttributeDeclaration::Required && names.count(declaration->attribute) == 0)
                refused(XML_DTD_MISSING_ATTRIBUTE, belowAny);
        }
    }

    static bool has(const DocumentNode& node, std::initializer_list<DocumentNode::Kind> kinds) {
        return std::any_of(node.children.begin(), node.children.end(), [&kinds](const DocumentNode& child) {
            return std::find(kinds.begin(), kinds.end(), child.kind) != kinds.end();
        });
    }

    // Blanks that are text here.
    bool hasKeptBlanks(const DocumentNode& node) const {
        return has(node, {DocumentNode::BlankReference}) || (way == Built && has(node, {DocumentNode::Blank}));
    }

    void judgeEmpty(const DocumentNode& node, bool belowAny) {
        if (node.children.empty()) return;
        if (has(node, {DocumentNode::Element, DocumentNode::Text, DocumentNode::CData}) || hasKeptBlanks(node)) {
            refused(XML_DTD_NOT_EMPTY, belowAny);
        } else {
            refusedByThem(DropsBlanksAndComments, XML_DTD_NOT_EMPTY);
        }
    }

    void judgeMixed(const DocumentNode& node, const ContentModel& model, bool belowAny) {
        for (const std::string& name : childNames(node)) {
            if (std::find(model.names.begin(), model.names.end(), name) == model.names.end())
                refused(model.names.empty() ? XML_DTD_NOT_PCDATA : XML_DTD_INVALID_CHILD, belowAny);
        }
    }

    void judgeChildren(const DocumentNode& node, const ContentParticle& particle, bool belowAny) {
        const ExactMatcher matcher(particle);
        const Names names = childNames(node);
        const bool hasText = has(node, {DocumentNode::Text, DocumentNode::CData});
        const bool isAmbiguous = !matcher.isDeterministic();
        const bool isUnjudged = unjudged.count(node.name) != 0;
        EXPECT_TRUE(isAmbiguous || !isUnjudged) << "libxml2 finds the model of " << node.name << " ambiguous";
        if (isUnjudged) said.unjudged.push_back({&particle, names, hasText});
        if (hasText || !matcher.fits(names)) {
            refused(isUnjudged ? kNoCode : int{XML_DTD_CONTENT_MODEL}, belowAny);
        } else if (!belowAny) {
            if (!fitsGreedily(particle, names)) {
                refusedByUs(isAmbiguous ? CommitsInAmbiguousModels : HidesAlternatives);
                EXPECT_TRUE(isAmbiguous || hidesAlternatives(particle)) << node.name << ": greed alone does no harm";
            }
            if (hasKeptBlanks(node)) refusedByUs(TakesBlanksForText);
        }
    }

    const DocumentType& type;
    const Way way;
    const std::set<std::string>& unjudged;
    Expectation said;
    std::bitset<2> refusedReading;
};

// What libxml2 says of a document that it could read, together with what its automata say of the content left unjudged.
Verdict completed(const Codes& faults, const std::vector<Expectation::Unjudged>& unjudged) {
    const bool fits = std::all_of(unjudged.begin(), unjudged.end(), [](const Expectation::Unjudged& content) {
        return !content.hasText && PeerAutomaton(*content.particle).fits(content.names);
    });
    return faults.empty() && fits ? Valid : Invalid;
}

// --- The comparison ---

struct Tally {
    int pairs = 0;
    int valid = 0;                         // for both, and no rule speaks of the pair
    int invalid = 0;                       // likewise
    std::array<int, RuleCount> decided{};  // verdicts that differ by this rule alone
};

std::ostream& operator<<(std::ostream& out, const Tally& tally) {
    out << tally.pairs << " pairs; valid: " << tally.valid << "; invalid: " << tally.invalid;
    for (std::size_t i = 0; i < RuleCount; ++i) out << "; " << kRuleNames[i] << ": " << tally.decided[i];
    return out;
}

void compare(const DocumentType& type, const DocumentNode& root, unsigned seed, Way way, Tally& tally) {
    const std::string ourText = documentText(type, root, seed, Dialect::Ours);
    SCOPED_TRACE(ourText);
    const PeerOpinion opinion = peerOpinion(documentText(type, root, seed, Dialect::Common));
    const Expectation expected = Judge(type, way, opinion.ambiguous).judge(root);
    const Verdict ours = way == Read ? verdictOnText(ourText) : verdictOnTree(type, root);
    Verdict theirs = NotRead;
    if (opinion.verdict != NotRead) {
        EXPECT_EQ(opinion.faults, expected.theirFaults);
        if (expected.unjudged.empty()) {
            EXPECT_EQ(opinion.verdict == Valid, opinion.faults.empty());
        }
        theirs = completed(opinion.faults, expected.unjudged);
    } else {
        EXPECT_EQ(opinion.faults.count(XML_ERR_ATTRIBUTE_REDEFINED), 1U);
    }

    // Where no rule speaks of the pair, this asks for equal verdicts and nothing else.
    if (expected.rules.none()) {
        EXPECT_EQ(ours, theirs);
    }
    EXPECT_EQ(ours, expected.ours) << "libxml2: " << theirs;
    EXPECT_EQ(theirs, expected.theirs) << "ours: " << ours;

    ++tally.pairs;
    if (expected.rules.none()) ++(ours == Valid ? tally.valid : tally.invalid);
    for (std::size_t i = 0; i < RuleCount; ++i) {
        if ((ours == Valid) != (theirs == Valid) && expected.rules == std::bitset<RuleCount>().set(i))
            ++tally.decided[i];
    }
}

Tally comparePairs(unsigned seed, int types, int documents, Way way) {
    const MessageCollector messages;  // of second declarations
    Tally tally;
    PairMaker maker(seed);
    for (int i = 0; i < types; ++i) {
        const DocumentType type = maker.makeType();
        for (int k = 0; k < documents; ++k) {
            compare(type, maker.makeDocument(type), maker.number(), way, tally);
            if (::testing::Test::HasFailure()) return tally;
        }
    }
    return tally;
}

// That the pairs show something: both verdicts are frequent where no rule speaks of them, and each rule decides some
// alone.
void expectAtLeast(const Tally& least, const Tally& tally) {
    SCOPED_TRACE(tally);
    EXPECT_GE(tally.pairs, atLeast(least.pairs));
    EXPECT_GE(tally.valid, atLeast(least.valid));
    EXPECT_GE(tally.invalid, atLeast(least.invalid));
    for (std::size_t i = 0; i < RuleCount; ++i) EXPECT_GE(tally.decided[i], atLeast(least.decided[i])) << kRuleNames[i];
}

}  // namespace

TEST(LibXml2ValidityTest, EachRuleIsNeededForAnOrdinaryDocument) {
    const std::string kTypes = "<!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ATTLIST b x CDATA #FIXED '1'><!ELEMENT any ANY>";
    const struct {
        const char* name;
        const char* model;  // of the element r
        const char* document;
        Verdict ours;
        Verdict theirs;
    } kCases[] = {
        {"no rule, valid", "(a?, b)", "<r> <b/> </r>", Valid, Valid},
        {"no rule, invalid", "(a?, b)", "<r> <a/> </r>", Invalid, Invalid},
        {kRuleNames[HidesAlternatives], "(a? | b)", "<r><b/></r>", Invalid, Valid},
        {"the last alternative may be empty", "(b | a?)", "<r><b/></r>", Valid, Valid},
        {kRuleNames[IgnoresWhatIsBelowAny], "(any)", "<r><any><a>text</a></any></r>", Valid, Invalid},
        {"the ANY element's own attributes", "(any)", "<r><any x='1'/></r>", Invalid, Invalid},
        {kRuleNames[IgnoresFixedValues], "(b)", "<r><b x='2'/></r>", Valid, Invalid},
        {kRuleNames[IgnoresRootName], "(b)", "<b/>", Valid, Invalid},
        {kRuleNames[DropsBlanksAndComments], "(a)", "<r><a> <!-- nothing --> </a></r>", Valid, Invalid},
        {kRuleNames[TakesBlanksForText], "(a)", "<r>&#32;<a/></r>", Invalid, Valid},
        {kRuleNames[LetsTheLastAttributeCount], "(b)", "<r><b x='2' x='1'/></r>", Valid, NotRead},
        {kRuleNames[DoesNotReadMarkup], "(a)", "<r><?target?><a/></r>", NotRead, Valid},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string text = "<!DOCTYPE r [<!ELEMENT r " + std::string(c.model) + ">" + kTypes + "]>" + c.document;
        EXPECT_EQ(verdictOnText(text), c.ours);
        EXPECT_EQ(peerOpinion(text).verdict, c.theirs);
    }

    // Ambiguous models, of which libxml2 only complains.
    for (const char* model : {"(a*, a)", "(a | (a, a))"}) {
        const std::string type = "<!DOCTYPE r [<!ELEMENT r " + std::string(model) + ">" + kTypes + "]>";
        EXPECT_EQ(verdictOnText(type + "<r><a/><a/></r>"), Invalid) << model;
        EXPECT_EQ(peerOpinion(type + "<r><a/><a/></r>").ambiguous, std::set<std::string>{"r"}) << model;
    }
}

TEST(LibXml2ValidityTest, WhatIsReadIsValidForBothUnlessARuleSpeaksOfIt) {
    const Tally tally = comparePairs(1, rounds(36000), 3, Read);
    ASSERT_FALSE(HasFailure());
    expectAtLeast({100000, 30000, 15000, {4000, 4000, 500, 800, 1000, 250, 800, 800, 350}}, tally);
}

TEST(LibXml2ValidityTest, WhatIsBuiltIsValidForBothUnlessARuleSpeaksOfIt) {
    const Tally tally = comparePairs(2, rounds(6000), 3, Built);
    ASSERT_FALSE(HasFailure());
    expectAtLeast({15000, 3000, 1500, {350, 350, 60, 80, 120, 15, 2000, 80, 0}}, tally);
}

}  // namespace Xml::test
