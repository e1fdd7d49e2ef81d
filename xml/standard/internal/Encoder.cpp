#include "xml/standard/internal/Encoder.h"

#include "xml/standard/internal/Encodings.h"
#include "xml/text/internal/Utf8.h"
#include <cstddef>

namespace Xml {

namespace {

// A byte for each character up to a last one.
class BytesEncoder : public Encoder {
public:
    explicit BytesEncoder(char32_t last) : lastCharacter(last) {}

    bool hasAll() const override { return false; }

    const char* sayableEnd(const char* from, const char* to) override {
        while (from != to) {
            const auto [c, size] = Utf8::at(from);
            if (c > lastCharacter) return from;
            from += size;
        }
        return to;
    }

    bool encode(std::string_view text, std::string& to) override {
        for (const char* at = text.data(); at != text.data() + text.size();) {
            const auto [c, size] = Utf8::at(at);
            if (c > lastCharacter) return false;
            to += static_cast<char>(static_cast<unsigned char>(c));
            at += size;
        }
        return true;
    }

private:
    char32_t lastCharacter;
};

enum class Order : unsigned char { LowFirst, HighFirst };

template <std::size_t Size, Order Of>
char* putUnit(char* to, char32_t unit) {
    for (std::size_t i = 0; i < Size; ++i) {
        const std::size_t shift = 8 * (Of == Order::LowFirst ? i : Size - 1 - i);
        *to++ = static_cast<char>(static_cast<unsigned char>(unit >> shift));
    }
    return to;
}

template <Order Of>
struct Utf16 {
    static constexpr std::size_t kMostBytes = 2;  // for each byte of UTF-8

    static char* put(char* to, char32_t c) {
        if (c < 0x10000) return putUnit<2, Of>(to, c);
        to = putUnit<2, Of>(to, 0xD800 + ((c - 0x10000) >> 10));
        return putUnit<2, Of>(to, 0xDC00 + (c & 0x3FF));
    }
};

template <Order Of>
struct Utf32 {
    static constexpr std::size_t kMostBytes = 4;

    static char* put(char* to, char32_t c) { return putUnit<4, Of>(to, c); }
};

template <class Form>
class UnitsEncoder : public Encoder {
public:
    bool hasAll() const override { return true; }

    const char* sayableEnd(const char*, const char* to) override { return to; }

    bool encode(std::string_view text, std::string& to) override {
        const std::size_t before = to.size();
        to.resize(before + Form::kMostBytes * text.size());
        char* out = to.data() + before;
        for (const char* at = text.data(); at != text.data() + text.size();) {
            const auto [c, size] = Utf8::at(at);
            out = Form::put(out, c);
            at += size;
        }
        to.resize(static_cast<std::size_t>(out - to.data()));
        return true;
    }
};

}  // namespace

// Where the name leaves the order of bytes open the low one is first.
std::unique_ptr<Encoder> Encoder::make(const std::string& name) {
    switch (encodingNamed(name)) {
    case Encoding::Utf8: return nullptr;
    case Encoding::Ascii: return std::make_unique<BytesEncoder>(0x7FU);
    case Encoding::Latin1: return std::make_unique<BytesEncoder>(0xFFU);
    case Encoding::Utf16:
    case Encoding::Utf16Le: return std::make_unique<UnitsEncoder<Utf16<Order::LowFirst>>>();
    case Encoding::Utf16Be: return std::make_unique<UnitsEncoder<Utf16<Order::HighFirst>>>();
    case Encoding::Utf32:
    case Encoding::Utf32Le: return std::make_unique<UnitsEncoder<Utf32<Order::LowFirst>>>();
    case Encoding::Utf32Be: return std::make_unique<UnitsEncoder<Utf32<Order::HighFirst>>>();
    case Encoding::Other: break;
    }
    return makeForeign(name);
}

}  // namespace Xml
