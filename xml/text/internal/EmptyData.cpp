#include "xml/text/internal/EmptyData.h"

#include "xml/text/internal/NeverDestroyed.h"

namespace Xml {

const DataHolder& emptyData() {
    static NeverDestroyed<DataHolder> empty;
    return empty.get();
}

}  // namespace Xml
