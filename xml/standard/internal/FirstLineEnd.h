#pragma once

#include "xml/stream/internal/Scan.h"
#include <string_view>

namespace Xml {

// How the first line of a text ends, which comes in pieces.
class FirstLineEnd {
public:
    void look(std::string_view piece) {
        if (isFound || piece.empty()) return;
        const char* at = piece.data();
        const char* const end = at + piece.size();
        if (!hasReturn) {
            at = Scan::findNear<'\n', '\r'>(at, end);
            if (at == end) return;
            hasReturn = *at == '\r';
            isFound = !hasReturn;
            if (isFound || ++at == end) return;
        }
        isFound = true;
        hasBoth = *at == '\n';
    }

    // LF where there is none.
    const char* text() const {
        if (!hasReturn) return "\n";
        return hasBoth ? "\r\n" : "\r";
    }

private:
    bool isFound = false;
    bool hasReturn = false;  // what follows that may be part of it
    bool hasBoth = false;
};

}  // namespace Xml
