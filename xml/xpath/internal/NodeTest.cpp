#include "xml/xpath/internal/NodeTest.h"

#include "xml/xpath/internal/ByteUnits.h"
#include "xml/xpath/internal/PathText.h"
#include <algorithm>
#include <cstring>
#include <iterator>

namespace Xml {

namespace {

struct Keyword {
    const char* text;
    KindTest kind;
};

// A step that merely begins with one is read as that kind test: `nodes` is `node` without its parentheses.
constexpr Keyword kKeywords[] = {{"node", KindTest::Node},
                                 {"element", KindTest::Element},
                                 {"attribute", KindTest::Attribute},
                                 {"text", KindTest::Text},
                                 {"document-node", KindTest::Document}};

}  // namespace

bool NodeTest::read(const PathText& text, Written test, PathError& error) {
    const Unit begin = test.begin;
    const Unit end = test.end;
    const auto isThat = [&](const Keyword& row) {
        return begin != end && *begin == static_cast<unsigned char>(row.text[0]) && startsWith(begin, end, row.text);
    };
    const auto* const keyword = std::find_if(std::begin(kKeywords), std::end(kKeywords), isThat);
    if (keyword == std::end(kKeywords)) return readName(text, test, error);

    kind = keyword->kind;
    elements = kind == KindTest::Node || kind == KindTest::Element;
    const Unit open = begin + std::strlen(keyword->text);
    if (open == end) return true;
    if (*open != u'(') {
        return error.set(XPath::MISSING_OPENING_PARENTHESE_AFTER_KIND_TEST, text.written(begin, end));
    }
    const Unit close = std::find(open + 1, end, u')');
    if (close == end) {
        return error.set(XPath::MISSING_CLOSING_PARENTHESE_AFTER_KIND_TEST, text.written(begin, end));
    }
    const Unit inner = open + 1;
    if (inner != close && !readName(text, {inner, afterNCChars(inner, close), close}, error)) return false;
    return close + 1 == end || error.set(XPath::ILLEGAL_CHAR_AFTER_KINDTEST, text.written(begin, end));
}

bool NodeTest::readName(const PathText& text, Written test, PathError& error) {
    const Unit begin = test.begin;
    const Unit end = test.end;
    const auto refuse = [&] { return error.set(XPath::NO_VALID_NAME_OR_TEST, text.written(begin, end)); };
    if (begin == end) return false;  // without a code
    if (*begin == u'*') {
        Unit at = begin + 1;
        if (at == end) return true;
        if (*at != u':') return refuse();
        const Unit local = ++at;
        if (!skipNCName(at, end) || at != end) return refuse();
        setName(text, Names::Local, local, end);
        return true;
    }
    if (!isFirstNCChar(*begin)) return false;  // without a code
    Unit at = test.nameEnd;
    if (at == end) {
        setName(text, Names::Whole, begin, end);
        return true;
    }
    if (*at != u':') return refuse();
    const Unit local = ++at;
    if (equals(local, end, "*")) {
        setName(text, Names::Prefixed, begin, local);
        return true;
    }
    if (!skipNCName(at, end) || at != end) return refuse();
    setName(text, Names::Whole, begin, end);
    return true;
}

// Half of a surrogate pair is in no name of a node, but narrowing would make something of it.
void NodeTest::setName(const PathText& text, Names which, Unit begin, Unit end) {
    names = which;
    name = begin;
    nameSize = static_cast<std::size_t>(end - begin);
    if (text.isAscii()) return;
    if (text.hasByteUnits()) {
        bytes = ByteUnits::bytesOf(begin, end);
        nameSize = bytes.size();
        return;
    }
    const OrvSys::Uni16String wide(begin, end);
    bytes = OrvSys::Uni16CharToPlatformCString(wide);
    nameSize = bytes.size();
    if (OrvSys::UTF8ToUni16Char(bytes) != wide) names = Names::Impossible;
}

bool NodeTest::isName(std::string_view part) const {
    if (!bytes.empty()) return part == bytes;
    const auto isUnit = [](char byte, OrvSys::uni16char unit) { return static_cast<unsigned char>(byte) == unit; };
    return std::equal(part.begin(), part.end(), name, name + nameSize, isUnit);
}

const std::string& NodeTest::nameBytes() const {
    if (bytes.empty()) std::transform(name, name + nameSize, std::back_inserter(bytes), lowByte);
    return bytes;
}

bool NodeTest::fits(const std::string& nodeName) const {
    switch (names) {
    case Names::All: return true;
    case Names::Whole: return isName(nodeName);
    case Names::Prefixed: return isName(std::string_view(nodeName).substr(0, nameSize));
    case Names::Local: {
        const std::size_t colon = nodeName.find(':');
        return colon != std::string::npos && isName(std::string_view(nodeName).substr(colon + 1));
    }
    case Names::Impossible: break;
    }
    return false;
}

bool NodeTest::decide(const std::string& nodeName) const {
    const bool fit = fits(nodeName);
    (fit ? accepted : refused) = &nodeName;
    return fit;
}

bool NodeTest::acceptsRare(const Object& node) const {
    if (isPassedOver(node)) return false;
    switch (kind) {
    case KindTest::Text: return isCharData(node);
    case KindTest::Document: return node.isDocument();
    case KindTest::Element: return false;
    case KindTest::Attribute: break;
    case KindTest::None:
    case KindTest::Node:
        if (names == Names::All) return true;
        break;
    }
    return isAttribute(node) && fits(NodeAccess::name(static_cast<const Attribute&>(node)));
}

}  // namespace Xml
