// Conversion by the platform: iconv, where the C library has it.
#include "xml/standard/internal/Converter.h"
#if __has_include(<iconv.h>)
#include <cerrno>
#include <iconv.h>
#include <new>
#endif

namespace Xml {

#if __has_include(<iconv.h>)

namespace {

class ForeignConverter : public Converter {
public:
    ForeignConverter() = default;
    ~ForeignConverter() override {
        if (conversion != none()) iconv_close(conversion);
    }
    ForeignConverter(const ForeignConverter&) = delete;
    ForeignConverter& operator=(const ForeignConverter&) = delete;

    bool open(const std::string& name) {
        conversion = iconv_open("UTF-8", name.c_str());
        if (conversion != none()) return true;
        if (errno == ENOMEM) throw std::bad_alloc();
        return false;
    }

    Converted convert(std::string_view bytes, std::string& to) override {
        char* in = const_cast<char*>(bytes.data());  // iconv does not change what it reads
        std::size_t left = bytes.size();
        const int error = run(&in, &left, to);
        const std::size_t taken = bytes.size() - left;
        if (error == 0) return {taken, Ending::Whole};
        if (error == EINVAL) return {taken, Ending::Incomplete};
        return {taken, Ending::IllFormed, 1};
    }

    void finish(std::string& to) override { run(nullptr, nullptr, to); }

private:
    static iconv_t none() { return reinterpret_cast<iconv_t>(-1); }

    // Returns what ended it: 0 where all was taken.
    int run(char** in, std::size_t* left, std::string& to) {
        constexpr std::size_t kRoom = 64;
        for (;;) {
            const std::size_t before = to.size();
            to.resize(before + kRoom + (left != nullptr ? 2 * *left : 0));
            char* out = to.data() + before;
            std::size_t room = to.size() - before;
            const bool isDone = iconv(conversion, in, left, &out, &room) != static_cast<std::size_t>(-1);
            const int error = isDone ? 0 : errno;
            to.resize(to.size() - room);
            if (error != E2BIG) return error;
        }
    }

    iconv_t conversion = none();
};

}  // namespace

std::unique_ptr<Converter> Converter::makeForeign(const std::string& name) {
    auto converter = std::make_unique<ForeignConverter>();
    if (!converter->open(name)) return nullptr;
    return converter;
}

#else

std::unique_ptr<Converter> Converter::makeForeign(const std::string&) { return nullptr; }

#endif

}  // namespace Xml
