#include "xml/standard/internal/Namespaces.h"

namespace Xml {

Namespaces::Namespaces() {
    names.push_back(&numbers.emplace(std::string(), kNone).first->first);
    declare("xml", kXmlName);
}

Namespaces::Number Namespaces::find(std::string_view prefix) const {
    const auto found = prefixes.find(prefix);
    return found != prefixes.end() ? found->second : kNone;
}

void Namespaces::declare(std::string_view prefix, std::string_view name) {
    auto number = numbers.find(name);
    if (number == numbers.end()) {
        number = numbers.emplace(name, static_cast<Number>(names.size())).first;
        names.push_back(&number->first);
    }
    auto declared = prefixes.find(prefix);
    if (declared == prefixes.end()) declared = prefixes.emplace(prefix, kNone).first;
    changes.push_back({&declared->second, declared->second});
    declared->second = number->second;
}

void Namespaces::goBack(std::size_t mark) {
    for (; changes.size() > mark; changes.pop_back()) *changes.back().prefix = changes.back().before;
}

}  // namespace Xml
