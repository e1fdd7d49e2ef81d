#include "xml/text/internal/EmptyData.h"

namespace Xml {

const DataHolder& emptyData() {
    static const DataHolder empty;
    return empty;
}

}  // namespace Xml
