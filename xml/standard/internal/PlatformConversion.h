#pragma once

#if __has_include(<iconv.h>)
#include <cerrno>
#include <cstddef>
#include <iconv.h>
#include <new>
#include <string>
#include <string_view>

namespace Xml {

// From one encoding to another by the platform: iconv.
class PlatformConversion {
public:
    PlatformConversion() = default;
    ~PlatformConversion() {
        if (conversion != none()) iconv_close(conversion);
    }
    PlatformConversion(const PlatformConversion&) = delete;
    PlatformConversion& operator=(const PlatformConversion&) = delete;

    // Once. False where the platform does not know one of the encodings; throws std::bad_alloc without memory.
    bool open(const char* to, const char* from) {
        conversion = iconv_open(to, from);
        if (conversion != none()) return true;
        if (errno == ENOMEM) throw std::bad_alloc();
        return false;
    }

    struct Outcome {
        int error;     // what ended it, as errno has it: 0 where all was taken
        bool isExact;  // all was taken, and no other put in place of a character that the encoding lacks
    };

    // Appends what comes of the bytes, and takes those off them that were read.
    Outcome convert(std::string_view& bytes, std::string& to) {
        char* in = const_cast<char*>(bytes.data());  // iconv does not change what it reads
        std::size_t left = bytes.size();
        const Outcome outcome = run(&in, &left, to);
        bytes.remove_prefix(bytes.size() - left);
        return outcome;
    }

    // Appends what ends a text.
    Outcome finish(std::string& to) {
        std::size_t left = 0;
        return run(nullptr, &left, to);
    }

    // A text may begin, whatever came before.
    void restart() { iconv(conversion, nullptr, nullptr, nullptr, nullptr); }

private:
    static iconv_t none() { return reinterpret_cast<iconv_t>(-1); }

    Outcome run(char** in, std::size_t* left, std::string& to) {
        constexpr std::size_t kRoom = 64;
        for (;;) {
            const std::size_t before = to.size();
            to.resize(before + kRoom + 2 * *left);
            char* out = to.data() + before;
            std::size_t room = to.size() - before;
            const std::size_t replaced = iconv(conversion, in, left, &out, &room);
            const int error = replaced == static_cast<std::size_t>(-1) ? errno : 0;
            to.resize(to.size() - room);
            if (error != E2BIG) return {error, replaced == 0};
        }
    }

    iconv_t conversion = none();
};

}  // namespace Xml
#endif
