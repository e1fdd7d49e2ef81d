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
        std::size_t after = at + 1;
        if (IsBeginLiteral(source[at])) {
            const std::size_t close = source.find(source[at], at + 1);
            if (close == OrvSys::Uni16String::npos) {
                source += source[at];
                sourceNext.resize(source.size());
                after = source.size();
            } else {
                after = close + 1;
            }
        } else if (source[at] == u'[') {
            open.push_back(at);
            nesting_ = std::max(nesting_, open.size());
        } else if (source[at] == u']' && !open.empty()) {
            sourceNext[open.back()] = after;
            open.pop_back();
        }
        sourceNext[at] = after;
        at = after;
    }
    unclosed = open.empty() ? source.size() : open.front();
}

void PathText::removeWhiteSpace() {
    text.reserve(source.size());
    next.reserve(source.size());
    std::vector<std::size_t> open;  // the places of brackets in the text
    const Unit sourceBegin = source.data();
    const Unit sourceEnd = sourceBegin + source.size();
    const auto copy = [this](std::size_t from, std::size_t to) {
        for (; from < to; ++from) {
            text += source[from];
            next.push_back(text.size());
            sourcePlace.push_back(from);
        }
    };
    for (std::size_t at = 0; at < source.size();) {
        const std::size_t place = text.size();
        std::size_t after = at + 1;
        if (IsBeginLiteral(source[at])) {
            after = sourceNext[at];
            copy(at, after);
            next[place] = text.size();
        } else if (IsWhiteSpace(source[at]) && at < unclosed) {
            Unit operatorEnd = sourceBegin + at;
            ExtractOperator(operatorEnd, sourceEnd);
            const auto kept = static_cast<std::size_t>(operatorEnd - sourceBegin);
            copy(at, kept);
            after = std::max(after, kept);
        } else {
            copy(at, after);
            if (source[at] == u'[' && sourceNext[at] > after) {
                open.push_back(place);
            } else if (source[at] == u']' && !open.empty() && sourceNext[sourcePlace[open.back()]] == after) {
                next[open.back()] = text.size();
                open.pop_back();
            }
        }
        at = after;
    }
}

OrvSys::Uni16String PathText::written(Unit from, Unit to) const {
    OrvSys::Uni16String result;
    for (Unit afterThis = from; from < to; from = afterThis) {
        afterThis = after(from);
        if (isClosedBracket(from)) {
            const std::size_t begin = sourcePlace[static_cast<std::size_t>(from - this->begin())];
            const std::size_t end =
                afterThis <= to ? sourceNext[begin] : sourcePlace[static_cast<std::size_t>(to - this->begin())];
            result.append(source, begin, end - begin);
        } else {
            result.append(from, std::min(afterThis, to));
        }
    }
    return result;
}

}  // namespace Xml
