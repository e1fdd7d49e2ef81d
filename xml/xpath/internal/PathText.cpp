#include "xml/xpath/internal/PathText.h"

#include "xml/xpath/internal/Operators.h"
#include <algorithm>
#include <iterator>
#include <utility>

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
    const std::size_t white = findEnclosed();
    text = source;
    if (white != View::npos) removeWhiteSpace(white);
}

// Notes what is enclosed by its places in the source. Returns the place of the first white space that may be dropped,
// npos without any.
std::size_t PathText::findEnclosed() {
    // Brackets that are not closed yet are a chain: in the place of its end, each has the number of the one around it.
    constexpr std::size_t kNone = View::npos;
    std::size_t innermost = kNone;
    std::size_t open = 0;
    std::size_t white = kNone;
    unsigned bits = 0;  // that any unit outside of literals has
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
            nesting_ = std::max(nesting_, ++open);
            enclosed.push_back({place, innermost});
            innermost = enclosed.size() - 1;
        } else if (unit == u']' && open > 0) {
            --open;
            innermost = std::exchange(enclosed[innermost].end, place + 1);
        } else {
            if (white == kNone && IsWhiteSpace(unit)) white = place;
            mayHaveOperators_ = mayHaveOperators_ || mayBeginOperator(unit);
        }
    }
    isAscii_ = bits <= 0x7F;
    unclosed = source.size();
    if (open > 0) {
        constexpr std::size_t kOpen = 0;
        while (innermost != kNone) {
            unclosed = enclosed[innermost].begin;
            innermost = std::exchange(enclosed[innermost].end, kOpen);
        }
        const auto isOpen = [](const Enclosed& bracket) { return bracket.end == kOpen; };
        enclosed.erase(std::remove_if(enclosed.begin(), enclosed.end(), isOpen), enclosed.end());
    }
    return white < unclosed ? white : kNone;
}

// Makes the text, and turns the places of what is enclosed into those in the text. The first white space is at `white`.
void PathText::removeWhiteSpace(std::size_t white) {
    shorter.resize(source.size());
    dropped.reserve(kSome);
    OrvSys::uni16char* const begin = shorter.data();
    OrvSys::uni16char* end = begin;
    Unit run = source.data();  // from here on the text is as the source
    const Unit sourceEnd = source.data() + source.size();
    auto next = std::partition_point(enclosed.begin(), enclosed.end(),
                                     [&](const Enclosed& each) { return each.begin < white; });
    for (Unit at = source.data() + white; at != source.data() + unclosed;) {
        if (isPlain(*at)) {
            ++at;
            continue;
        }
        Unit operatorEnd = at;
        if (next != enclosed.end() && source.data() + next->begin == at) {
            at = IsBeginLiteral(*at) ? source.data() + next->end : at + 1;
            ++next;
        } else if (!IsWhiteSpace(*at)) {
            ++at;
        } else if (ExtractOperator(operatorEnd, sourceEnd) != Operator::None) {
            at = operatorEnd;
        } else {
            end = std::copy(run, at, end);
            run = ++at;
            const auto place = static_cast<std::size_t>(end - begin);
            dropped.push_back({place, static_cast<std::size_t>(run - source.data()) - place});
        }
    }
    end = std::copy(run, sourceEnd, end);
    text = View(begin, static_cast<std::size_t>(end - begin));
    for (Enclosed& each : enclosed) each = {textPlaceOf(each.begin), textPlaceOf(each.end - 1) + 1};
}

// Of a place in the source that was not dropped.
std::size_t PathText::textPlaceOf(std::size_t sourcePlace) const {
    const auto after =
        std::upper_bound(dropped.begin(), dropped.end(), sourcePlace,
                         [](std::size_t wanted, const Dropped& each) { return wanted < each.from + each.units; });
    return after != dropped.begin() ? sourcePlace - std::prev(after)->units : sourcePlace;
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
