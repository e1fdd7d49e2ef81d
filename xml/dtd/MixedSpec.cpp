#include "xml/dtd/MixedSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/stream/OutStream.h"
#include "xml/text/Message.h"
#include <memory>

namespace Xml {

MixedSpec::MixedSpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

void MixedSpec::addName(const std::string& name) {
    if (hasName(name)) {
        Message("<MixedSpec::MixedSpec> name already added " + name);
        return;
    }
    names.push_back(name);
    try {
        nameSet.insert(name);
    } catch (...) {
        names.pop_back();
        throw;
    }
}

bool MixedSpec::hasName(const std::string& name) const { return nameSet.find(name) != nameSet.end(); }

bool MixedSpec::validate(const std::vector<Object*>& children) const { return Matcher().matchModel(*this, children); }

void MixedSpec::toStream(OutStream& out) const {
    out << "(#PCDATA";
    for (const auto& name : names) out << " | " << name;
    out << (names.empty() ? ")" : ")*");
}

ContentSpec* MixedSpec::clone(Dtd* newDtd) const {
    auto copy = std::make_unique<MixedSpec>(newDtd);
    copy->names = names;
    copy->nameSet = nameSet;
    return copy.release();
}

}  // namespace Xml
