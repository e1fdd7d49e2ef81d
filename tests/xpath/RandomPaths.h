#pragma once

#include "orvsys/Uni16.h"
#include "xml/dom/Object.h"
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Xml {
class Document;
class Dtd;
class Element;
}  // namespace Xml

namespace Xml::test {

// Random choices; the same from the same seed everywhere.
class Dice {
public:
    explicit Dice(unsigned seed) : random(seed) {}

    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
    bool chance(int percent) { return below(100) < percent; }

    template <class T>
    const T& pick(const std::vector<T>& values) {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }

private:
    std::mt19937 random;
};

// A small document, and beside it a small element that is in no document. Names, attributes and texts come from few
// words, so that the paths of RandomPaths find something.
class RandomTree {
public:
    explicit RandomTree(Dice& dice);
    ~RandomTree();

    // Any node; sometimes the document type, rarely null.
    Object* context(Dice& dice) const;

    // All nodes of both trees, the document first.
    std::vector<Object*> nodes() const;

    // Where a node stands: "document/2/@n" is the attribute n of the root's third child.
    std::string placeOf(const Object* node) const;

    // Both trees in short.
    std::string text() const;

    std::unique_ptr<Document> document;
    std::unique_ptr<Element> detached;
};

// Random paths over the names and texts of RandomTree. An absolute one begins with "/" and needs no context; others may
// begin with it.
class RandomPaths {
public:
    using Text = OrvSys::Uni16String;

    explicit RandomPaths(Dice& random) : dice(random) {}

    // Of all constructs of the language, with white space where it may stand.
    Text wellFormed(bool absolute);

    // The same with a mistake in some of the steps and operands.
    Text withMistakes(bool absolute);

    // The same with a few units deleted, inserted, replaced or exchanged.
    Text mutated(bool absolute);

    // Pieces of the language in any order.
    Text soup(bool absolute);

private:
    Text fresh(int mistakePercent, bool absolute);
    Text expression(int nesting);
    Text calculation();
    Text operand(int nesting);
    Text path(int nesting, bool absolute);
    Text step(int nesting);
    Text axisAndTest();
    Text elementTest();
    Text attributeTest();
    Text predicate(int nesting);
    Text number();
    Text literal();
    Text binaryOperator();
    Text gap();

    Dice& dice;
    int mistakes = 0;  // percent of the steps and operands that are wrong
    bool spacious = false;
    int stepsLeft = 0;
};

}  // namespace Xml::test
