#pragma once

#include "xml/Export.h"
#include "xml/dom/Place.h"
#include <cstdint>
#include <string>

namespace Xml {

// What is wrong with a document, where, and by which rule.
struct Problem {
    enum class Kind : std::uint8_t {
        NotFound,
        Unreadable,
        Malformed,
        Namespace,
        Invalid,
        Refused,
        Limit,
        Unsupported,
        Unwritable,
        BadPath,
    };
    Kind kind = Kind::Malformed;
    std::string source;  // the file, or a name that the caller gave
    Place place;
    std::string text;  // one line: </port> expected, found </prot> (<port> began at 4:5)
    std::string rule;  // the production or constraint by its name in the recommendation: Element Type Match
    std::string path;  // the element in question, counted among its namesakes: /order[1]/item[2]; by a StreamReader or
                       // a StreamWriter not counted: /order/item. Of more than 32 steps the first and the last 16
    std::string excerpt;  // the source's line, and below it a caret; control characters are U+FFFD

    // app.xml:4:15: error: </port> expected, found </prot> (<port> began at 4:5)
    // What is not known is left out, with its colon. A line: control characters in the source's name are U+FFFD.
    ORVXML_API std::string toString() const;
};

}  // namespace Xml
