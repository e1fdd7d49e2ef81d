#pragma once

#include "xml/text/internal/NeverDestroyed.h"
#include <mutex>
#include <unordered_map>

namespace Xml {

class Object;

// What is known of few nodes and therefore not kept in them. Any thread may ask for what is about nodes of its own.
template <class Value>
class AsideTable {
public:
    // The one of its kind: nodes may be static objects, and may go last.
    static AsideTable& theOne() {
        static NeverDestroyed<AsideTable> table;
        return table.get();
    }

    // The value for the node, as made by its constructor at first; stays where it is until it is dropped.
    Value& of(const Object& node) {
        const std::lock_guard<std::mutex> lock(mutex);
        return values[&node];
    }

    void drop(const Object& node) noexcept {
        const std::lock_guard<std::mutex> lock(mutex);
        values.erase(&node);
    }

private:
    std::mutex mutex;
    std::unordered_map<const Object*, Value> values;
};

}  // namespace Xml
