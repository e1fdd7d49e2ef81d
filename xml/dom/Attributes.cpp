#include "xml/dom/Attributes.h"

#include "xml/dom/Attribute.h"
#include <algorithm>
#include <utility>

namespace Xml::internal {

Attributes::~Attributes() {
    for (const Attribute* attribute : sorted) delete attribute;
}

// The place of the attribute of that name, or the one where it would go.
std::size_t Attributes::placeOf(const std::string& name) const {
    const auto place = std::lower_bound(sorted.begin(), sorted.end(), name,
                                        [](const Attribute* a, const std::string& n) { return a->getName() < n; });
    return static_cast<std::size_t>(place - sorted.begin());
}

bool Attributes::isAt(std::size_t place, const std::string& name) const {
    return place < sorted.size() && sorted[place]->getName() == name;
}

Attribute* Attributes::find(const std::string& name) const {
    const std::size_t place = placeOf(name);
    return isAt(place, name) ? sorted[place] : nullptr;
}

void Attributes::set(std::unique_ptr<Attribute> attribute) {
    const std::size_t place = placeOf(attribute->getName());
    if (isAt(place, attribute->getName())) {
        delete std::exchange(sorted[place], attribute.release());
    } else {
        sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(place), attribute.get());
        attribute.release();
    }
}

bool Attributes::remove(const std::string& name) {
    const std::size_t place = placeOf(name);
    if (!isAt(place, name)) return false;
    remove(place);
    return true;
}

void Attributes::remove(std::size_t place) {
    const auto at = sorted.begin() + static_cast<std::ptrdiff_t>(place);
    delete *at;
    sorted.erase(at);
}

void Attributes::append(std::unique_ptr<Attribute> attribute) {
    sorted.push_back(attribute.get());
    attribute.release();
}

void Attributes::sort() {
    const auto before = [](const Attribute* a, const Attribute* b) { return a->getName() < b->getName(); };
    const auto notBefore = [&before](const Attribute* a, const Attribute* b) { return !before(a, b); };
    if (std::adjacent_find(sorted.begin(), sorted.end(), notBefore) == sorted.end()) return;
    std::stable_sort(sorted.begin(), sorted.end(), before);
    std::size_t kept = 0;
    for (Attribute* attribute : sorted) {
        if (kept > 0 && sorted[kept - 1]->getName() == attribute->getName()) {
            delete std::exchange(sorted[kept - 1], attribute);
        } else {
            sorted[kept++] = attribute;
        }
    }
    sorted.resize(kept);
}

}  // namespace Xml::internal
