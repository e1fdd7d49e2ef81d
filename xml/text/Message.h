#pragma once

#include "xml/Export.h"
#include <string>

namespace Xml {

// The one channel for diagnostics: constructing a message reports it. The text becomes the last message and, unless
// output is switched off, is handed to the installed handler. The object itself holds nothing.
//
//     Xml::Message(std::string("<Catalog::load> no title: ") + name);
//
// The settings are plain globals: a program with several threads serialises its use of them and of the library calls
// that may report.
class ORVXML_API Message {
public:
    using Handler = void (*)(const char*, ...);

    // Hands `text` to the handler up to its first zero byte; the last message keeps all of it.
    explicit Message(const std::string& text);

    // Formats by the rules of printf, cut at 270 characters. The handler receives the text after one leading byte that
    // holds its length modulo 256; the last message becomes the format itself, not the formatted text.
    explicit Message(const char* format, ...);

    // The handler receives each text as its only argument. It must print it as it stands and not take it for a format:
    // a '%' in it is text. It must not be null.
    static void InstallMessageHandler(Handler handler);

    // Sets `out` to `value` and returns what it was: false silences all further messages, true lets them through again.
    static bool disableOutput(bool value);

    // The text of the last message, empty before the first; changed by every message, also by those not let through.
    // The reference stays good until the process ends, in the destructors of static objects too.
    static const std::string& lastMessage();
    static const std::string& getLastMessage();

    static Handler mMessageHandler;  // at first one that writes the text and a newline to standard error
    static bool out;                 // whether messages reach the handler; true at first
};

}  // namespace Xml
