#pragma once

#include "xml/standard/internal/Lexer.h"
#include <string>
#include <string_view>

namespace Xml::test {

// What a lexer made of a document: one line for each event, and the fault at the end where there is one.
struct Lexed {
    std::string events;  // without faults; adjacent texts and sections are one
    bool isAccepted = false;
    Fault fault;
    std::string declaredEncoding;
    bool hasUnread = false;    // the document type has a reference to what was not read
    bool isInContent = false;  // the root has begun
};

// The first window has `chunk` characters, and each More is given as many again; 0: the whole text at once.
Lexed lex(std::string_view text, const Lexer::Options& options = {}, std::size_t chunk = 0);

// Puts events into lines: <a x='1' y='2'* for a start, with * after what the document type supplied; > for an end.
class EventLines {
public:
    void start(std::string_view name);
    void attribute(std::string_view name, std::string_view value, bool isDefault);
    void end();
    void text(std::string_view text);
    void comment(std::string_view text);
    void instruction(std::string_view target, std::string_view content);
    void doctype(std::string_view name, std::string_view systemId);
    std::string take();

private:
    void flush();
    std::string lines, pending;
};

}  // namespace Xml::test
