#include "xml/dtd/ChildQueue.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include <algorithm>

namespace Xml {

ChildQueue::ChildQueue(const std::vector<Object*>& children)
    : ChildQueue(children.data(), children.data() + children.size()) {}

ChildQueue::ChildQueue(Object* const* begin, Object* const* end)
    : head(begin),
      waiting(static_cast<std::size_t>(
          std::count_if(begin, end, [](const Object* node) { return !isPassedOver(*node); }))) {
    if (waiting > 0) skip();
}

void ChildQueue::pop() {
    ++head;
    if (--waiting > 0) skip();
}

void ChildQueue::skip() {
    while (isPassedOver(**head)) ++head;
}

}  // namespace Xml
