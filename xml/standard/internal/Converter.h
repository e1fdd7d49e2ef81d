#pragma once

#include "xml/standard/internal/Encodings.h"
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Xml {

// Bytes of one encoding into UTF-8, in pieces of any size.
class Converter {
public:
    enum class Ending : unsigned char { Whole, Incomplete, IllFormed };

    struct Converted {
        std::size_t taken;        // bytes that were converted
        Ending ending;            // Incomplete: the bytes that were not taken may be the beginning of a character
        std::size_t badSize = 0;  // where they are ill-formed: how many of them show that
    };

    virtual ~Converter() = default;

    // Appends what the bytes are to `to`.
    virtual Converted convert(std::string_view bytes, std::string& to) = 0;

    // Appends what was kept until the bytes after it are known: there are none.
    virtual void finish(std::string& to);

    // For all encodings that have names here but UTF-8, in the exact order of their bytes.
    static std::unique_ptr<Converter> make(Encoding encoding);

    // For one that the platform knows by that name; null for others.
    static std::unique_ptr<Converter> makeForeign(const std::string& name);
};

}  // namespace Xml
