#include "fuzz/RoundTrip.h"

#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"

namespace Xml::fuzz {

namespace {

using test::textOf;

// A value as it stands between its quotes, with the tabs in it that a writer at that level puts at the start of lines.
std::string withTabs(const std::string& value, int level) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        result += value[i];
        const bool lineEnds = value[i] == '\n' && (i + 1 == value.size() || value[i + 1] != '\n');
        if (lineEnds) result.append(static_cast<std::size_t>(level), '\t');
    }
    return result;
}

std::string escapedAgain(const std::string& value) {
    std::string result;
    for (const char c : value) {
        result += c;
        if (c == '&') result += "amp;";
    }
    return result;
}

// The next text of a Dtd's text: the values in its attribute lists grow. There is no quote in a value but its own two.
std::string grownDeclarations(const std::string& text) {
    const std::string kListStart = "<!ATTLIST ";
    std::string result;
    bool inList = false;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '"') {
            const std::size_t end = text.find('"', at + 1);
            const std::string value = text.substr(at + 1, end - at - 1);
            result += '"' + (inList ? withTabs(escapedAgain(value), 1) : value) + '"';
            at = end + 1;
            continue;
        }
        if (text.compare(at, kListStart.size(), kListStart) == 0) inList = true;
        if (text[at] == '>') inList = false;
        result += text[at++];
    }
    return result;
}

bool isMark(char c) { return c == '?' || c == '*' || c == '+'; }

bool hasMarksInARow(const std::string& text) {
    bool inValue = false;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        if (text[at] == '"') inValue = !inValue;
        if (!inValue && isMark(text[at]) && isMark(text[at + 1])) return true;
    }
    return false;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string refusalOfDeclarations(const std::string& text, const std::vector<std::string>& diagnostics) {
    for (const std::string& diagnostic : diagnostics) {
        if (diagnostic == "<ChoiceSpec::toStream> need at least 2 items") return "a choice that writes nothing";
    }
    if (hasMarksInARow(text)) return "repetition marks in a row";
    if (endsWith(text, " [\n]>\n")) return "a subset without declarations";
    return "";
}

// Whether the text that was written at that place is open to the end of everything.
bool staysOpen(const std::string& written, int place) {
    const std::size_t first = written.find_first_not_of(" \t\r\n", static_cast<std::size_t>(place));
    if (first == std::string::npos) return false;
    const char opener = written[first];
    if (opener != '"' && opener != '\'' && opener != '&') return false;
    return written.find(opener == '&' ? ';' : opener, first + 1) == std::string::npos;
}

bool holdsOpenText(const Element& element, const std::string& written) {
    bool afterText = false;
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object& child = *element.getChild(i);
        if (child.isElement() && holdsOpenText(*child.toElement(), written)) return true;
        // Texts in a row are one text to the next reader.
        if (child.isCharData() && !afterText && staysOpen(written, NodeTestAccess::writeStart(child))) return true;
        afterText = child.isCharData();
    }
    return false;
}

void becomeAsRead(Element& element, int level) {
    for (int i = 0; i < element.getAttributeCount(); ++i) {
        Attribute& attribute = *element.getAttribute(i);
        attribute.setValue(withTabs(attribute.getValue(), level));
    }
    CharData* textBefore = nullptr;
    for (int i = 0; i < element.getChildCount(); ++i) {
        Object& child = *element.getChild(i);
        if (child.isElement()) becomeAsRead(*child.toElement(), level + 1);
        CharData* const text = child.isCharData() ? child.toCharData() : nullptr;
        if (text != nullptr && textBefore != nullptr) {
            textBefore->data() += text->data();
            delete element.extractChild(i--);
        } else {
            textBefore = text;
        }
    }
}

}  // namespace

Written writtenDtd(const Dtd& dtd, test::MessageCollector& diagnostics) {
    diagnostics.take();
    Written written;
    written.text = textOf(dtd);
    written.refusal = refusalOfDeclarations(written.text, diagnostics.take());
    written.nextText = grownDeclarations(written.text);
    return written;
}

Written writtenDocument(Document& document, test::MessageCollector& diagnostics) {
    Written written;
    std::string declarations;
    std::string nextDeclarations;
    if (document.getDtd() != nullptr) {
        const Written dtd = writtenDtd(*document.getDtd(), diagnostics);
        written.refusal = dtd.refusal;
        declarations = dtd.text;
        nextDeclarations = dtd.nextText;
    }
    written.text = textOf(document);
    Element& root = *document.getRoot();
    if (written.refusal.empty() && holdsOpenText(root, written.text)) written.refusal = "text that nothing closes";

    becomeAsRead(root, 0);
    written.nextText = textOf(document);
    const std::size_t place = written.nextText.find(declarations);
    written.nextText.replace(place, declarations.size(), nextDeclarations);
    return written;
}

}  // namespace Xml::fuzz
