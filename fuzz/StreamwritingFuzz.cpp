// Writing piece by piece: any sequence of calls to a StreamWriter. As long as the rules of XML allow the calls there is
// no problem, and what was written at the end is read as the events that the calls are. At the first call that they do
// not allow there is a problem that says why, and nothing more is written: what is there begins a document.
//
// The rules are those of NaiveXml.h, and a model that knows which elements are open.
//
// Input: a byte for the form of the text; then a byte chooses a call, those after it what it says.
#include "fuzz/Input.h"
#include "fuzz/NaiveXml.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/easy/Trees.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

using Event = StreamReader::Event;

// --- Events, a line each ---

std::string lineOf(const std::string& kind, const std::string& name, const std::string& text = {}) {
    return kind + " " + name + "=" + text + "\n";
}

// Those of a text that was written; sections are texts, and texts side by side are one.
std::string eventsOf(const std::string& text) {
    ReadOptions options = everything();
    options.namespaces = options.keepCData = false;
    StreamReader reader{std::string_view(text), options};
    std::string lines;
    for (;;) {
        const Event event = reader.next();
        const std::string name(reader.name());
        const std::string content(reader.text());
        switch (event) {
        case Event::Start:
            lines += lineOf("start", name);
            for (int i = 0; i < reader.attributeCount(); ++i)
                lines += lineOf("value", std::string(reader.attributeName(i)), std::string(reader.attributeValue(i)));
            break;
        case Event::End: lines += lineOf("end", name); break;
        case Event::Text:
        case Event::CData: lines += lineOf("text", "", content); break;
        case Event::Comment: lines += lineOf("comment", "", content); break;
        case Event::Instruction: lines += lineOf("instruction", name, content); break;
        case Event::Doctype: lines += lineOf("doctype", name, reader.prolog().systemId); break;
        case Event::Finished: return lines;
        case Event::Failed: return lines + reader.problems().front().toString() + "\n" + text;
        }
    }
}

// --- The model ---

// What the calls have written by the rules of XML. Each says whether they allow it.
class Model {
public:
    explicit Model(char32_t mostOfEncoding) : most(mostOfEncoding) {}

    bool prolog(const Prolog& prolog) {
        if (hasBegun) return false;
        hasBegun = true;
        if (!prolog.doctype.empty()) {
            if (!isSayable(prolog.doctype) || !isName(prolog.doctype)) return false;
            const std::string& id = prolog.systemId;
            const bool hasBoth = id.find('"') != std::string::npos && id.find('\'') != std::string::npos;
            if (hasBoth || !isText(id) || id.find('\r') != std::string::npos || !isSayable(id)) return false;
            say(lineOf("doctype", prolog.doctype, id));
        }
        for (const auto& one : prolog.beforeRoot) {
            if (!comment(static_cast<const Comment&>(*one).getText())) return false;
        }
        return true;
    }
    bool start(const std::string& name) {
        if (!isName(name) || !isSayable(name) || (hasRoot && open.empty())) return false;
        hasBegun = hasRoot = isTagOpen = true;
        say(lineOf("start", name));
        open.push_back(name);
        attributes.clear();
        return true;
    }
    bool attribute(const std::string& name, const std::string& value) {
        if (!isTagOpen || !isName(name) || !isSayable(name) || !isText(value)) return false;
        if (!attributes.insert(name).second) return false;
        lines += lineOf("value", name, value);
        return true;
    }
    bool text(const std::string& text) {
        if (text.empty()) return true;
        if (open.empty() || !isText(text)) return false;
        isTagOpen = false;
        pending += text;
        return true;
    }
    bool section(const std::string& text) {
        if (open.empty() || !isText(text)) return false;
        std::string inSections = text;
        inSections.erase(std::remove(inSections.begin(), inSections.end(), '\r'), inSections.end());
        if (!isSayable(inSections)) return false;
        isTagOpen = false;
        pending += text;
        return true;
    }
    bool comment(const std::string& text) {
        if (!isComment(text) || !isSayable(text)) return false;
        say(lineOf("comment", "", text));
        return true;
    }
    bool instruction(const std::string& target, const std::string& content) {
        if (!isInstruction(target, content) || !isSayable(target) || !isSayable(content)) return false;
        say(lineOf("instruction", target, content));
        return true;
    }
    bool end() {
        if (open.empty()) return false;
        say(lineOf("end", open.back()));
        open.pop_back();
        return true;
    }
    void begin() { hasBegun = true; }
    bool finish() const { return hasRoot && open.empty(); }

    // What has to follow to make a document of what is there, and the events of that.
    std::string completed() {
        std::string rest = isTagOpen ? ">" : "";
        if (!hasRoot) {
            start("r");
            rest = "<r>";
        }
        while (!open.empty()) {
            rest += "</" + open.back() + ">";
            end();
        }
        return rest;
    }

    const std::string& events() const { return lines; }

private:
    bool isSayable(const std::string& text) const { return isUpTo(most, text); }

    void say(const std::string& line) {
        hasBegun = true;
        if (!pending.empty()) lines += lineOf("text", "", pending);
        pending.clear();
        isTagOpen = false;
        lines += line;
        isTagOpen = line.compare(0, 6, "start ") == 0;
    }

    char32_t most;  // character of the encoding
    std::string lines, pending;
    std::vector<std::string> open;
    std::set<std::string> attributes;
    bool hasBegun = false, hasRoot = false, isTagOpen = false;
};

// --- Calls ---

// An element with all kinds of nodes, which both are given.
bool node(Model& model, StreamWriter& writer, const std::string& name, const std::string& text) {
    const std::unique_ptr<Document> document = makeDocument(name);
    Element& element = *document->getRoot();
    append(element, "b", text);
    append(element, std::make_unique<CDataSection>(text));
    append(element, std::make_unique<Comment>(text));
    writer.node(element);
    if (!model.start(name) || !model.start("b") || !model.text(text) || !model.end()) return false;
    return model.section(text) && model.comment(text) && model.end();
}

bool prolog(Model& model, StreamWriter& writer, Decisions& program) {
    Prolog prolog;
    if (program.below(2) == 1) prolog.doctype = nameFrom(program);
    if (program.below(2) == 1) prolog.systemId = textFrom(program);
    if (program.below(2) == 1) prolog.beforeRoot.push_back(std::make_unique<Comment>(textFrom(program)));
    writer.prolog(prolog);
    return model.prolog(prolog);
}

// The next event of a document that another one is made of.
bool copy(Model& model, StreamWriter& writer, StreamReader& reader) {
    const Event event = reader.next();
    const std::string name(reader.name());
    const std::string text(reader.text());
    writer.copy(reader);
    model.begin();
    switch (event) {
    case Event::Start:
        if (!model.start(name)) return false;
        for (int i = 0; i < reader.attributeCount(); ++i) {
            if (!model.attribute(std::string(reader.attributeName(i)), std::string(reader.attributeValue(i))))
                return false;
        }
        return true;
    case Event::End: return model.end();
    case Event::Text: return model.text(text);
    case Event::CData: return model.section(text);
    case Event::Comment: return model.comment(text);
    case Event::Instruction: return model.instruction(name, text);
    default: return event == Event::Finished;
    }
}

const std::string kOther = "<a x='1' \u00F6='&#10;'>1<![CDATA[2]]><!--3--><b/>&lt;<?t 4?></a><!--5--><?t?>";

bool call(Model& model, StreamWriter& writer, StreamReader& reader, Decisions& program) {
    const std::size_t operation = program.below(12);
    if (operation < 2) {
        const std::string name = nameFrom(program);
        writer.start(name);
        return model.start(name);
    }
    if (operation < 4) {
        writer.end();
        return model.end();
    }
    if (operation == 4) return copy(model, writer, reader);
    if (operation == 5) return prolog(model, writer, program);
    const std::string text = textFrom(program);
    switch (operation) {
    case 6: writer.cdata(text); return model.section(text);
    case 7: writer.comment(text); return model.comment(text);
    case 8:
    case 9: writer.text(text); return model.text(text);
    default: break;
    }
    const std::string name = nameFrom(program);
    if (operation == 10) {
        writer.attribute(name, text);
        return model.attribute(name, text);
    }
    if (program.below(2) == 1) return node(model, writer, name, text);
    writer.instruction(name, text);
    return model.instruction(name, text);
}

struct Form {
    const char* encoding;
    char32_t most;
};
constexpr Form kForms[] = {{"UTF-8", 0x10FFFF}, {"", 0x10FFFF}, {"US-ASCII", 0x7F}, {"UTF-16", 0x10FFFF}};

}  // namespace

const std::size_t kLongestInput = 800;

void check(const std::string& input) {
    Decisions program(input);
    const unsigned flags = program.byte();
    const Form& form = kForms[flags & 3];
    WriteOptions options;
    options.encoding = form.encoding;
    options.indent.clear();
    options.newline = (flags & 4) != 0 ? "\n" : "\r\n";
    options.declaration = (flags & 8) == 0 || form.most < 0x80;
    options.shortEmptyTags = (flags & 16) != 0;
    options.mark = (flags & 32) != 0 && form.most > 0x80;
    Model model(form.most);
    std::ostringstream out;
    StreamWriter writer(out, options);
    StreamReader reader{std::string_view(kOther), everything()};

    bool isRight = true;
    while (isRight && !program.empty()) {
        const Model before = model;
        isRight = call(model, writer, reader, program);
        expectTrue("a call is refused where it has to be", writer.problems().empty() == isRight,
                   model.events() + (writer.problems().empty() ? "" : writer.problems().front().text));
        if (!isRight) model = before;
    }
    if (isRight && program.byte() == 0) {
        for (; !model.finish() && isRight; isRight = model.end()) writer.end();
    }
    const bool isWhole = isRight && model.finish();
    expectTrue("a document is finished where it is one", writer.finish() == isWhole, model.events());
    expectTrue("and it stays so", writer.finish() == isWhole, model.events());
    if (isWhole) {
        expectSame("what was written is read as it was said", model.events(), eventsOf(out.str()));
        return;
    }
    expectTrue("a problem says why", writer.problems().size() == 1, model.events());
    const Problem& problem = writer.problems().front();
    expectTrue("a problem has kind, text and rule",
               problem.kind == Problem::Kind::Unwritable && !problem.text.empty() && !problem.rule.empty(),
               problem.text);
    if (form.encoding == std::string("UTF-16")) return;
    const std::string rest = model.completed();
    expectSame("what was refused was not written", model.events(), eventsOf(out.str() + rest));
}

}  // namespace Xml::fuzz
