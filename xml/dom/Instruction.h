#pragma once

#include "xml/Export.h"
#include "xml/dom/Name.h"
#include "xml/dom/Object.h"
#include "xml/dom/Text.h"
#include <string>
#include <string_view>

namespace Xml {

// A processing instruction among the children of an element, or around the root of a document (see Prolog). It counts
// as a child, and what looks at content passes over it: content models and paths.
class ORVXML_API Instruction : public Object {
public:
    // For what it is, and what it says to that, as they are.
    Instruction(std::string_view target, std::string_view content);
    Instruction(const Instruction& other);
    ~Instruction() override;

    const std::string& getTarget() const;

    // Of an instruction that was read the string is made when it is first asked for, which needs memory. Good until the
    // content is changed.
    const std::string& getContent() const;

    // Marks the node and its ancestors as changed.
    void setContent(std::string_view content);

    Object* clone() const override;

    // The target, and after a space the content, if any; kept for the node until the next call.
    const std::string& toString() const override;

    // The same between "<?" and "?>".
    void write(OutStream& out) const override;

private:
    friend struct NodeAccess;

    ORVXML_LOCAL Instruction(const std::string* sharedTarget, const internal::GivenText& given, Object* itsParent);

    internal::Name target;
    internal::Text content;
};

}  // namespace Xml
