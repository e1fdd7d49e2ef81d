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
// O(log n) for a prefix, whatever prefixes a document chooses. What is out of scope takes no memory.
class Namespaces {
public:
    using Number = std::uint32_t;
    static constexpr Number kNone = 0;  // no namespace: what a prefix stands for that is not declared

    static constexpr const char* kXmlName = "http://www.w3.org/XML/1998/namespace";
    static constexpr const char* kXmlnsName = "http://www.w3.org/2000/xmlns/";

    Namespaces();

    // What the prefix stands for; the empty one is the default.
    Number find(std::string_view prefix) const;

    // Good as long as something in scope stands for it.
    std::string_view nameOf(Number number) const { return names[number]->first; }

    // Until the mark is gone back to.
    void declare(std::string_view prefix, std::string_view name);
    std::size_t mark() const { return changes.size(); }
    void goBack(std::size_t mark);

    // Another number wherever something else may be found than before.
    std::uint64_t version() const { return itsVersion; }

private:
    struct Use {
        Number number;
        std::size_t count;  // of changes that are to this name
    };
    using Prefixes = std::map<std::string, Number, std::less<>>;
    using Numbers = std::map<std::string, Use, std::less<>>;

    struct Change {
        Prefixes::iterator prefix;
        Number before;
        bool isFirst;  // the prefix was not in scope
    };

    Numbers::iterator use(std::string_view name);
    void release(Number number);

    Prefixes prefixes;
    Numbers numbers;
    std::vector<Numbers::iterator> names;  // by number; as many as have been in scope at a time
    std::vector<Number> unused;
    std::vector<Change> changes;
    std::uint64_t itsVersion = 0;
};

}  // namespace Xml
