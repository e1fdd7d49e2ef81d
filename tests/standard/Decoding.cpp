#include "Decoding.h"
#include "xml/standard/internal/SourceText.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

void noteEnd(const Decoder& decoder, Decoded& outcome) {
    outcome.hasFailed = decoder.failure().has_value();
    if (outcome.hasFailed) outcome.failure = *decoder.failure();
    outcome.hasMark = decoder.hasMark();
}

// As a reader of a stream does: it holds a part of the text and asks where each character is.
class Reader {
public:
    explicit Reader(const std::string& encoding) : decoder(encoding) {}

    bool take(const std::string& piece) {
        const bool goesOn = decoder.decode(piece, held);
        askPlaces();
        return goesOn;
    }

    Decoded end() {
        decoder.finish(held);
        askPlaces();
        // Once more for the end, which is no character.
        outcome.offsets.push_back(offsetOf(asked));
        outcome.text += held;
        noteEnd(decoder, outcome);
        return outcome;
    }

private:
    std::int64_t offsetOf(std::int64_t place) { return decoder.sourceOffset(places.at(place, held, from)); }

    void askPlaces() {
        while (asked < from + static_cast<std::int64_t>(held.size())) {
            outcome.offsets.push_back(offsetOf(asked));
            asked += Utf8::at(held.data() + (asked - from)).size;
        }
        const std::int64_t keptFrom = asked - 7 > from ? asked - 7 : from;
        std::int64_t cut = from;
        while (cut < keptFrom) cut += Utf8::at(held.data() + (cut - from)).size;
        if (cut == from || held.size() % 3 != 0) return;
        places.forget(cut, held, from);
        decoder.forget(cut);
        outcome.text += held.substr(0, static_cast<std::size_t>(cut - from));
        held.erase(0, static_cast<std::size_t>(cut - from));
        from = cut;
        EXPECT_EQ(offsetOf(from), outcome.offsets[charactersIn(outcome.text)]);
    }

    static std::size_t charactersIn(const std::string& text) {
        std::size_t count = 0;
        for (const char c : text) count += Utf8::goesOn(c) ? 0 : 1;
        return count;
    }

    Decoder decoder;
    Places places;
    std::string held;
    std::int64_t from = 0;
    std::int64_t asked = 0;
    Decoded outcome;
};

}  // namespace

Decoded decodeWhole(const std::string& source, const std::string& encoding) {
    SourceText whole(source, encoding);
    Decoded outcome;
    outcome.text = whole.text();
    noteEnd(whole.decoder(), outcome);
    Places places;
    const auto end = static_cast<std::int64_t>(outcome.text.size());
    for (std::int64_t at = 0;; at += Utf8::at(outcome.text.data() + at).size) {
        outcome.offsets.push_back(whole.decoder().sourceOffset(places.at(at, whole.text())));
        if (at == end) break;
    }
    return outcome;
}

Decoded decodePieces(const std::string& source, const std::vector<std::size_t>& ends, const std::string& encoding) {
    Reader reader(encoding);
    std::size_t at = 0;
    for (const std::size_t end : ends) {
        if (!reader.take(source.substr(at, end - at))) return reader.end();
        at = end;
    }
    reader.take(source.substr(at));
    return reader.end();
}

Decoded decodeBytes(const std::string& source, const std::string& encoding) {
    std::vector<std::size_t> ends;
    for (std::size_t end = 1; end <= source.size(); ++end) ends.push_back(end);
    return decodePieces(source, ends, encoding);
}

void expectSame(const Decoded& outcome, const Decoded& expected) {
    EXPECT_EQ(outcome.text, expected.text);
    EXPECT_EQ(outcome.offsets, expected.offsets);
    EXPECT_EQ(outcome.hasMark, expected.hasMark);
    ASSERT_EQ(outcome.hasFailed, expected.hasFailed);
    if (!expected.hasFailed) return;
    EXPECT_EQ(outcome.failure.kind, expected.failure.kind);
    EXPECT_EQ(outcome.failure.offset, expected.failure.offset);
    EXPECT_EQ(outcome.failure.textOffset, expected.failure.textOffset);
    EXPECT_EQ(outcome.failure.bytes, expected.failure.bytes);
    EXPECT_EQ(outcome.failure.encoding, expected.failure.encoding);
    EXPECT_EQ(outcome.failure.text, expected.failure.text);
}

}  // namespace Xml::test
