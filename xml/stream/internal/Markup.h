#pragma once

#include "xml/stream/InStream.h"
#include <utility>

namespace Xml {

// A token begun with "<!" or "<?" whose rest is being tried.
struct InStream::OpenMarkup {
    enum State { Name, Bracket, Cdata, CdataBracket };

    char kind;  // '!' or '?'
    State state;
    bool nested;                // the token just tried begins with '<' itself
    std::pair<int, int> begin;  // behind the '<'
    std::pair<int, int> saved;  // where to come back to
    unsigned errorCount;        // when it was begun
};

}  // namespace Xml
