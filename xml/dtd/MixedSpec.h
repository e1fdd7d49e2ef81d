#pragma once

#include "xml/dtd/ContentSpec.h"
#include <memory>
#include <string>
#include <vector>

namespace Xml {

class NameIndex;

// The mixed model: character data and the named elements, in any order and number. Without names: character data only.
class ORVXML_API MixedSpec : public ContentSpec {
public:
    explicit MixedSpec(Dtd* dtd);
    MixedSpec(const MixedSpec&) = delete;
    ~MixedSpec() override;

    // A name that is there already is reported ("<MixedSpec::MixedSpec> name already added ", the name) and not added
    // again.
    void addName(const std::string& name);

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* dtd) const override;

private:
    friend struct SpecAccess;

    std::vector<std::string> names;    // in the order of adding
    std::unique_ptr<NameIndex> index;  // the same names, to look up; null without names
};

}  // namespace Xml
