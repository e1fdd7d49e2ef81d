#include "xml/reader/ElementReader.h"

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/LiteralContent.h"
#include "xml/stream/internal/StreamAccess.h"

namespace Xml {

ElementReader::ElementReader(Dtd* itsDtd) : dtd(itsDtd) {}

ElementReader::~ElementReader() = default;

bool ElementReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    EntityBudget own;
    TreeBuilder tree(root);
    return LiteralContent(*this, in, tree, dtd, EntityBudget::of(*this, own)).read();
}

Element* ElementReader::getRoot() { return root.get(); }

const Element* ElementReader::getRoot() const { return root.get(); }

Element* ElementReader::extractRoot() { return root.release(); }

}  // namespace Xml
