#include "xml/standard/internal/Namespaces.h"

namespace Xml {

Namespaces::Namespaces() {
    names.push_back(numbers.emplace(std::string(), Use{kNone, 1}).first);
    declare("xml", kXmlName);
}

Namespaces::Number Namespaces::find(std::string_view prefix) const {
    const auto found = prefixes.find(prefix);
    return found != prefixes.end() ? found->second : kNone;
}

void Namespaces::declare(std::string_view prefix, std::string_view name) {
    auto declared = prefixes.find(prefix);
    const bool isFirst = declared == prefixes.end();
    if (isFirst) declared = prefixes.emplace(prefix, kNone).first;
    const auto used = use(name);
    ++used->second.count;
    changes.push_back({declared, declared->second, isFirst});
    ++itsVersion;
    declared->second = used->second.number;
}

void Namespaces::goBack(std::size_t mark) {
    for (; changes.size() > mark; changes.pop_back()) {
        ++itsVersion;
        const Change& change = changes.back();
        release(change.prefix->second);
        if (change.isFirst) {
            prefixes.erase(change.prefix);
        } else {
            change.prefix->second = change.before;
        }
    }
}

// A name that is not in scope gets a number that is free.
Namespaces::Numbers::iterator Namespaces::use(std::string_view name) {
    const auto found = numbers.find(name);
    if (found != numbers.end()) return found;
    const Number number = unused.empty() ? static_cast<Number>(names.size()) : unused.back();
    const auto added = numbers.emplace(name, Use{number, 0}).first;
    if (unused.empty()) {
        names.push_back(added);
    } else {
        names[number] = added;
        unused.pop_back();
    }
    return added;
}

void Namespaces::release(Number number) {
    const auto used = names[number];
    if (--used->second.count > 0) return;
    numbers.erase(used);
    unused.push_back(number);
}

}  // namespace Xml
