#include "xml/easy/internal/NodeWords.h"

#include "xml/dom/NodeKind.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/stream/FileOutStream.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <new>
#include <sstream>

namespace Xml {

namespace {

std::string written(const Object& node) {
    std::ostringstream text;
    {
        FileOutStream out(&text);
        node.write(out);
    }
    if (!text) throw std::bad_alloc();
    return text.str();
}

// In quotes, at most 60 bytes of it.
std::string quoted(std::string_view saying, std::size_t from) {
    constexpr std::size_t kBefore = 20;
    constexpr std::size_t kMost = 60;
    const auto wholeFrom = [saying](std::size_t at) {
        while (at > 0 && at < saying.size() && Utf8::goesOn(saying[at])) --at;
        return at;
    };
    const std::size_t begin = saying.size() <= kMost || from <= kBefore ? 0 : wholeFrom(from - kBefore);
    const std::size_t end = wholeFrom(std::min(begin + kMost, saying.size()));
    const std::string shown = visible(saying.substr(begin, end - begin));
    return (begin > 0 ? "\"..." : "\"") + shown + (end < saying.size() ? "...\"" : "\"");
}

const char* kindWord(NodeKind kind) {
    switch (kind) {
    case NodeKind::Element: return "element";
    case NodeKind::Text: return "text";
    case NodeKind::CData: return "section";
    case NodeKind::Comment: return "comment";
    case NodeKind::Instruction: return "instruction";
    case NodeKind::Attribute: return "attribute";
    case NodeKind::Document: return "document";
    case NodeKind::Dtd: return "document type";
    case NodeKind::Other: break;
    }
    return "node";
}

}  // namespace

std::string sayingOf(const Object& node) {
    switch (kindOf(node)) {
    case NodeKind::Comment:
    case NodeKind::Instruction:
    case NodeKind::Attribute: return textOf(node);
    case NodeKind::Dtd:
    case NodeKind::Other: return written(node);
    default: return {};
    }
}

std::string wordsFor(const Object* node, std::string_view saying, std::size_t from) {
    if (node == nullptr) return "nothing";
    const NodeKind kind = kindOf(*node);
    std::string words = kindWord(kind);
    if (const std::string_view name = nameOf(*node); !name.empty()) words += ' ' + messageLine(name);
    if (kind == NodeKind::Element || kind == NodeKind::Document) return words;
    words += kind == NodeKind::Attribute ? '=' : ' ';
    return words + quoted(saying, from);
}

}  // namespace Xml
