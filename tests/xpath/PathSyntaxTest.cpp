// How a path is read: white space, steps, predicates, literals, axes, kind tests, names, and the error of each that is
// wrong, found out by asking and by checking alone.
#include "support/Messages.h"
#include "support/Texts.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {

namespace {

using OrvSys::Uni16String;

const char* const kText =
    "<r i='r'>"
    "<a i='a1' id='7'><b i='b1'>one</b><b i='b2' k='v'>two</b></a>"
    "<a i='a2'><c i='c1'/></a>"
    "<item i='i1' id='x'/><item i='i2' id='y'/><item i='i3' id=' p  q '/><item i='i4' id=']'/>"
    "<a-b i='ab'/>"
    "</r>";

// A path, what asking it over the document gives, and what checking it gives.
struct SyntaxCase {
    const char* name;
    const char16_t* path;
    const char* answer;
    const char* syntax;
};

template <std::size_t N>
void expectSyntax(const Tree& tree, const SyntaxCase (&cases)[N]) {
    for (const SyntaxCase& c : cases) {
        SCOPED_TRACE(std::string(c.name) + ": " + narrow(c.path));
        EXPECT_EQ(answer(tree.document(), c.path), c.answer);
        EXPECT_EQ(syntax(tree.document(), c.path), c.syntax);
        // With other results: they are neither looked at nor changed.
        EXPECT_EQ(syntax(tree.document(), c.path, u"/r/*"), c.syntax);
    }
}

TEST(PathSyntaxTest, DropsWhiteSpaceExceptAroundOperatorsAndInLiterals) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"around steps", u" / r / a ", "a1 a2", "ok"},
        {"tabs and line ends", u"\t/\nr\r/\r\na\t", "a1 a2", "ok"},
        {"inside names", u"/r/it em", "i1 i2 i3 i4", "ok"},
        {"inside an axis", u"/ r / chi ld : : a", "a1 a2", "ok"},
        {"inside a kind test", u"/r/a/b/te xt ( )", "'one' 'two'", "ok"},
        {"inside dots", u"/r/a/ . .", "r", "ok"},
        {"between slashes", u"/ / b", "b1 b2", "ok"},
        {"before predicates", u"/r/a [b] [c]", "| 2: c", "ok"},
        {"in predicates", u"/r/a/b[ text() = 'two' ]", "b2", "ok"},
        {"in names in predicates", u"/r/item[ @ i d = 'x' ]", "i1", "ok"},
        {"not in literals", u"/r/item[@id = ' p  q ']", "i3", "ok"},
        {"nor of one kept whole", u"/r/item[@id = 'p q']", "| 2: item[@id = 'p q']", "ok"},
        {"nor in literals alone", u"  '  a\t b '  ", "str(  a\t b )#-1", "ok"},
        {"a word operator between single blanks", u"/r/a/b[text() eq 'two']", "b2", "ok"},
        {"between several", u"/r/a/b[text()  eq  'two']", "b2", "ok"},
        {"without a blank after it", u"/r/a/b[text() eq'two']", "| failed 8: text()eq'two'", "failed 8: text()eq'two'"},
        {"without a blank before it", u"/r/a/b[text()eq 'two']", "| failed 8: text()eq'two'",
         "failed 8: text()eq'two'"},
        {"with a tab before it", u"/r/a/b[text()\teq 'two']", "| failed 8: text()eq'two'", "failed 8: text()eq'two'"},
        {"with a tab and a blank before it", u"/r/a/b[text()\t eq \t'two']", "b2", "ok"},
        {"between two paths", u"/r/a eq b", "| 2: b", "ok"},
        {"the sign operators need none", u"/r/a/b[text()='two']", "b2", "ok"},
        {"and may have some", u"/r/a/b[text() \t =\n 'two']", "b2", "ok"},
        {"minus with blanks", u"7 - 2", "5#-1", "ok"},
        {"with more blanks", u"7  -   2", "5#-1", "ok"},
        {"minus without", u"7-2", "| failed 9: 7-2", "failed 9: 7-2"},
        {"minus with one before", u"7 -2", "| failed 9: 7-2", "failed 9: 7-2"},
        {"minus with one after", u"7- 2", "| failed 9: 7-2", "failed 9: 7-2"},
        {"plus without", u"1+1", "| failed 9: 1+1", "failed 9: 1+1"},
        {"times without", u"2*3", "| failed 9: 2*3", "failed 9: 2*3"},
        {"div without", u"8div 2", "| failed 9: 8div2", "failed 9: 8div2"},
        {"a name with a minus", u"/r/a-b", "ab", "ok"},
        {"the same with a blank before it", u"/r/a -b", "ab", "ok"},
        {"a difference", u"/r/a - b", "| 2: b", "ok"},
        {"a star after a slash", u"/r/a/ *", "b1 b2 c1", "ok"},
        {"a star with blanks around is times", u"/r/a/ * ", "| failed 14: a/", "failed 14: a/"},
        {"digits", u"1 2 . 5", "12.5#-1", "ok"},
        {"other blanks are characters", u"/r/a\u00A0", "| failed 12: a\xC2\xA0", "failed 12: a\xC2\xA0"},
        {"a vertical tab is one too", u"/r/a\v", "| failed 12: a\v", "failed 12: a\v"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, LooksAtTheLowByteOfACharacterForItsClass) {
    const Tree tree(kText);
    {
        const MessageCollector diagnostics;  // these are no names
        tree["a2"]->setAttribute("\xC5\x81", DataHolder("stroke"));
        tree["a2"]->setAttribute("x\xC4\xB0", DataHolder("dot"));
        EXPECT_FALSE(diagnostics.texts().empty());
    }
    const SyntaxCase kCases[] = {
        {"U+0120, U+0109, U+010A and U+010D are white space", u"\u0120/r\u0109/\u010Aa\u010D", "a1 a2", "ok"},
        {"so is U+2020", u"/r/\u2020a", "a1 a2", "ok"},
        {"but no blanks of an operator", u"7\u0120-\u01202", "| failed 9: 7-2", "failed 9: 7-2"},
        {"U+0127 is a quote", u"\u0127a b\u0127", "str(a b)#-1", "ok"},
        {"U+0122 too", u"/r/item[@id=\u0122x\u0122]", "i1", "ok"},
        {"the same unit closes", u"\u0127it's\u0127", "str(it's)#-1", "ok"},
        {"and no other", u"\u0127it'", "str(it')#-1", "ok"},
        {"also the other way round", u"'it\u0127", "str(it\xC4\xA7)#-1", "ok"},
        {"U+0141 begins a name", u"/r/a/@\u0141", "@\xC5\x81=stroke", "ok"},
        {"which is compared whole", u"/r/a/@A", "| 2: @A", "ok"},
        {"U+015F begins a name, as _ does", u"/r/\u015F", "| 2: \xC5\x9F", "ok"},
        {"U+0130 goes on with one, as 0 does", u"/r/a/@x\u0130", "@x\xC4\xB0=dot", "ok"},
        {"U+012D and U+012E do", u"/r/x\u012D\u012E", "| 2: x\xC4\xAD\xC4\xAE", "ok"},
        {"U+0131 begins neither name nor number", u"\u0131", "| failed 0", "failed 0"},
        {"nor does a number go on with it", u"1\u0131", "| failed 9: 1\xC4\xB1", "failed 9: 1\xC4\xB1"},
        {"nor does U+012E part its digits", u"1\u012E5",
         "| failed 9: 1\xC4\xAE"
         "5",
         "failed 9: 1\xC4\xAE"
         "5"},
        {"U+012F is no slash", u"/r\u012Fa",
         "| failed 12: r\xC4\xAF"
         "a",
         "failed 12: r\xC4\xAF"
         "a"},
        {"U+015B is no bracket", u"/r/a\u015Bb]",
         "| failed 12: a\xC5\x9B"
         "b]",
         "failed 12: a\xC5\x9B"
         "b]"},
        {"U+015D closes none", u"/r/a[b\u015D", "| failed 20: [b\xC5\x9D", "failed 20: [b\xC5\x9D"},
        {"U+0140 is no @", u"/r/\u0140id", "| failed 0", "failed 0"},
        {"U+012A is no star", u"/r/\u012A", "| failed 0", "failed 0"},
        {"U+013A is no colon", u"/r/child\u013A\u013Aa",
         "| failed 12: child\xC4\xBA\xC4\xBA"
         "a",
         "failed 12: child\xC4\xBA\xC4\xBA"
         "a"},
        {"U+0128 opens no kind test", u"/r/text\u0128)", "| failed 24: text\xC4\xA8)", "failed 24: text\xC4\xA8)"},
        {"U+0129 closes none", u"/r/text(\u0129", "| failed 23: text(\xC4\xA9", "failed 23: text(\xC4\xA9"},
        {"U+013D compares nothing", u"/r/a\u013Db",
         "| failed 12: a\xC4\xBD"
         "b",
         "failed 12: a\xC4\xBD"
         "b"},
        {"U+2F00 is no slash", u"/r/a\u2F00", "| failed 12: a\xE2\xBC\x80", "failed 12: a\xE2\xBC\x80"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, SplitsAPathAtSlashesOutsideBracketsAndLiterals) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"one step", u"/r", "r", "ok"},
        {"the document alone", u"/", "/", "ok"},
        {"three steps", u"/r/a/b", "b1 b2", "ok"},
        {"from the context", u"r/a/b", "b1 b2", "ok"},
        {"in a predicate", u"/r[a/b]/a", "a1 a2", "ok"},
        {"in a literal in a predicate", u"/r/a[b != '/']/b", "b1 b2", "ok"},
        {"a bracket in a literal", u"/r/item[@id=']']", "i4", "ok"},
        {"an opening bracket in a literal", u"/r/item[@id!='[']/../a", "a1 a2", "ok"},
        {"quotes of the other kind in a literal", u"/r/item[@id!=\"'\"]/..", "r", "ok"},
        {"a literal as a step", u"/r/'a/b'", "| failed 0", "failed 0"},
        {"a literal after a name", u"/r/a'/'/b", "| failed 12: a'/'", "failed 12: a'/'"},
        {"a slash at the end", u"/r/", "| failed 14: r/", "failed 14: r/"},
        {"after a relative path", u"r/", "| failed 14: r/", "failed 14: r/"},
        {"after several steps", u"/r/a/b/", "| failed 14: b/", "failed 14: b/"},
        {"after white space", u"/r / a / ", "| failed 14: a/", "failed 14: a/"},
        {"after a predicate", u"/r/a[ b ]/", "| failed 14: a[ b ]/", "failed 14: a[ b ]/"},
        {"after a step that is not there", u"/nope/", "| failed 14: nope/", "failed 14: nope/"},
        {"after a step that is not reached", u"/nope/x/", "| 2: nope", "failed 14: x/"},
        {"after what is no step", u"/r/1/", "| failed 14: 1/", "failed 14: 1/"},
        {"before what is wrong with its axis", u"/r/up::a/", "| failed 14: up::a/", "failed 14: up::a/"},
        {"before what is wrong with its predicate", u"/r/a[b]c/", "| failed 14: a[b]c/", "failed 14: a[b]c/"},
        {"of a path in a predicate", u"/r/a[b/]", "| failed 14: b/", "failed 14: b/"},
        {"of one that is not reached", u"/r/c[b/]", "| 2: c", "failed 14: b/"},
        {"after an operator", u"/r/a = /r/", "| failed 14: r/", "failed 14: r/"},
        {"two slashes at the end", u"/r//", "| failed 4: //", "failed 4: //"},
        {"of a relative path", u"r//", "| failed 4: //", "failed 4: //"},
        {"alone", u"//", "| failed 4: //", "failed 4: //"},
        {"three", u"/r///", "| failed 4: //", "failed 4: //"},
        {"with a blank between", u"/r/ /", "| failed 4: //", "failed 4: //"},
        {"where they are not reached", u"/nope//", "| 2: nope", "failed 4: //"},
        {"in a predicate", u"/r/a[b//]", "| failed 4: //", "failed 4: //"},
        {"three in the middle", u"/r///b", "b1 b2", "ok"},
        {"many in the middle", u"/r////////b", "b1 b2", "ok"},
        {"many at the beginning", u"/////b", "b1 b2", "ok"},
        {"a bracket too many at the end", u"/r/a]", "| failed 12: a]", "failed 12: a]"},
        {"after which a slash parts nothing", u"/r]/a", "| failed 12: r]/a", "failed 12: r]/a"},
        {"not even at the end", u"/r/a]/", "| failed 12: a]/", "failed 12: a]/"},
        {"until an opening one makes up for it", u"/r/a][b/c", "| failed 20: [b", "failed 20: [b"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, CutsPredicatesFromAStep) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"one", u"/r/a[b]", "a1", "ok"},
        {"two", u"/r/item[@id='y'][position() = 1]", "i2", "ok"},
        {"nested", u"/r[a[b[text() = 'two']]]", "r", "ok"},
        {"before another step", u"/r/a[b]/b", "b1 b2", "ok"},
        {"of a dot", u"/r/a/.[b]", "a1", "ok"},
        {"of two dots", u"/r/a/b/..[@id]", "a1", "ok"},
        {"of a kind test", u"/r/a/b/text()[. = 'one']", "'one'", "ok"},
        {"something after", u"/r/item[1]x", "| failed 10: [1]", "failed 10: [1]"},
        {"after the second", u"/r/a[b][c]d", "| failed 10: [c]", "failed 10: [c]"},
        {"between two", u"/r/a[b]c[d]", "| failed 10: [b]", "failed 10: [b]"},
        {"white space in it stays", u"/r/a[ b ]c", "| failed 10: [ b ]", "failed 10: [ b ]"},
        {"brackets in it stay", u"/r/a[b[c]]d", "| failed 10: [b[c]]", "failed 10: [b[c]]"},
        {"a bracket too many after it", u"/r/a[b]]", "| failed 10: [b]", "failed 10: [b]"},
        {"a literal after it", u"/r/a[b]'c'", "| failed 10: [b]", "failed 10: [b]"},
        {"an axis after it", u"/r/a[b]::c", "| failed 10: [b]", "failed 10: [b]"},
        {"before a wrong axis", u"/r/up::a[b]c", "| failed 10: [b]", "failed 10: [b]"},
        {"before an open one", u"/r/a[b]c[d", "| failed 10: [b]", "failed 10: [b]"},
        {"where it is not reached", u"/nope/a[b]c", "| 2: nope", "failed 10: [b]"},
        {"open", u"/r/item[1", "| failed 20: [1", "failed 20: [1"},
        {"open and empty", u"/r/item[", "| failed 20: [", "failed 20: ["},
        {"open after a closed one", u"/r/a[b][c", "| failed 20: [c", "failed 20: [c"},
        {"open around a closed one", u"/r/a[b[c]", "| failed 20: [b[c]", "failed 20: [b[c]"},
        {"open twice", u"/r/a[b[c", "| failed 20: [b[c", "failed 20: [b[c"},
        {"open, with slashes", u"/r/a[b/c/", "| failed 20: [b/c/", "failed 20: [b/c/"},
        {"open, with white space", u"/r/a[ b ", "| failed 20: [ b ", "failed 20: [ b "},
        {"open, with operators", u"/r/a[b = c - d", "| failed 20: [b = c - d", "failed 20: [b = c - d"},
        {"open by an open literal", u"/r/a[b='x]", "| failed 20: [b='x]'", "failed 20: [b='x]'"},
        {"open before a wrong axis", u"/r/up::a[b", "| failed 20: [b", "failed 20: [b"},
        {"where it is not reached", u"/nope/a[b", "| 2: nope", "failed 20: [b"},
        {"empty", u"/r/a[]", "| failed 0", "failed 0"},
        {"empty, over no nodes", u"/r/nope[]", "| 2: nope", "failed 0"},
        {"blank", u"/r/a[ ]", "| failed 0", "failed 0"},
        {"alone", u"/r/[b]", "| failed 0", "failed 0"},
        {"a lone slash in it", u"/r/a[/]", "| failed 0", "failed 0"},
        {"a lone slash in it, over no nodes", u"/r/nope[/]", "| failed 2: nope", "failed 0"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, TakesTheTextBetweenTwoLikeQuotesForALiteral) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"single quotes", u"'text'", "str(text)#-1", "ok"},
        {"double quotes", u"\"text\"", "str(text)#-1", "ok"},
        {"empty", u"''", "str()#-1", "ok"},
        {"the other quote in it", u"'say \"x\"'", "str(say \"x\")#-1", "ok"},
        {"no escapes", u"'a\\'", "str(a\\)#-1", "ok"},
        {"open", u"'text", "str(text)#-1", "ok"},
        {"open and empty", u"'", "str()#-1", "ok"},
        {"open in a predicate that thereby is", u"/r/a[b='two]", "| failed 20: [b='two]'", "failed 20: [b='two]'"},
        {"something after it", u"'text'more", "str(text)#-1", "ok"},
        {"another after it", u"'a''b'", "str(a)#-1", "ok"},
        {"another after a blank", u"'a' \"b\"", "str(a)#-1", "ok"},
        {"a predicate after it", u"'a'[b]", "str(a)#-1", "ok"},
        {"slashes, operators, brackets", u"'/a = [b] - ]'", "str(/a = [b] - ])#-1", "ok"},
        {"after something else", u"a'b'", "| failed 12: a'b'", "failed 12: a'b'"},
        {"open after something else", u"a'b", "| failed 12: a'b'", "failed 12: a'b'"},
        {"beyond 16 bits", u"'\U0001F600'", "str(\xF0\x9F\x98\x80)#-1", "ok"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, KnowsTwelveAxesByNameOrSign) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"child", u"/r/child::a", "a1 a2", "ok"},
        {"no axis is child", u"/r/a", "a1 a2", "ok"},
        {"attribute", u"/r/a/attribute::id", "@id=7", "ok"},
        {"its sign", u"/r/a/@id", "@id=7", "ok"},
        {"descendant", u"/descendant::b", "b1 b2", "ok"},
        {"descendant-or-self", u"/r/a/descendant-or-self::a", "a1 a2", "ok"},
        {"parent", u"/r/a/b/parent::a", "a1", "ok"},
        {"its sign", u"/r/a/b/..", "a1", "ok"},
        {"ancestor", u"/r/a/b/ancestor::r", "r", "ok"},
        {"ancestor-or-self", u"/r/a/ancestor-or-self::a", "a1 a2", "ok"},
        {"following-sibling", u"/r/a/following-sibling::a", "a2", "ok"},
        {"preceding-sibling", u"/r/a/preceding-sibling::a", "a1", "ok"},
        {"following", u"/r/a/following::c", "c1", "ok"},
        {"preceding", u"/r/a/preceding::b", "b1 b2", "ok"},
        {"self", u"/r/a/self::a", "a1 a2", "ok"},
        {"its sign", u"/r/a/.", "a1 a2", "ok"},
        {"another", u"/r/foo::bar", "| failed 15: foo::bar", "failed 15: foo::bar"},
        {"none before the colons", u"/r/::a", "| failed 15: ::a", "failed 15: ::a"},
        {"in capitals", u"/r/Child::a", "| failed 15: Child::a", "failed 15: Child::a"},
        {"one that begins like one", u"/r/descendants::a", "| failed 15: descendants::a", "failed 15: descendants::a"},
        {"one cut short", u"/r/descendant-or::a", "| failed 15: descendant-or::a", "failed 15: descendant-or::a"},
        {"one that others have", u"/r/namespace::a", "| failed 15: namespace::a", "failed 15: namespace::a"},
        {"a kind test", u"/r/text::a", "| failed 15: text::a", "failed 15: text::a"},
        {"a sign before a name", u"/r/@a::b", "| failed 15: @a::b", "failed 15: @a::b"},
        {"dots before colons", u"/r/..::a", "| failed 15: ..::a", "failed 15: ..::a"},
        {"without its predicates", u"/r/foo::bar[1][ 2 ]", "| failed 15: foo::bar", "failed 15: foo::bar"},
        {"after white space is gone", u"/r/f o o :: bar", "| failed 15: foo::bar", "failed 15: foo::bar"},
        {"two", u"/r/child::self::a", "| failed 12: self::a", "failed 12: self::a"},
        {"the first colons count", u"/r/a::b::c", "| failed 15: a::b::c", "failed 15: a::b::c"},
        {"before what is no name", u"/r/foo::1", "| failed 15: foo::1", "failed 15: foo::1"},
        {"where it is not reached", u"/nope/foo::bar", "| 2: nope", "failed 15: foo::bar"},
        {"an axis and nothing", u"/r/child::", "| failed 0", "failed 0"},
        {"a sign and nothing", u"/r/@", "| failed 0", "failed 0"},
        {"two signs", u"/r/@@id", "| failed 0", "failed 0"},
        {"three dots", u"/r/...", "| failed 0", "failed 0"},
        {"two dots and a name", u"/r/..a", "| failed 0", "failed 0"},
        {"a dot and a name", u"/r/.a", "| failed 0", "failed 0"},
        {"an axis and a dot", u"/r/self::.", "| failed 0", "failed 0"},
        {"a sign and dots", u"/r/@..", "| failed 0", "failed 0"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, TakesAStepThatBeginsWithAKeywordForAKindTest) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"node", u"/r/node()/node()", "b1 b2 c1", "ok"},
        {"element", u"/r/a/element()", "b1 b2 c1", "ok"},
        {"text", u"/r/a/b/text()", "'one' 'two'", "ok"},
        {"attribute", u"/r/a/@attribute()", "@i=a1 @id=7 @i=a2", "ok"},
        {"document-node", u"/r/ancestor::document-node()", "/", "ok"},
        {"without parentheses", u"/r/a/b/text", "'one' 'two'", "ok"},
        {"node without", u"/r/a/node", "b1 b2 c1", "ok"},
        {"element without", u"/r/a/element", "b1 b2 c1", "ok"},
        {"attribute without", u"/r/a/attribute", "| 2: attribute", "ok"},
        {"document-node without", u"/self::document-node", "/", "ok"},
        {"with a name", u"/r/a/element(c)", "c1", "ok"},
        {"with a star", u"/r/a/element(*)", "b1 b2 c1", "ok"},
        {"another letter after it", u"/r/nodes", "| failed 24: nodes", "failed 24: nodes"},
        {"a word that begins with it", u"/r/textual", "| failed 24: textual", "failed 24: textual"},
        {"another", u"/r/elementary", "| failed 24: elementary", "failed 24: elementary"},
        {"and another", u"/r/attributes", "| failed 24: attributes", "failed 24: attributes"},
        {"and the last", u"/r/document-nodes", "| failed 24: document-nodes", "failed 24: document-nodes"},
        {"a closing parenthesis alone", u"/r/text)", "| failed 24: text)", "failed 24: text)"},
        {"as a prefix", u"/r/node:a", "| failed 24: node:a", "failed 24: node:a"},
        {"after an axis", u"/r/child::nodes", "| failed 24: nodes", "failed 24: nodes"},
        {"after a sign", u"/r/@nodes", "| failed 24: nodes", "failed 24: nodes"},
        {"without predicates", u"/r/nodes[a]", "| failed 24: nodes", "failed 24: nodes"},
        {"a keyword in capitals is a name", u"/r/Nodes", "| 2: Nodes", "ok"},
        {"so is a word that ends with one", u"/r/mytext", "| 2: mytext", "ok"},
        {"a parenthesis left open", u"/r/text(", "| failed 23: text(", "failed 23: text("},
        {"with a name in it", u"/r/child::element(a", "| failed 23: element(a", "failed 23: element(a"},
        {"before a predicate", u"/r/element(a[b]", "| failed 23: element(a", "failed 23: element(a"},
        {"something after", u"/r/text()x", "| failed 8: text()x", "failed 8: text()x"},
        {"after a name in it", u"/r/element(a)b", "| failed 8: element(a)b", "failed 8: element(a)b"},
        {"two pairs", u"/r/node()()", "| failed 8: node()()", "failed 8: node()()"},
        {"one parenthesis too many", u"/r/node())", "| failed 8: node())", "failed 8: node())"},
        {"after an axis, before a predicate", u"/r/self::text()x[1]", "| failed 8: text()x", "failed 8: text()x"},
        {"what is no name in it", u"/r/element(1)", "| failed 0", "failed 0"},
        {"a blank in it is none", u"/r/a/element( )", "b1 b2 c1", "ok"},
        {"a parenthesis in it", u"/r/element((a))", "| failed 0", "failed 0"},
        {"a wrong name in it", u"/r/element(*x)", "| failed 12: *x", "failed 12: *x"},
        {"also of a kind without names", u"/r/text(a:)", "| failed 12: a:", "failed 12: a:"},
        {"also before something after", u"/r/text(a:)x", "| failed 12: a:", "failed 12: a:"},
        {"where it is not reached", u"/nope/nodes", "| 2: nope", "failed 24: nodes"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, ReadsNamesWithOnePrefixAtMostAndAStarInEitherPlace) {
    const Tree tree("<r i='r'><a.b-c_0 i='all'/><_x i='under'/><p:n i='pn'/><q:n i='qn'/><n i='n'/></r>");
    const SyntaxCase kCases[] = {
        {"every kind of character", u"/r/a.b-c_0", "all", "ok"},
        {"an underscore first", u"/r/_x", "under", "ok"},
        {"a prefix", u"/r/p:n", "pn", "ok"},
        {"any prefix", u"/r/*:n", "pn qn", "ok"},
        {"any name with a prefix", u"/r/p:*", "pn", "ok"},
        {"any name", u"/r/*", "all under pn qn n", "ok"},
        {"two stars", u"/r/**", "| failed 12: **", "failed 12: **"},
        {"a star and a letter", u"/r/*x", "| failed 12: *x", "failed 12: *x"},
        {"a star after a letter", u"/r/x*", "| failed 12: x*", "failed 12: x*"},
        {"a star and a colon", u"/r/*:", "| failed 12: *:", "failed 12: *:"},
        {"and a digit", u"/r/*:1", "| failed 12: *:1", "failed 12: *:1"},
        {"and a star", u"/r/*:*", "| failed 12: *:*", "failed 12: *:*"},
        {"and a name with something after", u"/r/*:n!", "| failed 12: *:n!", "failed 12: *:n!"},
        {"and two names", u"/r/*:n:m", "| failed 12: *:n:m", "failed 12: *:n:m"},
        {"a prefix and nothing", u"/r/p:", "| failed 12: p:", "failed 12: p:"},
        {"a prefix and a digit", u"/r/p:1", "| failed 12: p:1", "failed 12: p:1"},
        {"a prefix and a star and something", u"/r/p:*x", "| failed 12: p:*x", "failed 12: p:*x"},
        {"two prefixes", u"/r/p:q:n", "| failed 12: p:q:n", "failed 12: p:q:n"},
        {"a name and something after", u"/r/p:n!", "| failed 12: p:n!", "failed 12: p:n!"},
        {"an exclamation mark", u"/r/n!", "| failed 12: n!", "failed 12: n!"},
        {"a bar", u"/r/n|m", "| failed 12: n|m", "failed 12: n|m"},
        {"a comma", u"/r/n,m", "| failed 12: n,m", "failed 12: n,m"},
        {"parentheses", u"/r/n()", "| failed 12: n()", "failed 12: n()"},
        {"a dollar after", u"/r/n$", "| failed 12: n$", "failed 12: n$"},
        {"without its axis", u"/r/child::n|m", "| failed 12: n|m", "failed 12: n|m"},
        {"without its sign", u"/r/@*n", "| failed 12: *n", "failed 12: *n"},
        {"without its predicates", u"/r/n![1]", "| failed 12: n!", "failed 12: n!"},
        {"a letter beyond ASCII", u"/r/n\u00E9", "| failed 12: n\xC3\xA9", "failed 12: n\xC3\xA9"},
        {"where it is not reached", u"/nope/n!", "| 2: nope", "failed 12: n!"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, FailsWithoutACodeWhereAStepBeginsWithWhatBeginsNoName) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"a digit", u"/r/1abc", "| failed 0", "failed 0"},
        {"a minus", u"/r/-a", "| failed 0", "failed 0"},
        {"a colon", u"/r/:a", "| failed 0", "failed 0"},
        {"a quote", u"/r/'a'", "| failed 0", "failed 0"},
        {"a parenthesis", u"/r/(a)", "| failed 0", "failed 0"},
        {"a dollar", u"/r/$a", "| failed 0", "failed 0"},
        {"a letter beyond ASCII", u"/r/\u00E9", "| failed 0", "failed 0"},
        {"a bracket", u"/r/]", "| failed 0", "failed 0"},
        {"a dot before a digit", u".5", "| failed 0", "failed 0"},
        {"a sign before a digit", u"-5", "| failed 0", "failed 0"},
        {"a plus", u"+5", "| failed 0", "failed 0"},
        {"nothing before an operator", u"=3", "| failed 0", "failed 0"},
        {"nothing after an operator", u"3=", "| failed 0", "failed 0"},
        {"nothing between two", u"3 = = 3", "| failed 0", "failed 0"},
        {"an operator alone", u"!=", "| failed 0", "failed 0"},
        {"nothing before a word operator", u" eq 3", "| failed 0", "failed 0"},
        {"a lone slash after an operator", u"1 + /", "| failed 0", "failed 0"},
        {"in a predicate", u"/r/a[1 = -1]", "| failed 0", "failed 0"},
        {"in a predicate over no nodes", u"/r/nope[-a]", "| 2: nope", "failed 0"},
        {"where it is not reached", u"/nope/1abc", "| 2: nope", "failed 0"},
        {"after a path that found nothing", u"/r/nope = -a", "| failed 2: nope", "failed 0"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, ReportsNothingOfStepsThatAreNeverReached) {
    const Tree tree(kText);
    const SyntaxCase kCases[] = {
        {"after a step without nodes", u"/r/nope/a::b", "| 2: nope", "failed 15: a::b"},
        {"far after", u"/r/nope/x/y/z/1", "| 2: nope", "failed 0"},
        {"an open bracket", u"/r/nope/x[", "| 2: nope", "failed 20: ["},
        {"in a predicate without nodes", u"/r/c[a::b]", "| 2: c", "failed 15: a::b"},
        {"in a nested predicate without nodes", u"/r/a[x[y[z::w]]]", "| 2: x", "failed 15: z::w"},
        {"after a step of a predicate", u"/r/a[x/y::z]", "| 2: x", "failed 15: y::z"},
        {"after a predicate without nodes", u"/r/a[b[c]]/y::z", "| 2: c", "failed 15: y::z"},
        {"where one context has nodes it is met", u"/r/a[c/y::z]", "| failed 15: y::z", "failed 15: y::z"},
        {"a path from the document is walked for no nodes too", u"/r/nope[/r/y::z]", "| failed 15: y::z",
         "failed 15: y::z"},
        {"a number is read for no nodes too", u"/r/nope[12a]", "| failed 9: 12a", "failed 9: 12a"},
        {"a function too", u"/r/nope[last(]", "| failed 21: last(", "failed 21: last("},
        {"but in the predicate of a step that is not reached", u"/nope/x[12a]", "| 2: nope", "failed 9: 12a"},
        {"the first of two errors", u"/r/a[12a]/y::z", "| failed 9: 12a", "failed 9: 12a"},
        {"a predicate in a predicate is met first", u"/r/a[b[12a]/y::z]", "| failed 9: 12a", "failed 9: 12a"},
        {"the first of two predicates", u"/r/a[y::z][12a]", "| failed 15: y::z", "failed 15: y::z"},
        {"the second where the first keeps nothing", u"/r/a[nope][12a]", "| failed 9: 12a", "failed 9: 12a"},
        {"the first of two items", u"/r/y::z = 12a", "| failed 15: y::z", "failed 15: y::z"},
        {"all items are walked", u"/r/nope = /r/y::z", "| failed 15: y::z", "failed 15: y::z"},
    };
    expectSyntax(tree, kCases);
}

TEST(PathSyntaxTest, ReadsBracketsNestedAThousandDeepAndNoDeeper) {
    const Tree tree(kText);
    const auto nested = [](int depth) { return u"/r" + repeated(u"[.", depth) + repeated(u"]", depth); };
    struct Case {
        const char* name;
        Uni16String path;
        const char* answer;
        const char* syntax;
    } const kCases[] = {
        {"a few", nested(3), "r", "ok"},
        {"the deepest", nested(1000), "r", "ok"},
        {"one more", nested(1001), "| failed 27", "failed 27"},
        {"far more", nested(100000), "| failed 27", "failed 27"},
        {"left open", u"/r" + repeated(u"[", 1001), "| failed 27", "failed 27"},
        {"far more left open", u"/r" + repeated(u"[", 100000), "| failed 27", "failed 27"},
        {"the deepest over nothing", u"/r/nope" + nested(1000).substr(2), "| 2: nope", "ok"},
        {"more over nothing", u"/r/nope" + nested(1001).substr(2), "| failed 27", "failed 27"},
        {"in a path that is not reached", u"/nope/r" + nested(1001).substr(2), "| failed 27", "failed 27"},
        {"before any other error", u"/r/a::b" + repeated(u"[", 1001), "| failed 27", "failed 27"},
        {"each closed before the next", u"/r" + repeated(u"[.]", 5000), "r", "ok"},
        {"a thousand twice", nested(1000) + nested(1000).substr(2), "r", "ok"},
        {"a bracket that closes nothing does not count", u"/r]]]" + repeated(u"[", 1001), "| failed 27", "failed 27"},
        {"in a literal", u"'" + repeated(u"[", 5000) + u"' = 'x'", "", "ok"},
        {"in a literal in a predicate", u"/r[@i != '" + repeated(u"[", 5000) + u"']", "r", "ok"},
        {"an open literal", u"/r['" + repeated(u"[", 5000), nullptr, nullptr},
        {"a relative one", nested(1001).substr(1), "| failed 27", "failed 27"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        if (c.answer == nullptr) {
            const std::string error = "failed 20: " + narrow(c.path.substr(2)) + "'";
            EXPECT_TRUE(answer(tree.document(), c.path) == "| " + error);
            EXPECT_TRUE(syntax(tree.document(), c.path) == error);
            continue;
        }
        EXPECT_EQ(answer(tree.document(), c.path), c.answer);
        EXPECT_EQ(syntax(tree.document(), c.path), c.syntax);
    }
    // Wanting a context comes before that.
    XPath query(tree.document());
    query.GetValues(u"/nope");
    EXPECT_EQ(query.GetValues(repeated(u"[", 1001)), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES);
}

TEST(PathSyntaxTest, ReadsPathsOfManyThousandStepsAndCharacters) {
    const Tree tree(kText);
    constexpr std::size_t kMany = 200000;
    struct Case {
        const char* name;
        Uni16String path;
        const char* answer;
        const char* syntax;
    } const kCases[] = {
        {"down and up", u"/r" + repeated(u"/../r", kMany), "r", "ok"},
        {"staying", u"/r" + repeated(u"/.", kMany), "r", "ok"},
        {"staying, to the wrong end", u"/r" + repeated(u"/.", kMany) + u"/", "| failed 14: ./", "failed 14: ./"},
        {"staying, to an axis that is none", u"/r" + repeated(u"/.", kMany) + u"/x::y", "| failed 15: x::y",
         "failed 15: x::y"},
        {"slashes", repeated(u"/", kMany) + u"b", "b1 b2", "ok"},
        {"slashes to the end", repeated(u"/", kMany), "| failed 4: //", "failed 4: //"},
        {"white space", u"/r" + repeated(u" \t", kMany) + u"/a" + repeated(u"\n", kMany), "a1 a2", "ok"},
        {"blanks that may begin operators", u"/r" + repeated(u" d", kMany), nullptr, nullptr},
        {"predicates", u"/r" + repeated(u"[.]", kMany), "r", "ok"},
        {"predicates to the wrong end", u"/r" + repeated(u"[.]", kMany) + u"x", "| failed 10: [.]", "failed 10: [.]"},
        {"a long literal", u"'" + repeated(u"x", kMany * 5) + u"' = 'x'", "", "ok"},
        {"a long predicate", u"/r[@i != '" + repeated(u"x", kMany * 5) + u"']", "r", "ok"},
        {"a wide one in each of many", u"/r" + repeated(u"[." + Uni16String(1000, u' '), 999) + repeated(u"]", 999),
         "r", "ok"},
        {"many items", u"1" + repeated(u" = 1", kMany), "1#-1", "ok"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        if (c.answer == nullptr) {
            std::string error = "2: r" + std::string(kMany, 'd');
            EXPECT_TRUE(answer(tree.document(), c.path) == "| " + error);
            EXPECT_EQ(syntax(tree.document(), c.path), "ok");
            continue;
        }
        EXPECT_EQ(answer(tree.document(), c.path), c.answer);
        EXPECT_EQ(syntax(tree.document(), c.path), c.syntax);
    }
}

TEST(PathSyntaxTest, QuotesInAnErrorWhatCausedItHoweverLongItIs) {
    const Tree tree(kText);
    const Uni16String name = Uni16String(1000000, u'n');
    const std::string narrowName = narrow(name);
    struct Case {
        const char* name;
        Uni16String path;
        std::string answer;
    } const kCases[] = {
        {"a name that is not there", u"/r/" + name, "| 2: " + narrowName},
        {"an axis", u"/r/" + name + u"::a", "| failed 15: " + narrowName + "::a"},
        {"a name that is none", u"/r/" + name + u"!", "| failed 12: " + narrowName + "!"},
        {"an open predicate", u"/r/a[" + name, "| failed 20: [" + narrowName},
        {"a predicate", u"/r/a[" + name + u"]b", "| failed 10: [" + narrowName + "]"},
        {"a number", u"1" + name, "| failed 9: 1" + narrowName},
        {"a step at the end", u"/r/" + name + u"/", "| failed 14: " + narrowName + "/"},
        {"all predicates of a step", u"/r" + repeated(u"[1]", 100000), "| 2: r" + narrow(repeated(u"[1]", 100000))},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        // Not EXPECT_EQ: the difference of two such texts is too long to be read.
        EXPECT_TRUE(answer(tree.document(), c.path) == c.answer);
    }
}

}  // namespace

}  // namespace Xml::test
