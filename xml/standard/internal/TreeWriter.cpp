#include "xml/standard/internal/TreeWriter.h"

#include "xml/dom/NodeKind.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/Rules.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>

namespace Xml {

namespace {

// Texts of nodes are padded runs, and so are the strings that names are in.
static_assert(ShortRuns::kPadded == internal::kShortText + 1);

using PlainRuns::Beyond;
using PlainRuns::Kind;

std::string startsOf(const Markup& markup, const std::string& indent) {
    std::string starts(markup.lineEnd());
    for (std::size_t i = 0; i < TreeWriter::kDeepest; ++i) starts += indent;
    return starts;
}

}  // namespace

TreeWriter::TreeWriter(Markup& itsMarkup, const Layout& itsLayout)
    : markup(itsMarkup),
      out(itsMarkup.buffer()),
      layout(itsLayout),
      isTrusting(!itsMarkup.isChecking()),
      starts(startsOf(itsMarkup, itsLayout.indent)),
      lineEndSize(itsMarkup.lineEnd().size()),
      indentSize(itsLayout.indent.size()),
      level(itsLayout.level) {}

bool TreeWriter::fail(const Object& node) {
    failed = &node;
    return false;
}

bool TreeWriter::checkNewName(const std::string& name, const Object& node, const char* of) {
    if (!markup.checkName(name, of)) return fail(node);
    rightNames.add(name);
    return true;
}

bool TreeWriter::write(const Object& node) {
    if (kindOf(node) != NodeKind::Element) return writeLeaf(node);
    const auto& element = static_cast<const Element&>(node);
    return enter(element, !layout.indent.empty() && !isPreservedAround(element)) && writeContent();
}

bool TreeWriter::isPreservedAround(const Element& element) {
    for (const Object* around = element.getParent(); around != nullptr; around = around->getParent()) {
        if (!isElement(*around)) continue;
        const std::string_view space = spaceOf(static_cast<const Element&>(*around));
        if (!space.empty()) return space == "preserve";
    }
    return false;
}

// The value of xml:space.
std::string_view TreeWriter::spaceOf(const Element& element) {
    constexpr std::string_view kName = "xml:space";
    for (const Attribute* const attribute : NodeAccess::attributes(element)) {
        if (NodeAccess::name(*attribute) == kName) return NodeAccess::text(*attribute);
    }
    return {};
}

// What is below the elements that are open.
bool TreeWriter::writeContent() {
    while (!walk.atEnd()) {
        const bool isIndented = walk.note().isIndented;
        const Object* const child = walk.next();
        if (child == nullptr) {
            const Element& element = walk.here();
            walk.leave();
            --level;
            if (!end(element, isIndented)) return false;
            continue;
        }
        if (isIndented) out.putPadded(lineStart());
        if (exactClassOf(*child) == NodeClass::Element) {
            if (!enter(static_cast<const Element&>(*child), isIndented)) return false;
        } else if (!writeOther(*child)) {
            return false;
        }
    }
    return true;
}

bool TreeWriter::writeOther(const Object& node) {
    if (exactClassOf(node) == NodeClass::CharData) return writeText(static_cast<const CharData&>(node));
    if (kindOf(node) != NodeKind::Element) return writeLeaf(node);
    return enter(static_cast<const Element&>(node), walk.note().isIndented);
}

// --- Elements ---

// An element, up to where a walk through its children is due. Most have one text, or nothing, and are complete.
bool TreeWriter::enter(const Element& element, bool isIndented) {
    const std::string& name = NodeAccess::name(element);
    if (!checkName(name, element, "an element")) return false;
    char* at = out.room(0);
    if (name.size() + 8 > WriteBuffer::kRoom) {
        out.put("<");
        out.put(name);
        at = out.room(0);
    } else {
        at = out.more(at, name.size() + 1);
        *at++ = '<';
        at = ShortRuns::copyPadded(at, name);
    }
    if (!NodeAccess::attributes(element).empty()) {
        at = putAttributes(at, element);
        if (at == nullptr) return false;
    }
    const NodeSpan children = NodeAccess::children(element);
    at = out.more(at, 2);
    if (children.empty() && layout.shortEmptyTags) {
        *at++ = '/';
        *at++ = '>';
        out.tookTo(at);
        return true;
    }
    *at++ = '>';
    out.tookTo(at);
    if (children.empty()) return end(element, false);
    if (children.size() == 1 && exactClassOf(*children[0]) == NodeClass::CharData)
        return writeText(static_cast<const CharData&>(*children[0])) && end(element, false);
    walk.enter(element, {isIndented && mayIndent(element)});
    ++level;
    return true;
}

bool TreeWriter::end(const Element& element, bool isIndented) {
    const std::string& name = NodeAccess::name(element);
    const std::string_view start = isIndented ? lineStart() : std::string_view(starts.data(), 0);
    const std::size_t size = start.size() + name.size() + 3;
    if (size > WriteBuffer::kRoom) {
        out.put(start);
        out.put("</");
        out.put(name);
        out.put(">");
        return true;
    }
    char* at = ShortRuns::copyPadded(out.room(size), start);
    *at++ = '<';
    *at++ = '/';
    at = ShortRuns::copyPadded(at, name);
    *at++ = '>';
    out.tookTo(at);
    return true;
}

// Nothing is added to mixed content, whatever the depth, nor where xml:space preserves white space; nor where there is
// no child element: a reader takes white space beside such alone for indentation.
bool TreeWriter::mayIndent(const Element& element) {
    if (spaceOf(element) == "preserve") return false;
    bool hasElement = false;
    for (const Object* const child : NodeAccess::children(element)) {
        if (isElement(*child)) {
            hasElement = true;
        } else if (isCharData(*child) && !NodeAccess::text(static_cast<const CharData&>(*child)).empty()) {
            return false;
        }
    }
    return hasElement;
}

// --- Attributes ---

// Of one that a document type supplied when it was read. The one that is written may be another.
bool TreeWriter::isLeftOut(const Attribute& attribute) const {
    const auto* const element = static_cast<const Element*>(attribute.getParent());
    return layout.written != nullptr &&
           layout.written->supply(NodeAccess::name(*element), NodeAccess::name(attribute), NodeAccess::text(attribute));
}

// Null where it cannot be written.
[[gnu::always_inline]] inline char* TreeWriter::putAttribute(char* at, const Attribute& attribute) {
    if (NodeAccess::isSupplied(attribute) && isLeftOut(attribute)) return at;
    const std::string& name = NodeAccess::name(attribute);
    if (!checkName(name, attribute, "an attribute")) return nullptr;
    const std::string_view value = NodeAccess::text(attribute);
    constexpr std::size_t kMarks = std::string_view(" =\"\"").size();
    if (const std::size_t size = name.size() + value.size() + kMarks; isTrusting && size <= WriteBuffer::kRoom) {
        at = out.more(at, size);
        char* to = at;
        *to++ = ' ';
        to = ShortRuns::copyPadded(to, name);
        *to++ = '=';
        *to++ = '"';
        to = PlainRuns::copyPadded<Kind::Value, Beyond::Trusted>(to, value);
        if (to != nullptr) {
            *to++ = '"';
            return to;
        }
    }
    return putAttributeSlowly(at, attribute);
}

char* TreeWriter::putAttributes(char* at, const Element& element) {
    const AttributeSpan attributes = NodeAccess::attributes(element);
    const Attribute* const* first = attributes.begin();
    if (attributes.size() > 1) {
        if (placeByNumber(attributes)) {
            first = fewInTag.data();
        } else if (sortByNumber(attributes)) {
            first = manyInTag.data();
        }
    }
    for (std::size_t i = 0; i < attributes.size() && at != nullptr; ++i) at = putAttribute(at, *first[i]);
    return at;
}

// Whether they are few and have all numbers from 0 on, as those that were read.
bool TreeWriter::placeByNumber(AttributeSpan attributes) {
    const std::size_t count = attributes.size();
    if (count > fewInTag.size()) return false;
    std::uint64_t seen = 0;
    for (const Attribute* const attribute : attributes) {
        const std::uint64_t order = NodeAccess::order(*attribute);
        if (order >= count) return false;
        fewInTag[order] = attribute;
        seen |= std::uint64_t{1} << order;
    }
    return seen == ~std::uint64_t{0} >> (fewInTag.size() - count);
}

// False where they are in the order of the tag as they are.
bool TreeWriter::sortByNumber(AttributeSpan attributes) {
    const auto isBefore = [](const Attribute* a, const Attribute* b) {
        return NodeAccess::order(*a) < NodeAccess::order(*b);
    };
    if (std::is_sorted(attributes.begin(), attributes.end(), isBefore)) return false;
    manyInTag.assign(attributes.begin(), attributes.end());
    std::stable_sort(manyInTag.begin(), manyInTag.end(), isBefore);
    return true;
}

char* TreeWriter::putAttributeSlowly(char* at, const Attribute& attribute) {
    out.tookTo(at);
    out.put(" ");
    out.put(NodeAccess::name(attribute));
    out.put("=\"");
    if (!markup.putValue(NodeAccess::name(attribute), NodeAccess::text(attribute))) {
        fail(attribute);
        return nullptr;
    }
    out.put("\"");
    return out.room(0);
}

// --- Leaves ---

// One that begins within a character is no text, though it may be with what stands before it.
bool TreeWriter::writeText(const CharData& text) {
    const std::string_view held = NodeAccess::text(text);
    if (isTrusting && held.size() <= WriteBuffer::kRoom) {
        char* const at = out.room(held.size());
        char* const end = markup.keepsLineFeeds() ? PlainRuns::copyPadded<Kind::Text, Beyond::Trusted>(at, held)
                                                  : PlainRuns::copyPadded<Kind::Lines, Beyond::Trusted>(at, held);
        if (end != nullptr && (held.empty() || !Utf8::goesOn(held.front()))) {
            out.tookTo(end);
            return true;
        }
    }
    return markup.putHeld(held, NodeAccess::dtd(text)) || fail(text);
}

bool TreeWriter::writeLeaf(const Object& node) {
    switch (kindOf(node)) {
    case NodeKind::Text: return writeText(static_cast<const CharData&>(node));
    case NodeKind::CData: {
        const auto& section = static_cast<const CDataSection&>(node);
        return markup.putHeldSection(NodeAccess::text(section), NodeAccess::dtd(section)) || fail(node);
    }
    case NodeKind::Comment: return markup.putComment(NodeAccess::text(static_cast<const Comment&>(node))) || fail(node);
    case NodeKind::Instruction: {
        const auto& instruction = static_cast<const Instruction&>(node);
        return markup.putInstruction(instruction.getTarget(), NodeAccess::text(instruction)) || fail(node);
    }
    default: break;
    }
    markup.fail("a node of a kind that is no content of an element", StandardRules::kContent);
    return fail(node);
}

}  // namespace Xml
