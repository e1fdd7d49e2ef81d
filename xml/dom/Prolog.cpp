#include "xml/dom/Prolog.h"

#include "xml/dom/Document.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/text/internal/NeverDestroyed.h"

namespace Xml {

namespace {

using Nodes = std::vector<std::unique_ptr<Object>>;

Nodes copyOf(const Nodes& nodes) {
    Nodes copies;
    copies.reserve(nodes.size());
    for (const auto& node : nodes) copies.emplace_back(node->clone());
    return copies;
}

}  // namespace

Prolog::Prolog() = default;

Prolog::Prolog(const Prolog& other)
    : encoding(other.encoding),
      standalone(other.standalone),
      hasDeclaration(other.hasDeclaration),
      hasMark(other.hasMark),
      newline(other.newline),
      readAs(other.readAs),
      doctype(other.doctype),
      publicId(other.publicId),
      systemId(other.systemId),
      internalSubset(other.internalSubset),
      beforeDoctype(copyOf(other.beforeDoctype)),
      beforeRoot(copyOf(other.beforeRoot)),
      afterRoot(copyOf(other.afterRoot)) {}

Prolog::Prolog(Prolog&& other) noexcept = default;
Prolog& Prolog::operator=(const Prolog& other) { return *this = Prolog(other); }
Prolog& Prolog::operator=(Prolog&& other) noexcept = default;
Prolog::~Prolog() = default;

Prolog& prologOf(Document& document) {
    std::unique_ptr<Prolog>& prolog = NodeAccess::prolog(document);
    if (prolog == nullptr) prolog = std::make_unique<Prolog>();
    NodeAccess::marks(document).setDirty(true);
    return *prolog;
}

const Prolog& prologOf(const Document& document) {
    static NeverDestroyed<Prolog> none;
    const Prolog* const prolog = NodeAccess::prolog(document);
    return prolog != nullptr ? *prolog : none.get();
}

}  // namespace Xml
