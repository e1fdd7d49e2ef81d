#include "xml/reader/ElementReader.h"

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/FastContent.h"
#include "xml/reader/internal/LiteralContent.h"
#include "xml/stream/internal/StreamAccess.h"

namespace Xml {

ElementReader::ElementReader(Dtd* itsDtd) : dtd(itsDtd) {}

ElementReader::~ElementReader() = default;

bool ElementReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    EntityBudget own;
    EntityBudget& budget = EntityBudget::of(*this, own);
    TreeBuilder tree(root);
    int referenceEnd = 0;
    LiteralContent literal(*this, in, tree, dtd, budget, referenceEnd);
    FastContent fast(in, tree, dtd, budget, referenceEnd);
    fast.read();
    if (!tree.isOpen() && !tree.isComplete() && !literal.begin()) return false;
    while (tree.isOpen()) {
        if (!literal.readPiece()) return false;
        if (tree.isOpen()) fast.read();
    }
    return true;
}

Element* ElementReader::getRoot() { return root.get(); }

const Element* ElementReader::getRoot() const { return root.get(); }

Element* ElementReader::extractRoot() { return root.release(); }

}  // namespace Xml
