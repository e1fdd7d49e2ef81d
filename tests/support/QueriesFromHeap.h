#pragma once

#include "xml/xpath/internal/QueryMemory.h"

namespace Xml::test {

// As long as it lives, all that the text of a query is taken apart into comes from the heap.
class QueriesFromHeap {
public:
    QueriesFromHeap() { QueryMemory::isFromHeap = true; }
    ~QueriesFromHeap() { QueryMemory::isFromHeap = false; }
    QueriesFromHeap(const QueriesFromHeap&) = delete;
    QueriesFromHeap& operator=(const QueriesFromHeap&) = delete;
};

}  // namespace Xml::test
