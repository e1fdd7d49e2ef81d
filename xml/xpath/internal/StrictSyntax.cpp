#include "xml/xpath/internal/StrictSyntax.h"

#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include "xml/xpath/internal/ByteUnits.h"
#include "xml/xpath/internal/Operators.h"
#include "xml/xpath/internal/SyntaxWalk.h"
#include <algorithm>
#include <iterator>
#include <variant>
#include <vector>

namespace Xml {

namespace {

SyntaxFault faultAt(std::size_t place, const char* text) { return {place, XPath::NONE, text}; }

// Makes the units of the literal that begins at `at`, and moves that after it. False where it is not closed.
bool takeLiteral(std::string_view path, std::size_t& at, OrvSys::Uni16String& units) {
    const char quote = path[at];
    units[at] = static_cast<unsigned char>(quote);
    for (++at;; ++at) {
        if (at == path.size()) return false;
        const bool isQuote = path[at] == quote;
        const bool isTwice = isQuote && at + 1 < path.size() && path[at + 1] == quote;
        if (isTwice) {
            units[at++] = ByteUnits::quoted(quote);
            units[at] = ByteUnits::kNothing;
        } else if (Utf8::isAscii(path[at])) {
            units[at] = static_cast<unsigned char>(path[at]);
            if (isQuote) break;
        } else {
            units[at] = ByteUnits::quoted(path[at]);
        }
    }
    ++at;
    return true;
}

bool isOperatorWord(Unit from, Unit to) {
    constexpr const char* kWords[] = {"and", "or", "mod", "div", "eq", "ne", "le", "lt", "ge", "gt"};
    return std::any_of(std::begin(kWords), std::end(kWords), [&](const char* word) { return equals(from, to, word); });
}

// A word that is meant as an operator and is none, since there is no such operator or it has no blank on each side. It
// would go on the name before it, as white space is dropped: `@n or @x` is `@nor@x`. The end where there is none.
Unit lostOperator(Unit at, Unit end) {
    enum class After { Other, Name, WhiteAfterName } after = After::Other;
    while (at != end) {
        Unit next = at + 1;
        if (isNCChar(*at)) {
            next = afterNCChars(at, end);
            if (after == After::WhiteAfterName && isOperatorWord(at, next)) return at;
            after = After::Name;
        } else if (IsWhiteSpace(*at)) {
            next = at;
            const bool isOperator = ExtractOperator(next, end) != Operator::None;
            after = isOperator || after == After::Other ? After::Other : After::WhiteAfterName;
            next = std::max(next, at + 1);
        } else {
            if (IsBeginLiteral(*at)) next = std::find(at + 1, end, *at) + 1;
            after = After::Other;
        }
        at = next;
    }
    return end;
}

// The name of a node test: a name, what stands before its colon with that, or what stands after it.
bool isTestName(std::string_view name) {
    if (std::all_of(name.begin(), name.end(), Utf8::isAscii)) return true;  // was looked at
    const std::size_t colon = std::min(name.find(':'), name.size());
    const std::string_view local = name.substr(std::min(colon + 1, name.size()));
    const bool hasPrefix = colon < name.size();
    return StandardNames::isNCName(name.substr(0, colon)) &&
           (!hasPrefix || local.empty() || StandardNames::isNCName(local));
}

class Watcher {
public:
    explicit Watcher(const PathText& itsText) : text(itsText), at(text.begin()) {}

    bool beforeOperand(const ExpressionItem& item) {
        at = item.text.begin;
        if (item.text.begin == item.text.end || !IsBeginLiteral(*at)) return true;
        const Unit after = text.after(at);
        return after == item.text.end || refuse(after, "Nothing may follow a literal but an operator");
    }

    bool afterOperand(const ExpressionItem&, std::size_t) { return true; }

    void beforeStep(const Path& path) {
        at = std::find_if(path.next, path.end, [](OrvSys::uni16char unit) { return unit != u'/'; });
        isMissing_ = at == path.end;
    }

    bool afterStep(const Path::Read& read) {
        return isTestName(read.step.test.writtenName()) || refuse(at, "This is no name of XML");
    }

    // A predicate must have an operand that belongs to the node.
    bool afterExpression(const Expression::Items& items, std::size_t depth) {
        const auto isOfNode = [](const ExpressionItem& item) {
            const Path* const path = std::get_if<Path>(&item.operand);
            return path != nullptr ? !path->isAbsolute : std::holds_alternative<Function>(item.operand);
        };
        if (depth == 1 || std::any_of(items.begin(), items.end(), isOfNode)) return true;
        return refuse(items.front().text.begin,
                      "A predicate keeps the nodes that it asks something of, and this one asks nothing of them");
    }

    // Where what was read last begins, and what is wrong with it if reading it did not say.
    std::size_t place() const { return text.sourcePlaceOf(at); }
    const char* reason() const { return reason_; }
    bool isMissing() const { return isMissing_; }

private:
    bool refuse(Unit itsPlace, const char* why) {
        at = itsPlace;
        reason_ = why;
        return false;
    }

    const PathText& text;
    Unit at;
    const char* reason_ = nullptr;
    bool isMissing_ = false;  // whether there is nothing there
};

}  // namespace

std::optional<SyntaxFault> toByteUnits(std::string_view path, OrvSys::Uni16String& units) {
    const char* const end = path.data() + path.size();
    const auto valid = static_cast<std::size_t>(Utf8::check(path.data(), end).end - path.data());
    if (valid < path.size()) return faultAt(valid, "This is not UTF-8");
    units.resize(path.size());
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < path.size();) {
        const char c = path[at];
        if (c == '\'' || c == '"') {
            const std::size_t begin = at;
            if (!takeLiteral(path, at, units)) return faultAt(begin, "The closing quote of a literal is missing");
            continue;
        }
        if (!Utf8::isAscii(c)) {
            const Utf8::Character character = Utf8::at(path.data() + at);
            if (!StandardNames::isNameChar(character.value))
                return faultAt(at, "This character belongs to no name, and stands in no literal");
            for (std::ptrdiff_t i = 0; i < character.size; ++i, ++at) units[at] = ByteUnits::quoted(path[at]);
            continue;
        }
        if (c == '[') open.push_back(at);
        if (c == ']') {
            if (open.empty()) return faultAt(at, "This bracket closes nothing");
            open.pop_back();
        }
        units[at++] = static_cast<unsigned char>(c);
    }
    if (!open.empty()) return faultAt(open.front(), "The closing bracket of a predicate is missing");
    const Unit unitsEnd = units.data() + units.size();
    const Unit lost = lostOperator(units.data(), unitsEnd);
    if (lost == unitsEnd) return {};
    return faultAt(static_cast<std::size_t>(lost - units.data()),
                   "Words are operators as eq, ne, le, lt, ge, gt, div between blanks only");
}

std::optional<SyntaxFault> checkStrictly(Expression& query, Expressions& expressions) {
    PathError error;
    Watcher watcher(expressions.text);
    if (walkSyntax(query, expressions, error, watcher)) return {};
    if (error.code != XPath::NONE) {
        const Unit part = error.text.data();
        return SyntaxFault{watcher.place(), error.code, ByteUnits::bytesOf(part, part + error.text.size())};
    }
    if (watcher.reason() != nullptr) return faultAt(watcher.place(), watcher.reason());
    return faultAt(watcher.place(), watcher.isMissing() ? "A step or an operand is missing"
                                                        : "This is neither a step nor a literal nor a number");
}

}  // namespace Xml
