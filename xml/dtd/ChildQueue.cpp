#include "xml/dtd/ChildQueue.h"

namespace Xml {

ChildQueue::ChildQueue(const std::vector<Object*>& children)
    : head(children.data()), end(children.data() + children.size()) {}

}  // namespace Xml
