#pragma once

#include "xml/stream/InStream.h"
#include <string>

namespace Xml::test {

// A reader that hears its messages itself: each, with ";" after it.
template <class AnyReader>
class Listening : public AnyReader {
public:
    using AnyReader::AnyReader;

    void message(InStream&, const std::string& text) override { heard += text + ";"; }

    std::string heard;
};

}  // namespace Xml::test
