#include "xml/easy/Diagnostics.h"

#include "xml/text/Message.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <cstring>
#include <string>
#include <utility>

namespace Xml {

namespace {

using Handler = std::function<void(std::string_view)>;

// The one that is set. Diagnostics may come from destructors of static objects.
Handler& current() {
    static NeverDestroyed<Handler> handler;
    return handler.get();
}

// The text of a message as its handler gets it: a formatted one has a byte in front that says how long it is.
std::string_view textOf(const char* handed) {
    const std::string& last = Message::lastMessage();
    const bool isWhole = std::strcmp(handed, last.c_str()) == 0;
    return isWhole ? std::string_view(last) : std::string_view(handed + 1);
}

void handOver(const char* message, ...) {
    if (current()) current()(textOf(message));
}

// A handler that was installed by Message itself.
struct Installed {
    Message::Handler handler;

    void operator()(std::string_view text) const { handler(std::string(text).c_str()); }
};

}  // namespace

Handler onDiagnostic(Handler handler) {
    const bool isOurs = Message::mMessageHandler == handOver;
    Handler before = isOurs ? std::move(current()) : Handler(Installed{Message::mMessageHandler});
    const Installed* const installed = handler.target<Installed>();
    Message::InstallMessageHandler(installed != nullptr ? installed->handler : handOver);
    current() = std::move(handler);
    return before;
}

}  // namespace Xml
