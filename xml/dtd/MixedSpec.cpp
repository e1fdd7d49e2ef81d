#include "xml/dtd/MixedSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/NameIndex.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/OutStream.h"
#include "xml/text/Message.h"

namespace Xml {

MixedSpec::MixedSpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

MixedSpec::~MixedSpec() = default;

void MixedSpec::addName(const std::string& name) {
    if (SpecAccess::hasName(*this, name)) {
        Message("<MixedSpec::MixedSpec> name already added " + name);
        return;
    }
    if (index == nullptr) index = std::make_unique<NameIndex>();
    names.push_back(name);
    try {
        index->add(name, names.size() - 1);
    } catch (...) {
        names.pop_back();
        throw;
    }
}

bool MixedSpec::validate(const std::vector<Object*>& children) const { return Matcher().matchModel(*this, children); }

void MixedSpec::toStream(OutStream& out) const {
    out << "(#PCDATA";
    for (const auto& name : names) out << " | " << name;
    out << (names.empty() ? ")" : ")*");
}

ContentSpec* MixedSpec::clone(Dtd* newDtd) const {
    auto copy = std::make_unique<MixedSpec>(newDtd);
    copy->names = names;
    if (index != nullptr) copy->index = std::make_unique<NameIndex>(*index);
    return copy.release();
}

}  // namespace Xml
