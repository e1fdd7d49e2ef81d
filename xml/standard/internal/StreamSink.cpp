#include "xml/standard/internal/StreamSink.h"

#include "xml/text/internal/IoGuard.h"
#include <ostream>

namespace Xml {

void StreamSink::pass() {
    if (waiting.empty()) return;
    if (encoder == nullptr) {
        write(waiting);
    } else {
        encoded.clear();
        isRight &= encoder->encode(waiting, encoded);
        write(encoded);
    }
    waiting.clear();
}

bool StreamSink::finish() {
    pass();
    if (encoder != nullptr) {
        encoded.clear();
        encoder->finish(encoded);
        write(encoded);
    }
    withoutExceptions([this] { stream.flush(); });
    return isRight && stream.good();
}

void StreamSink::write(std::string_view bytes) {
    withoutExceptions([&] { stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); });
}

}  // namespace Xml
