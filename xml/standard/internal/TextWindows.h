#pragma once

#include "xml/standard/internal/Decoder.h"
#include "xml/standard/internal/FirstLineEnd.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/SourceText.h"
#include "xml/standard/internal/StreamBytes.h"
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

// A source as text, of which a lexer is given a window at a time.
class TextWindows {
public:
    enum class Ending : std::uint8_t { None, Whole, Undecodable, Unreadable, TooLong };

    virtual ~TextWindows() = default;

    // Gives the lexer its first window, and the next one after More. False: there is no more, and that is not the end
    // of the text; see ending().
    virtual bool advance(Lexer& lexer) = 0;

    // How the source ends, once that was seen.
    Ending ending() const { return how; }

    // The bytes before the limit, where the source is known to be too long before anything of it is read.
    virtual std::string_view withinLimit() const { return {}; }

    // Why it is unreadable, in a few words.
    virtual const char* reason() const { return ""; }

    // Once the lexer has a window.
    virtual Decoder& decoder() = 0;

    // What is at hand of the text: the window, and something before it.
    virtual std::string_view held() const = 0;

    // How the first line ends, as far as the text was read.
    virtual const char* newline() = 0;

protected:
    Ending how = Ending::None;
};

// A text in memory: one window.
class WholeText final : public TextWindows {
public:
    // The text must stay. Nothing is looked at yet. One of more bytes than that is not read; 0: no limit.
    WholeText(std::string_view itsSource, std::string itsEncoding, std::int64_t maxBytes)
        : source(itsSource), encoding(std::move(itsEncoding)), limit(maxBytes) {}

    bool advance(Lexer& lexer) override;
    std::string_view withinLimit() const override { return source.substr(0, static_cast<std::size_t>(limit)); }
    Decoder& decoder() override { return text->decoder(); }
    std::string_view held() const override { return text ? text->text() : std::string_view(); }
    const char* newline() override;

private:
    std::string_view source;
    std::string encoding;
    std::int64_t limit;
    std::optional<SourceText> text;  // once it is looked at
    FirstLineEnd lineEnd;
    bool isLookedAt = false;  // for its first line end
};

// A stream: as much of it as the lexer needs, and of a pipe what is there.
//
// A construct that does not end in a window is read again from a longer one. That is tried a few times with whatever
// has come, so that nothing waits in vain for what a pipe does not give yet, and then with twice as much: the work
// stays linear.
class StreamText final : public TextWindows {
public:
    // No more bytes than that are read; 0: no limit.
    StreamText(std::istream& in, const std::string& encoding, std::int64_t maxBytes)
        : bytes(in), decoding(encoding), limit(maxBytes) {}

    bool advance(Lexer& lexer) override;
    const char* reason() const override { return bytes.reason(); }
    Decoder& decoder() override { return decoding; }
    std::string_view held() const override { return text; }
    const char* newline() override { return lineEnd.text(); }

private:
    void dropRead(const Lexer& lexer);
    void read();

    StreamBytes bytes;
    Decoder decoding;
    std::int64_t limit;
    std::int64_t taken = 0;  // bytes of the stream

    std::string text;
    std::size_t begin = 0;  // of the window; what stands before it is for messages
    int tries = 0;          // to read the same construct
    std::string piece;
    FirstLineEnd lineEnd;
};

}  // namespace Xml
