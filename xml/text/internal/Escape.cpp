#include "xml/text/internal/Escape.h"

namespace Xml {

void appendEscaped(std::string& result, std::string_view text) {
    const char* done = text.data();
    const char* const end = done + text.size();
    for (const char* at = done; at != end; ++at) {
        const std::string_view reference = referenceFor(*at);
        if (reference.empty()) continue;
        result.append(done, at).append(reference);
        done = at + 1;
    }
    result.append(done, end);
}

}  // namespace Xml
