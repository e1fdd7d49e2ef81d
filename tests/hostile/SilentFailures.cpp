#include "hostile/SilentFailures.h"

#include "xml/text/Names.h"
#include <algorithm>
#include <cstddef>

namespace Xml::test {

namespace {

const char kBlanks[] = " \t\r\n";
const char kWordEnds[] = " \t\r\n!\"'()*+,/<=>?[\\]|";

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool beginsWith(const std::string& text, const std::string& start) { return text.compare(0, start.size(), start) == 0; }

bool contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

bool isLiteral(const std::string& token) { return !token.empty() && (token[0] == '"' || token[0] == '\''); }

// The tokens of a text from a place on, one by one, as plainly as can be: markup that begins with "<!" or "<?" is one
// to the end of the text, since nothing that may stand after it is looked at here.
class Tokens {
public:
    Tokens(const std::string& bytes, std::size_t from) : text(bytes), at(from) {}

    std::size_t place() const { return at; }
    void goBack(std::size_t to) { at = to; }
    bool atEnd() const { return at >= text.size(); }

    // Empty at the end of the text, and where a token has no end.
    std::string next() {
        at = std::min(text.find_first_not_of(kBlanks, at), text.size());
        const std::size_t begin = at;
        at = endFrom(begin);
        return text.substr(begin, at - begin);
    }

    void skipBlanks() { at = std::min(text.find_first_not_of(kBlanks, at), text.size()); }

private:
    std::size_t through(char last, std::size_t from) const {
        const std::size_t found = text.find(last, from);
        return found == std::string::npos ? from - 1 : found + 1;
    }

    std::size_t endFrom(std::size_t begin) const {
        if (begin >= text.size()) return begin;
        const char c = text[begin];
        const char after = begin + 1 < text.size() ? text[begin + 1] : '\0';
        if (c == '&') return through(';', begin + 1);
        if (c == '"' || c == '\'') return through(c, begin + 1);
        if (c == '<' && (after == '!' || after == '?')) return text.size();
        if (c == '<') return begin + (after == '/' ? 2 : 1);
        if (c == '/') return begin + (after == '>' ? 2 : 1);
        const std::size_t end = text.find_first_of(kWordEnds, begin);
        return end == begin ? begin + 1 : std::min(end, text.size());
    }

    const std::string& text;
    std::size_t at;
};

// Whether just one token is left, and it is neither a name nor an end of a tag.
bool isWrongTokenLeft(Tokens& tokens) {
    const std::string token = tokens.next();
    return !token.empty() && token != ">" && token != "/>" && !isName(token) && tokens.atEnd();
}

// A name and attributes from the place on, up to a token that is neither the name of another nor an end of a tag.
// `takesRest` takes what stands after the name of an attribute, and says whether that may stand there.
template <class TakesRest>
bool areAttributesEndedByAnythingElse(const std::string& read, std::size_t place, TakesRest takesRest) {
    Tokens tokens(read, place);
    if (!isName(tokens.next())) return false;
    for (;;) {
        const std::size_t attribute = tokens.place();
        if (!isName(tokens.next()) || tokens.atEnd()) {
            tokens.goBack(attribute);
            return isWrongTokenLeft(tokens);
        }
        if (!takesRest(tokens)) return false;
    }
}

bool isStartTagEndedByAnythingElse(const std::string& read, std::size_t place) {
    return areAttributesEndedByAnythingElse(read, place + 1, [](Tokens& tokens) {
        // Of what is compared with "=" the end alone counts, which a single byte cannot show.
        return tokens.next() == "=" && isLiteral(tokens.next());
    });
}

bool isAttributeListWithAnotherToken(const std::string& read, std::size_t place) {
    return areAttributesEndedByAnythingElse(read, place + std::string("<!ATTLIST").size(), [](Tokens& tokens) {
        if (!endsWith(tokens.next(), "CDATA")) return false;
        std::string rule = tokens.next();
        if (rule == "#FIXED") rule = tokens.next();
        return rule == "#REQUIRED" || rule == "#IMPLIED" || isLiteral(rule);
    });
}

std::string xmlDeclarationFailure(const std::string& read) {
    Tokens tokens(read, 0);
    tokens.skipBlanks();
    const std::string start = "<?xml";
    if (read.compare(tokens.place(), start.size(), start) != 0) return "";
    tokens.goBack(tokens.place() + start.size());
    std::vector<std::string> found;
    for (std::string token = tokens.next(); !token.empty(); token = tokens.next()) found.push_back(token);
    const std::vector<std::string> kWanted[] = {{"version"}, {"="}, {"\"1.0\"", "'1.0'"}, {"?", "encoding"}};
    std::size_t fits = 0;
    for (const auto& wanted : kWanted) {
        if (fits >= found.size() || std::find(wanted.begin(), wanted.end(), found[fits]) == wanted.end()) break;
        ++fits;
    }
    if (fits < 4) return fits + 1 >= found.size() ? "an XML declaration of another version, or in another order" : "";
    const bool ends = std::find(found.begin() + 4, found.end(), ">") != found.end();
    return ends ? "" : "an XML declaration without an end among its first 20 tokens";
}

// `read` is what the reader has read of the text, `all` whether that is all of it.
std::string reasonFor(const std::string& read, bool all, const std::vector<std::string>& diagnostics) {
    for (const std::string& text : diagnostics) {
        if (beginsWith(text, "<AttListReader::parse> string   ") && contains(read, "<!ATTLIST")) {
            return "an attribute's default that is no string";
        }
        if (beginsWith(text, "<ElementDeclReader::parse> don't know what to do ") && contains(read, "<!ELEMENT")) {
            return "an element declaration with an unknown content";
        }
    }
    const std::string declaration = xmlDeclarationFailure(read);
    if (!declaration.empty()) return declaration;
    const std::size_t list = read.rfind("<!ATTLIST");
    if (list != std::string::npos && isAttributeListWithAnotherToken(read, list)) {
        return "an attribute list with a token that is no name";
    }
    const std::size_t comment = read.rfind("<!--");
    if (all && comment != std::string::npos && read.find("-->", comment + 2) == std::string::npos) {
        return "a comment in content that does not end";
    }
    for (std::size_t tag = read.find('<'); tag != std::string::npos; tag = read.find('<', tag + 1)) {
        if (isStartTagEndedByAnythingElse(read, tag)) return "a start tag ended by anything but > or />";
    }
    return "";
}

}  // namespace

std::string silentFailure(const std::string& text, int position, const std::vector<std::string>& diagnostics) {
    if (position < 0) {
        const std::string reason = reasonFor(text + '\0', true, diagnostics);
        return reason.empty() ? reasonFor(text, true, diagnostics) : reason;
    }
    const auto place = static_cast<std::size_t>(position);
    return reasonFor(text.substr(0, place), place >= text.size(), diagnostics);
}

}  // namespace Xml::test
