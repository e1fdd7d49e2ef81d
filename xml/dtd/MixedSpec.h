#pragma once

#include "xml/dtd/ContentSpec.h"
#include <set>
#include <string>
#include <vector>

namespace Xml {

// The mixed model: character data and the named elements, in any order and number. Without names: character data only.
class ORVXML_API MixedSpec : public ContentSpec {
public:
    explicit MixedSpec(Dtd* dtd);
    MixedSpec(const MixedSpec&) = delete;

    // A name that is there already is reported ("<MixedSpec::MixedSpec> name already added ", the name) and not added again.
    void addName(const std::string& name);

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* dtd) const override;

private:
    friend class Matcher;
    friend struct NodeTestAccess;

    bool hasName(const std::string& name) const;

    std::vector<std::string> names;  // in the order of adding
    std::set<std::string> nameSet;   // the same names, to look up
};

}  // namespace Xml
