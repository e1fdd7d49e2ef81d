#include "xml/text/Message.h"

#include "xml/text/internal/IoGuard.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace Xml {

namespace {

// Unformatted: a width that the program has set on the stream is for its own output.
void WriteToStdErr(const char* text, ...) {
    withoutExceptions([text] { std::cerr.write(text, static_cast<std::streamsize>(std::strlen(text))) << std::endl; });
}

std::string& storedMessage() {
    static NeverDestroyed<std::string> text;
    return text.get();
}

}  // namespace

Message::Handler Message::mMessageHandler = WriteToStdErr;
bool Message::out = true;

Message::Message(const std::string& text) {
    storedMessage() = text;
    if (out) mMessageHandler(text.c_str());
}

Message::Message(const char* format, ...) {
    // A length byte, 270 characters, the terminating zero.
    constexpr int kMostCharacters = 270;
    char buffer[kMostCharacters + 2] = {};

    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(buffer + 1, sizeof(buffer) - 1, format, arguments);
    va_end(arguments);
    const int written = std::clamp(wanted, 0, kMostCharacters);
    buffer[0] = static_cast<char>(static_cast<unsigned char>(written));

    storedMessage() = format;
    if (out) mMessageHandler(buffer);
}

void Message::InstallMessageHandler(Handler handler) { mMessageHandler = handler; }

bool Message::disableOutput(bool value) {
    const bool before = out;
    out = value;
    return before;
}

const std::string& Message::lastMessage() { return storedMessage(); }

const std::string& Message::getLastMessage() { return storedMessage(); }

}  // namespace Xml
