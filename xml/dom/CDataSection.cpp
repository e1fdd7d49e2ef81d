#include "xml/dom/CDataSection.h"

#include "xml/dom/internal/NodeAccess.h"
#include <string>

namespace Xml {

using internal::LeafKind;

CDataSection::CDataSection(std::string_view text) : CharData(DataHolder(std::string(text))) {
    NodeAccess::setLeafKind(*this, LeafKind::CData);
}

CDataSection::CDataSection(const CDataSection& other) : CharData(other) {
    NodeAccess::setLeafKind(*this, LeafKind::CData);
}

CDataSection::CDataSection(const internal::GivenText& text, Object* itsParent)
    : CharData(NodeClass::CDataSection, text, itsParent) {
    NodeAccess::setLeafKind(*this, LeafKind::CData);
}

CDataSection::~CDataSection() = default;

Object* CDataSection::clone() const {
    return NodeAccess::exactly(NodeClass::CDataSection, new CDataSection(*this)).release();
}

}  // namespace Xml
