#pragma once

#include "support/Sources.h"
#include "xml/stream/InStream.h"
#include <functional>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

namespace Xml {
class Dtd;
}  // namespace Xml

namespace Xml::test {

// The name of a reader's class as messages give it.
template <class R>
const char* classOf() {
    return typeid(R).name();
}

// What a stream reports at its end.
extern const char* const kEndOfStream;

// What is expected of one parse. The message is given without its place and class: a reader stops where it fails, so
// the place is where the stream stands.
struct Verdict {
    bool ok = false;
    std::optional<std::string> message;   // none: the reader must not say anything
    std::string left;                     // the text after the place where the stream stands
    bool gone = false;                    // the stream has no position any more: a file stream that met its end
    std::string builtText;                // what was built
    std::string diagnostics;              // each on a line of its own
    const char* reader = nullptr;         // the class that the message names; null for the reader under test
    std::optional<std::string> noteLeft;  // the text after the place that the message names, where that is another one

    Verdict builds(const std::string& text) const;
    Verdict reports(const std::string& text) const;
    Verdict goes() const;
    Verdict notes(const std::string& text) const;
    Verdict notesBefore(const std::string& text, const std::string& rest) const;
    template <class R>
    Verdict by() const {
        Verdict verdict = *this;
        verdict.reader = classOf<R>();
        return verdict;
    }
};

Verdict yes(const std::string& left = "");
Verdict no(const std::string& message, const std::string& left = "");
Verdict silent(const std::string& left = "");

// Fails with what the stream reports at its end.
Verdict ended();

struct ReadCase {
    const char* name;
    std::string text;
    Verdict verdict;

    // What a file stream gives instead, where its late end makes a difference. One that is `ended` loses its position
    // anyway.
    std::optional<Verdict> late = std::nullopt;
};

// What a reader did: its verdict, its message, a short text of what it built.
struct Reading {
    bool ok = false;
    std::string error;
    std::string built;
};

// Runs every case over every kind of source, with content read from the window and by tokens, and compares verdict,
// message, place, what was built and the diagnostics. The texts must be of one line.
void expectReadings(const std::vector<ReadCase>& cases, const char* readerClass,
                    const std::function<Reading(InStream&)>& read);

// "(line = 1, column = 5) text <class>", cut as a reader cuts it.
std::string located(int line, int column, const std::string& text, const char* readerClass);

// What a Dtd writes between its brackets, without the last line's end.
std::string declarationsOf(const Dtd& dtd);

// The attributes of element `a` as a Dtd writes them, with "; " between them.
std::string attributesOf(const Dtd& dtd);

}  // namespace Xml::test
