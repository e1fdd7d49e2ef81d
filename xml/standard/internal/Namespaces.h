#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// The prefixes in scope, and what they stand for. Each name is kept once, so that namespaces are compared by number.
// O(log n) for a prefix, whatever prefixes a document chooses.
class Namespaces {
public:
    using Number = std::uint32_t;
    static constexpr Number kNone = 0;  // no namespace: what a prefix stands for that is not declared

    static constexpr const char* kXmlName = "http://www.w3.org/XML/1998/namespace";
    static constexpr const char* kXmlnsName = "http://www.w3.org/2000/xmlns/";

    Namespaces();

    // What the prefix stands for; the empty one is the default.
    Number find(std::string_view prefix) const;
    std::string_view nameOf(Number number) const { return *names[number]; }

    // Until the mark is gone back to.
    void declare(std::string_view prefix, std::string_view name);
    std::size_t mark() const { return changes.size(); }
    void goBack(std::size_t mark);

private:
    struct Change {
        Number* prefix;
        Number before;
    };

    std::map<std::string, Number, std::less<>> prefixes;
    std::map<std::string, Number, std::less<>> numbers;
    std::vector<const std::string*> names;
    std::vector<Change> changes;
};

}  // namespace Xml
