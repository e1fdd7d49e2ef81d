#include "xml/easy/Ask.h"

#include "xml/standard/internal/Excerpt.h"
#include "xml/text/internal/Utf8.h"
#include "xml/xpath/internal/PathQuery.h"
#include <algorithm>

namespace Xml {

namespace {

// Lines end with LF here; a path is seldom more than one.
Place placeIn(std::string_view path, std::size_t at) {
    const std::string_view before = path.substr(0, at);
    const std::size_t lineEnd = before.rfind('\n');
    const std::string_view line = lineEnd == std::string_view::npos ? before : before.substr(lineEnd + 1);
    const auto characters = std::count_if(line.begin(), line.end(), [](char c) { return !Utf8::goesOn(c); });
    Place place;
    place.offset = static_cast<std::int64_t>(at);
    place.line = static_cast<int>(std::count(before.begin(), before.end(), '\n')) + 1;
    place.column = static_cast<int>(characters) + 1;
    return place;
}

Problem problemOf(const PathFault& fault, std::string_view path) {
    const bool isTooMuch =
        fault.code == XPath::EXPRESSION_NESTED_TOO_DEEPLY || fault.code == XPath::EXPRESSION_TOO_COSTLY;
    Problem problem;
    problem.kind = isTooMuch ? Problem::Kind::Limit : Problem::Kind::BadPath;
    problem.place = placeIn(path, fault.place);
    problem.text = messageLine(fault.text);
    const char* const end = path.data() + path.size();
    if (Utf8::check(path.data(), end).end == end) problem.excerpt = excerptOf(path, fault.place);
    return problem;
}

template <class Node>
Selection<Node> selectionOf(const Object& from, std::string_view path) {
    // The tree is only read. What is found has the type that `from` came with.
    PathAnswer answer = answerPath(const_cast<Object&>(from), path);
    std::optional<Problem> problem;
    if (answer.fault) problem = problemOf(*answer.fault, path);
    return {std::vector<Node*>(answer.nodes.begin(), answer.nodes.end()), std::move(answer.values), std::move(problem)};
}

}  // namespace

Selection<Object> ask(Object& from, std::string_view path) { return selectionOf<Object>(from, path); }
Selection<const Object> ask(const Object& from, std::string_view path) { return selectionOf<const Object>(from, path); }

std::string literal(std::string_view text) {
    const char quote = text.find('\'') == std::string_view::npos ? '\'' : '"';
    std::string literal(1, quote);
    for (const char c : text) literal.append(c == quote ? 2 : 1, c);
    return literal + quote;
}

}  // namespace Xml
