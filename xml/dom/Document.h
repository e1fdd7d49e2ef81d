#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include <memory>
#include <string>
#include <vector>

namespace Xml {

class Dtd;
class Element;
struct Prolog;

// The XML declaration that every document is written with.
ORVXML_API extern const char* const _xmlHeader;

// The top of a tree: owns the root element and the document type description, where there are such.
//
// Trees that were read or built separately may be used in different threads at the same time, as long as no diagnostic
// is issued and no setting is changed. One tree may be looked at, asked by path and copied by several threads while
// none changes it; docs/threads.md says which operations that leaves out.
class ORVXML_API Document : public Object {
public:
    // Takes ownership of both, either of which may be null; the tree below the root gets the link to the Dtd. Both are
    // in their place and have their parent when setDtd of the root is called. Where memory runs out they stay the
    // caller's, with the parents that they had, and the root links to no Dtd.
    Document(Element* root, Dtd* dtd);

    // Copies the root, then the Dtd; the tree of the copy links to the copy's Dtd. The document node's own link starts
    // null. What stands around the root (see Prolog) is copied too.
    Document(const Document& other);
    ~Document() override;

    Element* getRoot();
    const Element* getRoot() const;
    Dtd* getDtd();
    const Dtd* getDtd() const;

    // Takes the root out: its tree has no links to the Dtd any more, and the caller owns it. Null without a root. It is
    // out and without a parent when its setDtd is called with null. Where memory runs out it is back in its place.
    Element* extractRoot();

    // Takes the Dtd out in the same way; nothing links to it any more. Null without a Dtd, and then nothing changes.
    Dtd* extractDtd();

    // True without a Dtd; else whether there is a root and the Dtd finds it valid. The document node links to the Dtd
    // then.
    bool validate();

    // The n-th element of that name in document order, the root included; null when there is none.
    Element* find(const std::string& name, int n = 0);
    const Element* find(const std::string& name, int n = 0) const;

    // All elements of that name in document order, the root included.
    std::vector<Element*> findAll(const std::string& name);
    std::vector<const Element*> findAll(const std::string& name) const;

    Object* clone() const override;

    // "<Document> " and the name of the root, if any; kept in the node until the next call.
    const std::string& toString() const override;
    bool isDocument() const override;
    void write(OutStream& out) const override;

private:
    friend struct NodeAccess;
    friend struct EditingAccess;

    std::unique_ptr<Dtd> dtd;
    std::unique_ptr<Element> root;
    std::unique_ptr<Prolog> prolog;             // made when first asked for
    mutable std::unique_ptr<std::string> text;  // of toString, made when first asked for
};

}  // namespace Xml
