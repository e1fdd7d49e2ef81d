#include "xml/xpath/internal/PathText.h"

#include "xml/xpath/internal/Operators.h"
#include <algorithm>
#include <iterator>

namespace Xml {

namespace {

// Room for so many literals and brackets, and pieces of white space, is made at once.
constexpr std::size_t kSome = 4;

}  // namespace

PathText::PathText(const OrvSys::Uni16String& path, std::pmr::memory_resource* memory, PathUnits itsUnits)
    : units(itsUnits),
      source(path),
      closed(memory),
      unclosed(path.size()),
      shorter(memory),
      enclosed(memory),
      dropped(memory) {
    enclosed.reserve(kSome);
    const bool hasWhiteSpace = findEnclosed();
    text = source;
    if (hasWhiteSpace) removeWhiteSpace();
}

// Notes what is enclosed by its places in the source. Whether there is white space outside of literals.
bool PathText::findEnclosed() {
    bool hasWhiteSpace = false;
    unsigned bits = 0;                                             // that any unit outside of literals has
    constexpr std::size_t kOpen = 0;                               // the end of a bracket that is not closed yet
    std::pmr::vector<std::size_t> open(enclosed.get_allocator());  // numbers of brackets
    for (Unit at = source.data(), end = at + source.size(); at != end; ++at) {
        bits |= *at;
        if (isPlain(*at)) continue;
        const OrvSys::uni16char unit = *at;
        const auto place = static_cast<std::size_t>(at - source.data());
        if (IsBeginLiteral(unit)) {
            std::size_t close = source.find(unit, place + 1);
            if (close == View::npos) {
                close = source.size();
                closed.assign(source.begin(), source.end());
                closed.push_back(unit);
                source = View(closed.data(), closed.size());
                end = source.data() + source.size();
            }
            enclosed.push_back({place, close + 1});
            at = source.data() + close;
        } else if (unit == u'[') {
            open.push_back(enclosed.size());
            nesting_ = std::max(nesting_, open.size());
            enclosed.push_back({place, kOpen});
        } else if (unit == u']' && !open.empty()) {
            enclosed[open.back()].end = place + 1;
            open.pop_back();
        } else {
            hasWhiteSpace = hasWhiteSpace || IsWhiteSpace(unit);
            mayHaveOperators_ = mayHaveOperators_ || mayBeginOperator(unit);
        }
    }
    isAscii_ = bits <= 0x7F;
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
    shorter.resize(source.size());
    dropped.reserve(kSome);
    const Unit sourceEnd = source.data() + source.size();
    std::size_t place = 0;  // in the text
    const auto copy = [&](Unit from, Unit to) {
        while (from != to) shorter[place++] = *from++;
    };
    auto next = enclosed.begin();
    std::pmr::vector<Enclosed*> open(enclosed.get_allocator());
    for (Unit at = source.data(); at != sourceEnd;) {
        if (isPlain(*at)) {
            shorter[place++] = *at++;
            continue;
        }
        const auto sourcePlace = static_cast<std::size_t>(at - source.data());
        Unit after = at + 1;
        if (IsBeginLiteral(*at)) {
            const std::size_t begin = place;
            after = source.data() + next->end;
            copy(at, after);
            *next++ = {begin, place};
        } else if (IsWhiteSpace(*at) && sourcePlace < unclosed) {
            Unit operatorEnd = at;
            ExtractOperator(operatorEnd, sourceEnd);
            copy(at, operatorEnd);
            if (operatorEnd != at) {
                after = operatorEnd;
            } else {
                dropped.push_back({place, sourcePlace + 1 - place});
            }
        } else {
            shorter[place++] = *at;
            if (next != enclosed.end() && next->begin == sourcePlace) {
                next->begin = place - 1;
                open.push_back(&*next++);
            } else if (!open.empty() && open.back()->end == sourcePlace + 1) {
                open.back()->end = place;
                open.pop_back();
            }
        }
        at = after;
    }
    text = View(shorter.data(), place);
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
