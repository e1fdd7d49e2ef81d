// Encoding by the platform: iconv, where the C library has it.
#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/Encoder.h"
#include "xml/text/internal/Utf8.h"
#include <array>
#include <cstddef>
#include <map>
#if __has_include(<iconv.h>)
#include <cerrno>
#include <iconv.h>
#include <new>
#endif

namespace Xml {

#if __has_include(<iconv.h>)

namespace {

// What the platform does with a character that an encoding lacks differs: it stops, puts another one, or gives bytes
// that it reads as another one. So a character counts as one that the encoding has where it comes back as what it was;
// that is found out once for each.
class ForeignEncoder : public Encoder {
public:
    ForeignEncoder() = default;
    ~ForeignEncoder() override {
        close(conversion);
        close(trial);
    }
    ForeignEncoder(const ForeignEncoder&) = delete;
    ForeignEncoder& operator=(const ForeignEncoder&) = delete;

    // False for an encoding that is not known, or in which the characters of markup are not the bytes of ASCII.
    bool open(const std::string& itsName) {
        name = itsName;
        if (!open(conversion) || !open(trial)) return false;
        for (std::size_t i = '\t'; i < ascii.size(); ++i) {
            const auto c = static_cast<char>(i);
            ascii[i] = comesBack({&c, 1});
            hasWholeAscii &= ascii[i] || c < ' ';
        }
        constexpr std::string_view kMarkup =
            "\t\n\r !\"#%&'()*+,-./0123456789:;<=>?ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_abcdefghijklmnopqrstuvwxyz|";
        std::string bytes;
        return run(trial, kMarkup, bytes) && bytes == kMarkup;
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

    bool encode(std::string_view text, std::string& to) override { return run(conversion, text, to); }

    void finish(std::string& to) override { run(conversion, {}, to); }

private:
    static iconv_t none() { return reinterpret_cast<iconv_t>(-1); }
    static void close(iconv_t one) {
        if (one != none()) iconv_close(one);
    }

    bool open(iconv_t& one) {
        one = iconv_open(name.c_str(), "UTF-8");
        if (one != none()) return true;
        if (errno == ENOMEM) throw std::bad_alloc();
        return false;
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
        const bool isSaid = run(trial, character, bytes) && run(trial, {}, bytes);
        if (!isSaid) {
            iconv(trial, nullptr, nullptr, nullptr, nullptr);
            return false;
        }
        if (back == nullptr) back = Converter::makeForeign(name);
        if (back == nullptr) return false;
        std::string text;
        const Converter::Converted converted = back->convert(bytes, text);
        back->finish(text);
        if (converted.ending == Converter::Ending::Whole) return text == character;
        back.reset();
        return false;
    }

    // Without text: what ends one. False where the text was not taken, or not as it is.
    static bool run(iconv_t one, std::string_view text, std::string& to) {
        constexpr std::size_t kRoom = 64;
        char* in = const_cast<char*>(text.data());  // iconv does not change what it reads
        std::size_t left = text.size();
        for (;;) {
            const std::size_t before = to.size();
            to.resize(before + kRoom + 2 * left);
            char* out = to.data() + before;
            std::size_t room = to.size() - before;
            const std::size_t changed = iconv(one, text.empty() ? nullptr : &in, &left, &out, &room);
            const int error = changed == static_cast<std::size_t>(-1) ? errno : 0;
            to.resize(to.size() - room);
            if (error == 0) return changed == 0;
            if (error != E2BIG) return false;
        }
    }

    std::string name;
    iconv_t conversion = none();  // of the text
    iconv_t trial = none();       // of one character; between two it is as at first
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
