#pragma once

namespace Xml::internal {

// Not for callers: what is under way on a stream, a part of every InStream. Operations run within readers, and readers
// within readers; the guards in StreamAccess.h keep the state.
struct Nesting {
    enum class Work : unsigned char { None, Operation, Reader, InnerReader };

    bool isReaderAtWork() const { return work == Work::Reader || work == Work::InnerReader; }

    Work work = Work::None;
    int readerBegin = 0;  // where the outermost reader that is or was at work began
};

}  // namespace Xml::internal
