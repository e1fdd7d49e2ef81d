#pragma once

#include "orvsys/Files.h"
#include "xml/stream/OutStream.h"
#include <memory>

namespace Xml {

// Writes to a file of the platform layer.
class ORVXML_API FileSpecOutStream : public OutStream {
public:
    // Writes to the caller's open file, from where it stands; it must outlive this object. The file keeps bytes back:
    // all that is written is in it once the caller has closed it.
    explicit FileSpecOutStream(OrvSys::FileIO& file);

    // Creates the file, or empties the one that is there, and closes it at the end. When it cannot be opened isValid()
    // is false, and what is written is lost.
    explicit FileSpecOutStream(const OrvSys::FileSpec& spec);
    ~FileSpecOutStream() override;

    bool isValid() const override;
    void putChar(char c) override;

    // -1 when not valid, and past 2^31 - 1.
    int getPosition() const override;
    void setPosition(int position) override;

protected:
    bool putChars(const char* bytes, std::size_t count) override;
    std::int64_t countFrom() const override;

private:
    std::unique_ptr<OrvSys::FileIO> owned;
    OrvSys::FileIO* file = nullptr;
};

}  // namespace Xml
