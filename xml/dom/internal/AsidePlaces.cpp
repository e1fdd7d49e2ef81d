#include "xml/dom/internal/AsidePlaces.h"

#include "xml/dom/internal/AsideTable.h"

namespace Xml {

using Places = AsideTable<Place>;

Place& AsidePlaces::of(const Object& node) { return Places::theOne().of(node); }

void AsidePlaces::drop(const Object& node) noexcept { Places::theOne().drop(node); }

}  // namespace Xml
