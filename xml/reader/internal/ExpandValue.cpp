#include "xml/reader/internal/ExpandValue.h"

#include "xml/dtd/internal/DtdAccess.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/internal/Expansion.h"
#include <algorithm>
#include <utility>

namespace Xml {

bool expandValue(const InStream& in, DataHolder& value, Dtd* dtd) {
    Expansion expansion;
    if (dtd == nullptr) return expandReferences(value, dtd, expansion);

    // Honest documents may be large; only text that is out of all proportion to what was read is refused.
    constexpr std::int64_t kHonestFactor = 100;
    expansion.made = DtdAccess::entityGrowth(*dtd);
    if (const std::int64_t limit = DtdAccess::entityGrowthLimit(); limit > 0) {
        expansion.most =
            std::max(limit, kHonestFactor * (DtdAccess::bytesReadBefore(*dtd) + StreamAccess::bytesRead(in)));
    }
    if (!expandReferences(value, dtd, expansion)) return false;
    DtdAccess::entityGrowth(*dtd) = expansion.made;
    return true;
}

OwnGrowth::OwnGrowth(const InStream& in, Dtd* dtd) : counted(StreamAccess::isOutermost(in) ? dtd : nullptr) {
    if (counted != nullptr) before = std::exchange(DtdAccess::entityGrowth(*counted), 0);
}

OwnGrowth::~OwnGrowth() {
    if (counted != nullptr) DtdAccess::entityGrowth(*counted) = before;
}

}  // namespace Xml
