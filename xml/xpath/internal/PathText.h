#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/internal/Characters.h"
#include <cstddef>
#include <vector>

namespace Xml {

// The text of a query without its white space, and where its literals and brackets end.
//
// White space goes at all levels at once: outside of literals every white-space character that does not belong to an
// operator such as " - " is dropped, also in predicates, and theirs. The text as it was written in brackets stays at
// hand for messages. A literal that is not closed runs to the end and is closed there. After a bracket that is not
// closed nothing is dropped.
//
// It costs O(length), whatever the nesting.
class PathText {
public:
    explicit PathText(const OrvSys::Uni16String& path);

    Unit begin() const { return text.data(); }
    Unit end() const { return text.data() + text.size(); }

    // The place after what begins at `at`: a whole literal; a whole "[...]" that is closed; else the one unit.
    Unit after(Unit at) const { return begin() + next[static_cast<std::size_t>(at - begin())]; }
    bool isClosedBracket(Unit at) const { return *at == u'[' && after(at) > at + 1; }

    // A part of the text, with what stands in its outermost brackets as it was written. It may end within a
    // bracket or a literal.
    OrvSys::Uni16String written(Unit from, Unit to) const;

    // The greatest number of brackets that are open at one place.
    std::size_t nesting() const { return nesting_; }

private:
    void findEnds();
    void removeWhiteSpace();

    OrvSys::Uni16String source;           // the path, its last literal closed
    std::vector<std::size_t> sourceNext;  // as `next`, in the source
    std::size_t unclosed = 0;  // the place of the first bracket in the source that is not closed, else its length
    std::size_t nesting_ = 0;

    OrvSys::Uni16String text;
    std::vector<std::size_t> next;         // for each unit the place after what begins there
    std::vector<std::size_t> sourcePlace;  // of each unit
};

}  // namespace Xml
