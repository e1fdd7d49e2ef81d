#pragma once

#include "orvsys/Files.h"
#include "xml/stream/InStream.h"
#include <cstdint>
#include <memory>

namespace Xml {

class FileBlock;

// Reads from a file of the platform layer. The length is taken once, when the source is made: bytes that the file grows
// by are not read. A file of more than 2^31 - 1 bytes cannot be read: "Source too large".
class ORVXML_API FileSpecInStream : public InStream {
public:
    // Reads from the caller's open file, from where it stands; it must outlive this object.
    explicit FileSpecInStream(OrvSys::FileIO& file);

    // Opens the file and closes it at the end. One that cannot be opened reads as an empty source.
    explicit FileSpecInStream(const OrvSys::FileSpec& spec);
    ~FileSpecInStream() override;

    bool getChar(char& c) override;

    // -1 without a file.
    int getPosition() const override;

    // Any position is accepted; at one outside the file nothing is read.
    void setPosition(int position) override;
    bool eof() override;

protected:
    bool lendBytes(Window& lent) override;
    void takeBytesBack(const Window& lent) const override;
    bool isTooLarge(const Window& lent) const override;

private:
    ORVXML_LOCAL bool lendBlock(Window& lent, std::int64_t left);

    std::unique_ptr<OrvSys::FileIO> owned;
    OrvSys::FileIO* file = nullptr;
    std::int64_t length = 0;
    int beforeStart = 0;  // the position that was set, where it is negative: a file has none

    mutable std::int64_t notUsed = 0;  // how many of the bytes lent last came back
    std::unique_ptr<FileBlock> block;  // null until it is worth its while
};

}  // namespace Xml
