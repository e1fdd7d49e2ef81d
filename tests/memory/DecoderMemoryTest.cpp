// Sources of the standard face while memory runs out.
#include "memory/Failing.h"
#include "xml/standard/internal/Decoder.h"
#include "xml/standard/internal/SourceText.h"
#include "xml/standard/internal/StreamBytes.h"
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

namespace Xml::test {

namespace {

// In each encoding of the built-in ones and in one of the platform's, with what fails at the end.
const std::string kSources[] = {
    "<?xml version='1.0'?><element>a text that is longer than any short string</element>\xFF",
    "<?xml version='1.0' encoding='ISO-8859-1'?><element>text\xE4</element>",
    "<?xml version='1.0' encoding='KOI8-R'?><element>text\xC1\xC2\xC3</element>",
    "<?xml version='1.0' encoding='an-encoding-that-is-not-known-anywhere'?><element/>",
    std::string("\xFF\xFE<\0a\0/\0>\0", 10),
};

TEST(DecoderMemoryTest, SourcesInMemory) {
    forEachFailingAllocation([](Attempt& attempt) {
        for (const std::string& source : kSources) {
            std::optional<SourceText> text;
            if (!attempt([&] { text.emplace(source); })) continue;
            Places places;
            const auto end = static_cast<std::int64_t>(text->text().size());
            attempt([&] { EXPECT_LE(text->decoder().sourceOffset(places.at(end, text->text())), 1000); });
        }
    });
}

TEST(DecoderMemoryTest, StreamsInPieces) {
    forEachFailingAllocation([](Attempt& attempt) {
        for (const std::string& source : kSources) {
            std::istringstream in(source);
            attempt([&] {
                StreamBytes bytes(in);
                Decoder decoder;
                std::string piece;
                std::string text;
                while (bytes.read(piece) == StreamBytes::Ending::More) {
                    decoder.decode(std::string_view(piece).substr(0, 8), text);
                    decoder.decode(std::string_view(piece).substr(8), text);
                    decoder.forget(static_cast<std::int64_t>(text.size()));
                }
                decoder.finish(text);
            });
        }
    });
}

}  // namespace

}  // namespace Xml::test
