#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace Xml {

// The place of each name in a list of names, so that a name need not be compared with all of them.
class NameIndex {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // Of a name that is added again the first place stays.
    void add(const std::string& name, std::size_t place) { places.emplace(name, place); }

    // The place of the name, or kNone.
    std::size_t find(const std::string& name) const {
        const auto found = places.find(name);
        return found != places.end() ? found->second : kNone;
    }

private:
    std::map<std::string, std::size_t> places;
};

}  // namespace Xml
