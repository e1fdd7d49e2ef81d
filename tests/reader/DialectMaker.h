#pragma once

#include "support/Dice.h"
#include <string>

namespace Xml::test {

// Documents of the dialect and their parts, mostly well formed, with every construct.
class DialectMaker : public Dice {
public:
    using Dice::Dice;

    std::string blank() {
        static const char* const kBlanks[] = {"", "", "", " ", " ", "\n", "\r\n", "\t", "  \r\n", "\r", "\r\r"};
        return any(kBlanks);
    }

    std::string gap() {
        static const char* const kGaps[] = {" ", " ", " ", "\n", "\r\n", " \r\n\t", ""};
        return any(kGaps);
    }

    std::string name() {
        static const char* const kNames[] = {"a", "b", "c", "d", "a", "b", "ab", "c", "x:y", "1a", "_.-", "xml"};
        return chance(90) ? kNames[below(6)] : any(kNames);
    }

    std::string value() {
        static const char* const kValues[] = {"\"1\"",       "'2'",         "\"\"",        "\"&amp;\"",
                                              "'&lt;x&gt;'", "\"&e;&f;\"",  "'&unknown;'", "\"&#65;&#x42;\"",
                                              "\"it's\"",    "'say \"x\"'", "\"a&b\"",     "'\r\n'",
                                              "\"<b>\"",     "'&e;'",       "\"&\""};
        return any(kValues);
    }

    std::string comment() {
        static const char* const kComments[] = {"<!-- c -->",    "<!---->",       "<!-->",          "<!--->",
                                                "<!-- - -- -->", "<!--\r\nx-->",  "<!-- <a> ' -->", "<!--",
                                                "<!- x -->",     "<!-- \" & --->"};
        return chance(80) ? "<!-- c -->" : any(kComments);
    }

    std::string instruction() {
        static const char* const kInstructions[] = {"<?x y?>", "<?\?>",     "<?>?>",   "<?php ' ?>",
                                                    "<?x",     "<?xml-s?>", "<? x ?>", "<?fooxml?>"};
        return any(kInstructions);
    }

    std::string text() {
        static const char* const kTexts[] = {"t",   " t ", "it's",     "x & y", "&amp;",   "&e;",    "\"q\"",
                                             "'",   "&",   ";",        "1<2",   "/>",      "\r\n t", "=",
                                             "]]>", ">",   "\xC3\xA9", "t;",    "&lt;&u;", "!"};
        return chance(60) ? "t" : any(kTexts);
    }

    std::string attributes() {
        std::string result;
        static const char* const kNames[] = {"x", "y", "z", "x", "y"};
        while (chance(40)) {
            result += (chance(95) ? gap() : "") + any(kNames) + (chance(90) ? "=" : blank() + "=" + blank()) + value();
        }
        if (chance(2)) {
            static const char* const kBad[] = {" x",      " =", " 'x'", " x=1", " x 'y'", " x='",
                                               " 1x='2'", " /", " <",   " ?",   " x=y"};
            result += any(kBad);
        }
        return result;
    }

    std::string element(int depth) {
        const std::string own = name();
        std::string result = "<" + (chance(97) ? "" : blank()) + own + attributes() + blank();
        if (depth == 0 || chance(25)) return result + "/>";
        result += ">";
        while (chance(65)) {
            const std::size_t kind = below(100);
            if (kind < 45) {
                result += blank() + element(depth - 1);
            } else if (kind < 80) {
                result += text();
            } else if (kind < 95) {
                result += blank() + comment();
            } else if (kind < 97) {
                static const char* const kMarkup[] = {"<![CDATA[x]]>", "<!x>", "<!DOCTYPE a>", "<![",
                                                      "<! [ CDATA [",  "<!",   "<?xml?>"};
                result += blank() + any(kMarkup);
            } else if (kind < 98) {
                result += blank() + instruction();
            } else {
                result += blank();
            }
        }
        result += blank() + "</";
        result += chance(97) ? own : name();
        return result + (chance(95) ? "" : blank()) + (chance(98) ? ">" : "/>");
    }

    std::string model(int depth) {
        static const char* const kReps[] = {"", "", "", "?", "*", "+", " *"};
        static const char* const kSeparators[] = {",", "|", " , ", " | "};
        std::string result = "(" + blank();
        const std::string separator = any(kSeparators);
        std::size_t items = 1 + below(3);
        if (chance(3)) items = 0;
        for (std::size_t i = 0; i < items; ++i) {
            if (i > 0) result += chance(92) ? separator : chance(50) ? " " : any(kSeparators);
            if (depth > 0 && chance(25)) {
                result += model(depth - 1);
            } else if (chance(92)) {
                result += name() + any(kReps);
            } else {
                result += "#PCDATA";
            }
        }
        return result + blank() + ")" + any(kReps);
    }

    std::string mixed() {
        static const char* const kEnds[] = {")", ")*", ")", ")*", ") *", ")+", ")?"};
        std::string result = "(" + blank() + "#PCDATA" + blank();
        bool names = false;
        while (chance(50)) {
            result += (chance(95) ? "|" : ",") + blank() + name() + blank();
            names = true;
        }
        return result + (names && chance(90) ? ")*" : any(kEnds));
    }

    std::string declaration() {
        const std::size_t kind = below(100);
        const std::string end = chance(96) ? blank() + ">" : chance(50) ? " x>" : "";
        if (kind < 45) {
            static const char* const kModels[] = {"EMPTY", "ANY", "ANY", "ANY", "NONE", "(#PCDATA)"};
            const std::string own = chance(40) ? any(kModels) : chance(40) ? mixed() : model(2);
            return "<!ELEMENT" + gap() + name() + gap() + own + end;
        }
        if (kind < 70) {
            static const char* const kAttributes[] = {"x", "y", "z", "x"};
            static const char* const kRules[] = {"#REQUIRED",    "#IMPLIED",  "#IMPLIED", "\"d\"",  "'&amp;'",
                                                 "#FIXED \"f\"", "#FIXED'f'", "\"\"",     "#FIXED", "d"};
            std::string result = "<!ATTLIST" + gap() + name();
            while (chance(60)) {
                result += gap() + any(kAttributes) + gap() + (chance(97) ? "CDATA" : "ID") + gap() +
                          (chance(95) ? kRules[below(8)] : any(kRules));
            }
            return result + (chance(3) ? " 1" : "") + end;
        }
        if (kind < 85) {
            static const char* const kEntities[] = {"e", "f", "e", "lt", "%"};
            return "<!ENTITY" + gap() + any(kEntities) + gap() + value() + end;
        }
        if (kind < 96) return comment();
        static const char* const kOther[] = {"<!NOTATION n>", "%p;",  "]",           "<?x?>", "x",
                                             "'s'",           "<a/>", "<![INCLUDE[", "<!",    "/"};
        return any(kOther);
    }

    std::string subset() {
        std::string result;
        const std::size_t count = below(5);
        for (std::size_t i = 0; i < count || (i == 0 && chance(90)); ++i) result += blank() + declaration();
        return result + blank();
    }

    // Declares what documents hold, so that some are valid.
    std::string richSubset() {
        std::string result;
        for (const char* own : {"a", "b", "c", "d"}) {
            static const char* const kModels[] = {"ANY",     "ANY",  "(#PCDATA|a|b|c|d)*", "(a|b|c|d)*", "(#PCDATA)",
                                                  "(b?,c*)", "EMPTY"};
            if (chance(90)) result += "<!ELEMENT " + std::string(own) + " " + any(kModels) + ">" + blank();
            if (chance(70))
                result += "<!ATTLIST " + std::string(own) + " x CDATA #IMPLIED y CDATA 'd' z CDATA #IMPLIED>" + blank();
        }
        if (chance(50)) result += "<!ENTITY e 'v&amp;'>";
        if (chance(50)) result += "<!ENTITY f \"\">";
        if (chance(10)) result += declaration();
        return result;
    }

    std::string doctype() {
        const std::size_t kind = below(100);
        const std::string start = "<!DOCTYPE" + gap() + name() + gap();
        if (kind < 85)
            return start + "[" + (chance(60) ? richSubset() : subset()) + (chance(97) ? "]" : "") + blank() +
                   (chance(97) ? ">" : "");
        if (kind < 92)
            return start + "PUBLIC" + gap() + value() + gap() + value() + (chance(20) ? "[" + subset() + "]" : "") +
                   ">";
        static const char* const kOthers[] = {">",     "SYSTEM 'no such file'>", "SYSTEM", "SYSTEM x>", "x>", "[]>",
                                              "PUBLIC"};
        return start + any(kOthers);
    }

    std::string header() {
        static const char* const kHeaders[] = {"<?xml version=\"1.0\"?>",
                                               "<?xml version='1.0' encoding='UTF-8'?>",
                                               "<?xml version='1.0' encoding=\"utf-8\" standalone='no'?>",
                                               "<?xml\r\nversion = \"1.0\" ?>",
                                               "<?xml version='1.1'?>",
                                               "<?xml?>",
                                               "<?xml version='1.0' standalone='yes'?>",
                                               "<?xml version='1.0' encoding='L1'? x x x x x x x x x x x x x x>",
                                               "<?xml version='1.0' encoding='L1'? x x x x x x x x x x x x x x x>"};
        return chance(80) ? kHeaders[below(4)] : any(kHeaders);
    }

    std::string misc() {
        std::string result = blank();
        while (chance(25)) result += (chance(70) ? comment() : instruction()) + blank();
        return result;
    }

    std::string document() {
        std::string result = blank();
        if (chance(40)) result += header();
        result += misc();
        if (chance(50)) result += doctype() + misc();
        result += element(3) + misc();
        if (chance(5)) result += element(1);
        return result;
    }

    std::string fragment() {
        static const char* const kFragments[] = {"<",
                                                 "</",
                                                 "<a",
                                                 "<a>",
                                                 "</a>",
                                                 "/>",
                                                 ">",
                                                 "<!--",
                                                 "-->",
                                                 "<?",
                                                 "?>",
                                                 "<!",
                                                 "<![CDATA[",
                                                 "]]>",
                                                 "&",
                                                 ";",
                                                 "\"",
                                                 "'",
                                                 " ",
                                                 "\r\n",
                                                 "\n",
                                                 "=",
                                                 "x='1'",
                                                 "a",
                                                 "-",
                                                 "[",
                                                 "]",
                                                 "(",
                                                 ")",
                                                 "|",
                                                 ",",
                                                 "*",
                                                 "<!DOCTYPE a [",
                                                 "<!ELEMENT a",
                                                 "<!ATTLIST a",
                                                 "<!ENTITY e",
                                                 "CDATA",
                                                 "#PCDATA",
                                                 "EMPTY",
                                                 "\"v\"",
                                                 "<?xml",
                                                 "<b/>",
                                                 "t"};
        return chance(3) ? std::string(1, '\0') : any(kFragments);
    }

    // Some bytes or fragments wrong, so that failures come from every place.
    std::string damaged(std::string text) {
        std::size_t times = chance(45) ? 0 : 1 + below(2);
        while (times-- > 0 && !text.empty()) {
            const std::size_t place = below(text.size());
            switch (below(5)) {
            case 0: text.erase(place, 1 + below(3)); break;
            case 1: text.insert(place, fragment()); break;
            case 2: text.resize(place); break;
            case 3: text[place] = fragment()[0]; break;
            default: text.replace(place, 1 + below(8), fragment()); break;
            }
        }
        return text;
    }

    std::string soup() {
        std::string result;
        const std::size_t count = 1 + below(16);
        for (std::size_t i = 0; i < count; ++i) result += fragment();
        return result;
    }
};

}  // namespace Xml::test
