#include "stream/OverSources.h"
#include "xml/stream/internal/StreamAccess.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

using namespace std::string_literals;

// Each text is followed by " . " so that no token meets the end of the data.
TEST(TokenizerTest, SplitsTextIntoTokens) {
    const struct {
        const char* name;
        std::string text;
        Tokens tokens;
    } kCases[] = {
        {"nothing", "", {}},
        {"white space alone", " \t\r\n ", {}},
        {"comment opener after blanks", "  <!-- x -->", {"<!--", "x", "--", ">"}},
        {"CDATA opener", "<![CDATA[abc", {"<![CDATA[", "abc"}},
        {"CDATA opener with blanks", "<![ CDATA [x", {"<![CDATA[", "x"}},
        {"CDATA opener with breaks and tabs", "<!\n[\r\nCDATA\t[", {"<![CDATA["}},
        {"conditional section", "<![INCLUDE[", {"<![", "INCLUDE", "["}},
        {"conditional section after blank", "<! [ IGNORE [", {"<![", "IGNORE", "["}},
        {"CDATA without its bracket", "<![CDATA x", {"<![", "CDATA", "x"}},
        {"word that ends in CDATA", "<![XCDATA[", {"<![XCDATA["}},
        {"declaration", "<!DOCTYPE a", {"<!DOCTYPE", "a"}},
        {"declaration names", "<!ELEMENT<!ATTLIST<!ENTITY", {"<!ELEMENT", "<!ATTLIST", "<!ENTITY"}},
        {"blank before the declaration's name", "<! \n ENTITY %", {"<!ENTITY", "%"}},
        {"mark before no name", "<!1a", {"<!", "1a"}},
        {"mark before punctuation", "<!>", {"<!", ">"}},
        {"mark before one dash", "<!-x", {"<!", "-x"}},
        {"mark before dashes apart", "<!- -", {"<!", "-", "-"}},
        {"comment opener takes its dashes alone", "<!--->", {"<!--", "-", ">"}},
        {"blank before the dashes", "<! --", {"<!", "--"}},
        {"mark before a quoted bracket", "<!\"[\"", {"<!", "\"[\""}},
        {"mark before a mark", "<!<!", {"<!", "<!"}},
        {"marks before a bracket go with it", "<!<!<![x", {"<!<!<![", "x"}},
        {"declaration after a mark", "<!<!x", {"<!", "<!x"}},
        {"xml declaration", "<?xml version", {"<?xml", "version"}},
        {"blank before xml", "<? \r\n xml version", {"<?xml", "version"}},
        {"other instruction", "<?php", {"<?", "php"}},
        {"name that ends in xml", "<?my.xml x", {"<?my.xml", "x"}},
        {"name that begins with xml", "<?xml-x", {"<?", "xml-x"}},
        {"xml in other case", "<?XML", {"<?", "XML"}},
        {"instruction without name", "<? ?>", {"<?", "?", ">"}},
        {"instruction in instruction", "<?<?xml", {"<?", "<?xml"}},
        {"end tag", "</a>", {"</", "a", ">"}},
        {"start tag", "<a>", {"<", "a", ">"}},
        {"less-than before a blank", "< a", {"<", "a"}},
        {"less-than twice", "<<", {"<", "<"}},
        {"less-than before a quote", "<'a'", {"<", "'a'"}},
        {"end of an empty tag", "/>", {"/>"}},
        {"slash and greater-than apart", "/ >", {"/", ">"}},
        {"slash before a word", "/a", {"/", "a"}},
        {"slashes", "///>", {"/", "/", "/>"}},
        {"attribute", "abc=\"d e\"", {"abc", "=", "\"d e\""}},
        {"words at an equals sign", "a=b", {"a", "=", "b"}},
        {"other quote in quotes", "\"it's\" 'a \"b\"'", {"\"it's\"", "'a \"b\"'"}},
        {"markup in quotes", "'<a & b\r\n>'", {"'<a & b\r\n>'"}},
        {"no escape in quotes", "'a\\'b", {"'a\\'", "b"}},
        {"empty string", "\"\"''", {"\"\"", "''"}},
        {"quote ends a word", "a'b'", {"a", "'b'"}},
        {"reference", "&amp; x", {"&amp;", "x"}},
        {"references side by side", "&a;&b;", {"&a;", "&b;"}},
        {"reference over blanks and markup", "&a <b>\r\n;x", {"&a <b>\r\n;", "x"}},
        {"empty reference", "&;", {"&;"}},
        {"reference inside a word", "a&b;c", {"a&b;c"}},
        {"quote in a reference", "&';x", {"&';", "x"}},
        {"word bytes",
         "#PCDATA #REQUIRED %p; a-b.c:d_e 1.5 ;",
         {"#PCDATA", "#REQUIRED", "%p;", "a-b.c:d_e", "1.5", ";"}},
        {"bytes above 127", "caf\xc3\xa9 \xff\x80=", {"caf\xc3\xa9", "\xff\x80", "="}},
        {"zero bytes", "a\0b \0="s, {"a\0b"s, "\0"s, "="}},
        {"other odd bytes", "a\fb\v$@^`{}~", {"a\fb\v$@^`{}~"}},
        {"punctuation, a token a byte",
         "!()*+,=>?[\\]|",
         {"!", "(", ")", "*", "+", ",", "=", ">", "?", "[", "\\", "]", "|"}},
        {"content model", "(#PCDATA|b)*", {"(", "#PCDATA", "|", "b", ")", "*"}},
        {"each kind of blank ends a word", "a b\tc\nd\re", {"a", "b", "c", "d", "e"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        everywhere(c.text + " . ", [&c](auto& in) { EXPECT_EQ(tokensOf(in), c.tokens); });
    }
}

TEST(TokenizerTest, EndsAWordAtEachPunctuationByteAndAtWhiteSpaceOnly) {
    const std::string kPunctuation = "!\"'()*+,/<=>?[\\]|";
    const std::string kWhite = "\t\n\r ";
    std::string text;
    for (int byte = 0; byte < 256; ++byte) {
        text += 'w';
        text += static_cast<char>(byte);
        text += "x.\"'\n";
    }
    everywhere(text + " ", [&](auto& in) {
        for (int byte = 0; byte < 256; ++byte) {
            SCOPED_TRACE(byte);
            const char c = static_cast<char>(byte);
            const bool ends = kPunctuation.find(c) != std::string::npos || kWhite.find(c) != std::string::npos;
            in.setPosition(byte * 7);
            std::string token;
            ASSERT_TRUE(in.getToken(token));
            EXPECT_EQ(token, ends ? "w"s : "w"s + c + "x.");
            EXPECT_EQ(in.getPosition(), byte * 7 + static_cast<int>(token.size()));
        }
    });
}

TEST(TokenizerTest, StandsRightAfterTheToken) {
    const struct {
        const char* text;
        int position;
    } kCases[] = {
        {"  word x", 6}, {"<!-- x", 4},  {"<![CDATA[x", 9}, {"<![ CDATA [x", 11}, {"<![X[ ", 3},
        {"<! [X ", 4},   {"<?xml x", 5}, {"<?php x", 2},    {"<? php x", 2},      {"<!DOCTYPE x", 9},
        {"<!  1 x", 2},  {"</a ", 2},    {"<a ", 1},        {"/> ", 2},           {"/ > ", 1},
        {"'a b' ", 5},   {"&a b; ", 5},  {"= ", 1},         {"\r\n\r\nab= ", 6},  {"<!-x ", 2},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere(c.text, [&c](auto& in) {
            std::string token;
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(in.getPosition(), c.position);
        });
    }
}

// What the end of the data does to a token: shown at once, and by a file stream, which hands over one zero byte first
// and has no position any more from then on.
TEST(TokenizerTest, MeetsTheEndOfTheDataInEachKindOfToken) {
    struct Ending {
        bool ok;
        std::string token;  // what a string holds afterwards that held "before"
        std::string message;
        std::string buffer;
    };
    const std::string zero(1, '\0');
    const struct {
        const char* text;
        Ending prompt;
        Ending fileStream;
    } kCases[] = {
        {"", {false, "before", kEnd, ""}, {false, "before", kEnd, ""}},
        {" \t\r\n", {false, "before", kEnd, ""}, {false, "before", kEnd, ""}},
        {"word", {true, "word", kEnd, "word"}, {true, "word" + zero, kEnd, "word" + zero}},
        {"&amp", {false, "before", kEnd, "&amp"}, {false, "before", kEnd, "&amp" + zero}},
        {"&", {false, "before", kEnd, "&"}, {false, "before", kEnd, "&" + zero}},
        {"&amp;", {true, "&amp;", "", "&amp;"}, {true, "&amp;", "", "&amp;"}},
        {"'a", {false, "before", kEnd, "'a"}, {false, "before", kEnd, "'a" + zero}},
        {"\"", {false, "before", kEnd, "\""}, {false, "before", kEnd, "\"" + zero}},
        {"'a'", {true, "'a'", "", "'a'"}, {true, "'a'", "", "'a'"}},
        {"/", {true, "/", kEnd, "/"}, {true, "/", "", "/"}},
        {"/>", {true, "/>", "", "/>"}, {true, "/>", "", "/>"}},
        {"<", {true, "<", kEnd, "<"}, {true, "<", "", "<"}},
        {"</", {true, "</", "", "</"}, {true, "</", "", "</"}},
        {"=", {true, "=", "", "="}, {true, "=", "", "="}},
        {"<!", {false, "before", kEnd, "<!"}, {false, "before", kEnd, "<!"}},
        {"<!-", {false, "before", kEnd, "<!"}, {false, "before", kEnd, "<!"}},
        {"<!--", {true, "<!--", "\"[\" expected", "<!--"}, {false, "before", kEnd, "<!"}},
        {"<!x", {true, "<!x", kEnd, "<!x"}, {false, "before", kEnd, "<!"}},
        {"<![", {true, "<![", kEnd, "<!["}, {true, "<![", kEnd, "<!["}},
        {"<![CDATA", {true, "<![", kEnd, "<!["}, {true, "<![", "\"CDATA\" expected", "<!["}},
        {"<![CDATA[",
         {true, "<![CDATA[", "not a name: [", "<![CDATA["},
         {true, "<![CDATA[", "not a name: [", "<![CDATA["}},
        {"<!1", {true, "<!", "\"[\" expected", "<!"}, {false, "before", kEnd, "<!"}},
        {"<?", {true, "<?", kEnd, "<?"}, {true, "<?", kEnd, "<?"}},
        {"<?xml", {true, "<?xml", kEnd, "<?xml"}, {true, "<?", "not a name: xml" + zero, "<?"}},
        {"<?php", {true, "<?", kEnd, "<?"}, {true, "<?", "not a name: php" + zero, "<?"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const auto check = [](const Ending& wanted) {
            return [wanted](auto& in) {
                std::string token = "before";
                EXPECT_EQ(in.getToken(token), wanted.ok);
                EXPECT_EQ(token, wanted.token);
                EXPECT_EQ(in.getErrorMessage(), wanted.message);
                EXPECT_TRUE(holds(in, wanted.buffer));
            };
        };
        whereTheEndIsPrompt(c.text, check(c.prompt));
        overFileStream(c.text, check(c.fileStream));
    }
}

TEST(TokenizerTest, LeavesTheMessagesOfAttemptsAfterASuccess) {
    const struct {
        const char* text;
        const char* token;
        const char* message;
    } kCases[] = {
        {"<!-- ", "<!--", "\"[\" expected"},
        {"<!1 ", "<!", "\"[\" expected"},
        {"<![CDATA[ ", "<![CDATA[", "not a name: ["},
        {"<![X[ ", "<![", "\"CDATA\" expected"},
        {"<![CDATA] ", "<![", "\"[\" expected"},
        {"<?1 ", "<?", "not a name: 1"},
        {"<?php ", "<?", ""},
        {"<!DOCTYPE ", "<!DOCTYPE", ""},
        {"<?xml ", "<?xml", ""},
        {"<a ", "<", ""},
        {"word ", "word", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere(c.text, [&c](auto& in) {
            std::string token;
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, c.token);
            EXPECT_EQ(in.getErrorMessage(), c.message);
        });
    }
}

TEST(TokenizerTest, TakesNamesAndNothingElseForNames) {
    const struct {
        std::string text;
        bool ok;
        std::string token;  // the name, or what is no name
    } kCases[] = {
        {"abc ", true, "abc"},    {" _ ", true, "_"},         {":a-b.c_1=", true, ":a-b.c_1"},
        {"1abc ", false, "1abc"}, {"-a ", false, "-a"},       {".a ", false, ".a"},
        {"= ", false, "="},       {"'a' ", false, "'a'"},     {"&a; ", false, "&a;"},
        {"<a ", false, "<"},      {"<!a ", false, "<!a"},     {"a\xc3\xa9 ", false, "a\xc3\xa9"},
        {"/> ", false, "/>"},     {"a\0b "s, false, "a\0b"s}, {"#PCDATA ", false, "#PCDATA"},
        {"a;b ", false, "a;b"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere(c.text, [&c](auto& in) {
            std::string name = "before";
            EXPECT_EQ(in.getName(name), c.ok);
            EXPECT_EQ(name, c.ok ? c.token : "before");
            EXPECT_EQ(in.getErrorMessage(), c.ok ? "" : "not a name: " + c.token);
            EXPECT_TRUE(holds(in, c.token));
        });
    }
    everywhere(" ", [](auto& in) {
        std::string name;
        EXPECT_FALSE(in.getName(name));
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

TEST(TokenizerTest, TestsOnlyTheAppendedPartForAName) {
    everywhere("1 a 2 ", [](auto& in) {
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(in.getNameInParseBuffer());
        EXPECT_TRUE(holds(in, "1a"));
        EXPECT_FALSE(in.getNameInParseBuffer());
        EXPECT_EQ(in.getErrorMessage(), "not a name: 2");
        EXPECT_TRUE(holds(in, "1a2"));
    });
}

TEST(TokenizerTest, ReadsQuotedStringsWithTheirQuotes) {
    const struct {
        const char* text;
        bool ok;
        const char* result;
        const char* message;
        int position;
    } kCases[] = {
        {" \r\n'a b' ", true, "'a b'", "", 8},
        {"\"it's <&>\r\n\" ", true, "\"it's <&>\r\n\"", "", 12},
        {"'' ", true, "''", "", 2},
        {"  abc ", false, "before", "\"\"\" or \"'\" expected", 3},
        {"< ", false, "before", "\"\"\" or \"'\" expected", 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere(c.text, [&c](auto& in) {
            std::string text = "before";
            EXPECT_EQ(in.getString(text), c.ok);
            EXPECT_EQ(text, c.result);
            EXPECT_EQ(in.getErrorMessage(), c.message);
            EXPECT_EQ(in.getPosition(), c.position);
        });
    }
    for (const char* text : {"", "  ", "'abc", "\"a'"}) {
        SCOPED_TRACE(text);
        everywhere(text, [](auto& in) {
            std::string result = "before";
            EXPECT_FALSE(in.getString(result));
            EXPECT_EQ(result, "before");
            EXPECT_EQ(in.getErrorMessage(), kEnd);
        });
    }
}

TEST(TokenizerTest, GoesOnAfterALessThanThatIsInTheBuffer) {
    const struct {
        const char* text;
        const char* added;
    } kCases[] = {{"!--x", "!--"}, {"?xml ", "?xml"}, {"/a", "/"}, {"a>", ""}, {" a", ""}, {"![CDATA[", "![CDATA["}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere("="s + c.text + " ", [&c](auto& in) {
            EXPECT_TRUE(in.getTokenInParseBuffer());
            EXPECT_TRUE(in.getTokenltInParseBuffer());
            EXPECT_TRUE(holds(in, "="s + c.added));
        });
    }
}

TEST(TokenizerTest, ChecksTheEndOfTheParseBufferAgainstTheExpectedToken) {
    const struct {
        const char* text;
        std::string expected;
        bool ok;
        std::string message;
    } kCases[] = {
        {"> ", ">", true, ""},
        {"x ", ">", false, "\">\" expected"},
        {"/> ", ">", true, ""},
        {"DOCTYPE ", "TYPE", true, ""},
        {"TYPE ", "DOCTYPE", false, "\"DOCTYPE\" expected"},
        {"TYPEX ", "TYPE", false, "\"TYPE\" expected"},
        {"type ", "TYPE", false, "\"TYPE\" expected"},
        {"'a b' ", "b'", true, ""},
        {"anything ", "", true, ""},
        {"a ", "a\0b"s, false, "\"a\0b\" expected"s},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + c.expected);
        everywhere(c.text, [&c](auto& in) {
            EXPECT_EQ(in.checkToken(c.expected), c.ok);
            EXPECT_EQ(in.getErrorMessage(), c.message);
        });
    }
    everywhere("\r\n", [](auto& in) {
        EXPECT_FALSE(in.checkToken(""));
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

TEST(TokenizerTest, MayExpectItsOwnMessageAsItStandsBefore) {
    const struct {
        const char* name;
        std::string word;  // what the message is about
        std::string text;  // after what the parse buffer holds then
        bool ok;
    } kCases[] = {
        {"another token", "w", "x ", false},
        {"another token, in a long message", std::string(100, 'w'), "x ", false},
        {"a token that the data end in", "w", "x", false},
        {"a token that the data end in, in a longer message than before", "wwwww", "x", false},
        {"a token that the data end in, in a long message", std::string(100, 'w'), "x", false},
        {"the message itself", std::string(100, 'w'), "expected ", true},
        {"the message itself, which the data end in", "wwwww", "expected", true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string quoted = "\"" + c.word + "\" ";
        const std::string message = quoted + "expected";
        whereTheEndIsPrompt(". " + quoted + c.text, [&](auto& in) {
            EXPECT_FALSE(in.checkToken(c.word));
            EXPECT_TRUE(in.getTokenInParseBuffer());
            EXPECT_TRUE(in.skip(" "));
            const std::string& own = in.getErrorMessage();
            EXPECT_EQ(own, message);
            EXPECT_EQ(in.checkTokenInParseBuffer(own.data(), static_cast<int>(own.size())), c.ok);
            if (!c.ok) {
                EXPECT_EQ(own, "\"" + message + "\" expected");
            }
        });
    }
    whereTheEndIsPrompt("x y", [](auto& in) {
        EXPECT_FALSE(in.checkToken("w"));
        EXPECT_FALSE(in.checkToken(in.getErrorMessage()));
        EXPECT_EQ(in.getErrorMessage(), "\"\"w\" expected\" expected");
    });
}

TEST(TokenizerTest, MatchesAcrossTokensInTheParseBuffer) {
    everywhere("AB CD E ", [](auto& in) {
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(in.checkTokenInParseBuffer("BCD", 3));
        EXPECT_FALSE(in.checkTokenInParseBuffer("DEF", 3));
        EXPECT_EQ(in.getErrorMessage(), "\"DEF\" expected");
        EXPECT_TRUE(holds(in, "ABCDE"));
    });
    everywhere("AB ", [](auto& in) { EXPECT_TRUE(in.checkTokenInParseBuffer("xyz", 0)); });
}

TEST(TokenizerTest, AppendsCharacterDataUpToTheNextTagAsItStands) {
    const struct {
        std::string text;
        std::string data;
    } kCases[] = {
        {"<", ""},
        {" a &amp; \"b\" > ]]>\r\n<a", " a &amp; \"b\" > ]]>\r\n"},
        {"\0\xff\t<"s, "\0\xff\t"s},
    };
    for (const auto& c : kCases) {
        everywhere(c.text + " ", [&c](auto& in) {
            DataHolder data("before ");
            EXPECT_TRUE(in.getCharData(data));
            EXPECT_EQ(data, "before " + c.data);
            EXPECT_EQ(in.getPosition(), static_cast<int>(c.data.size()));
            char next = 0;
            EXPECT_TRUE(in.get(next));
            EXPECT_EQ(next, '<');
        });
    }
    const auto check = [](const std::string& wanted) {
        return [wanted](auto& in) {
            DataHolder data("x");
            EXPECT_FALSE(in.getCharData(data));
            EXPECT_EQ(data, wanted);
            EXPECT_EQ(in.getErrorMessage(), kEnd);
        };
    };
    whereTheEndIsPrompt(" a ", check("x a "));
    overFileStream(" a ", check("x a \0"s));
}

TEST(TokenizerTest, LeavesTheParseBufferAloneWhenItReadsCharacterData) {
    everywhere("a bc<", [](auto& in) {
        std::string token;
        DataHolder data;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_TRUE(in.getCharData(data));
        EXPECT_EQ(data, " bc");
        EXPECT_TRUE(holds(in, "a"));
    });
}

TEST(TokenizerTest, EatsBlanksTabsAndBreaksOnly) {
    const struct {
        const char* text;
        int position;
    } kCases[] = {{"a", 0}, {" a", 1}, {" \t\r\n a", 5}, {"\fa", 0}, {"\va", 0}, {"\xa0", 0}, {"   <", 3}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        everywhere(std::string(c.text) + " ", [&c](auto& in) {
            in.eatWhite();
            EXPECT_EQ(in.getPosition(), c.position);
            EXPECT_EQ(in.getErrorMessage(), "");
            EXPECT_TRUE(holds(in, ""));
        });
    }
    whereTheEndIsPrompt("  ", [](auto& in) {
        in.eatWhite();
        EXPECT_EQ(in.getErrorMessage(), kEnd);
        EXPECT_EQ(in.getPosition(), 2);
    });
    overFileStream("  ", [](auto& in) {
        in.eatWhite();
        EXPECT_EQ(in.getErrorMessage(), "");
        EXPECT_EQ(in.getPosition(), -1);
        in.eatWhite();
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

TEST(TokenizerTest, SkipsThroughTheFirstTerminator) {
    const struct {
        const char* name;
        std::string text;
        std::string terminator;
        std::string buffer;
    } kCases[] = {
        {"comment", " x - y --> z", "-->", " x - y -->"},
        {"at once", "-->-->", "-->", "-->"},
        {"terminator that repeats itself", "aaab", "aab", "aaab"},
        {"dashes before the terminator", "---->", "-->", "---->"},
        {"breaks and quotes", "'\r\n\"?>x", "?>", "'\r\n\"?>"},
        {"zero bytes", "a\0\0\1b"s, "\0\1"s, "a\0\0\1"s},
        {"empty terminator", "abc", "", ""},
        {"one byte", "abc", "a", "a"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        everywhere(c.text, [&c](auto& in) {
            EXPECT_TRUE(in.skip(c.terminator));
            EXPECT_TRUE(holds(in, c.buffer));
            EXPECT_EQ(in.getPosition(), static_cast<int>(c.buffer.size()));
            EXPECT_EQ(in.getErrorMessage(), "");
        });
    }
    whereTheEndIsPrompt("a--", [](auto& in) {
        EXPECT_FALSE(in.skip("-->"));
        EXPECT_TRUE(holds(in, "a--"));
        EXPECT_EQ(in.getErrorMessage(), kEnd);
        EXPECT_TRUE(in.skip(""));
        EXPECT_FALSE(in.skip("x"));
    });
    overFileStream("a--", [](auto& in) {
        EXPECT_FALSE(in.skip("-->"));
        EXPECT_TRUE(holds(in, "a--\0"s));
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

// As many bytes as the terminator has are read before the buffer is looked at.
TEST(TokenizerTest, SkipsOnWhereTheBufferEndsWithTheTerminatorAlready) {
    everywhere("-->> x-->--> ", [](auto& in) {
        EXPECT_TRUE(in.skip("-->"));
        EXPECT_TRUE(in.skip(">"));
        EXPECT_TRUE(holds(in, "-->>"));
        EXPECT_TRUE(in.skip("-->"));
        EXPECT_TRUE(holds(in, "-->> x-->"));
        EXPECT_TRUE(in.skip("-->"));
        EXPECT_TRUE(holds(in, "-->> x-->-->"));
    });
}

// A source of a caller: the only thing that the tokenizer has is what it overrides.
TEST(TokenizerTest, TakesAZeroByteWhereASourceSaysTrueWithoutOne) {
    class Empty : public InStream {
    public:
        bool getChar(char&) override { return calls++ < 3; }
        int getPosition() const override { return calls; }
        void setPosition(int) override {}
        bool eof() override { return false; }

    private:
        int calls = 0;
    };
    Empty in;
    std::string token;
    // One zero byte ends the white space, two make the word.
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "\0\0"s);
    EXPECT_EQ(in.getErrorMessage(), kEnd);
}

// As a reader of content takes them: many references may begin before one far semicolon.
TEST(TokenizerTest, ReadsNoReferenceAgainThatBeginsBeforeTheEndOfTheLastOne) {
    const struct {
        const char* text;
        int position;
        int referenceEnd;
        const char* token;
        int after, newEnd;
    } kCases[] = {
        {"&a&b; &c;", 0, 0, "&a&b;", 5, 5}, {"&a&b; &c;", 0, 1, "&", 1, 1},   {"&a&b; &c;", 0, 5, "&", 1, 5},
        {"&a&b; &c;", 2, 5, "&", 3, 5},     {"&a&b; &c;", 2, 2, "&b;", 5, 5}, {"&a&b; &c;", 5, 5, "&c;", 9, 9},
        {"&a&b; &c;", 5, 7, "&", 7, 7},     {"&a b; c", 2, 5, "b;", 5, 5},    {"&a 'b; '", 3, 6, "'b; '", 8, 6},
        {"&a <b; ", 3, 6, "<", 4, 6},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + " from " + std::to_string(c.position) + ", known to " +
                     std::to_string(c.referenceEnd));
        for (const Source source : kAllSources) {
            SCOPED_TRACE(source);
            withSource(source, std::string(c.text) + " ", [&c](InStream& in) {
                in.setPosition(c.position);
                int referenceEnd = c.referenceEnd;
                EXPECT_TRUE(StreamAccess::getContentToken(in, referenceEnd));
                EXPECT_EQ(StreamAccess::token(in), c.token);
                EXPECT_EQ(in.getPosition(), c.after);
                EXPECT_EQ(referenceEnd, c.newEnd);
            });
        }
    }
}

}  // namespace
}  // namespace Xml::test
