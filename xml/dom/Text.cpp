#include "xml/dom/Text.h"

#include "xml/dom/internal/Arena.h"
#include <memory>
#include <utility>

namespace Xml::internal {

std::string_view Text::viewOf(const KeptText& kept) { return kept.text; }

const DataHolder& Text::madeString(const Object& node) const {
    KeptText* kept = lent.string.load(std::memory_order_acquire);
    if (kept != nullptr) return kept->text;
    auto made = std::make_unique<KeptText>();
    made->text.assign(lent.bytes, lent.length);
    // The first one to put its string there has made the one for all.
    if (!lent.string.compare_exchange_strong(kept, made.get(), std::memory_order_acq_rel)) return kept->text;
    Arena& arena = Arena::of(&node);
    return arena.keep(std::move(made)).text;
}

void Text::assign(const Object& node, const Marks& marks, DataHolder&& text) {
    if (marks.textPlace() == TextPlace::Own) {
        own = std::move(text);
        Arena::noteChange(node);
        return;
    }
    KeptText* kept = lent.string.load(std::memory_order_acquire);
    if (kept == nullptr) {
        kept = &Arena::of(&node).keep(std::make_unique<KeptText>());
        lent.string.store(kept, std::memory_order_release);
    }
    kept->text = std::move(text);
}

void Text::forgetString() {
    // The arena keeps what it is in, without its storage.
    if (KeptText* const kept = lent.string.load(std::memory_order_acquire)) DataHolder().swap(kept->text);
}

}  // namespace Xml::internal
