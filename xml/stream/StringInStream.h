#pragma once

#include "xml/stream/InStream.h"

namespace Xml {

// Reads from a copy of a text. A text of more than 2^31 - 1 bytes cannot be read: "Source too large".
class ORVXML_API StringInStream : public InStream {
public:
    explicit StringInStream(const std::string& text);

    bool getChar(char& c) override;
    int getPosition() const override;

    // Any position is accepted; at one outside the text nothing is read.
    void setPosition(int position) override;
    bool eof() override;

protected:
    bool lendBytes(Window& lent) override;
    void takeBytesBack(const Window& lent) const override;
    bool isTooLarge(const Window& lent) const override;

private:
    ORVXML_LOCAL bool hasByte() const;

    std::string text;
    mutable int position = 0;  // while bytes are lent the window's cursor counts instead
};

}  // namespace Xml
