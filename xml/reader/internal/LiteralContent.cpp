#include "xml/reader/internal/LiteralContent.h"

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Names.h"

namespace Xml {

// --- Failures, as the reader of the innermost element reports them ---

// Whether the element that would have its reader at work lies in another one.
bool LiteralContent::isNested() const { return tree.depth() > (isBeginning ? 0 : 1); }

bool LiteralContent::failWith(const std::string& text) {
    if (isNested()) {
        Report::nestedMessage(reader, ElementReader(dtd), in, text);
    } else {
        Report::message(reader, in, text);
    }
    return false;
}

bool LiteralContent::fail() { return failWith(in.getErrorMessage()); }

bool LiteralContent::failSilently() {
    if (isNested()) reader.setMessage(std::string());  // the message of a nested reader that has none
    return false;
}

// --- Tags ---

// The start tag of an element, with its end when it has no content.
bool LiteralContent::beginElement() {
    isBeginning = true;
    if (!in.checkToken(kLessThen)) return fail();
    StreamAccess::clear(in);
    if (!in.getNameInParseBuffer()) return fail();
    tree.begin(StreamAccess::token(in));
    isBeginning = false;
    // The report comes after the attributes are in order: a caller's message() may ask for them.
    GivenAttributes attributes;
    std::deque<DataHolder> values;
    const Attributes outcome = readAttributes(attributes, values);
    tree.setAttributes(attributes);
    if (outcome == Attributes::NotRead) return fail();
    if (outcome == Attributes::TooLarge) return failWith(kEntityTextTooLarge);
    if (StreamAccess::token(in) == kSlashGreaterThen) {
        tree.end();
        return true;
    }
    return StreamAccess::token(in) == kGreaterThen || failSilently();
}

// Up to the token after the attributes, which stays in the parse buffer.
LiteralContent::Attributes LiteralContent::readAttributes(GivenAttributes& attributes, std::deque<DataHolder>& values) {
    std::string name;
    while (true) {
        if (!StreamAccess::getToken(in)) return Attributes::NotRead;
        if (!isName(StreamAccess::token(in))) return Attributes::Read;
        name = StreamAccess::token(in);
        if (!in.checkToken(kEqual)) return Attributes::NotRead;
        StreamAccess::clear(in);
        if (!in.getStringInParseBuffer()) return Attributes::NotRead;
        const std::string& literal = StreamAccess::token(in);
        DataHolder& value = values.emplace_back(literal, 1, literal.size() - 2);
        if (!budget.expand(in, value, dtd)) return Attributes::TooLarge;
        attributes.add(tree.name(name), value);
    }
}

bool LiteralContent::readEndTag() {
    if (!in.checkToken(tree.innermost().getName()) || !in.checkToken(kGreaterThen)) return fail();
    tree.end();
    return true;
}

// --- Content ---

bool LiteralContent::readPiece() {
    const int position = StreamAccess::tell(in);
    if (!StreamAccess::getContentToken(in, referenceEnd)) return fail();
    const std::string& token = StreamAccess::token(in);
    if (token[0] == '<') {
        if (token == kLessThenSlash) return readEndTag();
        const bool isElement = token == kLessThen;
        if (!isElement && token != kBeginComment) return failWith("unexpected markup \"" + token + "\"");
        StreamAccess::seek(in, position);
        if (isElement) return beginElement();
        return in.skip(kEndComment) || failSilently();
    }
    StreamAccess::seek(in, position);
    DataHolder text;
    if (!in.getCharData(text)) return fail();
    tree.addText(text);
    return true;
}

}  // namespace Xml
