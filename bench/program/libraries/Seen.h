// What a walk over a whole tree has come by. Every name, value and text is looked at as a program does that uses it:
// its length and its first byte. The counts show whether two libraries hold the same tree.
#pragma once
#include <cstddef>
#include <string_view>

namespace bench {

inline std::size_t look(std::string_view text) {
    return text.size() + (text.empty() ? 0 : static_cast<unsigned char>(text.front()));
}

struct Seen {
    std::size_t elements = 0;
    std::size_t attributes = 0;
    std::size_t texts = 0;
    std::size_t sum = 0;

    std::size_t nodes() const { return elements + attributes + texts; }

    void element(std::string_view name) { ++elements, sum += look(name); }
    void attribute(std::string_view name, std::string_view value) { ++attributes, sum += look(name) + look(value); }
    void text(std::string_view data) { ++texts, sum += look(data); }
};

// What a reading event by event has come by. Each event is asked for its name and its text, where it has one, and for
// the values of its attributes. A library may give a text in pieces, so the bytes are counted, and not the texts: those
// of comments and instructions are among them.
struct SeenEvents {
    std::size_t elements = 0;
    std::size_t attributes = 0;
    std::size_t textBytes = 0;
    std::size_t sum = 0;

    void name(std::string_view name) { sum += look(name); }
    void attribute(std::string_view value) { ++attributes, sum += look(value); }
    void text(std::string_view data) { textBytes += data.size(), sum += look(data); }

    bool isSameAs(const SeenEvents& other) const {
        return elements == other.elements && attributes == other.attributes && textBytes == other.textBytes;
    }
};

// Walks a tree in document order without recursion. `Ways` knows how nodes hang together: child, next and parent, each
// of which is null where there is none. The top is not visited.
template <class Ways, class Node, class Visit>
void walk(Node top, Visit visit) {
    Node node = Ways::child(top);
    while (node) {
        visit(node);
        if (Node child = Ways::child(node)) {
            node = child;
            continue;
        }
        while (node != top && !Ways::next(node)) node = Ways::parent(node);
        if (node == top) return;
        node = Ways::next(node);
    }
}

}  // namespace bench
