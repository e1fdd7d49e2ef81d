#pragma once

#include "xml/Export.h"
#include "xml/dom/CharData.h"
#include <string_view>

namespace Xml {

// Character data that stands in a CDATA section. It is text like any other: it counts as such, is held escaped, and
// toStream writes it as escaped text.
class ORVXML_API CDataSection : public CharData {
public:
    // The text as it is meant.
    explicit CDataSection(std::string_view text);
    CDataSection(const CDataSection& other);
    ~CDataSection() override;

    Object* clone() const override;

private:
    friend struct NodeAccess;

    ORVXML_LOCAL CDataSection(const internal::GivenText& text, Object* itsParent);
};

}  // namespace Xml
