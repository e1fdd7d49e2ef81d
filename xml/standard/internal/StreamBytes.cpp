#include "xml/standard/internal/StreamBytes.h"

#include "xml/text/internal/IoGuard.h"
#include <algorithm>
#include <streambuf>

namespace Xml {

namespace {

constexpr std::streamsize kMostAtOnce = std::streamsize{64} << 10;

}  // namespace

StreamBytes::Ending StreamBytes::read(std::string& piece) {
    piece.clear();
    if (ending != Ending::More) return ending;
    std::streambuf* const buffer = stream.rdbuf();
    if (buffer == nullptr) return fail("it has no buffer");
    if (stream.fail()) return fail("it has failed before");
    if (stream.eof()) return fail("it has come to its end before");

    using Traits = std::streambuf::traits_type;
    std::streamsize there = 0;
    const bool isRead = withoutOtherExceptions([&] {
        // The first byte is waited for; what came with it is in the buffer then.
        if (Traits::eq_int_type(buffer->sgetc(), Traits::eof())) return;
        there = std::clamp<std::streamsize>(buffer->in_avail(), 1, kMostAtOnce);
        piece.resize(static_cast<std::size_t>(there));
        const std::streamsize count = buffer->sgetn(piece.data(), there);
        piece.resize(static_cast<std::size_t>(std::clamp<std::streamsize>(count, 0, there)));
    });
    if (!isRead) {
        piece.clear();
        withoutExceptions([this] { stream.setstate(std::ios_base::badbit); });
        return fail("its buffer has failed");
    }
    if (piece.empty()) {
        ending = Ending::End;
        withoutExceptions([this] { stream.setstate(std::ios_base::eofbit); });
    }
    return ending;
}

StreamBytes::Ending StreamBytes::fail(const char* reason) {
    why = reason;
    return ending = Ending::Unreadable;
}

}  // namespace Xml
