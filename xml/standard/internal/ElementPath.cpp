#include "xml/standard/internal/ElementPath.h"

#include "xml/standard/internal/Excerpt.h"

namespace Xml {

void ElementPath::add(std::string_view name, std::size_t number) {
    constexpr std::size_t kEnds = 16;  // are shown of the beginning and of the end
    const std::size_t step = added++;
    if (count > 2 * kEnds && step >= kEnds && step < count - kEnds) {
        if (step == kEnds) shown += "/...";
        return;
    }
    shown.append("/").append(messageLine(name));
    if (number > 0) shown.append("[").append(std::to_string(number)).append("]");
}

}  // namespace Xml
