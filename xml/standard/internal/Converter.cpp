#include "xml/standard/internal/Converter.h"

#include "xml/text/internal/Utf8.h"

namespace Xml {

namespace {

using Ending = Converter::Ending;
using Converted = Converter::Converted;

unsigned char byteAt(const char* from) { return static_cast<unsigned char>(*from); }

// US-ASCII and ISO-8859-1: a byte is a character, up to the last that the encoding has.
class BytesConverter : public Converter {
public:
    explicit BytesConverter(unsigned char most) : last(most) {}

    Converted convert(std::string_view bytes, std::string& to) override {
        const std::size_t before = to.size();
        to.resize(before + 2 * bytes.size());
        char* out = to.data() + before;
        std::size_t taken = 0;
        for (const char& byte : bytes) {
            const unsigned char c = byteAt(&byte);
            if (c > last) break;
            out = Utf8::put(out, c);
            ++taken;
        }
        to.resize(static_cast<std::size_t>(out - to.data()));
        if (taken == bytes.size()) return {taken, Ending::Whole};
        return {taken, Ending::IllFormed, 1};
    }

private:
    const unsigned char last;
};

enum class Order : unsigned char { LowFirst, HighFirst };

template <Order Of, std::size_t Size>
char32_t unitAt(const char* from) {
    char32_t unit = 0;
    for (std::size_t i = 0; i < Size; ++i)
        unit = unit << 8 | byteAt(from + (Of == Order::HighFirst ? i : Size - 1 - i));
    return unit;
}

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// A character at the beginning of some bytes.
struct Unit {
    Ending ending;
    std::size_t size;  // of the character, or of the bytes that show that there is none
    char32_t value = 0;
};

template <Order Of>
struct Utf16 {
    // A unit becomes three bytes at most, a pair four.
    static constexpr std::size_t kMostBytes = 3;
    static constexpr std::size_t kUnit = 2;

    static Unit at(const char* from, std::size_t size) {
        if (size < 2) return {Ending::Incomplete, 0};
        const char32_t first = unitAt<Of, 2>(from);
        if (isLowSurrogate(first)) return {Ending::IllFormed, 2};
        if (!isHighSurrogate(first)) return {Ending::Whole, 2, first};
        if (size < 4) return {Ending::Incomplete, 0};
        const char32_t second = unitAt<Of, 2>(from + 2);
        if (!isLowSurrogate(second)) return {Ending::IllFormed, 4};
        return {Ending::Whole, 4, 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00)};
    }
};

template <Order Of>
struct Utf32 {
    static constexpr std::size_t kMostBytes = 4;
    static constexpr std::size_t kUnit = 4;

    static Unit at(const char* from, std::size_t size) {
        if (size < 4) return {Ending::Incomplete, 0};
        const char32_t c = unitAt<Of, 4>(from);
        if (c > 0x10FFFF || isHighSurrogate(c) || isLowSurrogate(c)) return {Ending::IllFormed, 4};
        return {Ending::Whole, 4, c};
    }
};

template <class Form>
class UnitsConverter : public Converter {
public:
    Converted convert(std::string_view bytes, std::string& to) override {
        const std::size_t before = to.size();
        to.resize(before + bytes.size() / Form::kUnit * Form::kMostBytes);
        char* out = to.data() + before;
        std::size_t taken = 0;
        Unit unit{Ending::Whole, 0};
        while (taken < bytes.size()) {
            unit = Form::at(bytes.data() + taken, bytes.size() - taken);
            if (unit.ending != Ending::Whole) break;
            out = Utf8::put(out, unit.value);
            taken += unit.size;
        }
        to.resize(static_cast<std::size_t>(out - to.data()));
        if (unit.ending == Ending::IllFormed) return {taken, unit.ending, unit.size};
        return {taken, unit.ending};
    }
};

}  // namespace

void Converter::finish(std::string&) {}

std::unique_ptr<Converter> Converter::make(Encoding encoding) {
    switch (encoding) {
    case Encoding::Ascii: return std::make_unique<BytesConverter>(static_cast<unsigned char>(0x7F));
    case Encoding::Latin1: return std::make_unique<BytesConverter>(static_cast<unsigned char>(0xFF));
    case Encoding::Utf16Le: return std::make_unique<UnitsConverter<Utf16<Order::LowFirst>>>();
    case Encoding::Utf16Be: return std::make_unique<UnitsConverter<Utf16<Order::HighFirst>>>();
    case Encoding::Utf32Le: return std::make_unique<UnitsConverter<Utf32<Order::LowFirst>>>();
    case Encoding::Utf32Be: return std::make_unique<UnitsConverter<Utf32<Order::HighFirst>>>();
    default: return nullptr;
    }
}

}  // namespace Xml
