#include "xml/dom/Object.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/internal/AsidePlaces.h"
#include "xml/dom/internal/AsideTexts.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Rewriting.h"
#include "xml/dom/internal/Slab.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/Message.h"
#include <typeinfo>

namespace Xml {

namespace {

// `node` as what it is; null and a diagnostic when it is something else.
template <class Target, class Node>
Target* castTo(Node* node, bool is, const char* failure) {
    if (is) return static_cast<Target*>(node);
    Message(std::string(failure));
    return nullptr;
}

// Whether all that the node's write does to the sink goes through the stream. Code of callers may reach the sink in its
// own way; the models in a Dtd may be theirs. A document is looked at each time: it links its root while it is made,
// whose setDtd may write it before it is whole.
bool writesBytesOnly(const Object& node) {
    return exactClassOf(node) != NodeClass::Other || typeid(node) == typeid(Document);
}

}  // namespace

bool Object::useRWOptimization = false;

Object::Object() = default;

Object::Object(const Object& other) : marks(other.marks) {}

Object::~Object() {
    if (!marks.isAside()) return;
    AsideTexts::drop(*this);
    AsidePlaces::drop(*this);
}

void* Object::operator new(std::size_t size) { return ::operator new(size); }

void* Object::operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }

void* Object::operator new(std::size_t size, const std::nothrow_t& tag) noexcept { return ::operator new(size, tag); }

void* Object::operator new(std::size_t, void* place) noexcept { return place; }

void Object::operator delete(void* node, std::size_t size) noexcept {
    if (Slab::holds(node)) {
        Slab::giveBack(node, size);
    } else {
        ::operator delete(node);  // without the size: not every compiler declares that one
    }
}

void Object::operator delete(void* node, std::size_t, std::align_val_t alignment) noexcept {
    ::operator delete(node, alignment);
}

void Object::operator delete(void* node, const std::nothrow_t& tag) noexcept { ::operator delete(node, tag); }

void Object::operator delete(void*, void*) noexcept {}

void Object::setDtd(const Dtd* newDtd) { marks.setDtd(newDtd); }

bool Object::isElement() const { return false; }
bool Object::isAttribute() const { return false; }
bool Object::isCharData() const { return false; }
bool Object::isDtd() const { return false; }
bool Object::isDocument() const { return false; }

Element* Object::toElement() { return castTo<Element>(this, isElement(), "<Object::toElement> Not a Element"); }
const Element* Object::toElement() const {
    return castTo<const Element>(this, isElement(), "<Object::toElement> Not a Element");
}

Attribute* Object::toAttribute() {
    return castTo<Attribute>(this, isAttribute(), "<Object::toAttribute> Not an Attribute");
}
const Attribute* Object::toAttribute() const {
    return castTo<const Attribute>(this, isAttribute(), "<Object::toAttribute> Not an Attribute");
}

CharData* Object::toCharData() { return castTo<CharData>(this, isCharData(), "<Object::toCharData> Not a CharData"); }
const CharData* Object::toCharData() const {
    return castTo<const CharData>(this, isCharData(), "<Object::toCharData> Not a CharData");
}

Dtd* Object::toDtd() { return castTo<Dtd>(this, isDtd(), "<Object::toDtd> Not a Dtd"); }
const Dtd* Object::toDtd() const { return castTo<const Dtd>(this, isDtd(), "<Object::toDtd> Not a Dtd"); }

Document* Object::toDocument() { return castTo<Document>(this, isDocument(), "<Object::toDocument> Not a Document"); }
const Document* Object::toDocument() const {
    return castTo<const Document>(this, isDocument(), "<Object::toDocument> Not a Document");
}

void Object::setParent(Object* newParent) { parent = newParent; }
Object* Object::getParent() { return parent; }
const Object* Object::getParent() const { return parent; }

void Object::touch() {
    for (Object* node = this; node != nullptr; node = node->parent) node->marks.touch();
}

void Object::toStream(OutStream& out) const {
    const OutStreamAccess::Counting counting(out);
    const OutStreamAccess::Writing writing(out);
    NodeAccess::makeRoomForRecord(*this);
    if (!beginWriting(marks, out)) return;
    write(out);
    if (!writesBytesOnly(*this)) OutStreamAccess::resume(out);
    endWriting(marks, out);
}

bool Object::setRWOptimization(bool use) {
    const bool before = useRWOptimization;
    useRWOptimization = use;
    return before;
}

}  // namespace Xml
