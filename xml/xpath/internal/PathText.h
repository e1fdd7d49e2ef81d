#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/internal/Characters.h"
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Predicates may be nested this deep.
constexpr std::size_t kDeepestPath = 1000;

// What the units of a path are: 16-bit text, or bytes of UTF-8 (see ByteUnits).
enum class PathUnits : std::uint8_t { Text, Bytes };

// The text of a query without its white space, and where its literals and brackets end.
//
// White space goes at all levels at once: outside of literals every white-space character that does not belong to an
// operator such as " - " is dropped, also in predicates, and theirs. The text as it was written in brackets stays at
// hand for messages. A literal that is not closed runs to the end and is closed there. After a bracket that is not
// closed nothing is dropped.
//
// Most paths are short and have little of all that: a path without white space is its own text, and only literals and
// brackets are noted.
//
// It costs O(length), whatever the nesting, and O(log n) for each of n literals and brackets.
class PathText {
public:
    // The path must stay. What is noted is put into `memory`.
    explicit PathText(const OrvSys::Uni16String& path,
                      std::pmr::memory_resource* memory = std::pmr::get_default_resource(),
                      PathUnits itsUnits = PathUnits::Text);
    explicit PathText(OrvSys::Uni16String&&) = delete;
    PathText(const PathText&) = delete;
    PathText& operator=(const PathText&) = delete;

    Unit begin() const { return text.data(); }
    Unit end() const { return text.data() + text.size(); }

    // The place after what begins at `at`: a whole literal; a whole "[...]" that is closed; else the one unit.
    Unit after(Unit at) const { return *at == u'[' || IsBeginLiteral(*at) ? afterEnclosed(at) : at + 1; }
    bool isClosedBracket(Unit at) const { return *at == u'[' && afterEnclosed(at) > at + 1; }

    // A part of the text, with what stands in its outermost brackets as it was written. It may end within a
    // bracket or a literal.
    OrvSys::Uni16String written(Unit from, Unit to) const;

    // Where in the path a place of the text is.
    std::size_t sourcePlaceOf(Unit at) const;

    bool hasByteUnits() const { return units == PathUnits::Bytes; }

    // Whether all of it outside of literals is ASCII.
    bool isAscii() const { return isAscii_; }

    // Whether an operator may begin anywhere in it.
    bool mayHaveOperators() const { return mayHaveOperators_; }

    // The greatest number of brackets that are open at one place.
    std::size_t nesting() const { return nesting_; }

private:
    using View = std::basic_string_view<OrvSys::uni16char, OrvSys::Core::uni16char_traits>;
    using Units = std::pmr::vector<OrvSys::uni16char>;

    // A literal, or brackets that are closed: the place where it begins, and the place after it.
    struct Enclosed {
        std::size_t begin;
        std::size_t end;
    };

    // How many units of the source are missing from the text from that place of it on.
    struct Dropped {
        std::size_t from;
        std::size_t units;
    };

    std::size_t findEnclosed();
    void removeWhiteSpace(std::size_t white);
    std::size_t textPlaceOf(std::size_t sourcePlace) const;
    Unit afterEnclosed(Unit at) const;

    const PathUnits units;
    View source;           // the path, its last literal closed
    Units closed;          // the same, where one had to be closed
    std::size_t unclosed;  // the place of the first bracket in the source that is not closed, else its length
    std::size_t nesting_ = 0;
    bool mayHaveOperators_ = false;
    bool isAscii_ = false;

    View text;
    Units shorter;                        // the text, where the source has white space
    std::pmr::vector<Enclosed> enclosed;  // in the order in which they begin in the text
    std::pmr::vector<Dropped> dropped;
};

}  // namespace Xml
