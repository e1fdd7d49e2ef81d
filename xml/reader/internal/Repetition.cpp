#include "xml/reader/internal/Repetition.h"

#include "xml/stream/internal/StreamAccess.h"

namespace Xml {

bool readRepetition(InStream& in, RepType& repetition) {
    repetition = REP_ONCE;
    const int position = StreamAccess::tell(in);
    if (!StreamAccess::getToken(in)) return false;
    const std::string& token = StreamAccess::token(in);
    if (token == "*") {
        repetition = REP_ZERO_OR_MORE;
    } else if (token == "+") {
        repetition = REP_ONE_OR_MORE;
    } else if (token == "?") {
        repetition = REP_OPTIONAL;
    } else {
        StreamAccess::seek(in, position);
    }
    return true;
}

}  // namespace Xml
