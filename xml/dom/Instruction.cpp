#include "xml/dom/Instruction.h"

#include "xml/dom/internal/AsideTexts.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include <utility>

namespace Xml {

using internal::LeafKind;

Instruction::Instruction(std::string_view itsTarget, std::string_view itsContent) {
    NodeAccess::setLeafKind(*this, LeafKind::Instruction);
    target.set(itsTarget);
    NodeAccess::ownText(*this) = itsContent;
}

Instruction::Instruction(const Instruction& other) : Instruction(other.getTarget(), NodeAccess::text(other)) {
    NodeAccess::setOwnDtd(*this, NodeAccess::dtd(other));
}

Instruction::Instruction(const std::string* sharedTarget, const internal::GivenText& given, Object* itsParent)
    : Object(NodeClass::Instruction, given.place, itsParent), target(sharedTarget), content(given) {
    NodeAccess::setLeafKind(*this, LeafKind::Instruction);
}

Instruction::~Instruction() { content.dispose(NodeAccess::marks(*this)); }

const std::string& Instruction::getTarget() const { return target.text(); }

const std::string& Instruction::getContent() const { return content.string(*this, NodeAccess::marks(*this)); }

void Instruction::setContent(std::string_view newContent) {
    content.assign(*this, NodeAccess::marks(*this), DataHolder(std::string(newContent)));
    touch();
}

Object* Instruction::clone() const {
    return NodeAccess::exactly(NodeClass::Instruction, new Instruction(*this)).release();
}

const std::string& Instruction::toString() const {
    std::string made = getTarget();
    if (const std::string_view text = NodeAccess::text(*this); !text.empty()) made.append(" ").append(text);
    return AsideTexts::of(*this) = std::move(made);
}

void Instruction::write(OutStream& out) const {
    OutStreamAccess::put(out, "<?");
    OutStreamAccess::putAsIs(out, getTarget());
    if (const std::string_view text = NodeAccess::text(*this); !text.empty()) {
        OutStreamAccess::putAsIs(out, " ");
        OutStreamAccess::putAsIs(out, text);
    }
    OutStreamAccess::putAsIs(out, "?>");
}

}  // namespace Xml
