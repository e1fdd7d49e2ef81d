// Paths in UTF-8: they find what XPath finds, and are refused with their place where XPath refuses them. Literals hold
// any text.
//
// Input: lines, each a byte that chooses the node that is asked, and a path.
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "support/Messages.h"
#include "support/Texts.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/easy/Ask.h"
#include "xml/easy/Ranges.h"
#include "xml/standard/Read.h"
#include "xml/text/internal/Utf8.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Xml::fuzz {
namespace {

const char* const kTree =
    "<a n='1'><b n='2' m='x'>1</b><a n='3'><c>x y</c><!--c--><b/></a><p:a xmlns:p='u' p:n='2.5'>2<b>10</b>z</p:a>"
    "<\xC3\xB6 \xC3\xA4='\xE2\x82\xAC'/></a>";

// Two trees, of which one is in no document, and all their nodes.
struct Trees {
    std::unique_ptr<Document> document = readText(kTree).take();
    std::unique_ptr<Element> part = std::make_unique<Element>(*document->getRoot());
    std::vector<Object*> nodes = {document.get()};

    Trees() {
        collect(*document->getRoot());
        collect(*part);
    }

    void collect(Element& element) {
        nodes.push_back(&element);
        for (Attribute& attribute : attributes(element)) nodes.push_back(&attribute);
        for (Object& child : children(element)) {
            if (Element* const inner = asElement(child)) {
                collect(*inner);
            } else {
                nodes.push_back(&child);
            }
        }
    }

    std::string shown(const Object* node) const {
        return std::to_string(std::find(nodes.begin(), nodes.end(), node) - nodes.begin()) + " ";
    }
};

std::string shown(const Trees& trees, const Selection<Object>& found) {
    std::string text;
    for (const Object& node : found) text += trees.shown(&node);
    for (std::size_t i = 0; found.empty() && i < found.count(); ++i) text += '"' + found.text(i) + "\" ";
    return text;
}

std::string shown(const Trees& trees, XPath& query, const std::string& path) {
    std::string text;
    const unsigned count = query.GetValues(test::wide(path));
    for (unsigned i = 0; i < count; ++i) {
        const XPath::ResultItem item = query.GetResult(i);
        text += item.kind == 0 ? trees.shown(item.node) : '"' + test::narrow(query.GetValue(i, -1)) + "\" ";
    }
    return text;
}

void checkPath(const Trees& trees, Object& from, const std::string& path) {
    const Selection<Object> found = ask(from, path);
    if (found.problem()) {
        const Problem& problem = *found.problem();
        const bool isKind = problem.kind == Problem::Kind::BadPath || problem.kind == Problem::Kind::Limit;
        const auto size = static_cast<std::int64_t>(path.size());
        expectTrue("a problem of a path", isKind && !problem.text.empty() && found.count() == 0, path);
        expectTrue("its place is in the path", problem.place.offset >= 0 && problem.place.offset <= size, path);
        expectTrue("... by line and column", problem.place.line > 0 && problem.place.column > 0, path);
    }
    // XPath judges other characters in its own way, ends a literal at its first quote, and asks documents alone.
    const bool isAscii = std::all_of(path.begin(), path.end(), Utf8::isAscii);
    const bool hasQuoteTwice = path.find("''") != std::string::npos || path.find("\"\"") != std::string::npos;
    Object* top = &from;
    while (top->getParent() != nullptr) top = top->getParent();
    if (!isAscii || hasQuoteTwice || !top->isDocument()) return;
    XPath query(&from);
    const bool isRight = query.SyntaxOK(test::wide(path));
    expectTrue("what XPath refuses is refused", isRight || found.problem(), path);
    if (found.problem()) return;
    expectSame("what XPath finds is found: " + path, shown(trees, query, path), shown(trees, found));
}

void checkLiteral(Object& from, const std::string& text) {
    const char* const end = text.data() + text.size();
    if (Utf8::check(text.data(), end).end != end) return;
    const Selection<Object> found = ask(from, literal(text));
    expectTrue("a literal is a path", !found.problem() && found.count() == 1, text);
    expectSame("a literal is its text", text, found.text(0));
}

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& input) {
    static const Trees trees;
    // A number of each pair of nodes, several times over, is slow to compare and shows nothing more.
    XPath::setWorkLimit(100'000);
    const test::MessageCollector quiet;
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t end = std::min(input.find('\n', at), input.size());
        const std::string line = input.substr(at, end - at);
        at = end + 1;
        if (line.empty()) continue;
        const std::size_t chosen = static_cast<unsigned char>(line[0]) - static_cast<std::size_t>('0');
        Object& from = *trees.nodes[chosen % trees.nodes.size()];
        checkPath(trees, from, line.substr(1));
        checkLiteral(from, line.substr(1));
    }
}

}  // namespace Xml::fuzz
