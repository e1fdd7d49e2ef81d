#pragma once

#include "xml/stream/OutStream.h"
#include <iosfwd>

namespace Xml {

// Writes to a standard output stream. Failures show in the stream's own state; nothing is thrown on this object's
// account, also when the stream's exceptions are switched on.
class ORVXML_API FileOutStream : public OutStream {
public:
    // Writes to the caller's stream, which must outlive this object and is never closed by it.
    explicit FileOutStream(std::ostream* stream);

    // Opens the caller's `file` on `path` for binary writing, emptying the file and closing `file` first if it is open,
    // and closes it at the end. When it cannot be opened "<Xml::FileOutStream::FileOutStream> Could not open file: "
    // and the path is reported, and what is written is lost.
    FileOutStream(const std::string& path, std::ofstream* file);
    ~FileOutStream() override;

    void putChar(char c) override;

    // -1 once the stream has failed, and past 2^31 - 1.
    int getPosition() const override;

    // Does nothing on a stream that is not good.
    void setPosition(int position) override;

protected:
    bool putChars(const char* bytes, std::size_t count) override;
    std::int64_t countFrom() const override;

private:
    std::ostream* stream;
    std::ofstream* openedHere = nullptr;
};

}  // namespace Xml
