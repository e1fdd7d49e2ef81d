#include "reader/ReadCase.h"

#include "support/BothWays.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>

namespace Xml::test {

const char* const kEndOfStream = "Unexpected end of stream";

Verdict Verdict::builds(const std::string& text) const {
    Verdict verdict = *this;
    verdict.builtText = text;
    return verdict;
}

Verdict Verdict::reports(const std::string& text) const {
    Verdict verdict = *this;
    verdict.diagnostics = text;
    return verdict;
}

Verdict Verdict::goes() const {
    Verdict verdict = *this;
    verdict.gone = true;
    return verdict;
}

Verdict Verdict::notes(const std::string& text) const {
    Verdict verdict = *this;
    verdict.message = text;
    return verdict;
}

Verdict Verdict::notesBefore(const std::string& text, const std::string& rest) const {
    Verdict verdict = notes(text);
    verdict.noteLeft = rest;
    return verdict;
}

Verdict yes(const std::string& left) {
    Verdict verdict;
    verdict.ok = true;
    verdict.left = left;
    return verdict;
}

Verdict no(const std::string& message, const std::string& left) {
    Verdict verdict;
    verdict.message = message;
    verdict.left = left;
    return verdict;
}

Verdict silent(const std::string& left) {
    Verdict verdict;
    verdict.left = left;
    return verdict;
}

Verdict ended() { return no(kEndOfStream); }

std::string located(int line, int column, const std::string& text, const char* readerClass) {
    const std::string whole = "(line = " + std::to_string(line) + ", column = " + std::to_string(column) + ") " + text +
                              " <" + readerClass + ">";
    return whole.substr(0, 255);
}

namespace {

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

void expectReading(const ReadCase& c, const Verdict& verdict, const char* readerClass, Source source,
                   const std::function<Reading(InStream&)>& read) {
    const auto placeBefore = [&c](const std::string& left) { return static_cast<int>(c.text.size() - left.size()); };
    const int place = verdict.gone ? -1 : placeBefore(verdict.left);
    std::string error;
    if (verdict.message) {
        error = located(1, verdict.noteLeft ? placeBefore(*verdict.noteLeft) : place, *verdict.message,
                        verdict.reader != nullptr ? verdict.reader : readerClass);
    }
    withSource(source, c.text, [&](InStream& in) {
        MessageCollector diagnostics;
        const Reading reading = read(in);
        EXPECT_EQ(reading.ok, verdict.ok);
        EXPECT_EQ(reading.error, error);
        EXPECT_EQ(reading.built, verdict.builtText);
        EXPECT_EQ(in.getPosition(), place);
        EXPECT_EQ(joined(diagnostics.texts()), verdict.diagnostics);
    });
}

}  // namespace

void expectReadings(const std::vector<ReadCase>& cases, const char* readerClass,
                    const std::function<Reading(InStream&)>& read) {
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + ": " + c.text);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            Verdict verdict = c.verdict;
            if (source == Source::FileStream && c.late) {
                verdict = *c.late;
            } else if (source == Source::FileStream && c.verdict.message == kEndOfStream) {
                verdict = c.verdict.goes();
            }
            bothWays([&] { expectReading(c, verdict, readerClass, source, read); });
        }
    }
}

std::string declarationsOf(const Dtd& dtd) {
    const std::string text = textOf(dtd);
    const std::size_t from = text.find('\n') + 1;
    const std::size_t to = text.rfind("]>");
    return to > from ? text.substr(from, to - from - 1) : "";
}

std::string attributesOf(const Dtd& dtd) {
    const std::string text = textOf(dtd);
    const std::string start = "<!ATTLIST a\n";
    std::size_t from = text.find(start);
    if (from == std::string::npos) return "";
    from += start.size();
    std::string attributes;
    while (text[from] == '\t') {
        const std::size_t to = text.find('\n', from);
        attributes += (attributes.empty() ? "" : "; ") + text.substr(from + 1, to - from - 1);
        from = to + 1;
    }
    return attributes;
}

}  // namespace Xml::test
