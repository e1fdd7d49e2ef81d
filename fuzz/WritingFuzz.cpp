// Writing: a document, read or built, is edited and written with any options, into a text and into a stream. By the
// rules of XML, which NaiveXml.h has, it can be said or not: then it is read again as what it was, and so is its root
// alone; or it is Unwritable, and nothing is written.
//
// What is compared is what the nodes say: texts side by side are one, sections are texts. White space alone does not
// count where indentation adds some.
//
// Input: three bytes for options and the document; then two bytes choose an element and an edit of it, those after them
// what the edit says.
#include "fuzz/Input.h"
#include "fuzz/NaiveXml.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "support/Messages.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Prolog.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
#include "xml/standard/Read.h"
#include "xml/standard/Write.h"
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

using Nodes = std::vector<std::unique_ptr<Object>>;

// What edits begin with. No edit touches "typed", whose attribute the document type supplies.
const char* const kDocuments[] = {
    "<a/>",
    "<?xml version='1.0' standalone='yes'?><!--1--><a x='1'>t<b/><![CDATA[c]]><?t i?></a><!--2-->",
    ("<!DOCTYPE a [<!ATTLIST typed d CDATA 'v'><!ENTITY e '<b>1</b>&#38;#38;'>]>\r\n<a>&e;<typed/><c "
     "d:e='&#10;'/>\r\n</a>"),
    "<!DOCTYPE a PUBLIC 'p' 's'><a>\n  <b/>\n  <c>1</c>\n</a>",
};

struct Form {
    const char* encoding;
    char32_t most;  // character
    bool hasMark;
};
constexpr Form kForms[] = {
    {"UTF-8", 0x10FFFF, true}, {"", 0x10FFFF, true},        {"UTF-16", 0x10FFFF, true},   {"UTF-16BE", 0x10FFFF, true},
    {"US-ASCII", 0x7F, false}, {"ISO-8859-1", 0xFF, false}, {"GB18030", 0x10FFFF, false}, {"UTF-32LE", 0x10FFFF, true},
};

// --- What a document says ---

bool isWhite(const std::string& text) { return text.find_first_not_of(" \t\r\n") == std::string::npos; }

class Lines {
public:
    explicit Lines(bool withoutWhite) : dropsWhite(withoutWhite) {}

    void add(const Object& node) {
        switch (kindOf(node)) {
        case NodeKind::Element: addElement(static_cast<const Element&>(node)); break;
        case NodeKind::Text:
        case NodeKind::CData: text += textOf(node); break;
        case NodeKind::Comment: addLine("comment " + static_cast<const Comment&>(node).getText()); break;
        default: {
            const auto& instruction = static_cast<const Instruction&>(node);
            addLine("instruction " + instruction.getTarget() + " " + instruction.getContent());
        }
        }
    }
    void add(const Nodes& around) {
        for (const auto& node : around) add(*node);
    }
    void addLine(const std::string& line) {
        if (!text.empty() && !(dropsWhite && isWhite(text))) lines += "text " + text + "\n";
        text.clear();
        lines += line + "\n";
    }

    const std::string& all() const { return lines; }

private:
    // In the order of their names: those that are supplied are the last ones of the tag when it is read again.
    void addElement(const Element& element) {
        std::string line = "start " + element.getName();
        std::map<std::string, std::string> values;
        for (const Attribute& one : attributes(element)) values[one.getName()] = one.getValue();
        for (const auto& [name, value] : values) line += " " + name + "='" + value + "'";
        addLine(line);
        for (const Object& child : children(element)) add(child);
        addLine("end");
    }

    bool dropsWhite;
    std::string lines, text;
};

std::string linesOf(const Document& document, const WriteOptions& options) {
    const Prolog& prolog = prologOf(document);
    Lines lines(!options.indent.empty());
    lines.add(prolog.beforeDoctype);
    if (options.doctype && !prolog.doctype.empty())
        lines.addLine("doctype " + prolog.doctype + " " + prolog.publicId + " " + prolog.systemId);
    lines.add(prolog.beforeRoot);
    lines.add(*document.getRoot());
    lines.add(prolog.afterRoot);
    return lines.all();
}

// --- Whether XML can say it ---

class Judge {
public:
    explicit Judge(char32_t mostOfEncoding) : most(mostOfEncoding) {}

    bool allows(const Document& document, bool withDoctype) const {
        const Prolog& prolog = prologOf(document);
        return (!withDoctype || allowsDoctype(prolog)) && allowsAll(prolog.beforeDoctype) &&
               allowsAll(prolog.beforeRoot) && allowsAll(prolog.afterRoot) && allows(*document.getRoot());
    }

    bool allows(const Object& node) const {
        switch (kindOf(node)) {
        case NodeKind::Element: break;
        case NodeKind::Text: return isText(textOf(node));
        case NodeKind::CData: return isText(textOf(node)) && isSayable(withoutReturns(textOf(node)));
        case NodeKind::Comment: {
            const std::string& text = static_cast<const Comment&>(node).getText();
            return isComment(text) && isSayable(text);
        }
        default: {
            const auto& one = static_cast<const Instruction&>(node);
            return isInstruction(one.getTarget(), one.getContent()) && isSayable(one.getTarget() + one.getContent());
        }
        }
        const auto& element = static_cast<const Element&>(node);
        if (!allowsName(element.getName())) return false;
        for (const Attribute& one : attributes(element)) {
            if (!allowsName(one.getName()) || !isText(one.getValue())) return false;
        }
        for (const Object& child : children(element)) {
            if (!allows(child)) return false;
        }
        return true;
    }

private:
    bool isSayable(const std::string& text) const { return isUpTo(most, text); }
    bool allowsName(const std::string& name) const { return isName(name) && isSayable(name); }
    bool allowsAll(const Nodes& nodes) const {
        for (const auto& node : nodes) {
            if (!allows(*node)) return false;
        }
        return true;
    }

    // Between sections a CR is written as a reference.
    static std::string withoutReturns(std::string text) {
        for (std::size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r')) text.erase(at, 1);
        return text;
    }

    bool allowsDoctype(const Prolog& prolog) const {
        if (prolog.doctype.empty()) return true;
        const std::string& id = prolog.systemId;
        const bool hasBoth = id.find('"') != std::string::npos && id.find('\'') != std::string::npos;
        return allowsName(prolog.doctype) && isPublicId(prolog.publicId) && !hasBoth && isText(id) && isSayable(id) &&
               id.find('\r') == std::string::npos;
    }

    char32_t most;
};

// --- Edits ---

// Elements of which edits say the attributes and the name.
std::vector<Element*> elementsOf(Document& document) {
    std::vector<Element*> all{document.getRoot()};
    for (Element& element : descendants(*document.getRoot())) {
        if (element.getName() != "typed") all.push_back(&element);
    }
    return all;
}

std::unique_ptr<Object> leafFrom(Decisions& program) {
    switch (program.below(4)) {
    case 0: return std::make_unique<Comment>(textFrom(program));
    case 1: {
        const std::string target = nameFrom(program);
        return std::make_unique<Instruction>(target, textFrom(program));
    }
    case 2: return std::make_unique<CDataSection>(textFrom(program));
    default: return std::make_unique<CharData>(DataHolder(textFrom(program)));
    }
}

void editProlog(Prolog& prolog, Decisions& program) {
    Nodes* const places[] = {&prolog.beforeDoctype, &prolog.beforeRoot, &prolog.afterRoot};
    const std::size_t choice = program.below(6);
    switch (choice) {
    case 0: prolog.doctype = nameFrom(program); break;
    case 1: prolog.publicId = textFrom(program); break;
    case 2: prolog.systemId = textFrom(program); break;
    default: places[choice - 3]->push_back(std::make_unique<Comment>(textFrom(program))); break;
    }
}

void edit(Document& document, Decisions& program, bool mayEditDoctype) {
    const std::vector<Element*> all = elementsOf(document);
    Element& element = *all[program.below(all.size())];
    switch (program.below(8)) {
    case 0:
        element.getChildCount() > 0 ? void(detach(children(element)[0])) : setText(element, textFrom(program));
        break;
    case 1: append(element, leafFrom(program)); break;
    case 2: {
        const std::string name = nameFrom(program);
        if (name != "typed") append(element, name, textFrom(program));
        break;
    }
    case 3: {
        const std::string name = nameFrom(program);
        setValue(element, name, textFrom(program));
        break;
    }
    case 4: {
        const std::string name = nameFrom(program);
        if (name != "typed") replace(element, std::make_unique<Element>(name.empty() ? "n" : name));
        break;
    }
    case 5:
        if (element.getChildCount() > 0) insertBefore(children(element)[0], leafFrom(program));
        break;
    case 6: sortChildren(element, [](const Object& a, const Object& b) { return nameOf(a) < nameOf(b); }); break;
    default:
        if (mayEditDoctype) editProlog(prologOf(document), program);
    }
}

// --- Properties ---

ReadResult readAgain(const std::string& text, const WriteOptions& options) {
    ReadOptions reading = everything();
    reading.namespaces = false;
    reading.encoding = options.encoding;
    return readText(text, reading);
}

void checkUnwritable(const WriteResult& written, const std::string& streamed, const std::string& lines) {
    expectTrue("nothing is written of what XML cannot say", written.text().empty() && streamed.empty(), lines);
    expectTrue("one problem says why", written.problems().size() == 1 && !written.message().empty(), lines);
    const Problem& problem = written.problems().front();
    expectTrue("it has kind, text and rule",
               problem.kind == Problem::Kind::Unwritable && !problem.text.empty() && !problem.rule.empty(),
               written.message());
}

void checkPart(const Element& element, const WriteOptions& options, const Judge& judge) {
    const WriteResult written = writeText(element, options);
    expectTrue("a part is written where XML can say it", static_cast<bool>(written) == judge.allows(element),
               written.message());
    if (!written) return;
    const ReadResult again = readAgain(written.text(), options);
    expectTrue("a part can be read again", static_cast<bool>(again), again.message() + "\n" + written.text());
    Lines before(!options.indent.empty());
    Lines after(!options.indent.empty());
    before.add(element);
    after.add(*again->getRoot());
    expectSame("a part is read as it was", before.all(), after.all());
}

}  // namespace

const std::size_t kLongestInput = 800;

void check(const std::string& input) {
    const test::MessageCollector quiet;
    Decisions program(input);
    const Form& form = kForms[program.below(std::size(kForms))];
    const unsigned flags = program.byte();
    WriteOptions options;
    options.encoding = form.encoding;
    options.indent = (flags & 1) != 0 ? "" : "\t";
    options.newline = (flags & 2) != 0 ? "\n" : (flags & 4) != 0 ? "\r\n" : "\r";
    options.declaration = (flags & 8) == 0;
    options.doctype = (flags & 16) == 0;
    options.shortEmptyTags = (flags & 32) == 0;
    options.defaults = (flags & 64) == 0;
    options.mark = (flags & 128) != 0 && form.hasMark;

    ReadOptions reading = everything();
    reading.namespaces = false;
    const std::size_t choice = program.below(std::size(kDocuments));
    const std::unique_ptr<Document> document = readText(kDocuments[choice], reading).take();
    while (!program.empty()) edit(*document, program, choice < 2);

    const std::string lines = linesOf(*document, options);
    const Judge judge(form.most);
    const WriteResult written = writeText(*document, options);
    std::ostringstream stream;
    const WriteResult streamed = writeStream(*document, stream, options);
    const bool isAllowed = judge.allows(*document, options.doctype);
    expectTrue("a document is written where XML can say it", static_cast<bool>(written) == isAllowed,
               lines + written.message());
    expectTrue("a stream gets what a text has",
               static_cast<bool>(streamed) == isAllowed && stream.str() == written.text(), lines + streamed.message());
    checkPart(*document->getRoot(), options, judge);
    if (!isAllowed) return checkUnwritable(written, stream.str(), lines);

    const ReadResult again = readAgain(written.text(), options);
    expectTrue("what is written can be read", static_cast<bool>(again), again.message() + "\n" + written.text());
    expectSame("what is written is read as it was", lines, linesOf(*again, options));
    const WriteResult asItWas = writeText(*again, asRead(*again));
    expectTrue("what was read can be written", static_cast<bool>(asItWas), asItWas.message());
    WriteOptions same = options;
    same.doctype = true;
    const ReadResult last = readAgain(asItWas.text(), asRead(*again));
    expectTrue("and read once more", static_cast<bool>(last), last.message() + "\n" + asItWas.text());
    expectSame("as what it was", linesOf(*again, same), linesOf(*last, same));
}

}  // namespace Xml::fuzz
