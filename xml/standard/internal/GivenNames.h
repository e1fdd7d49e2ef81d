#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// The names of the attributes that one tag has so far. Few are looked through, many are in a set.
class GivenNames {
public:
    void clear() {
        few.clear();
        fewEnds.clear();
        many.clear();
    }

    // False where it is there.
    bool add(std::string_view name) {
        std::size_t begin = 0;
        for (const std::size_t end : fewEnds) {
            if (std::string_view(few).substr(begin, end - begin) == name) return false;
            begin = end;
        }
        if (fewEnds.size() == kFew) return many.find(name) == many.end() && many.emplace(name).second;
        few += name;
        fewEnds.push_back(few.size());
        return true;
    }

private:
    static constexpr std::size_t kFew = 16;

    std::string few;  // one after the other
    std::vector<std::size_t> fewEnds;
    std::set<std::string, std::less<>> many;
};

}  // namespace Xml
