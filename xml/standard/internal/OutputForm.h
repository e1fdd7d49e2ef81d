#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/WriteOptions.h"
#include "xml/standard/internal/Encoder.h"
#include "xml/standard/internal/Markup.h"
#include "xml/standard/internal/WriteBuffer.h"
#include <cstddef>
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

// Makes bytes of UTF-8, in memory. Whether they are all characters that XML allows, and have a form in the encoding, is
// known at the end.
class EncodedText final : public WriteSink {
public:
    // The encoder may be null. The text is expected to have about so many bytes.
    EncodedText(std::string& to, Encoder* itsEncoder, Markup::Check itsCheck, std::size_t itsExpected)
        : bytes(to), encoder(itsEncoder), check(itsCheck), expected(itsExpected) {}

    void take(std::string_view text) override;

    // There is no more. False where some of it cannot be written; then what was made is of no use.
    bool finish();

private:
    std::string& bytes;
    Encoder* encoder;
    Markup::Check check;
    std::size_t expected;
    bool isRight = true;
};

}  // namespace Xml
