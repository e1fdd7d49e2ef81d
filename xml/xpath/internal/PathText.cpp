#include "xml/xpath/internal/PathText.h"

#include "xml/xpath/internal/Operators.h"
#include <algorithm>

namespace Xml {

PathText::PathText(const OrvSys::Uni16String& path) : source(path) {
    findEnds();
    removeWhiteSpace();
}

void PathText::findEnds() {
    sourceNext.resize(source.size());
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < source.size();) {
        std::size_t behind = at + 1;
        if (IsBeginLiteral(source[at])) {
            const std::size_t close = source.find(source[at], at + 1);
            if (close == OrvSys::Uni16String::npos) {
                source += source[at];
                sourceNext.resize(source.size());
                behind = source.size();
            } else {
                behind = close + 1;
            }
        } else if (source[at] == u'[') {
            open.push_back(at);
            nesting_ = std::max(nesting_, open.size());
        } else if (source[at] == u']' && !open.empty()) {
            sourceNext[open.back()] = behind;
            open.pop_back();
        }
        sourceNext[at] = behind;
        at = behind;
    }
    unclosed = open.empty() ? source.size() : open.front();
}

void PathText::removeWhiteSpace() {
    text.reserve(source.size());
    next.reserve(source.size());
    std::vector<std::size_t> open;  // numbers of brackets
    const Unit sourceBegin = source.data();
    const Unit sourceEnd = sourceBegin + source.size();
    const auto copy = [this](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            text += source[i];
            next.push_back(text.size());
        }
    };
    for (std::size_t at = 0; at < source.size();) {
        const std::size_t place = text.size();
        std::size_t behind = at + 1;
        if (IsBeginLiteral(source[at])) {
            behind = sourceNext[at];
            copy(at, behind);
            next[place] = text.size();
        } else if (IsWhiteSpace(source[at]) && at < unclosed) {
            Unit operatorEnd = sourceBegin + at;
            ExtractOperator(operatorEnd, sourceEnd);
            const auto kept = static_cast<std::size_t>(operatorEnd - sourceBegin);
            copy(at, kept);
            behind = std::max(behind, kept);
        } else {
            copy(at, behind);
            if (source[at] == u'[' && sourceNext[at] > behind) {
                open.push_back(brackets.size());
                brackets.push_back({place, at});
            } else if (source[at] == u']' && !open.empty() && sourceNext[brackets[open.back()].sourcePlace] == behind) {
                next[brackets[open.back()].place] = text.size();
                open.pop_back();
            }
        }
        at = behind;
    }
}

OrvSys::Uni16String PathText::written(Unit from, Unit to) const {
    OrvSys::Uni16String result;
    while (from < to) {
        if (isClosedBracket(from)) {
            const auto place = static_cast<std::size_t>(from - begin());
            const auto bracket =
                std::lower_bound(brackets.begin(), brackets.end(), place,
                                 [](const Bracket& b, std::size_t wanted) { return b.place < wanted; });
            result.append(source, bracket->sourcePlace, sourceNext[bracket->sourcePlace] - bracket->sourcePlace);
        } else {
            result.append(from, behind(from));
        }
        from = behind(from);
    }
    return result;
}

}  // namespace Xml
