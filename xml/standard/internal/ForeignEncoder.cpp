// Encoding by the platform: iconv, where the C library has it.
#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/Encoder.h"
#include "xml/standard/internal/PlatformConversion.h"
#include "xml/text/internal/Utf8.h"
#include <array>
#include <cstddef>
#include <map>

namespace Xml {

#if __has_include(<iconv.h>)

namespace {

// What the platform does with a character that an encoding lacks differs: it stops, puts another one, or gives bytes
// that it reads as another one. So a character counts as one that the encoding has where it comes back as what it was;
// that is found out once for each.
class ForeignEncoder : public Encoder {
public:
    // False for an encoding that is not known, or in which the characters of markup are not the bytes of ASCII.
    bool open(const std::string& itsName) {
        name = itsName;
        if (!conversion.open(name.c_str(), "UTF-8") || !trial.open(name.c_str(), "UTF-8")) return false;
        for (std::size_t i = '\t'; i < ascii.size(); ++i) {
            const auto c = static_cast<char>(i);
            ascii[i] = comesBack({&c, 1});
            hasWholeAscii &= ascii[i] || c < ' ';
        }
        constexpr std::string_view kMarkup =
            "\t\n\r !\"#%&'()*+,-./0123456789:;<=>?ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_abcdefghijklmnopqrstuvwxyz|";
        std::string bytes;
        return convert(trial, kMarkup, bytes) && bytes == kMarkup;
    }

    bool hasAll() const override { return false; }

    bool hasAscii() const override { return hasWholeAscii; }

    const char* sayableEnd(const char* from, const char* to) override {
        while (from != to) {
            const auto [c, size] = Utf8::at(from);
            if (!isSayable(c, {from, static_cast<std::size_t>(size)})) return from;
            from += size;
        }
        return to;
    }

    bool encode(std::string_view text, std::string& to) override { return convert(conversion, text, to); }

    void finish(std::string& to) override { conversion.finish(to); }

private:
    // False where the text was not taken, or not as it is.
    static bool convert(PlatformConversion& by, std::string_view text, std::string& to) {
        return by.convert(text, to).isExact;
    }

    bool isSayable(char32_t c, std::string_view bytes) {
        if (c < ascii.size()) return ascii[c];
        const auto found = others.find(c);
        if (found != others.end()) return found->second;
        const bool is = comesBack(bytes);
        others.emplace(c, is);
        return is;
    }

    bool comesBack(std::string_view character) {
        std::string bytes;
        const bool isSaid = convert(trial, character, bytes) && trial.finish(bytes).isExact;
        if (!isSaid) {
            trial.restart();
            return false;
        }
        if (back == nullptr) back = Converter::makeForeign(name);
        if (back == nullptr) return false;
        std::string text;
        const bool isWhole = back->convert(bytes, text).ending == Converter::Ending::Whole;
        back->finish(text);  // after which it is as at first
        return isWhole && text == character;
    }

    std::string name;
    PlatformConversion conversion;  // of the text
    PlatformConversion trial;       // of one character; between two it is as at first
    std::unique_ptr<Converter> back;
    std::array<bool, 0x80> ascii{};
    bool hasWholeAscii = true;
    std::map<char32_t, bool> others;  // whether it has them
};

}  // namespace

std::unique_ptr<Encoder> Encoder::makeForeign(const std::string& name) {
    auto encoder = std::make_unique<ForeignEncoder>();
    if (!encoder->open(name)) return nullptr;
    return encoder;
}

#else

std::unique_ptr<Encoder> Encoder::makeForeign(const std::string&) { return nullptr; }

#endif

}  // namespace Xml
