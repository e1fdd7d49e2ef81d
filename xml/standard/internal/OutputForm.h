#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/WriteOptions.h"
#include "xml/standard/internal/Encoder.h"
#include "xml/standard/internal/WriteBuffer.h"
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

struct Prolog;

// The bytes that options ask for.
struct OutputForm {
    std::unique_ptr<Encoder> encoder;  // null: UTF-8
    std::string name;                  // of the encoding
    bool hasMark = false;

    // False where the options are of no use, and `problem` says why.
    bool set(const WriteOptions& options, Problem& problem);
};

// The name of the encoding in the declaration of a document; empty: none. A document that was read in UTF-16 or UTF-32
// has the order of bytes in the options, and in the declaration only where it was there.
std::string declaredEncoding(const WriteOptions& options, const Prolog* prolog);

// Bytes for a text in memory.
class EncodedText final : public WriteSink {
public:
    // The encoder may be null.
    EncodedText(std::string& to, Encoder* itsEncoder) : bytes(to), encoder(itsEncoder) {}

    void take(std::string_view text) override {
        if (encoder == nullptr) {
            bytes.append(text);
        } else {
            isEncoded &= encoder->encode(text, bytes);
        }
    }

    // There is no more. False where some of it turned out to have no form in the encoding.
    bool finish() {
        if (encoder != nullptr) encoder->finish(bytes);
        return isEncoded;
    }

private:
    std::string& bytes;
    Encoder* encoder;
    bool isEncoded = true;
};

}  // namespace Xml
