#pragma once

#include "xml/dom/Text.h"
#include "xml/dom/internal/Arena.h"
#include "xml/dom/internal/FewFirst.h"
#include "xml/dom/internal/SortByName.h"
#include <cstddef>
#include <string_view>
#include <utility>

namespace Xml {

// A name of the NameTable of a tree and a value, whose bytes are elsewhere.
struct NameAndValue {
    NameAndValue() {}  // to be assigned
    NameAndValue(const SharedName& itsName, std::string_view itsValue)
        : name(&itsName), bytes(itsValue.data()), size(itsValue.size()) {}

    // Field by field, as they were written: what is loaded in wider steps than it was stored waits for the stores.
    NameAndValue(const NameAndValue& other) : name(other.name), bytes(other.bytes), size(other.size) {}
    NameAndValue& operator=(const NameAndValue& other) {
        name = other.name;
        bytes = other.bytes;
        size = other.size;
        return *this;
    }
    ~NameAndValue() = default;

    std::string_view value() const { return {bytes, size}; }

    const SharedName* name;
    const char* bytes;  // of the value
    std::size_t size;
};

// The attributes of one tag, before there are nodes for them: what is the same for GivenAttributes and TagAttributes.
// Given is a NameAndValue. In the order of the text at first.
template <class Given>
class AttributeList {
public:
    AttributeList(const AttributeList&) = delete;
    AttributeList& operator=(const AttributeList&) = delete;

    bool empty() const { return all.empty(); }
    std::size_t size() const { return all.size(); }
    const Given& operator[](std::size_t place) const { return all[place]; }
    const Given* begin() const { return all.begin(); }
    const Given* end() const { return all.end(); }

    // Another value for one of them.
    void setValue(std::size_t place, std::string_view value) {
        Given& given = all[place];
        longSize += longSizeOf(value) - longSizeOf(given.value());
        given.bytes = value.data();
        given.size = value.size();
    }

    // The bytes of all values that are not short.
    std::size_t longBytes() const { return longSize; }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    // Whether they are in the byte order of their names, each of another name, for certain.
    bool areSorted() const { return isSorted; }

protected:
    AttributeList() = default;
    ~AttributeList() = default;

    void clear() {
        all.clear();
        last = 0;
        longSize = 0;
        isSorted = true;
        padded = false;
    }

    template <class... More>
    void add(const SharedName& name, std::string_view value, const More&... more) {
        all.add(name, value, more...);
        longSize += longSizeOf(value);
        const Words::Word order = name.order();
        isSorted &= last < order;
        last = order;
    }

    // Puts them in that order, where they are not; those of one name stay in theirs. Returns whether there are such.
    bool sortAll() {
        isSorted = true;
        if (all.size() == 2 && all[1].name->isBefore(*all[0].name)) {
            std::swap(all[0], all[1]);
            return false;
        }
        return sortByName(all.begin(), all.end());
    }

    static std::size_t longSizeOf(std::string_view value) { return internal::isShort(value) ? 0 : value.size(); }

    FewFirst<Given> all;
    std::size_t longSize = 0;

private:
    Words::Word last = 0;  // the order of the last one's name
    bool isSorted = true;  // for certain
    bool padded = false;
};

}  // namespace Xml
