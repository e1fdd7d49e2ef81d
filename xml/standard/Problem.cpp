#include "xml/standard/Problem.h"

namespace Xml {

std::string Problem::toString() const {
    std::string result;
    if (!source.empty()) result += source + ":";
    if (place.line > 0) result += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
    if (!result.empty()) result += ' ';
    return result + "error: " + text;
}

}  // namespace Xml
