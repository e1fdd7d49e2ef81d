#include "xml/dom/Document.h"

#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/Copying.h"
#include "xml/dom/internal/Linking.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/OutStream.h"
#include <utility>

namespace Xml {

namespace {

void writeLines(const std::vector<std::unique_ptr<Object>>& nodes, OutStream& out) {
    for (const auto& node : nodes) {
        node->toStream(out);
        out << '\n';
    }
}

}  // namespace

const char* const _xmlHeader = "<?xml version = \"1.0\" ?>";

Document::Document(Element* itsRoot, Dtd* itsDtd) : dtd(itsDtd), root(itsRoot) {
    Object* const dtdParent = dtd != nullptr ? dtd->getParent() : nullptr;
    if (dtd != nullptr) dtd->setParent(this);
    if (root == nullptr) return;
    Object* const rootParent = root->getParent();
    root->setParent(this);
    try {
        root->setDtd(itsDtd);
    } catch (...) {
        // Both stay the caller's.
        if (dtd != nullptr) dtd.release()->setParent(dtdParent);
        Element* const given = root.release();
        if (given != nullptr) {
            given->setParent(rootParent);
            unlink(*given);
        }
        throw;
    }
}

std::unique_ptr<Document> NodeAccess::makeDocument(std::unique_ptr<Element> root) {
    auto document = std::make_unique<Document>(nullptr, nullptr);
    document->root = std::move(root);
    setParent(*document->root, *document);
    return document;
}

std::unique_ptr<Document> NodeAccess::makeDocument(std::unique_ptr<Element> root, std::unique_ptr<Dtd> dtd) {
    if (dtd == nullptr) return makeDocument(std::move(root));
    auto document = std::make_unique<Document>(root.get(), dtd.get());
    root.release();  // the document's now, as the Dtd
    dtd.release();
    return document;
}

std::unique_ptr<Prolog>& NodeAccess::prolog(Document& document) { return document.prolog; }
const Prolog* NodeAccess::prolog(const Document& document) { return document.prolog.get(); }

// The copy's own link stays null: the one of the other leads to the other's Dtd, which may go first. Where there is no
// Dtd, and nothing in the copy of the root has a link, the tree need not be walked to take links away.
Document::Document(const Document& other) : Document(nullptr, nullptr) {
    bool isUnlinked = false;
    if (other.root != nullptr && isExactly<Element>(*other.root)) {
        root = NodeAccess::makeElement({});
        isUnlinked = copyInto(*root, *other.root);
    } else if (other.root != nullptr) {
        root.reset(other.root->clone()->toElement());
    }
    if (root != nullptr) root->setParent(this);
    if (other.dtd != nullptr) {
        dtd.reset(other.dtd->clone()->toDtd());
        dtd->setParent(this);
    }
    if (root != nullptr && !(isUnlinked && dtd == nullptr)) root->setDtd(dtd.get());
    if (other.prolog != nullptr) prolog = std::make_unique<Prolog>(*other.prolog);
}

// Root first, and while all members are there: destructors of callers' nodes may ask the document.
Document::~Document() {
    delete root.get();
    root.release();
    delete dtd.get();
    dtd.release();
}

Element* Document::getRoot() { return root.get(); }
const Element* Document::getRoot() const { return root.get(); }
Dtd* Document::getDtd() { return dtd.get(); }
const Dtd* Document::getDtd() const { return dtd.get(); }

Element* Document::extractRoot() {
    if (root == nullptr) return nullptr;
    std::unique_ptr<Element> taken = std::move(root);
    taken->setParent(nullptr);
    try {
        taken->setDtd(nullptr);
    } catch (...) {
        taken->setParent(this);
        root = std::move(taken);
        throw;
    }
    return taken.release();
}

Dtd* Document::extractDtd() {
    if (dtd == nullptr) return nullptr;
    std::unique_ptr<Dtd> taken = std::move(dtd);
    taken->setParent(nullptr);
    try {
        if (root != nullptr) root->setDtd(nullptr);
        setDtd(nullptr);
        taken->setDtd(nullptr);
    } catch (...) {
        taken->setParent(this);
        dtd = std::move(taken);
        throw;
    }
    return taken.release();
}

bool Document::validate() {
    if (dtd == nullptr) return true;
    if (root == nullptr || !dtd->validate(root.get())) return false;
    setDtd(dtd.get());
    return true;
}

const Element* Document::find(const std::string& name, int n) const {
    if (root == nullptr) return nullptr;
    if (root->getName() != name) return static_cast<const Element&>(*root).findElement(name, n);
    return n < 1 ? root.get() : static_cast<const Element&>(*root).findElement(name, n - 1);
}

Element* Document::find(const std::string& name, int n) {
    return const_cast<Element*>(static_cast<const Document*>(this)->find(name, n));
}

std::vector<Element*> Document::findAll(const std::string& name) {
    std::vector<Element*> found;
    if (root == nullptr) return found;
    if (root->getName() == name) found.push_back(root.get());
    root->findAllElements(name, found);
    return found;
}

std::vector<const Element*> Document::findAll(const std::string& name) const {
    std::vector<const Element*> found;
    if (root == nullptr) return found;
    if (root->getName() == name) found.push_back(root.get());
    static_cast<const Element&>(*root).findAllElements(name, found);
    return found;
}

Object* Document::clone() const { return new Document(*this); }

const std::string& Document::toString() const {
    if (!text) text = std::make_unique<std::string>();
    *text = "<Document> ";
    if (root != nullptr) *text += root->getName();
    return *text;
}

bool Document::isDocument() const { return true; }

void Document::write(OutStream& out) const {
    out << _xmlHeader << '\n';
    if (prolog != nullptr) writeLines(prolog->beforeDoctype, out);
    if (dtd != nullptr) dtd->toStream(out);
    if (prolog != nullptr) writeLines(prolog->beforeRoot, out);
    if (root != nullptr) root->toStream(out);
    out << '\n';
    if (prolog != nullptr) writeLines(prolog->afterRoot, out);
}

}  // namespace Xml
