#pragma once

#include "xml/Export.h"
#include "xml/text/DataHolder.h"
#include <string>

namespace Xml {

class EntityBudget;
class InStream;

// The base of all readers. A reader reads one construct with its own `bool parse(InStream&)`, which is not virtual: it
// returns true on success, and after a failure getErrorMessage() says where and why. Some failures are silent and leave
// the message as it was; docs/errors.md lists them. A reader that runs another one takes over its message, an empty one
// too.
class ORVXML_API Reader {
public:
    Reader();

    // Keeps "(line = 3, column = 7) text <class>" as the error message, with the position of the stream and the name of
    // the reader's class as run-time type information spells it; cut at 255 characters.
    virtual void message(InStream& in, const std::string& text);
    virtual ~Reader();

    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    // Keeps the text as it is.
    void setMessage(const std::string& text);

    // Empty at first; never cleared by a success.
    const std::string& getErrorMessage() const;

    // The operations of the stream that have these names; a failure keeps the stream's message as by message().
    bool getToken(InStream& in, std::string& token);
    bool checkToken(InStream& in, const std::string& expected);
    bool skip(InStream& in, const std::string& terminator);
    bool getName(InStream& in, std::string& name);
    bool getString(InStream& in, std::string& text);
    bool getCharData(InStream& in, DataHolder& data);

protected:
    // Keeps the stream's own message as by message(); always false, for `return fail(in);`.
    bool fail(InStream& in);

    // Keeps `text` as by message(); always false.
    bool fail(InStream& in, const std::string& text);

    // Takes over what another reader has to say; always false.
    bool failAs(const Reader& other);

private:
    friend class EntityBudget;

    std::string errorMessage;
    EntityBudget* givenBudget = nullptr;  // of the reading that this reader is a part of; null for an outermost one
};

}  // namespace Xml
