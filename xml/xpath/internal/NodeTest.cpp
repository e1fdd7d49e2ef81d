#include "xml/xpath/internal/NodeTest.h"

#include "xml/xpath/internal/PathText.h"
#include <algorithm>
#include <cstring>

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

bool NodeTest::read(const PathText& text, Unit begin, Unit end, PathError& error) {
    const auto isThat = [&](const Keyword& row) {
        return begin != end && *begin == static_cast<unsigned char>(row.text[0]) && startsWith(begin, end, row.text);
    };
    const auto* const keyword = std::find_if(std::begin(kKeywords), std::end(kKeywords), isThat);
    if (keyword == std::end(kKeywords)) return readName(text, begin, end, error);

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
    if (close > open + 1 && !readName(text, open + 1, close, error)) return false;
    return close + 1 == end || error.set(XPath::ILLEGAL_CHAR_AFTER_KINDTEST, text.written(begin, end));
}

bool NodeTest::readName(const PathText& text, Unit begin, Unit end, PathError& error) {
    const auto refuse = [&] { return error.set(XPath::NO_VALID_NAME_OR_TEST, text.written(begin, end)); };
    Unit at = begin;
    if (at != end && *at == u'*') {
        if (++at == end) return true;
        if (*at != u':') return refuse();
        const Unit local = ++at;
        if (!skipNCName(at, end) || at != end) return refuse();
        setName(Names::Local, local, end);
        return true;
    }
    if (!skipNCName(at, end)) return false;  // without a code
    if (at == end) {
        setName(Names::Whole, begin, end);
        return true;
    }
    if (*at != u':') return refuse();
    const Unit local = ++at;
    if (equals(local, end, "*")) {
        setName(Names::Prefixed, begin, local);
        return true;
    }
    if (!skipNCName(at, end) || at != end) return refuse();
    setName(Names::Whole, begin, end);
    return true;
}

// Half of a surrogate pair is in no name of a node, but narrowing would make something of it.
void NodeTest::setName(Names which, Unit begin, Unit end) {
    name.resize(static_cast<std::size_t>(end - begin));
    char* narrow = name.data();
    unsigned bits = 0;
    for (Unit at = begin; at != end; ++at) {
        bits |= *at;
        *narrow++ = lowByte(*at);
    }
    names = which;
    if (bits <= 0x7F) return;  // ASCII, as most names are
    const OrvSys::Uni16String wide(begin, end);
    name = OrvSys::Uni16CharToPlatformCString(wide);
    names = OrvSys::UTF8ToUni16Char(name) == wide ? which : Names::Impossible;
}

bool NodeTest::fits(const std::string& nodeName) const {
    switch (names) {
    case Names::All: return true;
    case Names::Whole: return nodeName == name;
    case Names::Prefixed: return nodeName.compare(0, name.size(), name) == 0;
    case Names::Local: {
        const std::size_t colon = nodeName.find(':');
        return colon != std::string::npos && nodeName.compare(colon + 1, std::string::npos, name) == 0;
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
