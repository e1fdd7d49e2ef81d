#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace Xml {

// UTF-8 into bytes of another encoding. Text is well-formed.
class Encoder {
public:
    virtual ~Encoder() = default;

    // Whether it has a form for every character; for every one of ASCII.
    virtual bool hasAll() const = 0;
    virtual bool hasAscii() const { return true; }

    // The first character that it has no form for, `to` where it has one for all.
    virtual const char* sayableEnd(const char* from, const char* to) = 0;

    // Appends the bytes of whole characters that it has forms for. False where it turns out that it has not.
    virtual bool encode(std::string_view text, std::string& to) = 0;

    // Appends what ends the text.
    virtual void finish(std::string&) {}

    // For an encoding by its name: one of those that the library has besides UTF-8, or one that the platform has.
    // Null for others.
    static std::unique_ptr<Encoder> make(const std::string& name);

    // Of those the ones that the platform has.
    static std::unique_ptr<Encoder> makeForeign(const std::string& name);
};

}  // namespace Xml
