#include "xml/dtd/internal/VerdictTable.h"

namespace Xml {

namespace {

thread_local VerdictTable* tableInUse = nullptr;

}  // namespace

VerdictTable::Use::Use(VerdictTable& own)
    : inUse(tableInUse != nullptr ? *tableInUse : own), isOutermost(tableInUse == nullptr) {
    tableInUse = &inUse;
}

VerdictTable::Use::~Use() {
    if (isOutermost) tableInUse = nullptr;
}

}  // namespace Xml
