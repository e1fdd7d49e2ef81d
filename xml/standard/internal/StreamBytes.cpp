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
    if (buffer == nullptr || !stream.good()) return ending = Ending::Unreadable;

    using Traits = std::streambuf::traits_type;
    bool isRead = false;
    std::streamsize there = 0;
    withoutExceptions([&] {
        // The first byte is waited for; what came with it is in the buffer then.
        if (!Traits::eq_int_type(buffer->sgetc(), Traits::eof()))
            there = std::clamp<std::streamsize>(buffer->in_avail(), 1, kMostAtOnce);
        isRead = true;
    });
    piece.resize(static_cast<std::size_t>(there));
    if (there > 0) {
        isRead = false;
        withoutExceptions([&] {
            const std::streamsize count = buffer->sgetn(piece.data(), there);
            piece.resize(static_cast<std::size_t>(std::clamp<std::streamsize>(count, 0, there)));
            isRead = true;
        });
    }
    if (!isRead) {
        piece.clear();
        ending = Ending::Unreadable;
        withoutExceptions([this] { stream.setstate(std::ios_base::badbit); });
    } else if (piece.empty()) {
        ending = Ending::End;
        withoutExceptions([this] { stream.setstate(std::ios_base::eofbit); });
    }
    return ending;
}

}  // namespace Xml
