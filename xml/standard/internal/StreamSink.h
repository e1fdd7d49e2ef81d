#pragma once

#include "xml/standard/internal/Encoder.h"
#include "xml/standard/internal/WriteBuffer.h"
#include <iosfwd>
#include <string>
#include <string_view>

namespace Xml {

// Bytes for a standard stream, which does not get what is taken before it is passed on.
class StreamSink final : public WriteSink {
public:
    // The encoder may be null.
    StreamSink(std::ostream& out, Encoder* itsEncoder) : stream(out), encoder(itsEncoder) {}

    void take(std::string_view text) override { waiting += text; }

    bool isWaiting() const { return !waiting.empty(); }

    // Leaves so many bytes of what waits.
    void keepOnly(std::size_t size) { waiting.resize(size); }

    void pass();

    // There is no more. False where the stream has failed, or some of it had no form in the encoding.
    bool finish();

private:
    void write(std::string_view bytes);

    std::ostream& stream;
    Encoder* encoder;
    std::string waiting;
    std::string encoded;
    bool isRight = true;
};

}  // namespace Xml
