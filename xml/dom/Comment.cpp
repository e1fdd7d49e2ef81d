#include "xml/dom/Comment.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/internal/OutStreamAccess.h"

namespace Xml {

using internal::LeafKind;

Comment::Comment(std::string_view itsText) {
    NodeAccess::setLeafKind(*this, LeafKind::Comment);
    NodeAccess::ownText(*this) = itsText;
}

Comment::Comment(const Comment& other) : Comment(NodeAccess::text(other)) {
    NodeAccess::setOwnDtd(*this, NodeAccess::dtd(other));
}

Comment::Comment(const internal::GivenText& given, Object* itsParent)
    : Object(NodeClass::Comment, given.place, itsParent), text(given) {
    NodeAccess::setLeafKind(*this, LeafKind::Comment);
}

Comment::~Comment() { text.dispose(NodeAccess::marks(*this)); }

const std::string& Comment::getText() const { return text.string(*this, NodeAccess::marks(*this)); }

void Comment::setText(std::string_view newText) {
    text.assign(*this, NodeAccess::marks(*this), DataHolder(std::string(newText)));
    touch();
}

Object* Comment::clone() const { return NodeAccess::exactly(NodeClass::Comment, new Comment(*this)).release(); }

const std::string& Comment::toString() const { return getText(); }

void Comment::write(OutStream& out) const {
    OutStreamAccess::put(out, "<!--");
    OutStreamAccess::putAsIs(out, NodeAccess::text(*this));
    OutStreamAccess::putAsIs(out, "-->");
}

}  // namespace Xml
