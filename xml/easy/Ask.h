#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include "xml/easy/Range.h"
#include "xml/easy/Texts.h"
#include "xml/standard/Problem.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// What a path finds: nodes, or the strings and numbers that it makes; or what is wrong with the path. It is a range of
// the nodes, which it does not own.
template <class Node>
class Selection : public Range<Node> {
public:
    Selection() = default;

    // Not for callers.
    Selection(std::vector<Node*> found, std::vector<std::string> texts, std::optional<Problem> wrong)
        : Range<Node>(std::move(found)), values(std::move(texts)), problem_(std::move(wrong)) {}

    // What is wrong with the path, with the place in it. Finding nothing is no problem.
    const std::optional<Problem>& problem() const { return problem_; }

    // How many results there are, nodes or values.
    std::size_t count() const { return values.empty() ? this->size() : values.size(); }

    // The result with that number, from 0, as text: a string; a number, with six decimals; of a node textOf. Empty
    // where there is none.
    std::string text(std::size_t i) const {
        if (i >= count()) return {};
        return values.empty() ? textOf((*this)[i]) : values[i];
    }

private:
    std::vector<std::string> values;
    std::optional<Problem> problem_;
};

// Asks a tree by a path, from a node of it; docs/paths.md describes the language, docs/easy.md what is stricter here.
// The path is UTF-8, and names in it are those of XML. It is read whole before it is evaluated: what is wrong with it
// is found whatever the tree holds. A tree that is in no document is asked as if its top element were the root of one.
//
// Nothing is kept between two calls, and the tree is only read: several threads may ask at the same time.
ORVXML_API Selection<Object> ask(Object& from, std::string_view path);
ORVXML_API Selection<const Object> ask(const Object& from, std::string_view path);

// A value as a literal of a path, whatever quotes it has:
//
//     Xml::ask(library, "//book[@title = " + Xml::literal(title) + "]")
ORVXML_API std::string literal(std::string_view text);

}  // namespace Xml
