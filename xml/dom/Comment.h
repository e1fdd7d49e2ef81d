#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include "xml/dom/Text.h"
#include <string>
#include <string_view>

namespace Xml {

// A comment among the children of an element, or around the root of a document (see Prolog). It counts as a child, and
// what looks at content passes over it: content models and paths.
class ORVXML_API Comment : public Object {
public:
    // What stands between "<!--" and "-->", as it is.
    explicit Comment(std::string_view text);
    Comment(const Comment& other);
    ~Comment() override;

    // Of a comment that was read the string is made when it is first asked for, which needs memory. Good until the text
    // is changed.
    const std::string& getText() const;

    // Marks the node and its ancestors as changed.
    void setText(std::string_view text);

    Object* clone() const override;

    // The text.
    const std::string& toString() const override;

    // "<!--", the text, "-->".
    void write(OutStream& out) const override;

private:
    friend struct NodeAccess;

    ORVXML_LOCAL Comment(const internal::GivenText& given, Object* itsParent);

    internal::Text text;
};

}  // namespace Xml
