#pragma once

#include "xml/stream/internal/StreamAccess.h"
#include <string>

namespace Xml {

class Reader;

// The one way from a reader to code that may be a caller's: an overridden Reader::message, the handler of diagnostics.
// Such code may look at the source, which stands where it should only after the window went back. A layout test holds
// that no reader has another way.
struct Report {
    // Calls Reader::message.
    static void message(Reader& reader, InStream& in, const std::string& text);

    // Calls it for a nested reader that failed; the reader that runs it takes over what it says.
    static void nestedMessage(Reader& outer, Reader&& nested, InStream& in, const std::string& text);

    // Issues a diagnostic.
    static void diagnose(const InStream& in, const std::string& text);

    // Carries out something that may issue diagnostics itself.
    template <class Operation>
    static decltype(auto) during(const InStream& in, Operation operation) {
        StreamAccess::release(in);
        return operation();
    }
};

}  // namespace Xml
