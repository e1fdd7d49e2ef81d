#include "xml/reader/internal/FastProlog.h"

#include "xml/reader/internal/FastContent.h"
#include "xml/reader/internal/MarkupScan.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/Scan.h"
#include "xml/stream/internal/StreamAccess.h"
#include <string_view>

// The bytes that are taken or looked at are neither CR nor LF, so that all they leave in the line breaks is that the
// last byte was another one.

namespace Xml {

namespace {

// Moves over the text where it follows. In line, where the text is known.
[[gnu::always_inline]] inline bool take(const char*& at, const char* end, std::string_view text) {
    if (!Scan::startsWith(at, end, text)) return false;
    at += text.size();
    return true;
}

// Leaves the token that was read last.
void leave(InStream& in, char token) {
    StreamAccess::setToken(in, token);
    StreamAccess::noteOther(in);
}

}  // namespace

bool FastProlog::takeDeclaration(InStream& in) {
    if (!FastContent::isEnabled()) return false;
    const Window& window = StreamAccess::lend(in);
    const char* at = window.cursor;
    const char* const end = window.end;
    if (!take(at, end, "<?xml version=") || !(take(at, end, "\"1.0\"") || take(at, end, "'1.0'"))) return false;
    if (take(at, end, " encoding=") && !(take(at, end, "\"UTF-8\"") || take(at, end, "'UTF-8'"))) return false;
    if (!take(at, end, kEndPI)) return false;
    StreamAccess::moveTo(in, at);
    leave(in, '>');
    return true;
}

bool FastProlog::isBeforeElement(InStream& in) {
    if (!FastContent::isEnabled()) return false;
    const Window& window = StreamAccess::window(in);
    const char* const at = window.cursor;
    if (window.end - at < 2 || *at != '<' || !MarkupScan::isNameStart(at[1])) return false;
    leave(in, '<');
    return true;
}

}  // namespace Xml
