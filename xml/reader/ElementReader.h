#pragma once

#include "xml/reader/Reader.h"
#include <memory>

namespace Xml {

class Dtd;
class Element;

// Reads one element with its whole subtree.
//
// Attribute values are decoded with the entities of the Dtd; what those make is bounded (Dtd::setEntityGrowthLimit):
// "entity text too large". White space between child elements, comments and tags is dropped; a run of text keeps all of
// its own, and is held as it stands in the source, still escaped. Comments are dropped. Any other markup in content
// ends the parse: `unexpected markup "<?"`.
class ORVXML_API ElementReader : public Reader {
public:
    // The Dtd may be null; it is not owned.
    explicit ElementReader(Dtd* dtd = nullptr);
    ~ElementReader() override;

    bool parse(InStream& in);

    // The element read; after a failure what was built of it, without the children that were not finished. Owned by the
    // reader until it is extracted.
    Element* getRoot();
    const Element* getRoot() const;

    // Hands the element over; null when there is none.
    Element* extractRoot();

private:
    std::unique_ptr<Element> root;
    Dtd* dtd;
};

}  // namespace Xml
