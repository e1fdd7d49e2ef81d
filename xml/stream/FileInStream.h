#pragma once

#include "xml/stream/InStream.h"
#include <iosfwd>
#include <memory>
#include <optional>

namespace Xml {

class FileBlock;

// Reads from a standard input stream, which must support positions (a pipe has none: backtracking then fails).
//
// The end shows one read late: the read that meets it still returns true and stores nothing, the next one returns
// false. The stream never throws on this object's account, also when its exceptions are switched on. A source of more
// than 2^31 - 1 bytes cannot be read: "Source too large".
class ORVXML_API FileInStream : public InStream {
public:
    // Reads from the caller's stream, which must outlive this object and is never closed by it.
    explicit FileInStream(std::istream* stream);

    // Opens the caller's `file` on `path` for binary reading, closing it first if it is open, and closes it at the end:
    // it must outlive this object. When it cannot be opened "<Xml::FileInStream::FileInStream> Could not open file: "
    // and the path is reported, and every read fails.
    FileInStream(const std::string& path, std::ifstream* file);
    ~FileInStream() override;

    bool getChar(char& c) override;

    // -1 once the stream has failed.
    int getPosition() const override;
    void setPosition(int position) override;

    // The stream's own end-of-file flag.
    bool eof() override;

protected:
    bool lendBytes(Window& lent) override;
    void takeBytesBack(const Window& lent) const override;
    int positionOfBytes(const Window& lent) const override;
    bool isTooLarge(const Window& lent) const override;
    bool cannotComeBack(const Window& lent) const override;

private:
    ORVXML_LOCAL void measure();
    ORVXML_LOCAL void fail() const;
    ORVXML_LOCAL bool lendBlock(std::streambuf& buffer, Window& lent);

    std::istream* stream;
    std::ifstream* openedHere = nullptr;
    const void* checkedBuffer = nullptr;  // the stream buffer that was last seen to have positions
    bool measured = false;
    mutable bool tooLarge = false;
    bool metItsEnd = false;

    // Of the bytes lent last.
    mutable std::streamoff notUsed = -1;               // how many came back; -1 before any were lent
    mutable std::optional<std::streamoff> cameBackAt;  // where they came back, as far as that is known

    std::streamoff getAreaLength = 0;
    std::streamoff measuredEnd = 0;
    std::unique_ptr<FileBlock> block;  // null until it is worth its while
};

}  // namespace Xml
