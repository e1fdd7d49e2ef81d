#include "xml/xpath/internal/PathText.h"

#include "xml/xpath/internal/Operators.h"
#include <algorithm>
#include <iterator>

namespace Xml {

PathText::PathText(const OrvSys::Uni16String& path, std::pmr::memory_resource* memory)
    : source(path), closed(memory), unclosed(path.size()), shorter(memory), enclosed(memory), dropped(memory) {
    const bool hasWhiteSpace = findEnclosed();
    text = source;
    if (hasWhiteSpace) removeWhiteSpace();
}

// Notes what is enclosed by its places in the source. Whether there is white space outside of literals.
bool PathText::findEnclosed() {
    bool hasWhiteSpace = false;
    constexpr std::size_t kOpen = 0;                               // the end of a bracket that is not closed yet
    std::pmr::vector<std::size_t> open(enclosed.get_allocator());  // numbers of brackets
    for (std::size_t at = 0; at < source.size(); ++at) {
        const OrvSys::uni16char unit = source[at];
        if (isNCChar(unit)) continue;
        if (IsBeginLiteral(unit)) {
            std::size_t close = source.find(unit, at + 1);
            if (close == View::npos) {
                close = source.size();
                closed = source;
                closed += unit;
                source = closed;
            }
            enclosed.push_back({at, close + 1});
            at = close;
        } else if (unit == u'[') {
            open.push_back(enclosed.size());
            nesting_ = std::max(nesting_, open.size());
            enclosed.push_back({at, kOpen});
        } else if (unit == u']' && !open.empty()) {
            enclosed[open.back()].end = at + 1;
            open.pop_back();
        } else if (IsWhiteSpace(unit)) {
            hasWhiteSpace = true;
        }
    }
    unclosed = source.size();
    if (!open.empty()) {
        unclosed = enclosed[open.front()].begin;
        const auto isOpen = [](const Enclosed& bracket) { return bracket.end == kOpen; };
        enclosed.erase(std::remove_if(enclosed.begin(), enclosed.end(), isOpen), enclosed.end());
    }
    return hasWhiteSpace;
}

// Makes the text, and turns the places of what is enclosed into those in the text.
void PathText::removeWhiteSpace() {
    shorter.reserve(source.size());
    const Unit sourceBegin = source.data();
    const Unit sourceEnd = sourceBegin + source.size();
    auto next = enclosed.begin();
    std::pmr::vector<Enclosed*> open(enclosed.get_allocator());
    for (std::size_t at = 0; at < source.size();) {
        const std::size_t place = shorter.size();
        std::size_t after = at + 1;
        if (IsBeginLiteral(source[at])) {
            after = next->end;
            shorter.append(source, at, after - at);
            *next++ = {place, shorter.size()};
        } else if (IsWhiteSpace(source[at]) && at < unclosed) {
            Unit operatorEnd = sourceBegin + at;
            ExtractOperator(operatorEnd, sourceEnd);
            const auto kept = static_cast<std::size_t>(operatorEnd - sourceBegin);
            shorter.append(source, at, kept - at);
            after = std::max(after, kept);
            if (kept == at) dropped.push_back({place, at + 1 - place});
        } else {
            shorter += source[at];
            if (next != enclosed.end() && next->begin == at) {
                next->begin = place;
                open.push_back(&*next++);
            } else if (!open.empty() && open.back()->end == after) {
                open.back()->end = shorter.size();
                open.pop_back();
            }
        }
        at = after;
    }
    text = shorter;
}

Unit PathText::afterEnclosed(Unit at) const {
    const auto place = static_cast<std::size_t>(at - begin());
    const auto found = std::lower_bound(enclosed.begin(), enclosed.end(), place,
                                        [](const Enclosed& each, std::size_t wanted) { return each.begin < wanted; });
    return found != enclosed.end() && found->begin == place ? begin() + found->end : at + 1;
}

std::size_t PathText::sourcePlaceOf(Unit at) const {
    const auto place = static_cast<std::size_t>(at - begin());
    const auto after = std::upper_bound(dropped.begin(), dropped.end(), place,
                                        [](std::size_t wanted, const Dropped& each) { return wanted < each.from; });
    return after != dropped.begin() ? place + std::prev(after)->units : place;
}

OrvSys::Uni16String PathText::written(Unit from, Unit to) const {
    OrvSys::Uni16String result;
    while (from < to) {
        const Unit afterThis = after(from);
        if (isClosedBracket(from)) {
            const std::size_t begin = sourcePlaceOf(from);
            const std::size_t end = afterThis <= to ? sourcePlaceOf(afterThis - 1) + 1 : sourcePlaceOf(to);
            result.append(source, begin, end - begin);
        } else {
            result.append(from, std::min(afterThis, to));
        }
        from = afterThis;
    }
    return result;
}

}  // namespace Xml
