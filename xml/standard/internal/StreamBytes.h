#pragma once

#include <cstddef>
#include <istream>
#include <string>

namespace Xml {

// The bytes of a standard stream, as they come: from a pipe what is there, without waiting for more. It goes to the
// stream's buffer itself, so that the stream's exceptions, its flags for white space and its count stay out of it; at
// the end the stream is at its end.
class StreamBytes {
public:
    enum class Ending : unsigned char { More, End, Unreadable };

    explicit StreamBytes(std::istream& in) : stream(in) {}

    // Puts the next bytes in the place of `piece`, at least one where there is one. Unreadable: the stream was not
    // good, or its buffer has thrown something; but memory that runs out there is std::bad_alloc here.
    Ending read(std::string& piece);

    // Of Unreadable: why, in a few words.
    const char* reason() const { return why; }

private:
    Ending fail(const char* reason);

    std::istream& stream;
    const char* why = "";
    Ending ending = Ending::More;
};

}  // namespace Xml
