#pragma once

#include "orvsys/Uni16.h"
#include "xml/Export.h"
#include <cstdint>
#include <memory>

namespace Xml {

class Object;

// Asks a tree by path expressions. The query object stands on a context, at first the node that it is made over; every
// query replaces the context by its results, and a path that does not begin with "/" starts from there.
//
//     Xml::XPath query(document);
//     for (unsigned i = 0, n = query.GetValues(u"//item[@price > 10]/name"); i < n; ++i) use(query.GetValue(i, -1));
//
// docs/paths.md describes the language. Paths, texts and names are 16-bit text. The tree is only read; it is not owned,
// and what a result points to is good as long as it stays in the tree. A query object belongs to one thread at a time.
//
// No path makes an operation throw, but for std::bad_alloc, or takes more than its share of stack: whatever is wrong
// with it ends in an error code, and a false, zero or empty result. So does asking for too much: arithmetic over more
// than 16 million pairs, or more visits than setWorkLimit allows. Code and text of an error stay until the next
// operation that says that it resets them. Finding nothing is not a failure; it leaves the code NODE_NOT_FOUND and the
// step that found nothing.
class ORVXML_API XPath {
public:
    enum ErrorCode {
        NONE,
        INDEX_OUT_OF_BOUNDS,
        NODE_NOT_FOUND,
        NODE_CONTAINS_NO_DATA,
        DOUBLE_SLASH_AT_THE_END_NOT_ALLOWED,
        NO_XPATH_SPECIFIED,
        ILLEGAL_CHAR_AFTER_ATTRIBUTEVALUE,
        ILLEGAL_CHAR_AFTER_FUNCTION,
        ILLEGAL_CHAR_AFTER_KINDTEST,
        ILLEGAL_CHAR_IN_NUMBER,
        ILLEGAL_CHAR_AFTER_PREDICATE,
        NO_VALID_ATTRIBUTE_NAME,
        NO_VALID_NAME_OR_TEST,
        RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES,
        SLASH_AT_END_NOT_ALLOWED,
        NO_VALID_AXIS,
        NO_VALID_INITIAL_AXIS,
        NO_VALID_COMPARISON_OPERATOR,
        MISSING_QUOTE_BEFORE_ATTRIBUTE_VALUE,
        MISSING_QUOTE_AFTER_ATTRIBUTE_VALUE,
        MISSING_CLOSING_BRACKET_AFTER_PREDICATE,
        MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION,
        MISSING_OPENING_PARENTHESE_AFTER_FUNCTION,
        MISSING_CLOSING_PARENTHESE_AFTER_KIND_TEST,
        MISSING_OPENING_PARENTHESE_AFTER_KIND_TEST,
        FIRST_LAST_OR_NUMBER_AFTER_POSITION_EXPECTED,
        CONTEXT_IS_NOT_A_NODE,
        EXPRESSION_NESTED_TOO_DEEPLY,
        EXPRESSION_TOO_COSTLY
    };

    // One result. The kind says which of the last four fields holds it; the others are empty.
    struct ORVXML_API ResultItem {
        ResultItem() = default;
        ResultItem(const ResultItem& other);
        ResultItem& operator=(const ResultItem& other);

        std::int32_t contextTag = -1;  // the index of the context node that a value was computed for; -1: for none
        std::int32_t kind = 0;         // 0 node, 1 string, 2 number, 3 boolean, which no path yields
        Object* node = nullptr;
        OrvSys::Uni16String string;
        double number = 0;
        bool boolean = false;
    };

    // Stands on that node, in the document above it. Without a node, or above it no document, GetValues and GetValue by
    // path find nothing and report nothing.
    explicit XPath(Object* context);
    ~XPath();
    XPath(const XPath&) = delete;
    XPath& operator=(const XPath&) = delete;

    // How often one query may visit a node, in all its steps and predicates together, or make a number; 0, as at first,
    // for no limit. A query that goes past it, by a row of siblings at most, ends with EXPRESSION_TOO_COSTLY. Returns
    // what was set before. It is a setting for all query objects, not to be made while queries run in other threads.
    // What counts as a visit may become less from version to version.
    static std::int64_t setWorkLimit(std::int64_t visits);

    // Evaluates the path and makes what it yields the results; false on an error, and then there are none. It resets no
    // error: an error of before stays unless a new one takes its place. After SyntaxOK it only checks, as that does,
    // until GetValues or GetValue by path is called.
    bool FindNodes(const OrvSys::Uni16String& path);

    unsigned GetNrOfResults() const;

    // Evaluates the path; the number of results, 0 on an error. Resets the error of before.
    unsigned GetValues(const OrvSys::Uni16String& path);

    // The same, and the first result as GetValue(0, token) gives it; empty on an error or without a result.
    OrvSys::Uni16String GetValue(const OrvSys::Uni16String& path, int token);

    // The result with that 0-based index as text: the text of a node, a string, a number with six decimals. Of
    // an attribute a token other than -1 takes one word: the token-th, from 0, of the parts between blanks. Resets the
    // error code; an index or a word that is not there gives INDEX_OUT_OF_BOUNDS and an empty text.
    OrvSys::Uni16String GetValue(unsigned index, int token);

    // The text of a node: an attribute's value, character data decoded, of an element the first character data among
    // its children; else, and for null, empty.
    OrvSys::Uni16String GetValue(Object* node) const;

    // Whether the path can be read, from its first step to its last and in all predicates, whatever the tree holds. The
    // results stay. Resets the error of before.
    bool SyntaxOK(const OrvSys::Uni16String& path);

    // The localised text of the error (OrvSys::Localization, domain "XPath"), for most followed by " --> " and the part
    // of the path that caused it.
    OrvSys::Uni16String GetErrorString();

    ErrorCode GetErrorCode() const;

    // The result with that index, which must be below GetNrOfResults(). Good until the next query.
    const ResultItem& GetResult(unsigned index) const;

private:
    struct ORVXML_LOCAL Kept;

    std::unique_ptr<Kept> kept;
};

}  // namespace Xml
