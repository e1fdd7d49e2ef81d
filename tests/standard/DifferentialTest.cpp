// The lexer beside Expat and libxml2, over random documents and their mutations: accepted by all or refused by all, and
// the same events as Expat's. Where they differ a rule says why, with the clause of the recommendation.
#include "standard/Documents.h"
#include "standard/Events.h"
#include "standard/Peers.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/internal/Rules.h"
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>

namespace Xml::test {
namespace {

struct Seen {
    const std::string& text;
    const Lexed& ours;
    const PeerVerdict& peer;
    bool hasNamespaces;

    bool hasRule(const char* rule) const { return !ours.isAccepted && std::string_view(ours.fault.rule) == rule; }
    bool saysPeer(const char* words) const { return !peer.isAccepted && peer.error.find(words) != std::string::npos; }
    bool has(const char* words) const { return text.find(words) != std::string::npos; }
};

struct Allowance {
    const char* why;
    bool (*holds)(const Seen&);
};

// Where Expat and the lexer may differ.
const Allowance kExpat[] = {
    {"[26] VersionNum ::= '1.' [0-9]+; Expat takes any version",
     [](const Seen& s) {
         return s.peer.isAccepted && (s.hasRule(StandardRules::kVersionNum) || s.hasRule(StandardRules::kVersionInfo));
     }},
    {"[9] EntityValue, [10] AttValue, [66] CharRef, [68] EntityRef, Legal Character: declarations have to match their "
     "productions also where they are not processed; Expat does not look into such values",
     [](const Seen& s) {
         return s.peer.isAccepted && s.has("%") &&
                (s.hasRule(StandardRules::kPEReference) || s.hasRule(StandardRules::kParsedEntity) ||
                 s.hasRule(StandardRules::kNoRecursion) || s.hasRule(StandardRules::kNoExternalEntityReferences) ||
                 s.hasRule(StandardRules::kCharRef) || s.hasRule(StandardRules::kReference) ||
                 s.hasRule(StandardRules::kName) || s.hasRule(StandardRules::kAttValue) ||
                 s.hasRule(StandardRules::kEntityRef) || s.hasRule(StandardRules::kLegalCharacter) ||
                 s.hasRule(StandardRules::kNoLessThanInAttributeValues) ||
                 s.hasRule(StandardRules::kPEsInInternalSubset) || s.hasRule(StandardRules::kNCName));
     }},
    {"4.3.2: an internal general parsed entity is well-formed if its replacement text matches the production labeled "
     "content, which has no \"]]>\"; Expat does not look for it in values of attributes",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kCharData) && s.has("]]"); }},
    {"Namespaces, 7: no entity names, processing instruction targets, or notation names contain any colons",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kNCName); }},
    {"[4] NameStartChar, [4a] NameChar of the Fifth Edition; Expat has those of the Fourth",
     [](const Seen& s) {
         return s.ours.isAccepted && s.saysPeer("invalid token") &&
                std::any_of(s.text.begin(), s.text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
     }},
    {"Namespaces, 4, [16] doctypedecl ::= '<!DOCTYPE' S QName; Expat does not look at what follows the colon",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kQName) && s.has("<!"); }},
};

// Where libxml2 and the lexer may differ.
const Allowance kLibxml2[] = {
    {"4.1, [69] PEReference has the validity constraint Entity Declared, and not the well-formedness constraint",
     [](const Seen& s) { return s.saysPeer("PEReference"); }},
    {"Namespaces, 7: processors are not required to check that namespace names are URI references",
     [](const Seen& s) { return s.ours.isAccepted && s.saysPeer("URI"); }},
    {"[26] VersionNum ::= '1.' [0-9]+",
     [](const Seen& s) {
         return s.peer.isAccepted && (s.hasRule(StandardRules::kVersionNum) || s.hasRule(StandardRules::kVersionInfo));
     }},
    {"Namespaces, 4, [16] doctypedecl ::= '<!DOCTYPE' S QName, and so [17] to [21] for the names in declarations; "
     "libxml2 "
     "looks at names in content",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kQName) && s.has("<!"); }},
    {"4.3.2: replacement text has to match content, which has no \"]]>\"; libxml2 does not look for it in values",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kCharData) && s.has("]]"); }},
    {"[32] SDDecl ::= S 'standalone' Eq",
     [](const Seen& s) {
         return s.peer.isAccepted && (s.hasRule(StandardRules::kSDDecl) || s.hasRule(StandardRules::kXMLDecl)) &&
                s.has("standalone");
     }},
    {"Namespaces, 7: no entity names contain any colons; libxml2 does not look at references",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kNCName); }},
    {"[4] NameStartChar and [4a] NameChar have the colon; libxml2 looks at prefixes also where nothing asks for it",
     [](const Seen& s) { return s.ours.isAccepted && !s.hasNamespaces && s.saysPeer("amespace"); }},
    {"Unique Att Spec is about names as they are written",
     [](const Seen& s) { return s.ours.isAccepted && !s.hasNamespaces && s.saysPeer("redefined"); }},
    {"5.1: declarations after a parameter entity that is not read are not processed, and Entity Declared holds without "
     "such a reference",
     [](const Seen& s) {
         return s.ours.isAccepted &&
                (s.saysPeer("not defined") || s.saysPeer("not allowed in attr") || s.saysPeer("loop") ||
                 s.saysPeer("redefined") || s.saysPeer("unparsed")) &&
                s.has("%");
     }},
    {"Unique Att Spec; libxml2 passes over a second declaration of a prefix that is wrong by itself",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kUniqueAttSpec) && s.has("xmlns:"); }},
    {"No Prefix Undeclaring; libxml2 does not look at defaults",
     [](const Seen& s) {
         return s.peer.isAccepted && s.hasRule(StandardRules::kNoPrefixUndeclaring) && s.has("<!ATTLIST");
     }},
    {"[22] prolog ::= XMLDecl? Misc* (doctypedecl Misc*)?; libxml2 takes a subset after the end of the declaration",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kProlog) && s.has("["); }},
    {"4.2.2: it is an error for a fragment identifier to be part of a system identifier, and no fatal one",
     [](const Seen& s) { return s.ours.isAccepted && s.saysPeer("Fragment"); }},
    {"2.8: a parameter entity may be referred to wherever declarations may stand; libxml2 fails where it is twice",
     [](const Seen& s) { return s.ours.isAccepted && s.saysPeer("internal error") && s.has("%"); }},
    {"[28] doctypedecl ::= '<!DOCTYPE' S Name",
     [](const Seen& s) { return s.peer.isAccepted && s.hasRule(StandardRules::kDoctypedecl) && !s.has("<!DOCTYPE "); }},
};

const char* whyDifferent(const Seen& seen, bool isExpat) {
    const auto look = [&](const auto& rules) -> const char* {
        for (const Allowance& rule : rules) {
            if (rule.holds(seen)) return rule.why;
        }
        return nullptr;
    };
    return isExpat ? look(kExpat) : look(kLibxml2);
}

// The texts are UTF-8 whatever they declare, and the peers look at the declaration.
bool isUtf8(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
    return name.empty() || name == "utf-8";
}

// How many are compared, and which: by hand more, and others.
int numberOf(const char* variable, int otherwise) {
    const char* const asked = std::getenv(variable);
    return asked != nullptr ? std::atoi(asked) : otherwise;
}

class DifferentialTest : public testing::Test {
protected:
    void compare(const std::string& text, bool hasNamespaces) {
        Lexer::Options options;
        options.namespaces = hasNamespaces;
        const Lexed ours = lex(text, options);
        if (!isUtf8(ours.declaredEncoding)) return;
        // A reference that something not read may declare: no document here, one without the text elsewhere.
        if (!ours.isAccepted && ours.fault.kind == Problem::Kind::Refused) return void(++refused);
        ++(ours.isAccepted ? accepted : malformed);
        if (!ours.isAccepted) ++byRule[ours.fault.rule];
        const PeerVerdict expat = askExpat(text, hasNamespaces);
        check({text, ours, expat, hasNamespaces}, true);
        check({text, ours, askLibxml2(text, hasNamespaces), hasNamespaces}, false);
        if (ours.isAccepted && expat.isAccepted && !hasNamespaces) {
            EXPECT_EQ(ours.events, expat.events) << text;
        }
    }

    void check(const Seen& seen, bool isExpat) {
        if (seen.ours.isAccepted == seen.peer.isAccepted) return;
        const char* const why = whyDifferent(seen, isExpat);
        if (why != nullptr) return void(++reasons[why]);
        ++failures;
        ADD_FAILURE() << (isExpat ? "Expat" : "libxml2") << " says " << (seen.peer.isAccepted ? "yes" : seen.peer.error)
                      << "\nthe lexer "
                      << (seen.ours.isAccepted ? "yes" : seen.ours.fault.rule + (": " + seen.ours.fault.text)) << "\n"
                      << seen.text;
    }

    int accepted = 0, malformed = 0, refused = 0, failures = 0;
    std::map<std::string, int> byRule, reasons;
};

TEST_F(DifferentialTest, AcceptsWhatExpatAndLibxml2Accept) {
    const int count = numberOf("ORVXML_DOCUMENTS", rounds(4000));
    Dice dice(static_cast<unsigned>(numberOf("ORVXML_SEED", 7)));
    for (int i = 0; i < count && failures < 15; ++i) {
        std::string text = randomDocument(dice);
        if (dice.chance(60)) text = mutated(dice, text);
        SCOPED_TRACE("document " + std::to_string(i));
        compare(text, false);
        compare(text, true);
    }
    EXPECT_GT(accepted, count / 3);
    EXPECT_GT(malformed, count / 3);
    for (const auto& [name, times] : reasons) RecordProperty(name.substr(0, 20), times);
    if (std::getenv("ORVXML_DOCUMENTS") != nullptr) {
        std::printf("accepted %d malformed %d refused %d\n", accepted, malformed, refused);
        for (const auto& [name, times] : byRule) std::printf("%7d %s\n", times, name.c_str());
        for (const auto& [name, times] : reasons) std::printf("%7d %s\n", times, name.c_str());
    }
}

// Whatever is there of a document when, its events are the same: also the fault, and its place.
TEST_F(DifferentialTest, ReadsTheSameFromWindowsOfAnySize) {
    Dice dice(11);
    for (int i = 0; i < rounds(400) && !HasFailure(); ++i) {
        std::string text = randomDocument(dice);
        if (dice.chance(60)) text = mutated(dice, text);
        const Lexed whole = lex(text);
        for (const std::size_t chunk : {1, 2, 3, 7, 20, 61}) {
            const Lexed parts = lex(text, {}, chunk);
            EXPECT_EQ(parts.events, whole.events) << text;
            EXPECT_EQ(parts.isAccepted, whole.isAccepted) << text;
            EXPECT_EQ(parts.fault.text, whole.fault.text) << text;
            EXPECT_EQ(parts.fault.offset, whole.fault.offset) << text;
            EXPECT_STREQ(parts.fault.rule, whole.fault.rule) << text;
        }
    }
}

}  // namespace
}  // namespace Xml::test
