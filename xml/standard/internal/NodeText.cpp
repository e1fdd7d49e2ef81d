#include "xml/standard/internal/NodeText.h"

#include "xml/dom/Document.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/Arena.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/internal/NodePath.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/OutputForm.h"
#include "xml/standard/internal/PrologWriter.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/TreeWriter.h"
#include <memory>
#include <vector>

namespace Xml {

namespace {

using Nodes = std::vector<std::unique_ptr<Object>>;

class NodeText {
public:
    NodeText(Markup& itsMarkup, const WriteOptions& itsOptions, bool itsMark)
        : markup(itsMarkup), options(itsOptions), hasMark(itsMark) {}

    bool write(const Object& node, Problem& problem) {
        if (writeNode(node)) return true;
        const WriteFault& fault = markup.fault();
        problem = problemOf({}, fault.kind, fault.text, fault.rule);
        if (failed != nullptr) problem.path = pathOf(*failed);
        return false;
    }

private:
    bool writeNode(const Object& node) {
        if (hasMark) markup.buffer().put("\xEF\xBB\xBF");
        switch (kindOf(node)) {
        case NodeKind::Document: return writeDocument(static_cast<const Document&>(node));
        case NodeKind::Dtd: return PrologWriter::putDeclarations(markup, static_cast<const Dtd&>(node));
        default: return writeTree(node, nullptr);
        }
    }

    bool writeDocument(const Document& document) {
        const Prolog& prolog = prologOf(document);
        const Dtd* const dtd = document.getDtd();
        const Element* const root = document.getRoot();
        if (root == nullptr) return markup.fail("the document has no root", StandardRules::kDocument);
        if (options.declaration) PrologWriter::putDeclaration(markup, options, &prolog);
        if (!writeAround(prolog.beforeDoctype)) return false;
        const bool hasDoctype = options.doctype && (!prolog.doctype.empty() || dtd != nullptr);
        Declarations written;
        if (hasDoctype && !PrologWriter::putDoctype(markup, options, prolog, dtd, written)) return false;
        if (!writeAround(prolog.beforeRoot)) return false;
        if (!writeTree(*root, options.defaults ? nullptr : &written)) return false;
        markup.buffer().put(markup.lineEnd());
        return writeAround(prolog.afterRoot);
    }

    bool writeAround(const Nodes& nodes) {
        for (const auto& node : nodes) {
            const NodeKind kind = kindOf(*node);
            if (kind != NodeKind::Comment && kind != NodeKind::Instruction)
                return markup.fail("around the root stands what is neither a comment nor an instruction",
                                   StandardRules::kProlog);
            if (!writeTree(*node, nullptr)) return false;
            markup.buffer().put(markup.lineEnd());
        }
        return true;
    }

    bool writeTree(const Object& node, const Declarations* written) {
        TreeWriter tree(markup, {options.indent, options.shortEmptyTags, written, 0});
        if (tree.write(node)) return true;
        failed = tree.failure();
        return false;
    }

    Markup& markup;
    const WriteOptions& options;
    const bool hasMark;
    const Object* failed = nullptr;
};

// Room that is enough for what a node is written as, mostly: a tree has two to seven times as many bytes, but for very
// long texts. 0 where little is known.
std::size_t expectedSize(const Object& node) {
    const Object* const top = kindOf(node) == NodeKind::Document ? static_cast<const Document&>(node).getRoot() : &node;
    if (top == nullptr || kindOf(*top) != NodeKind::Element) return 0;
    return Arena::bytesBelow(static_cast<const Element&>(*top)) / 2;
}

}  // namespace

// First with a look at the whole only. Where something is wrong, the pieces are looked at one by one, and so it is
// found.
bool makeText(const Object& node, const WriteOptions& options, std::string& to, Problem& problem) {
    OutputForm form;
    if (!form.set(options, problem)) return false;
    const auto make = [&](Markup::Check check) {
        to.clear();
        EncodedText sink(to, form.encoder.get(), check, expectedSize(node));
        WriteBuffer out(sink);
        Markup markup(out, form.encoder.get(), form.name, options.newline, check);
        problem = {};
        if (!NodeText(markup, options, form.hasMark).write(node, problem)) return false;
        out.flush();
        return sink.finish();
    };
    if ((form.encoder == nullptr || form.encoder->hasAll()) && make(Markup::Check::Whole)) return true;
    if (make(Markup::Check::Pieces)) return true;
    if (!problem.text.empty()) return false;
    problem = problemOf({}, Problem::Kind::Unwritable, "some characters turn out to have no form in " + form.name,
                        StandardRules::kCharacterEncodingInEntities);
    return false;
}

}  // namespace Xml
