#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Xml {

// Where an element stands, in words: the elements around it and itself, each with its number among its namesakes where
// those were counted: /order[1]/item[2]. A path is for a reader, and as long as one can be read: of many steps the
// first and the last ones are shown, /a[1]/b[1]/.../y[1]/z[1], and long names are shortened.
//
//     ElementPath path(2);
//     path.add("order", 1);
//     path.add("item", 2);
class ElementPath {
public:
    // Of so many steps.
    explicit ElementPath(std::size_t stepCount) : count(stepCount) {}

    // The next one, from the outermost on. Number 0: it was not counted.
    void add(std::string_view name, std::size_t number = 0);

    const std::string& text() const { return shown; }

private:
    std::size_t count;
    std::size_t added = 0;
    std::string shown;
};

}  // namespace Xml
