// Documents that are well formed and documents that are not, a construct at a time.
#include "xml/standard/internal/Lexer.h"

#include "standard/Events.h"
#include "support/Texts.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The rule of what is wrong; "" for a document without a fault.
std::string ruleOf(const std::string& text, const Lexer::Options& options = {}) {
    const Lexed lexed = lex(text, options);
    return lexed.isAccepted ? "" : lexed.fault.rule;
}

struct RuleCase {
    const char* text;
    const char* rule;
};

void check(const RuleCase& c) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(ruleOf(c.text), c.rule);
    for (const std::size_t chunk : {1, 5}) {
        const Lexed lexed = lex(c.text, {}, chunk);
        EXPECT_EQ(lexed.isAccepted ? "" : std::string(lexed.fault.rule), c.rule);
    }
}

TEST(LexerTest, ReadsTheXmlDeclaration) {
    const RuleCase kCases[] = {
        {"<?xml version='1.0'?><a/>", ""},
        {"<?xml version = \"1.0\"\tencoding='UTF-8' standalone='no' ?><a/>", ""},
        {"<?xml version='1.17'?><a/>", ""},
        {"<?xml version='1.'?><a/>", "VersionNum"},
        {"<?xml version='2.0'?><a/>", "VersionNum"},
        {"<?xml encoding='UTF-8'?><a/>", "VersionInfo"},
        {"<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>", "XMLDecl"},
        {"<?xml version='1.0'encoding='UTF-8'?><a/>", "XMLDecl"},
        {"<?xml version='1.0' encoding='8bit'?><a/>", "EncName"},
        {"<?xml version='1.0' standalone='Yes'?><a/>", "SDDecl"},
        {"<?xml version='1.0' ?", "XMLDecl"},
        {" <?xml version='1.0'?><a/>", "PITarget"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ReadsWhatStandsAroundTheRoot) {
    const RuleCase kCases[] = {
        {"", "document"},
        {" <!--c--> ", "document"},
        {"<a/>", ""},
        {"<!--c--><?p?>\n<!DOCTYPE a>\r\n<!--d--><a/><?q?>\n<!--e-->", ""},
        {"<a/><b/>", "document"},
        {"<a/>x", "document"},
        {"<a/>&#32;", "document"},
        {"x<a/>", "prolog"},
        {"<a/><!DOCTYPE a>", "document"},
        {"<!DOCTYPE a><!DOCTYPE a><a/>", "prolog"},
        {"<![CDATA[]]><a/>", "prolog"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ReadsTags) {
    const RuleCase kCases[] = {
        {"<a x='1' y = \"2\"\n/>", ""},
        {"<a><b></b ></a\n>", ""},
        {"<a x='1'y='2'/>", "STag"},
        {"<a x=1/>", "AttValue"},
        {"<a x/>", "Eq"},
        {"<a x='1/>", "AttValue"},
        {"<a / >", "EmptyElemTag"},
        {"< a/>", "Name"},
        {"<a>< b/></a>", "Name"},
        {"<a></ a>", "Name"},
        {"<a></b>", "Element Type Match"},
        {"<a></ab>", "Element Type Match"},
        {"<ab></a>", "Element Type Match"},
        {"<a></a x='1'>", "ETag"},
        {"<a>", "element"},
        {"<a></a", "ETag"},
        {"<a x='1' x='1'/>", "Unique Att Spec"},
        {"<a x='<'/>", "AttValue"},
        {"<a x='&'/>", "Reference"},
        {"<1/>", "Name"},
        {"<a -x='1'/>", "STag"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ReadsTextsCommentsInstructionsAndSections) {
    const RuleCase kCases[] = {
        {"<a>]] ]> ]]&gt;</a>", ""},
        {"<a>]]></a>", "CharData"},
        {"<a>]]]></a>", "CharData"},
        {"<a>\x01</a>", "Char"},
        {"<a>\xEF\xBF\xBD</a>", ""},
        {"<a>\xEF\xBF\xBE</a>", "Char"},
        {"<a>\xEF\xBF\xBF</a>", "Char"},
        {"<a>\x7F\xC2\x80</a>", ""},
        {"<a><!-- a-b --></a>", ""},
        {"<a><!-- a--b --></a>", "Comment"},
        {"<a><!-- a---></a>", "Comment"},
        {"<a><!-->--></a>", ""},
        {"<a><!--->", "Comment"},
        {"<a><!--\x02--></a>", "Char"},
        {"<a><!- --></a>", "content"},
        {"<a><?p x?\?></a>", ""},
        {"<a><?p?></a>", ""},
        {"<a><?p/x?></a>", "PI"},
        {"<a><? p?></a>", "Name"},
        {"<a><?XmL x?></a>", "PITarget"},
        {"<a><?xml-x x?></a>", ""},
        {"<a><?p x></a>", "PI"},
        {"<a><![CDATA[]]]]></a>", ""},
        {"<a><![CDATA[<&]]></a>", ""},
        {"<a><![CDATA[]></a>", "CDSect"},
        {"<a><![cdata[]]></a>", "CDStart"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ReadsReferences) {
    const RuleCase kCases[] = {
        {"<a>&#65;&#x1F600;&lt;&gt;&amp;&apos;&quot;</a>", ""},
        {"<a>&#0;</a>", "Legal Character"},
        {"<a>&#xD800;</a>", "Legal Character"},
        {"<a>&#xFFFE;</a>", "Legal Character"},
        {"<a>&#x110000;</a>", "Legal Character"},
        {"<a>&#99999999999999999999;</a>", "Legal Character"},
        {"<a>&#;</a>", "CharRef"},
        {"<a>&#x;</a>", "CharRef"},
        {"<a>&#XA;</a>", "CharRef"},
        {"<a>&#65</a>", "CharRef"},
        {"<a>&nbsp;</a>", "Entity Declared"},
        {"<a>& </a>", "Reference"},
        {"<a>&lt</a>", "EntityRef"},
        {"<a x='&e;'/>", "Entity Declared"},
        {"<!DOCTYPE a []><a>&e;</a>", "Entity Declared"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 's' NDATA n>]><a>&e;</a>", "Parsed Entity"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 's'>]><a x='&e;'/>", "No External Entity References"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 's'><!ENTITY f '&e;'>]><a x='&f;'/>", "No External Entity References"},
        {"<!DOCTYPE a [<!ENTITY e '&#60;'>]><a x='&e;'/>", "No < in Attribute Values"},
        {"<!DOCTYPE a [<!ENTITY e '&lt;'>]><a x='&e;'/>", ""},
        {"<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>", "No Recursion"},
        {"<!DOCTYPE a [<!ENTITY e '&e;'>]><a/>", ""},
        {"<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a x='&e;'/>", "No Recursion"},
        {"<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>", "Well-Formed Parsed Entities"},
        {"<!DOCTYPE a [<!ENTITY e '</a>'>]><a>&e;", "Well-Formed Parsed Entities"},
        {"<!DOCTYPE a [<!ENTITY e '<b/><b>&#38;#38;</b>'>]><a>&e;&e;</a>", ""},
        {"<!DOCTYPE a [<!ENTITY e '&#38;'>]><a>&e;</a>", "Reference"},
        {"<!DOCTYPE a [<!ENTITY e '<!--'>]><a>&e;--></a>", "Comment"},
        {"<!DOCTYPE a [<!ENTITY e ']]'>]><a>&e;></a>", ""},
        {"<!DOCTYPE a [<!ENTITY e ']]&#62;'>]><a>&e;</a>", "CharData"},
        {"<!DOCTYPE a [<!ENTITY e ']]&#62;'>]><a x='&e;'/>", "CharData"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, RefusesReferencesToWhatIsNotRead) {
    const RuleCase kCases[] = {
        {"<!DOCTYPE a SYSTEM 's'><a>&e;</a>", "Entity Declared"},
        {"<!DOCTYPE a [<!ENTITY % p SYSTEM 's'>%p;]><a x='&e;'/>", "Entity Declared"},
        {"<!DOCTYPE a [<!ENTITY % p SYSTEM 's'>%p;<!ENTITY e 'x'>]><a>&e;</a>", "Entity Declared"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 's'>]><a>&e;</a>", "Included If Validating"},
    };
    for (const RuleCase& c : kCases) {
        check(c);
        EXPECT_EQ(lex(c.text).fault.kind, Problem::Kind::Refused);
    }
    const std::string kAlone = "<?xml version='1.0' standalone='yes'?>";
    const Lexed alone = lex(kAlone + "<!DOCTYPE a SYSTEM 's'><a>&e;</a>");
    EXPECT_EQ(alone.fault.kind, Problem::Kind::Malformed);
    EXPECT_EQ(ruleOf(kAlone + "<!DOCTYPE a [<!ENTITY % p SYSTEM 's'>%p;<!ENTITY e 'x'>]><a>&e;</a>"), "");
    EXPECT_EQ(ruleOf(kAlone + "<!DOCTYPE a [<!ENTITY % p \"<!ENTITY e 'x'>\">%p;]><a>&e;</a>"), "Entity Declared");
    EXPECT_EQ(ruleOf(kAlone + "<!DOCTYPE a [%p;]><a/>"), "");
    EXPECT_EQ(lex(kAlone + "<!DOCTYPE a [%p;]><a>&e;</a>").fault.kind, Problem::Kind::Malformed);
    const auto said = [](const char* text) { return lex(text).fault.text; };
    EXPECT_EQ(said("<!DOCTYPE a SYSTEM 's'><a>&e;</a>"),
              "&e; is not declared in what is read, and may be in what is not read");
    EXPECT_EQ(said("<!DOCTYPE a SYSTEM 's' [%p;<!ENTITY e 'x'>]><a>&e;</a>"),
              "&e; is not declared before a parameter entity that is not read, and may be in that");
    EXPECT_EQ(said("<!DOCTYPE a [<!ENTITY % p ''>%p;]><a>&e;</a>"),
              "&e; is not declared, and what it stands for is not known");
}

TEST(LexerTest, ReadsDeclarations) {
    const RuleCase kCases[] = {
        {"<!DOCTYPE a [<!ELEMENT a EMPTY><!ELEMENT b ANY><!ELEMENT c (#PCDATA)><!ELEMENT d (#PCDATA)*>]><a/>", ""},
        {"<!DOCTYPE a [<!ELEMENT a ( #PCDATA | b|c )*><!ELEMENT b (c)><!ELEMENT c (a?,(b|c)*,d+)?>]><a/>", ""},
        {"<!DOCTYPE a [<!ELEMENT a (#PCDATA|b)>]><a/>", "Mixed"},
        {"<!DOCTYPE a [<!ELEMENT a (b,c|d)>]><a/>", "seq"},
        {"<!DOCTYPE a [<!ELEMENT a ()>]><a/>", "cp"},
        {"<!DOCTYPE a [<!ELEMENT a (b,)>]><a/>", "cp"},
        {"<!DOCTYPE a [<!ELEMENT a (b ?)>]><a/>", "children"},
        {"<!DOCTYPE a [<!ELEMENT a (#PCDATA)+>]><a/>", "elementdecl"},
        {"<!DOCTYPE a [<!ELEMENT a empty>]><a/>", "contentspec"},
        {"<!DOCTYPE a [<!ELEMENT a>]><a/>", "elementdecl"},
        {"<!DOCTYPE a [<!ATTLIST a><!ATTLIST a x CDATA #IMPLIED y ID #REQUIRED z (p|q) 'p' w NOTATION (n) #FIXED "
         "'n'>]><a/>",
         ""},
        {"<!DOCTYPE a [<!ATTLIST a x IDREF #IMPLIED y IDREFS #IMPLIED z ENTITY #IMPLIED v ENTITIES #IMPLIED>]><a/>",
         ""},
        {"<!DOCTYPE a [<!ATTLIST a x NMTOKEN '1' y NMTOKENS '1 2' z (1|-2) '1'>]><a/>", ""},
        {"<!DOCTYPE a [<!ATTLIST a x cdata #IMPLIED>]><a/>", "AttType"},
        {"<!DOCTYPE a [<!ATTLIST a x CDATA>]><a/>", "AttDef"},
        {"<!DOCTYPE a [<!ATTLIST a x CDATA #FIXED>]><a/>", "DefaultDecl"},
        {"<!DOCTYPE a [<!ATTLIST a x CDATA #OPTIONAL>]><a/>", "DefaultDecl"},
        {"<!DOCTYPE a [<!ATTLIST a x () #IMPLIED>]><a/>", "Nmtoken"},
        {"<!DOCTYPE a [<!ATTLIST a x NOTATION (1) #IMPLIED>]><a/>", "Name"},
        {"<!DOCTYPE a [<!ATTLIST a x CDATA '<'>]><a/>", "AttValue"},
        {"<!DOCTYPE a [<!ATTLIST a x CDATA '&e;'><!ENTITY e ''>]><a/>", "Entity Declared"},
        {"<!DOCTYPE a [<!ENTITY e ''><!ATTLIST a x CDATA '&e;'>]><a/>", ""},
        {"<!DOCTYPE a [<!NOTATION n SYSTEM 's'><!NOTATION m PUBLIC 'p'><!NOTATION o PUBLIC 'p' 's'>]><a/>", ""},
        {"<!DOCTYPE a [<!NOTATION n 's'>]><a/>", "NotationDecl"},
        {"<!DOCTYPE a [<!NOTATION n PUBLIC '\\'>]><a/>", "PubidChar"},
        {"<!DOCTYPE a PUBLIC 'p'><a/>", "ExternalID"},
        {"<!DOCTYPE a PUBLIC 'p' 's' ><a/>", ""},
        {"<!DOCTYPE a SYSTEM 's' [ ] ><a/>", ""},
        {"<!DOCTYPE a[]><a/>", ""},
        {"<!DOCTYPE><a/>", "doctypedecl"},
        {"<!doctype a><a/>", "prolog"},
        {"<!DOCTYPE a [<!ENTITY e 'x' NDATA n>]><a/>", "GEDecl"},
        {"<!DOCTYPE a [<!ENTITY % e SYSTEM 's' NDATA n>]><a/>", "PEDecl"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 's'NDATA n>]><a/>", "GEDecl"},
        {"<!DOCTYPE a [<!ENTITY e '&'>]><a/>", "Reference"},
        {"<!DOCTYPE a [<!ENTITY e '%'>]><a/>", "Name"},
        {"<!DOCTYPE a [<!ENTITY lt '&#38;#60;'><!ENTITY amp '&#38;#x26;'><!ENTITY gt '>'><!ENTITY quot '&#34;'>]><a/>",
         ""},
        {"<!DOCTYPE a [<!ENTITY lt '<'>]><a/>", ""},
        {"<!DOCTYPE a [<!ENTITY amp '&#38;'>]><a/>", ""},
        {"<!DOCTYPE a [<!ENTITY gt 'x'>]><a/>", ""},
        {"<!DOCTYPE a [<!FOO>]><a/>", "markupdecl"},
        {"<!DOCTYPE a [<a/>]><a/>", "intSubset"},
        {"<!DOCTYPE a [x]><a/>", "intSubset"},
        {"<!DOCTYPE a [<![INCLUDE[]]>]><a/>", "Conditional Sections"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ReadsParameterEntitiesBetweenDeclarations) {
    const RuleCase kCases[] = {
        {"<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"x\">'> %p; ]><a>&e;</a>", ""},
        {"<!DOCTYPE a [<!ENTITY % q '&#37;p;'><!ENTITY % p '<!ENTITY e \"x\">'>%q;]><a>&e;</a>", ""},
        {"<!DOCTYPE a [<!ENTITY % p '&#37;p;'>%p;]><a/>", "No Recursion"},
        {"<!DOCTYPE a [<!ENTITY % p '<!ELEMENT a '>%p; ANY>]><a/>", "PE Between Declarations"},
        {"<!DOCTYPE a [<!ENTITY % p 'x'>%p;]><a/>", "PE Between Declarations"},
        {"<!DOCTYPE a [<!ENTITY % p 'ANY'><!ELEMENT a %p;>]><a/>", "PEs in Internal Subset"},
        {"<!DOCTYPE a [<!ENTITY % p 'x'><!ENTITY e '%p;'>]><a/>", "PEs in Internal Subset"},
        {"<!DOCTYPE a [<!ENTITY % p '<![INCLUDE[<!ENTITY e \"x\">]]>'>%p;]><a>&e;</a>", "Conditional Sections"},
        {"<!DOCTYPE a [<!ENTITY % p '<![IGNORE[<![x]]><!ENTITY]]>'>%p;]><a/>", "Conditional Sections"},
        {"<!DOCTYPE a [<!ENTITY % p '<![IGNORE[]>'>%p;]><a/>", "Conditional Sections"},
        {"<!DOCTYPE a [<!ENTITY % p '<![INCLUDE['>%p;]]>]><a/>", "Conditional Sections"},
        {"<!DOCTYPE a [<!ENTITY % p ''>%p]><a/>", "PEReference"},
    };
    for (const RuleCase& c : kCases) check(c);
}

TEST(LexerTest, ChecksNamespaces) {
    const RuleCase kCases[] = {
        {"<p:a xmlns:p='u' p:x='1' x='1'/>", ""},
        {"<p:a/>", "Prefix Declared"},
        {"<a p:x='1'/>", "Prefix Declared"},
        {"<a><b xmlns:p='u'/><p:c/></a>", "Prefix Declared"},
        {"<a xmlns='u'><b xmlns=''/></a>", ""},
        {"<a xmlns:p=''/>", "No Prefix Undeclaring"},
        {"<a xml:lang='en'/>", ""},
        {"<a xmlns:xml='http://www.w3.org/XML/1998/namespace'/>", ""},
        {"<a xmlns:xml='u'/>", "Reserved Prefixes and Namespace Names"},
        {"<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>", "Reserved Prefixes and Namespace Names"},
        {"<a xmlns='http://www.w3.org/2000/xmlns/'/>", "Reserved Prefixes and Namespace Names"},
        {"<a xmlns:xmlns='u'/>", "Reserved Prefixes and Namespace Names"},
        {"<xmlns:a/>", "Reserved Prefixes and Namespace Names"},
        {"<a xmlns:p='u' xmlns:q='u' p:x='1' q:x='2'/>", "Attributes Unique"},
        {"<a xmlns:p='u' xmlns='u' p:x='1' x='2'/>", ""},
        {"<a:b:c xmlns:a='u'/>", "QName"},
        {"<:a/>", "QName"},
        {"<a:1 xmlns:a='u'/>", "QName"},
        {"<a xmlns:='u'/>", "QName"},
        {"<?a:b?><a/>", "NCName"},
        {"<!DOCTYPE a [<!ENTITY a:b ''>]><a/>", "NCName"},
        {"<!DOCTYPE a [<!NOTATION a:b SYSTEM ''>]><a/>", "NCName"},
        {"<!DOCTYPE a [<!ATTLIST a xmlns:p CDATA 'u'>]><a p:x='1'/>", ""},
        {"<!DOCTYPE a [<!ATTLIST a p:x CDATA 'u'>]><a/>", "Prefix Declared"},
    };
    for (const RuleCase& c : kCases) {
        check(c);
        Lexer::Options options;
        options.namespaces = false;
        EXPECT_EQ(ruleOf(c.text, options), "") << c.text;
    }
}

TEST(LexerTest, GivesWhatADocumentSays) {
    const std::string kText =
        "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!DOCTYPE a PUBLIC 'p' 's' [<!ATTLIST a d CDATA 'v'>]>"
        "<a x='1 &amp; 2'>&#65;\r\n<b/><!--c--><?t i?><![CDATA[<]]></a>";
    EXPECT_EQ(lex(kText).events, "Da 's'\n<a\n  x='1 & 2'\n  d='v'*\n'A\\n'\n<b\n>\n!c\n?t i\n'<'\n>\n");
    Lexer lexer({});
    lexer.setWindow(kText, true);
    ASSERT_EQ(lexer.next(), Lexer::Event::Doctype);
    EXPECT_EQ(lexer.declaration().encoding, "UTF-8");
    EXPECT_EQ(lexer.declaration().standalone, true);
    EXPECT_EQ(lexer.doctype().publicId, "p");
    EXPECT_EQ(lexer.doctype().subset, "<!ATTLIST a d CDATA 'v'>");
}

// A text begins with its first character, or with the reference that makes that.
TEST(LexerTest, SaysWhereATextBegins) {
    const struct {
        const char* content;
        std::vector<std::int64_t> places;  // from the content on
    } kCases[] = {
        {"x", {0}},         {"&amp;x", {0}}, {"&t;x", {0}},     {"&none;x", {6}},   {"&none;&none;&t;x", {12}},
        {"&nested;x", {8}}, {"&b;x", {3}},   {"&tb;x", {0, 4}}, {"y&tb;x", {0, 5}}, {"&none;&amp;", {6}},
    };
    const std::string kBefore =
        "<!DOCTYPE a [<!ENTITY t 't'><!ENTITY none ''><!ENTITY nested '&none;&none;'>"
        "<!ENTITY b '<b/>'><!ENTITY tb 't<b/>'>]><a>";
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.content);
        const std::string text = kBefore + c.content + "</a>";
        Lexer lexer({});
        lexer.setWindow(text, true);
        std::vector<std::int64_t> places;
        for (auto event = lexer.next(); event != Lexer::Event::Finished; event = lexer.next()) {
            ASSERT_NE(event, Lexer::Event::Failed);
            if (event == Lexer::Event::Text)
                places.push_back(lexer.offset() - static_cast<std::int64_t>(kBefore.size()));
        }
        EXPECT_EQ(places, c.places);
    }
}

TEST(LexerTest, CountsWhatEntitiesMakeBeforeATagThatIsCutOff) {
    Lexer::Options options;
    options.entityGrowth = 150'000;
    const std::string text = "<!DOCTYPE a [<!ENTITY none ''><!ENTITY e '" + repeated("&none;", 100) + "'><!ENTITY f '" +
                             repeated("&e;", 100) + "'>]><a>" + repeated("&f;<b x='a long value'/>", 5) + "</a>";
    const Lexed whole = lex(text, options);
    EXPECT_STREQ(whole.fault.rule, "entityGrowth");
    for (std::size_t chunk = 1; chunk < 30; ++chunk) {
        const Lexed parts = lex(text, options, chunk);
        EXPECT_EQ(parts.isAccepted, whole.isAccepted);
        EXPECT_EQ(parts.fault.offset, whole.fault.offset);
    }
}

TEST(LexerTest, HoldsLimits) {
    Lexer::Options options;
    options.maxDepth = 2;
    EXPECT_EQ(ruleOf("<a><b/></a>", options), "");
    EXPECT_EQ(ruleOf("<a><b><c/></b></a>", options), "maxDepth");
    for (std::size_t chunk = 1; chunk < 20; ++chunk) {
        const Lexed lexed = lex("<a><b><c/><c/></b></a>", options, chunk);
        EXPECT_STREQ(lexed.fault.rule, "maxDepth");
        EXPECT_EQ(lexed.fault.offset, 6);
        EXPECT_EQ(lexed.events, "<a\n<b\n");
    }

    options.maxDepth = 0;
    options.entityGrowth = 1000;
    std::string laughs = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        const std::string before = "&e" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY e" + std::to_string(i) + " '" + before + before + "'>";
    }
    laughs += "]>";
    const std::string kTexts[] = {
        laughs + "<a>&e29;</a>",
        laughs + "<a x='&e29;'/>",
        "<!DOCTYPE a [<!ATTLIST b x CDATA '" + std::string(1000, 'x') + "'>]><a>" +
            [] {
                std::string many;
                for (int i = 0; i < 1000; ++i) many += "<b/>";
                return many;
            }() +
            "</a>",
    };
    for (const std::string& text : kTexts) {
        const Lexed lexed = lex(text, options);
        EXPECT_STREQ(lexed.fault.rule, "entityGrowth");
        EXPECT_EQ(lexed.fault.kind, Problem::Kind::Limit);
    }
    // What entities make takes memory also where it is little text.
    options.entityGrowth = 20000;
    for (const char* piece : {"<b/>", "<b x=\"\"/>", "<!---->", "<?p?>", "<![CDATA[]]>"}) {
        SCOPED_TRACE(piece);
        const std::string before = "<!DOCTYPE a [<!ENTITY e '" + repeated(piece, 20) + "'>]><a>";
        EXPECT_EQ(ruleOf(before + "&e;&e;</a>", options), "");
        EXPECT_EQ(ruleOf(before + repeated("&e;", 200) + "</a>", options), "entityGrowth");
    }
    options.entityGrowth = 1000;
    // Not more than a hundred times what was read.
    EXPECT_EQ(ruleOf("<!DOCTYPE a [<!ENTITY e '" + std::string(1000, 'x') + "'>]><a>&e;&e;&e;</a>", options), "");
}

}  // namespace
}  // namespace Xml::test
