#pragma once

#include "xml/dom/NodeKind.h"
#include "xml/dom/NodeSpan.h"
#include "xml/dom/Object.h"
#include <cstddef>
#include <string>

namespace Xml {

// What stands below a node as comparing sees it, one item after the other: a node, or a run of texts, or of sections,
// side by side, with the text of all of them. Empty ones are passed over.
class Items {
public:
    // Good as long as the span.
    explicit Items(internal::NodeSpan nodes) : all(nodes) {}

    // Goes on to the next item, and returns its node, of texts the first; null at the end. The text is put there where
    // it is a text.
    const Object* next(std::string& text);

    // The text of the last item as it is held, references and all.
    std::string held() const;

private:
    internal::NodeSpan all;
    std::size_t begin = 0;  // of the last item
    std::size_t at = 0;     // of the next
};

}  // namespace Xml
