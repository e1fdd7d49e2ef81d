#include "xml/dom/internal/AsideTexts.h"

#include "xml/dom/internal/Arena.h"
#include "xml/dom/internal/AsideTable.h"
#include "xml/dom/internal/NodeAccess.h"

namespace Xml {

using Texts = AsideTable<std::string>;

std::string& AsideTexts::of(const Object& node) {
    std::string& text = Texts::theOne().of(node);
    NodeAccess::marks(node).setAside();
    Arena::noteChange(node);
    return text;
}

void AsideTexts::drop(const Object& node) noexcept { Texts::theOne().drop(node); }

}  // namespace Xml
