#include "xml/standard/internal/StreamOutput.h"

#include "xml/dom/NodeKind.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/internal/ElementPath.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/PrologWriter.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/StreamEvents.h"
#include "xml/standard/internal/TreeWriter.h"
#include <algorithm>
#include <utility>

namespace Xml {

namespace {

// A problem of the options, if there is one.
std::vector<Problem> settle(OutputForm& form, const WriteOptions& options) {
    Problem problem;
    if (form.set(options, problem)) return {};
    return {std::move(problem)};
}

}  // namespace

StreamOutput::StreamOutput(std::ostream& out, const WriteOptions& itsOptions)
    : options(itsOptions),
      found(settle(form, options)),
      sink(out, form.encoder.get()),
      buffer(sink),
      markup(buffer, form.encoder.get(), form.name, options.newline, Markup::Check::Pieces),
      isOver(!found.empty()) {}

// What was put is well-formed as far as it goes.
StreamOutput::~StreamOutput() {
    if (stage == Stage::Finished) return;
    try {
        buffer.flush();
        sink.pass();
    } catch (...) {}
}

// --- What is wrong ---

// What waits was in the block before, as far as it was there.
void StreamOutput::takeBack(std::size_t before) {
    if (sink.isWaiting()) {
        sink.keepOnly(before);
        before = 0;
    }
    buffer.shrink(before);
}

void StreamOutput::report() {
    if (!found.empty()) return;
    const WriteFault& fault = markup.fault();
    Problem problem = problemOf({}, fault.kind, fault.text, fault.rule);
    problem.path = path();
    found.push_back(std::move(problem));
}

void StreamOutput::noteLatePiece() {
    if (stage != Stage::Finished || !found.empty()) return;
    found.push_back(problemOf({}, Problem::Kind::Unwritable, "the document is finished", StandardRules::kDocument));
}

// The names of the open elements, which are not counted: /a/b.
std::string StreamOutput::path() const {
    ElementPath path(open.size());
    for (std::size_t i = 0; i < open.size(); ++i) {
        const std::size_t end = i + 1 < open.size() ? open[i + 1].nameBegin : names.size();
        path.add(std::string_view(names).substr(open[i].nameBegin, end - open[i].nameBegin));
    }
    return path.text();
}

// --- Around the pieces ---

void StreamOutput::beginDocument(const Prolog* prolog) {
    if (stage != Stage::Beginning) return;
    stage = Stage::BeforeDoctype;
    if (form.hasMark) buffer.put("\xEF\xBB\xBF");
    if (options.declaration) PrologWriter::putDeclaration(markup, options, prolog);
}

void StreamOutput::endTag() {
    if (isTagOpen) buffer.put(">");
    isTagOpen = false;
}

void StreamOutput::startLine(std::size_t level) {
    buffer.put(options.newline);
    for (std::size_t i = 0; i < std::min(level, TreeWriter::kDeepest); ++i) buffer.put(options.indent);
}

// Of a piece that may stand around the root as well, where it is a line.
bool StreamOutput::beginPiece() {
    beginDocument(nullptr);
    endTag();
    if (!open.empty() && open.back().isIndented && open.back().hasElement) startLine(open.size());
    return true;
}

void StreamOutput::endPiece() {
    if (open.empty()) buffer.put(options.newline);
}

bool StreamOutput::beginElement() {
    beginDocument(nullptr);
    if (stage == Stage::AfterRoot) return markup.fail("the document has a root already", StandardRules::kDocument);
    if (!open.empty()) open.back().hasElement = true;
    stage = Stage::Content;
    return beginPiece();
}

bool StreamOutput::beginText(const char* what) {
    if (open.empty()) return markup.fail(what + std::string(" has to be in an element"), StandardRules::kDocument);
    endTag();
    open.back().isIndented = false;
    return true;
}

// --- The prolog ---

bool StreamOutput::prolog(const Prolog& prolog) {
    if (stage != Stage::Beginning) return markup.fail("the prolog has to come first", StandardRules::kProlog);
    afterRoot.reserve(prolog.afterRoot.size());
    for (const auto& node : prolog.afterRoot) afterRoot.emplace_back(node->clone());
    beginDocument(&prolog);
    if (!putAround(prolog.beforeDoctype) || !putDoctype(prolog)) return false;
    return putAround(prolog.beforeRoot);
}

bool StreamOutput::putDoctype(const Prolog& prolog) {
    if (!options.doctype || prolog.doctype.empty()) return true;
    if (stage != Stage::BeforeDoctype)
        return markup.fail("the document type has to stand once, and before the root", StandardRules::kProlog);
    stage = Stage::BeforeRoot;
    return PrologWriter::putDoctype(markup, options, prolog, nullptr, written);
}

bool StreamOutput::putAround(const Nodes& nodes) {
    for (const auto& one : nodes) {
        const NodeKind kind = kindOf(*one);
        if (kind != NodeKind::Comment && kind != NodeKind::Instruction)
            return markup.fail("around the root stands what is neither a comment nor an instruction",
                               StandardRules::kProlog);
        if (!node(*one)) return false;
    }
    return true;
}

// --- Elements ---

bool StreamOutput::start(std::string_view name) {
    if (!markup.checkName(name, "an element") || !beginElement()) return false;
    const bool isIndented = open.empty() ? !options.indent.empty() : open.back().isIndented;
    open.push_back({names.size(), isIndented, false});
    names += name;
    buffer.put("<");
    buffer.put(name);
    isTagOpen = true;
    given.clear();
    return true;
}

bool StreamOutput::attribute(std::string_view name, std::string_view value) {
    if (!isTagOpen) return markup.fail("an attribute has to follow the start of its element", StandardRules::kSTag);
    if (!markup.checkName(name, "an attribute")) return false;
    if (!given.add(name)) {
        return markup.fail(
            "the attribute " + messageLine(name) + " stands twice in the tag of <" + messageLine(innermost()) + ">",
            StandardRules::kUniqueAttSpec);
    }
    if (name == "xml:space" && value == "preserve") open.back().isIndented = false;
    buffer.put(" ");
    buffer.put(name);
    buffer.put("=\"");
    if (!markup.putValue(name, value)) return false;
    buffer.put("\"");
    return true;
}

bool StreamOutput::end() {
    if (open.empty()) return markup.fail("no element is open", StandardRules::kElement);
    const Open& ended = open.back();
    if (isTagOpen && options.shortEmptyTags) {
        buffer.put("/>");
    } else {
        endTag();
        if (ended.isIndented && ended.hasElement) startLine(open.size() - 1);
        buffer.put("</");
        buffer.put(innermost());
        buffer.put(">");
    }
    names.resize(ended.nameBegin);
    isTagOpen = false;
    open.pop_back();
    if (open.empty()) stage = Stage::AfterRoot;
    endPiece();
    return true;
}

// --- What stands in elements ---

bool StreamOutput::text(std::string_view text) {
    if (text.empty()) return true;
    return beginText("text") && markup.putText(text);
}

bool StreamOutput::section(std::string_view text) { return beginText("a section") && markup.putSection(text); }

bool StreamOutput::comment(std::string_view text) {
    if (!beginPiece() || !markup.putComment(text)) return false;
    endPiece();
    return true;
}

bool StreamOutput::instruction(std::string_view target, std::string_view content) {
    if (!beginPiece() || !markup.putInstruction(target, content)) return false;
    endPiece();
    return true;
}

bool StreamOutput::node(const Object& subtree) {
    const NodeKind kind = kindOf(subtree);
    const bool isText = kind == NodeKind::Text || kind == NodeKind::CData;
    const bool isElement = kind == NodeKind::Element;
    if (isText ? !beginText("text") : isElement ? !beginElement() : !beginPiece()) return false;
    const bool isIndented = open.empty() || open.back().isIndented;
    TreeWriter tree(markup, {isIndented ? options.indent : "", options.shortEmptyTags,
                             options.defaults ? nullptr : &written, open.size()});
    if (!tree.write(subtree)) return false;
    if (open.empty() && isElement) stage = Stage::AfterRoot;
    endPiece();
    return true;
}

// --- Events ---

bool StreamOutput::copy(const StreamReader& at) {
    using Event = StreamReader::Event;
    const auto event = StreamReaderAccess::events(at).event();
    if (!event) return markup.fail("the reader has no event yet", StandardRules::kDocument);
    if (*event != Event::Failed) beginDocument(&at.prolog());
    switch (*event) {
    case Event::Start: return copyStart(at);
    case Event::End: return end();
    case Event::Text: return text(at.text());
    case Event::CData: return section(at.text());
    case Event::Comment: return comment(at.text());
    case Event::Instruction: return instruction(at.name(), at.text());
    case Event::Doctype: return putDoctype(at.prolog());
    case Event::Finished: return true;
    case Event::Failed: break;
    }
    found = at.problems();
    return markup.fail("the reader has failed", StandardRules::kDocument);
}

bool StreamOutput::copyStart(const StreamReader& at) {
    if (!start(at.name())) return false;
    const EventAtHand& event = StreamReaderAccess::events(at).atHand();
    for (std::size_t i = 0; i < event.attributeCount; ++i) {
        const TagAttribute& one = event.attributes[i];
        if (one.isDefault && !options.defaults && written.supply(at.name(), one.name, one.value)) continue;
        if (!attribute(one.name, one.value)) return false;
    }
    return true;
}

// --- The end ---

bool StreamOutput::finishDocument() {
    if (!open.empty())
        return markup.fail("the element " + messageLine(innermost()) + " is not ended", StandardRules::kElement);
    if (stage != Stage::AfterRoot) return markup.fail("the document has no root", StandardRules::kDocument);
    return putAround(std::exchange(afterRoot, {}));
}

// Where memory runs out on the way, that is the problem.
bool StreamOutput::finish() {
    if (stage == Stage::Finished) return found.empty();
    attempt([this] { return finishDocument(); });
    const bool isWhole = !isOver;
    isOver = true;
    if (found.empty())
        found.push_back(problemOf({}, Problem::Kind::Unwritable, "memory has run out", StandardRules::kDocument));
    buffer.flush();
    const bool isWritten = sink.finish();
    if (isWhole && !isWritten) found.front() = problemOf({}, Problem::Kind::Unwritable, "the stream cannot be written");
    if (isWhole && isWritten) found.clear();
    stage = Stage::Finished;
    return found.empty();
}

}  // namespace Xml
