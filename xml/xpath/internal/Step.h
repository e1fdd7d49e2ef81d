#pragma once

#include "xml/xpath/internal/Characters.h"
#include "xml/xpath/internal/NodeTest.h"
#include "xml/xpath/internal/PathError.h"
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace Xml {

class PathText;

enum class Axis : std::uint8_t {
    Attribute,
    Child,
    Descendant,
    Parent,
    Ancestor,
    FollowingSibling,
    PrecedingSibling,
    Following,
    Preceding,
    DescendantOrSelf,
    AncestorOrSelf,
    Self
};

// A part of a path's text.
struct Span {
    Unit begin = nullptr;
    Unit end = nullptr;
};

// One step of a path: an axis, a node test, and the texts of its predicates.
struct Step {
    explicit Step(std::pmr::memory_resource* memory = std::pmr::get_default_resource()) : predicates(memory) {}

    // Reads the step that begins at `at`, with the slashes in front of it, and moves `at` after it and the slash that
    // ends it. False, and the error set, where there is none.
    bool read(const PathText& text, Unit& at, Unit end, PathError& error);

    // Whether it finds at most one node from each.
    bool isParent() const { return axis == Axis::Parent && slashes == 0; }

    // Whether the first predicate counts positions from the end of what the step found. This is so on five axes, not
    // only on those that lead backwards.
    bool isReverse() const;

    // The step as it is written: with its axis and without its predicates; and the other way round.
    OrvSys::Uni16String withAxis(const PathText& text) const;
    OrvSys::Uni16String withPredicates(const PathText& text) const;

    // The slashes of "//" in front of it, after the one that ended the step before. With any the step goes out from the
    // context nodes and from all nodes below them.
    unsigned slashes = 0;

    Axis axis = Axis::Child;
    bool isLast = false;
    NodeTest test;
    std::pmr::vector<Span> predicates;  // without their brackets

private:
    // `nameEnd` is after the characters of names that the step begins with.
    bool readWord(Unit nameEnd, Unit end);
    void findEnd(const PathText& text, Unit nameEnd, Unit end);
    bool extractPredicates(const PathText& text, PathError& error);
    bool extractAxis(const PathText& text, Unit nameEnd, PathError& error);
    bool readTest(const PathText& text, Unit nameEnd, PathError& error);

    Span whole;
    Unit headEnd = nullptr;    // where the predicates begin
    Unit testBegin = nullptr;  // null where "." or ".." stands for the whole step
};

}  // namespace Xml
