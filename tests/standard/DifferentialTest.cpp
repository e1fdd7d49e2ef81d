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

    // The peer accepts what breaks that rule; in what stands before the root.
    bool onlyWeRefuse(const char* rule) const {
        return peer.isAccepted && !ours.isAccepted && std::string_view(ours.fault.rule) == rule;
    }
    bool onlyWeRefuseBeforeRoot(const char* rule) const { return onlyWeRefuse(rule) && !ours.isInContent; }

    // The peer alone refuses it, in these words.
    bool onlyPeerRefuses(const char* words) const {
        return ours.isAccepted && !peer.isAccepted && peer.error.find(words) != std::string::npos;
    }
    bool weSay(const char* words) const { return ours.fault.text.find(words) != std::string::npos; }

    // What stands at the fault.
    bool isAtFault(std::string_view there) const {
        return std::string_view(text).substr(static_cast<std::size_t>(ours.fault.offset), there.size()) == there;
    }
};

struct Allowance {
    const char* why;
    bool (*holds)(const Seen&);
};

// Whether Expat takes the document once each character beyond ASCII is a letter, also where a reference stands for it.
bool isAcceptedInAscii(const Seen& s) {
    constexpr std::string_view kReference = "&#x20AC;";
    std::string ascii;
    for (std::size_t at = 0; at < s.text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(s.text[at]);
        const bool isReference = s.text.compare(at, kReference.size(), kReference) == 0;
        if (isReference) at += kReference.size() - 1;
        if (isReference || byte >= 0xC0) {
            ascii += 'x';
        } else if (byte < 0x80) {
            ascii += s.text[at];
        }
    }
    return ascii != s.text && askExpat(ascii, s.hasNamespaces).isAccepted;
}

// Where Expat and the lexer may differ.
const Allowance kExpat[] = {
    {"4.1, [69] PEReference has the validity constraint Entity Declared, and not the well-formedness constraint, also "
     "in a document with standalone='yes'",
     [](const Seen& s) { return s.onlyPeerRefuses("entity") && isAboutAParameterEntity(s.peer, s.text); }},
    {"[26] VersionNum ::= '1.' [0-9]+; Expat takes any version",
     [](const Seen& s) {
         return s.onlyWeRefuseBeforeRoot(StandardRules::kVersionNum) ||
                s.onlyWeRefuseBeforeRoot(StandardRules::kVersionInfo);
     }},
    {"5.1: after a reference to a parameter entity that is not read, declarations must not be processed; they have to "
     "match [9] EntityValue and [10] AttValue all the same, with what is in these: [66] CharRef, [67] Reference, [68] "
     "EntityRef, [69] PEReference, and their constraints. Expat does not look into such values",
     [](const Seen& s) {
         if (!s.ours.hasUnread) return false;
         for (const char* rule :
              {StandardRules::kNoLessThanInAttributeValues, StandardRules::kNoExternalEntityReferences,
               StandardRules::kNoRecursion, StandardRules::kParsedEntity, StandardRules::kAttValue,
               StandardRules::kCharRef, StandardRules::kReference, StandardRules::kEntityRef, StandardRules::kName,
               StandardRules::kPEReference, StandardRules::kLegalCharacter, StandardRules::kPEsInInternalSubset}) {
             if (s.onlyWeRefuseBeforeRoot(rule)) return true;
         }
         return false;
     }},
    {"4.1, Entity Declared: in a document with standalone='yes' a reference has to name an entity that is declared; "
     "Expat "
     "does not ask within a parameter entity",
     [](const Seen& s) {
         return s.onlyWeRefuseBeforeRoot(StandardRules::kEntityDeclared) && s.weSay("(in the entity") &&
                s.text.find("standalone") != std::string::npos;
     }},
    {"4.3.2: an internal general parsed entity is well-formed if its replacement text matches the production labeled "
     "content, which has no \"]]>\"; Expat does not look for it in values of attributes",
     [](const Seen& s) { return s.onlyWeRefuse(StandardRules::kCharData) && s.weSay("\"]]>\" in the text of &"); }},
    {"Namespaces, 7: no entity names, processing instruction targets, or notation names contain any colons",
     [](const Seen& s) { return s.hasNamespaces && s.onlyWeRefuse(StandardRules::kNCName); }},
    {"[4] NameStartChar, [4a] NameChar of the Fifth Edition; Expat has those of the Fourth",
     [](const Seen& s) { return s.onlyPeerRefuses("invalid token") && isAcceptedInAscii(s); }},
    {"Namespaces, 4, [16] doctypedecl ::= '<!DOCTYPE' S QName, and so [17] to [21] for the names in declarations; "
     "Expat "
     "does not look at what follows the colon",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kQName); }},
};

// Where libxml2 and the lexer may differ.
const Allowance kLibxml2[] = {
    {"4.1, [69] PEReference has the validity constraint Entity Declared, and not the well-formedness constraint",
     [](const Seen& s) { return s.ours.hasUnread && s.onlyPeerRefuses("PEReference: %"); }},
    {"Namespaces, 7: processors are not required to check that namespace names are URI references",
     [](const Seen& s) { return s.hasNamespaces && s.onlyPeerRefuses("is not a valid URI"); }},
    {"[26] VersionNum ::= '1.' [0-9]+",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kVersionNum); }},
    {"Namespaces, 4, [16] doctypedecl ::= '<!DOCTYPE' S QName, and so [17] to [21] for the names in declarations; "
     "libxml2 looks at names in content",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kQName); }},
    {"4.3.2: replacement text has to match content, which has no \"]]>\"; libxml2 does not look for it in values",
     [](const Seen& s) { return s.onlyWeRefuse(StandardRules::kCharData) && s.weSay("\"]]>\" in the text of &"); }},
    {"Namespaces, 5 and 6.3: Prefix Declared and Attributes Unique have no exception for what comes from an entity",
     [](const Seen& s) {
         const bool isAboutPrefixes =
             s.onlyWeRefuse(StandardRules::kPrefixDeclared) || s.onlyWeRefuse(StandardRules::kAttributesUnique);
         return s.hasNamespaces && isAboutPrefixes && s.weSay("(in the entity");
     }},
    {"[32] SDDecl ::= S 'standalone' Eq; libxml2 does without the white space",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kXMLDecl) && s.isAtFault("standalone"); }},
    {"Namespaces, 7: no entity names contain any colons; libxml2 does not look at references",
     [](const Seen& s) { return s.hasNamespaces && s.onlyWeRefuse(StandardRules::kNCName); }},
    {"[4] NameStartChar and [4a] NameChar have the colon; libxml2 looks at prefixes also where nothing asks for it",
     [](const Seen& s) { return !s.hasNamespaces && s.onlyPeerRefuses("is not XML Namespace compliant"); }},
    {"Unique Att Spec is about names as they are written",
     [](const Seen& s) { return !s.hasNamespaces && s.onlyPeerRefuses("redefined"); }},
    {"5.1: declarations after a parameter entity that is not read are not processed, and Entity Declared holds without "
     "such a reference",
     [](const Seen& s) {
         return s.ours.hasUnread &&
                (s.onlyPeerRefuses("not defined") || s.onlyPeerRefuses("not allowed in attr") ||
                 s.onlyPeerRefuses("references external entity") || s.onlyPeerRefuses("loop") ||
                 s.onlyPeerRefuses("redefined") || s.onlyPeerRefuses("unparsed") ||
                 s.onlyPeerRefuses("EntityRef: no name") || s.onlyPeerRefuses("EntityValue: '&' forbidden") ||
                 s.onlyPeerRefuses("Space required after the attribute default value"));
     }},
    {"4.1, Entity Declared: in a document with standalone='yes' a reference has to match a declaration that is not "
     "within a parameter entity; libxml2 takes it from there",
     [](const Seen& s) {
         return s.onlyWeRefuse(StandardRules::kEntityDeclared) && s.weSay("stands within a parameter entity");
     }},
    {"Unique Att Spec; libxml2 passes over a second declaration of a prefix that is wrong by itself",
     [](const Seen& s) { return s.onlyWeRefuse(StandardRules::kUniqueAttSpec) && s.weSay("the attribute xmlns"); }},
    {"No Prefix Undeclaring; libxml2 does not look at defaults",
     [](const Seen& s) {
         // A default stands where the tag does, or the reference to the entity that the tag is in.
         const bool isDefault = s.isAtFault("<") || (s.isAtFault("&") && s.weSay("(in the entity"));
         return s.hasNamespaces && s.onlyWeRefuse(StandardRules::kNoPrefixUndeclaring) && isDefault &&
                s.text.find("<!ATTLIST") != std::string::npos;
     }},
    {"[22] prolog ::= XMLDecl? Misc* (doctypedecl Misc*)?; libxml2 takes a subset after the end of the declaration",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kProlog) && s.isAtFault("["); }},
    {"4.2.2: it is an error for a fragment identifier to be part of a system identifier, and no fatal one",
     [](const Seen& s) { return s.onlyPeerRefuses("Fragment not allowed"); }},
    {"2.8: a parameter entity may be referred to wherever declarations may stand; libxml2 fails where it is twice",
     [](const Seen& s) { return s.onlyPeerRefuses("internal error: xmlParseInternalSubset"); }},
    {"[28] doctypedecl ::= '<!DOCTYPE' S Name; libxml2 does without the white space",
     [](const Seen& s) { return s.onlyWeRefuseBeforeRoot(StandardRules::kDoctypedecl) && s.weSay("white space"); }},
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

class DifferentialTest : public testing::Test {
protected:
    void compare(const std::string& text, bool hasNamespaces) {
        Lexer::Options options;
        options.namespaces = hasNamespaces;
        const Lexed ours = lex(text, options);
        if (!isUtf8(ours.declaredEncoding)) return;
        if (!ours.isAccepted && ours.fault.kind == Problem::Kind::Refused)
            return compareRefused(text, ours, hasNamespaces);
        ++(ours.isAccepted ? accepted : malformed);
        if (!ours.isAccepted) ++byRule[ours.fault.rule];
        const PeerVerdict expat = askExpat(text, hasNamespaces);
        check({text, ours, expat, hasNamespaces}, true);
        check({text, ours, askLibxml2(text, hasNamespaces), hasNamespaces}, false);
        if (ours.isAccepted && expat.isAccepted && !hasNamespaces) {
            EXPECT_EQ(ours.events, expat.events) << text;
        }
    }

    // A reference that something not read may declare is refused here, and elsewhere stands for nothing: without it the
    // document is compared as any. Where it is well formed then, Expat reads the one with the reference too.
    void compareRefused(const std::string& text, const Lexed& ours, bool hasNamespaces) {
        ++refused;
        const auto from = static_cast<std::size_t>(ours.fault.offset);
        ASSERT_TRUE(text[from] == '&' || text[from] == '%') << text;
        std::string without = text;
        without.erase(from, text.find(';', from) + 1 - from);
        compare(without, hasNamespaces);
        Lexer::Options options;
        options.namespaces = hasNamespaces;
        // Of an entity that contains such a reference Expat reads the rest.
        const bool isInEntity = ours.fault.text.find("(in the entity") != std::string::npos;
        if (isInEntity || !lex(without, options).isAccepted) return;
        const PeerVerdict expat = askExpat(text, hasNamespaces);
        Lexed reading = ours;
        reading.isAccepted = true;
        check({text, reading, expat, hasNamespaces}, true);
        ++skipped;
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

    int accepted = 0, malformed = 0, refused = 0, skipped = 0, failures = 0;
    std::map<std::string, int> byRule, reasons;
};

TEST_F(DifferentialTest, AcceptsWhatExpatAndLibxml2Accept) {
    const int count = documentCount();
    Dice dice(documentSeed(7));
    for (int i = 0; i < count && failures < 15; ++i) {
        std::string text = randomDocument(dice);
        if (dice.chance(60)) text = mutated(dice, text);
        SCOPED_TRACE("document " + std::to_string(i));
        compare(text, false);
        compare(text, true);
    }
    EXPECT_GT(accepted, count / 3);
    EXPECT_GT(malformed, count / 3);
    EXPECT_GT(skipped, count / 100);
    for (const auto& [name, times] : reasons) RecordProperty(name.substr(0, 20), times);
    if (std::getenv("ORVXML_DOCUMENTS") != nullptr) {
        std::printf("accepted %d malformed %d refused %d, of them read without the reference %d\n", accepted, malformed,
                    refused, skipped);
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
