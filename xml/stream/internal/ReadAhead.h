#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Xml {

// What a stream has read ahead in trials and does not read again: nested markup that was given up, the last far
// reference, and a message about such a reference.
//
// All of it is cost control. What follows "<!" and "<?" is tried, mostly in vain, and read again as tokens of its own;
// "<!<!<!" and "<!&<!&" taken token by token would cost the square of their length. Without any of this, results are
// the same. It lives for as long as nothing can change the bytes: until the outermost reader ends, and longer over
// bytes that were lent for good.
class ReadAhead {
public:
    // Switches it off, or on again, for all streams that begin to read; returns what it was. For tests.
    static bool setEnabled(bool on);
    static bool isEnabled() { return enabled; }

    // --- Markup ---

    // What came of a token that begins with "<!" or "<?".
    struct Markup {
        bool ok;
        bool endsInReturn;  // the byte consumed last is a CR
        int end;            // the position after it
        std::string text;   // from its '<' on
        std::string error;  // the message that it left, empty when it left none
    };

    // Long ones are not worth it: they are not given up one by one.
    static bool isShort(std::string_view text, std::string_view error);

    // Remembers it by the position after its '<'.
    void remember(int position, Markup markup) { markups[position] = std::move(markup); }

    bool remembersNothing() const { return markups.empty(); }

    // Null when there is none.
    const Markup* recall(int position) const;

    // --- The reference met last in a trial: many that begin before one far ';' would each be read up to it. ---

    struct Reference {
        int begin = -1;                           // of the one that was asked about last
        int end = -1;                             // the position after the ';', -1 when none is ahead
        bool endsInReturn = false;                // the byte consumed last is a CR
        std::shared_ptr<const std::string> text;  // ends with the ';', and begins with the first that was read up to it
    };

    // The reference that begins there, when it ends where the last one did or does not end either; null when that is
    // not known.
    const Reference* referenceFrom(int position);
    void setReference(Reference met) { reference = std::move(met); }

    // --- Messages ---

    // The message goes on with the text of the last reference; false when there is no such text. It may be as long as
    // the source, and most such messages are replaced before they are looked at, so completeMessage() appends it,
    // later. The message gets the room for it at once.
    bool continueMessage(std::string& message);
    void completeMessage(std::string& message) noexcept;
    bool isMessageComplete() const { return continuation == nullptr; }

    // Another message has been set.
    void messageReplaced() {
        continuation.reset();
        ++messages;
    }

    // How many messages were set, to find out whether a trial has left one.
    unsigned messageCount() const { return messages; }

private:
    static bool enabled;

    std::unordered_map<int, Markup> markups;
    Reference reference;
    std::shared_ptr<const std::string> continuation;  // what the message goes on with ...
    std::size_t continuationFrom = 0;                 // ... from there on
    unsigned messages = 0;
};

}  // namespace Xml
