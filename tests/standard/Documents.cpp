#include "standard/Documents.h"

#include "support/Rounds.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <cstdlib>
#include <vector>

namespace Xml::test {

namespace {

const char* const kNames[] = {"a", "b", "c", "item", "p:a", "q:b", "\xC3\xB6", "x-1", "a.b"};
const char* const kAttributes[] = {"x", "y", "id", "p:x", "q:x", "xml:space", "xml:lang", "long-name", "xmlns:p", "z"};
const char* const kEntities[] = {"e", "f", "g", "h", "m", "n", "ext", "unp", "lt", "amp"};
const char* const kParameters[] = {"pe", "pf", "pg", "pext", "undeclared"};
const char* const kWhite[] = {" ", "\n", "\t", "\r\n", "\r", "  ", " \n "};
const char* const kTexts[] = {
    "text",         "  ",     "\n",   "\r\n",   "\r",     "a]]b",  "]]",           "]",
    "&amp;",        "&lt;",   "&gt;", "&apos;", "&quot;", "&#65;", "&#x20AC;",     "&#13;",
    "&#10;",        "&#9;",   "'",    "\"",     ">",      "%pe;",  "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
    "\xEF\xBC\x8C", "a b  c", "\t",   "-- ?>",  "&#38;",  "&#60;"};

class Maker {
public:
    explicit Maker(Dice& itsDice) : dice(itsDice) {}

    std::string document() {
        std::string text;
        if (dice.chance(40)) text += declaration();
        misc(text);
        if (dice.chance(70)) text += doctype();
        misc(text);
        text += element(0, true);
        misc(text);
        return text;
    }

private:
    std::string white() { return dice.chance(80) ? " " : dice.any(kWhite); }
    std::string maybeWhite() { return dice.chance(80) ? "" : dice.any(kWhite); }
    std::string name() { return dice.any(kNames); }
    std::string quoted(const std::string& text) {
        const bool isDouble =
            text.find('"') == std::string::npos && (text.find('\'') != std::string::npos || dice.chance(60));
        const std::string quote = isDouble ? "\"" : "'";
        return quote + text + quote;
    }

    std::string declaration() {
        std::string text = "<?xml" + white() + "version" + maybeWhite() + "=" + maybeWhite() + quoted("1.0");
        if (dice.chance(40)) text += white() + "encoding=" + quoted(dice.chance(50) ? "UTF-8" : "utf-8");
        if (dice.chance(40)) text += white() + "standalone=" + quoted(dice.chance(60) ? "yes" : "no");
        return text + maybeWhite() + "?>";
    }

    void misc(std::string& text) {
        while (dice.chance(25)) {
            const std::size_t kind = dice.below(3);
            text += kind == 0 ? comment() : kind == 1 ? instruction() : dice.any(kWhite);
        }
    }

    std::string comment() {
        static const char* const kComments[] = {"",     " c ",      "a-b",  "\r\n", "<x>", "&e;",
                                                "%pe;", "\xC3\xA4", "- - ", "]]>",  "?>"};
        return "<!--" + dice.any(kComments) + "-->";
    }

    std::string instruction() {
        static const char* const kTargets[] = {"t", "xml-stylesheet", "php", "xmlx", "\xC3\xB6"};
        static const char* const kContents[] = {"", " x", " x='1' ?", "\r\ny\r", "  ?", " <a>&e;"};
        return "<?" + dice.any(kTargets) + dice.any(kContents) + "?>";
    }

    std::string text() { return dice.any(kTexts); }

    std::string reference() {
        return dice.chance(85) ? "&" + std::string(kEntities[dice.below(dice.chance(85) ? 4 : 6)]) + ";"
                               : "&" + dice.any(kEntities) + ";";
    }

    std::string value() {
        std::string text;
        while (dice.chance(50)) {
            std::string piece = dice.chance(20) ? reference() : this->text();
            if (piece.find('<') == std::string::npos && piece != "\"" && piece != "'") text += piece;
        }
        return text;
    }

    std::string attributes(bool isRoot) {
        std::string text;
        if (isRoot) text += " xmlns:p='urn:p'" + white() + "xmlns:q=" + quoted(dice.chance(90) ? "urn:q" : "urn:p");
        std::vector<bool> used(sizeof kAttributes / sizeof *kAttributes);
        while (dice.chance(35)) {
            const std::size_t place = dice.below(used.size());
            if (used[place] && dice.chance(95)) continue;
            if (isRoot && place == 8) continue;
            used[place] = true;
            std::string itsValue = place == 8 ? "urn:r" : value();
            text += white() + kAttributes[place] + maybeWhite() + "=" + maybeWhite() + quoted(itsValue);
        }
        return text;
    }

    std::string content(int depth) {
        std::string result;
        while (dice.chance(depth > 3 ? 30 : 70)) {
            switch (dice.below(9)) {
            case 0:
            case 1: result += element(depth + 1, false); break;
            case 2: result += comment(); break;
            case 3: result += instruction(); break;
            case 4: result += "<![CDATA[" + dice.any(kSections) + "]]>"; break;
            case 5:
            case 6: result += reference(); break;
            default: result += text();
            }
        }
        return result;
    }

    std::string element(int depth, bool isRoot) {
        const std::string itsName = isRoot && dice.chance(50) ? "a" : name();
        const std::string tag = "<" + itsName + attributes(isRoot) + maybeWhite();
        if (depth > 5 || dice.chance(20)) return tag + "/>";
        return tag + ">" + content(depth) + "</" + itsName + maybeWhite() + ">";
    }

    std::string externalId() {
        static const char* const kPublic[] = {"-//X//Y 1.0//EN", "", "a b\r\nc"};
        return dice.chance(50) ? "SYSTEM" + white() + quoted("s.dtd")
                               : "PUBLIC" + white() + quoted(dice.any(kPublic)) + white() + quoted("s'x");
    }

    std::string doctype() {
        std::string result = "<!DOCTYPE" + white() + name();
        if (dice.chance(15)) result += white() + externalId();
        if (dice.chance(90)) {
            result += maybeWhite() + "[" + subset() + "]";
        }
        return result + maybeWhite() + ">";
    }

    std::string subset() {
        std::string result = maybeWhite();
        if (dice.chance(70)) result += "<!ENTITY e 'x'><!ENTITY f '&e;y&e;'><!ENTITY g '<b>&f;</b>'><!ENTITY h ''>";
        while (dice.chance(75)) {
            switch (dice.below(10)) {
            case 0: result += comment(); break;
            case 1: result += instruction(); break;
            case 2: result += dice.any(kWhite); break;
            case 3:
                result +=
                    "%" + (dice.chance(80) ? std::string(kParameters[dice.below(3)]) : dice.any(kParameters)) + ";";
                break;
            default: result += markup(true);
            }
        }
        return result;
    }

    std::string markup(bool isOutside) {
        switch (dice.below(8)) {
        case 0: return "<!ELEMENT" + white() + name() + white() + model() + maybeWhite() + ">";
        case 1:
        case 2: return "<!ATTLIST" + white() + name() + definitions() + maybeWhite() + ">";
        case 3:
            return "<!NOTATION" + white() + "n1 " + (dice.chance(30) ? "PUBLIC 'p'" : externalId()) + maybeWhite() +
                   ">";
        case 4: return isOutside ? parameter() : entity();
        default: return entity();
        }
    }

    std::string entity() {
        std::string result =
            "<!ENTITY" + white() + (dice.chance(90) ? kEntities[dice.below(8)] : dice.any(kEntities)) + white();
        if (dice.chance(8))
            return result + externalId() + (dice.chance(40) ? white() + "NDATA" + white() + "n1" : "") + ">";
        std::string text;
        while (dice.chance(55)) {
            switch (dice.below(5)) {
            case 0: text += element(4, false); break;
            case 1: text += reference(); break;
            case 2: text += dice.any(kEntityTexts); break;
            default: text += this->text();
            }
        }
        for (char& c : text) {
            if (c == '%') c = '.';
            if (c == '"') c = '\'';
        }
        return result + "\"" + text + "\"" + maybeWhite() + ">";
    }

    std::string parameter() {
        std::string result = "<!ENTITY % " + std::string(kParameters[dice.below(3)]) + white();
        if (dice.chance(10)) return result + externalId() + ">";
        std::string text;
        while (dice.chance(50))
            text += dice.chance(20) ? "&#37;" + std::string(kParameters[dice.below(3)]) + ";" : markup(false);
        std::string escaped;
        for (const char c : text) {
            if (c == '"')
                escaped += "&#34;";
            else if (c == '%')
                escaped += "&#37;";
            else if (c == '&' && dice.chance(50))
                escaped += "&#38;";
            else
                escaped += c;
        }
        return result + "\"" + escaped + "\">";
    }

    std::string model() {
        if (dice.chance(20)) return "EMPTY";
        if (dice.chance(20)) return "ANY";
        if (dice.chance(30)) {
            std::string result = "(" + maybeWhite() + "#PCDATA";
            bool hasNames = false;
            while (dice.chance(40)) {
                result += maybeWhite() + "|" + maybeWhite() + name();
                hasNames = true;
            }
            return result + maybeWhite() + (hasNames || dice.chance(30) ? ")*" : ")");
        }
        return group(0);
    }

    std::string group(int depth) {
        static const char* const kRepetitions[] = {"", "", "?", "*", "+"};
        const char* const between = dice.chance(50) ? "," : "|";
        std::string result = "(" + maybeWhite();
        do {
            if (result.size() > 2) result += maybeWhite() + between + maybeWhite();
            result += depth < 3 && dice.chance(25) ? group(depth + 1) : name() + dice.any(kRepetitions);
        } while (dice.chance(50));
        return result + maybeWhite() + ")" + dice.any(kRepetitions);
    }

    std::string definitions() {
        static const char* const kTypes[] = {"CDATA",    "ID",      "IDREF",    "IDREFS",           "ENTITY",
                                             "ENTITIES", "NMTOKEN", "NMTOKENS", "NOTATION (n1|n2)", "(a|b|c)",
                                             "( x )",    "CDATA",   "CDATA"};
        std::string result;
        while (dice.chance(60)) {
            result += white() + dice.any(kAttributes) + white() + dice.any(kTypes) + white();
            const std::size_t kind = dice.below(5);
            result += kind == 0 ? "#REQUIRED" : kind == 1 ? "#IMPLIED" : (kind == 2 ? "#FIXED " : "") + quoted(value());
        }
        return result;
    }

    static constexpr const char* const kSections[] = {"", "x", "<a>&e;", "]]", "]", "]] >", "\r\n", "\xC3\xA4"};
    static constexpr const char* const kEntityTexts[] = {"&#38;#38;", "&#60;a/>", "<b>",     "</b>",
                                                         "&#38;e;",   "<!--c-->", "<?t x?>", "<![CDATA[x]]>",
                                                         "&#13;",     "&#10;",    "&#60;",   "&#38;"};
    Dice& dice;
};

// Bytes that matter, and tokens.
const char* const kTokens[] = {"<",
                               ">",
                               "&",
                               ";",
                               "'",
                               "\"",
                               "/",
                               "=",
                               "!",
                               "?",
                               "-",
                               "[",
                               "]",
                               "%",
                               "#",
                               " ",
                               "\n",
                               "\r",
                               ":",
                               "(",
                               ")",
                               "|",
                               ",",
                               "*",
                               "]]>",
                               "--",
                               "<!",
                               "<?",
                               "?>",
                               "/>",
                               "</",
                               "&#",
                               "&e;",
                               "&f;",
                               "%pe;",
                               "<a>",
                               "</a>",
                               "<a/>",
                               "<!--",
                               "-->",
                               "<![CDATA[",
                               "x",
                               "1",
                               "xmlns",
                               "xml",
                               "x=''",
                               "\x01",
                               "\xEF\xBF\xBE",
                               "\xC3\xB6",
                               "\t",
                               "<!ENTITY e 'x'>",
                               "<![INCLUDE[",
                               "standalone='yes'",
                               "&#0;",
                               "&#x110000;",
                               "p:",
                               "&undeclared;"};

std::size_t boundary(const std::string& text, std::size_t at) {
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) ++at;
    return at;
}

}  // namespace

std::string randomDocument(Dice& dice) { return Maker(dice).document(); }

std::string mutated(Dice& dice, std::string text) {
    const std::size_t times = 1 + dice.below(3);
    for (std::size_t i = 0; i < times; ++i) {
        const std::size_t at = boundary(text, dice.below(text.size() + 1));
        const std::size_t to = boundary(text, std::min(text.size(), at + 1 + (dice.chance(70) ? 0 : dice.below(12))));
        switch (dice.below(4)) {
        case 0: text.erase(at, to - at); break;
        case 1: text.insert(at, dice.any(kTokens)); break;
        case 2: text.replace(at, to - at, dice.any(kTokens)); break;
        default: text.insert(boundary(text, dice.below(text.size() + 1)), text.substr(at, to - at));
        }
    }
    return text;
}

std::string brokenDocument(Dice& dice) {
    std::string text = randomDocument(dice);
    if (dice.chance(40)) text = mutated(dice, text);
    if (dice.chance(10)) {
        text.resize(dice.below(text.size() + 1));
        while (!text.empty() && !Utf8::isAscii(text.back())) text.pop_back();
    }
    return text;
}

int documentCount() {
    const char* const asked = std::getenv("ORVXML_DOCUMENTS");
    return asked != nullptr ? std::atoi(asked) : rounds(100'000);
}

unsigned documentSeed(unsigned otherwise) {
    const char* const asked = std::getenv("ORVXML_SEED");
    return asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : otherwise;
}

}  // namespace Xml::test
