#pragma once

#include <string>
#include <utility>

namespace Xml {

// The value of all character data and attribute values: an 8-bit string, with the standard string's value semantics.
class DataHolder : public std::string {
public:
    using std::string::string;
    using std::string::operator=;

    DataHolder() = default;
    DataHolder(const std::string& text) : std::string(text) {}
    DataHolder(std::string&& text) noexcept : std::string(std::move(text)) {}

    // The held text itself: no copy, valid as long as this object is and is not changed.
    const std::string& toString() const { return *this; }
};

}  // namespace Xml
