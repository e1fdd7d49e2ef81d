// Conversion by the platform: iconv, where the C library has it.
#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/PlatformConversion.h"

namespace Xml {

#if __has_include(<iconv.h>)

namespace {

class ForeignConverter : public Converter {
public:
    bool open(const std::string& name) { return conversion.open("UTF-8", name.c_str()); }

    Converted convert(std::string_view bytes, std::string& to) override {
        std::string_view left = bytes;
        const int error = conversion.convert(left, to).error;
        const std::size_t taken = bytes.size() - left.size();
        if (error == 0) return {taken, Ending::Whole};
        if (error == EINVAL) return {taken, Ending::Incomplete};
        return {taken, Ending::IllFormed, 1};
    }

    void finish(std::string& to) override { conversion.finish(to); }

private:
    PlatformConversion conversion;
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
