#include "xml/reader/internal/EntityBudget.h"

#include "xml/dtd/internal/DtdAccess.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/internal/Expansion.h"
#include <algorithm>

namespace Xml {

bool EntityBudget::expand(const InStream& in, DataHolder& value, const Dtd* dtd) {
    constexpr std::int64_t kProportion = 100;
    Expansion expansion;
    if (dtd == nullptr) return expandReferences(value, dtd, expansion);

    expansion.made = made;
    if (const std::int64_t limit = DtdAccess::entityGrowthLimit(); limit > 0) {
        const std::int64_t bytesRead = DtdAccess::bytesReadElsewhere(*dtd) + StreamAccess::bytesRead(in);
        expansion.most = std::max(limit, kProportion * bytesRead);
    }
    if (!expandReferences(value, dtd, expansion)) return false;
    made = expansion.made;
    return true;
}

}  // namespace Xml
