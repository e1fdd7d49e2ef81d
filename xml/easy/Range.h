#pragma once

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Xml {

// Nodes one after the other, to be walked by a loop:
//
//     for (Xml::Element& dish : Xml::elements(menu, "dish")) ...
//
// It is a snapshot of pointers: nodes may be added, moved and taken out meanwhile, which it does not show. One that was
// destroyed must not be reached. It owns none of them.
template <class Node>
class Range {
public:
    class Iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = Node;
        using difference_type = std::ptrdiff_t;
        using pointer = Node*;
        using reference = Node&;

        Iterator() = default;
        explicit Iterator(Node* const* place) : at(place) {}

        reference operator*() const { return **at; }
        pointer operator->() const { return *at; }
        reference operator[](difference_type n) const { return *at[n]; }

        Iterator& operator++() { return *this += 1; }
        Iterator operator++(int) { return std::exchange(*this, *this + 1); }
        Iterator& operator--() { return *this -= 1; }
        Iterator operator--(int) { return std::exchange(*this, *this - 1); }
        Iterator& operator+=(difference_type n) {
            at += n;
            return *this;
        }
        Iterator& operator-=(difference_type n) { return *this += -n; }

        friend Iterator operator+(Iterator i, difference_type n) { return i += n; }
        friend Iterator operator+(difference_type n, Iterator i) { return i += n; }
        friend Iterator operator-(Iterator i, difference_type n) { return i -= n; }
        friend difference_type operator-(Iterator a, Iterator b) { return a.at - b.at; }

        friend bool operator==(Iterator a, Iterator b) { return a.at == b.at; }
        friend bool operator!=(Iterator a, Iterator b) { return a.at != b.at; }
        friend bool operator<(Iterator a, Iterator b) { return a.at < b.at; }
        friend bool operator>(Iterator a, Iterator b) { return b < a; }
        friend bool operator<=(Iterator a, Iterator b) { return !(b < a); }
        friend bool operator>=(Iterator a, Iterator b) { return !(a < b); }

    private:
        Node* const* at = nullptr;
    };
    using iterator = Iterator;
    using const_iterator = Iterator;
    using value_type = Node;

    Range() = default;

    // None of the pointers is null.
    explicit Range(std::vector<Node*> all) : nodes(std::move(all)) {}

    Iterator begin() const { return Iterator(nodes.data()); }
    Iterator end() const { return Iterator(nodes.data() + nodes.size()); }
    std::size_t size() const { return nodes.size(); }
    bool empty() const { return nodes.empty(); }

    // A place below size().
    Node& operator[](std::size_t place) const { return *nodes[place]; }

    // Null when empty.
    Node* first() const { return nodes.empty() ? nullptr : nodes.front(); }

private:
    std::vector<Node*> nodes;
};

}  // namespace Xml
