#include "xml/standard/Problem.h"

#include "xml/standard/internal/Excerpt.h"

namespace Xml {

std::string Problem::toString() const {
    std::string result;
    if (!source.empty()) result += visible(source) + ":";
    if (place.line > 0) result += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
    if (!result.empty()) result += ' ';
    return result + "error: " + text;
}

}  // namespace Xml
