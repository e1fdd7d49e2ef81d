#include "xml/dom/Document.h"

#include "xml/dom/Element.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/OutStream.h"
#include <utility>

namespace Xml {

const char* const _xmlHeader = "<?xml version = \"1.0\" ?>";

Document::Document(Element* itsRoot, Dtd* itsDtd) : dtd(itsDtd), root(itsRoot) {
    if (root != nullptr) {
        NodeAccess::linkNew(*root, dtd);
        root->setParent(this);
    }
    if (dtd != nullptr) dtd->setParent(this);
}

// The copy's own link stays null: the one of the other leads to the other's Dtd, which may go first.
Document::Document(const Document& other) : Document(nullptr, nullptr) {
    if (other.dtd != nullptr) {
        dtd = other.dtd->clone()->toDtd();
        dtd->setParent(this);
    }
    if (other.root != nullptr) {
        root = other.root->clone()->toElement();
        root->setParent(this);
        root->setDtd(dtd);
    }
}

Document::~Document() {
    delete root;
    delete dtd;
}

Element* Document::getRoot() { return root; }
const Element* Document::getRoot() const { return root; }
Dtd* Document::getDtd() { return dtd; }
const Dtd* Document::getDtd() const { return dtd; }

Element* Document::extractRoot() {
    if (root == nullptr) return nullptr;
    root->setDtd(nullptr);  // first: it may need memory, and a root taken out would be lost then
    root->setParent(nullptr);
    return std::exchange(root, nullptr);
}

Dtd* Document::extractDtd() {
    if (dtd == nullptr) return nullptr;
    if (root != nullptr) root->setDtd(nullptr);  // first, as above
    setDtd(nullptr);
    dtd->setDtd(nullptr);
    dtd->setParent(nullptr);
    return std::exchange(dtd, nullptr);
}

bool Document::validate() {
    if (dtd == nullptr) return true;
    if (root == nullptr || !dtd->validate(root)) return false;
    setDtd(dtd);
    return true;
}

const Element* Document::find(const std::string& name, int n) const {
    if (root == nullptr) return nullptr;
    if (root->getName() != name) return static_cast<const Element*>(root)->findElement(name, n);
    return n < 1 ? root : static_cast<const Element*>(root)->findElement(name, n - 1);
}

Element* Document::find(const std::string& name, int n) {
    return const_cast<Element*>(static_cast<const Document*>(this)->find(name, n));
}

std::vector<Element*> Document::findAll(const std::string& name) {
    std::vector<Element*> found;
    if (root == nullptr) return found;
    if (root->getName() == name) found.push_back(root);
    root->findAllElements(name, found);
    return found;
}

std::vector<const Element*> Document::findAll(const std::string& name) const {
    std::vector<const Element*> found;
    if (root == nullptr) return found;
    if (root->getName() == name) found.push_back(root);
    static_cast<const Element*>(root)->findAllElements(name, found);
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
    if (dtd != nullptr) dtd->toStream(out);
    if (root != nullptr) root->toStream(out);
    out << '\n';
}

}  // namespace Xml
