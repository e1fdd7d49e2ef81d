#pragma once

#include "xml/stream/InStream.h"
#include <cstddef>

namespace Xml {

// A token begun with "<!" or "<?" whose rest is being tried.
struct InStream::OpenMarkup {
    enum State { Name, Bracket, Cdata, CdataBracket };

    // What StorePosition tells, with lengths of the parse buffer that an int cannot hold.
    struct Place {
        explicit Place(const InStream& in) : position(in.tell()), length(in.parseBuffer.size()) {}

        void comeBack(InStream& in) const {
            in.seek(position);
            in.parseBuffer.resize(length);
        }

        int position;
        std::size_t length;
    };

    OpenMarkup(char itsKind, const Place& itsBegin, const InStream& in)
        : kind(itsKind), begin(itsBegin), saved(in), errorCount(in.errorCount) {}

    char kind;  // '!' or '?'
    State state = Name;
    bool nested = false;  // the token just tried begins with '<' itself
    Place begin;          // of the mark, behind the '<'
    Place saved;          // where to come back to
    unsigned errorCount;  // when it was begun
};

}  // namespace Xml
