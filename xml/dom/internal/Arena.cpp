#include "xml/dom/internal/Arena.h"

#include "xml/dom/Element.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/text/internal/LargePages.h"
#include <memory>
#include <new>
#include <utility>

namespace Xml {

void internal::giveBackLent(void* memory) noexcept { Slab::giveBack(memory, 0); }

Arena::~Arena() {
    KeptText* text = kept.load(std::memory_order_acquire);
    while (text != nullptr) delete std::exchange(text, text->next);
    while (SharedName* const name = namesHaveMemory ? names : nullptr) {
        names = name->next;
        if (Slab::of(this).contains(name)) {
            name->~SharedName();
        } else {
            delete name;
        }
    }
    while (WideElement* const one = wide) {
        wide = one->next;
        delete one;
    }
}

void Arena::noteChange(const Object& node) {
    if (NodeAccess::marks(node).isInSlab()) of(&node).noteChange();
}

Arena* Arena::wholeBelow(const Element& top) {
    const NodeSpan children = NodeAccess::children(top);
    if (children.empty() || NodeAccess::marks(top).isEdited() || !NodeAccess::marks(*children[0]).isInSlab())
        return nullptr;
    Arena& arena = of(children[0]);
    return arena.top == &top && !arena.changed.load(std::memory_order_relaxed) ? &arena : nullptr;
}

std::size_t Arena::bytesBelow(const Element& top) {
    const NodeSpan children = NodeAccess::children(top);
    if (children.empty() || !NodeAccess::marks(*children[0]).isInSlab()) return 0;
    const Arena& arena = of(children[0]);
    return arena.top == &top ? arena.slabs.load(std::memory_order_relaxed) * Slab::kBytes : 0;
}

void Arena::drop() {
    for (const WideElement* one = wide; one != nullptr; one = one->next) NodeAccess::dropNodes(*one->element);
    SlabStock::Return toStock;
    Slab* slab = newest;
    while (slab->next != nullptr) Slab::free(std::exchange(slab, slab->next), toStock);
    this->~Arena();
    Slab::free(slab, toStock);
}

KeptText& Arena::keep(std::unique_ptr<KeptText> text) {
    KeptText* const added = text.release();
    added->next = kept.load(std::memory_order_relaxed);
    while (!kept.compare_exchange_weak(added->next, added, std::memory_order_release, std::memory_order_relaxed)) {}
    return *added;
}

void Arena::release(Slab& slab) {
    noteChange();
    SlabStock::Return toStock;
    if (slab.next != nullptr) Slab::free(&slab, toStock);
    if (slabs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        Slab& first = Slab::of(this);
        this->~Arena();
        Slab::free(&first, toStock);
    }
}

// --- Filling it ---

NodeMemory::~NodeMemory() { close(); }

void NodeMemory::close() {
    arena = nullptr;  // it may go with the last slab
    close(std::exchange(nodes, {}));
    close(std::exchange(apart, {}));
}

void NodeMemory::close(const Part& part) {
    if (part.slab != nullptr) part.slab->release(Slab::kFilling - part.count);
}

void NodeMemory::addSlab(Part& part) {
    constexpr std::uint32_t kFromHeap = 2;   // so many slabs are quicker taken from the heap
    constexpr std::uint32_t kTogether = 32;  // so many are within the reach of the processor, however the nodes lie
    Slab* const made = slabCount < kFromHeap ? Slab::make() : Slab::make(stock);
    if (slabCount++ == kTogether) forAttributes = &apart;
    char* high = made->end();
    if (arena == nullptr) {
        high -= sizeof(Arena);
        high -= reinterpret_cast<std::uintptr_t>(high) % alignof(Arena);
        Slab::allow(high, sizeof(Arena));
        arena = ::new (high) Arena(*made);
    } else {
        made->next = arena->newest;
        arena->newest = made;
        arena->slabs.fetch_add(1, std::memory_order_relaxed);
    }
    made->owner = arena;
    close(std::exchange(part, {made, made->begin(), high, 0}));
}

void NodeMemory::noteWide(Element& element) { arena->wide = new Arena::WideElement{&element, arena->wide}; }

SharedName& NodeMemory::takeNameElsewhere(std::string_view name, Words::Word head) {
    if (arena == nullptr) {
        addSlab(nodes);
        return takeName(name, head);  // there is room for it
    }
    arena->names = new SharedName(name, head, arena->names);
    arena->namesHaveMemory = true;
    return *arena->names;
}

KeptText& NodeMemory::takeText(std::string_view text) {
    if (arena == nullptr) addSlab(nodes);
    auto made = std::make_unique<KeptText>();
    LargePages::reserveAll(made->text, text.size());
    made->text = text;
    return arena->keep(std::move(made));
}

void NodeMemory::keepPlaces(std::unique_ptr<const PlaceTable> places) {
    if (arena != nullptr) arena->places = std::move(places);
}

void NodeMemory::finish(const Element& top) {
    if (arena == nullptr) return;
    arena->top = &top;
    close();
}

}  // namespace Xml
