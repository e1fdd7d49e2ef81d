#include "xml/standard/internal/WriteBuffer.h"

namespace Xml {

// What was put is given once, also where the sink throws.
char* WriteBuffer::flushTo(const char* at) {
    used = bytes.get();
    if (at != used) sink.take({used, static_cast<std::size_t>(at - used)});
    return used;
}

bool WriteBuffer::makeRoom(std::string_view text) {
    flush();
    if (text.size() <= kBlock) return true;
    sink.take(text);
    return false;
}

}  // namespace Xml
