#pragma once

#include "xml/Export.h"
#include "xml/text/DataHolder.h"
#include <cstddef>
#include <cstdint>
#include <string>

namespace Xml {

class OutRun;

// A sink of bytes that indents what is written to it: before the first byte of each line it writes one tab a level.
//
// A sink of your own overrides putChar, getPosition and setPosition, and isValid where it can be unusable. No operation
// reports an error: a sink absorbs its own.
class ORVXML_API OutStream {
public:
    virtual ~OutStream();

    OutStream(const OutStream&) = delete;
    OutStream& operator=(const OutStream&) = delete;

    // Whether the sink can be written; true here.
    virtual bool isValid() const;

    // Writes one byte as it is, without indentation.
    virtual void putChar(char c) = 0;

    // The 0-based byte offset at which the next byte is written, -1 when there is no position.
    virtual int getPosition() const = 0;
    virtual void setPosition(int position) = 0;

    // Write with indentation. A line begins at the start of the stream and after a line feed; its tabs come with its
    // first byte, by the level in force then, so that an empty line has none. A sink that changes the level while it
    // takes a byte changes it for the bytes after that one.
    void put(char c);
    void put(const std::string& text);
    OutStream& operator<<(char c);
    OutStream& operator<<(const std::string& text);

    // Writes the bytes as they are: no indentation, and line feeds among them begin no line.
    OutStream& writeDataHolder(const DataHolder& data);

    void incTab();

    // Never goes below 0.
    void decTab();

protected:
    OutStream();

    // Writes `count` bytes as they are, all at once, and returns true. False, with nothing written, from a sink that
    // takes its bytes by putChar, one at a time, as it does here. A sink gives the same answer for all bytes.
    virtual bool putChars(const char* bytes, std::size_t count);

    // The position from which the bytes written may be counted, so that it need not be asked for at every node; -1
    // where counting would not do. Only the exact class of a sink can know all that moves it: a class derived from it
    // gives -1.
    virtual std::int64_t countFrom() const;

    // By these a sink that counts keeps the count right: after bytes, after a move, and when its position is lost.
    void wrote(std::size_t count) {
        if (counting) counted += static_cast<std::int64_t>(count);
    }
    void movedTo(std::int64_t position) { counted = position; }
    void stopCounting() { counting = false; }

private:
    friend struct OutStreamAccess;
    friend class OutRun;

    ORVXML_LOCAL void putIndented(const char* bytes, std::size_t count);
    ORVXML_LOCAL bool putTabs();
    ORVXML_LOCAL void putByBytes(const char* bytes, const char* end);

    std::int32_t tabLevel = 0;
    bool atLineStart = true;
    bool counting = false;
    bool cutShort = false;  // a node could not be written to its end: what nodes know of this stream may be wrong
    std::int64_t counted = 0;
};

}  // namespace Xml
