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

private:
    static const WindowSource kWindowSource;
    static bool acquireWindow(InStream& stream);
    static void returnWindow(const InStream& stream);

    std::string text;
    mutable int position = 0;  // the window's cursor is the truth while the window is held
};

}  // namespace Xml
