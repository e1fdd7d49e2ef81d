// The document reader.
//
// String, platform file and bare source must give the same verdict, message, place, tree with its links and marks,
// document type and diagnostics; standard streams, over a file and over a buffer of few bytes, the same as the naive
// readers over their primitives. Read by tokens alone all must be the same, and every line break. What was written must
// be read as it was, and written again be the same text (RoundTrip.h has the exceptions).
//
// Input: the document.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/RoundTrip.h"
#include "fuzz/Target.h"
#include "models/NaiveReaders.h"
#include "models/Snapshot.h"
#include "reader/GrowthLimit.h"
#include "stream/LendingSource.h"
#include "stream/TextBuffer.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "support/WithoutFastContent.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DocumentReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::fuzz {
namespace {

using test::BareInStream;
using test::MessageCollector;

// Enough for any input that does not multiply its entities.
constexpr std::int64_t kEntityGrowth = 50'000;
const char* const kGrowthMessage = "entity text too large";

std::string joined(const MessageCollector& collector) {
    std::string text;
    for (const std::string& line : collector.texts()) {
        // Whether a missing file is reported besides the reader's message is no rule.
        if (line.find("<Xml::FileInStream::FileInStream>") != 0) text += line + "\n";
    }
    return text;
}

// All that shows after a reading.
std::string outcome(bool ok, const std::string& error, const Document* document, const InStream& in,
                    const MessageCollector& diagnostics) {
    const Dtd* dtd = document != nullptr ? document->getDtd() : nullptr;
    return (ok ? "true " : "false ") + error + "\n" + test::linksOf(document, dtd) + "\n" + test::fullText(dtd) + "\n" +
           test::stateOf(in) + "\n" + joined(diagnostics);
}

struct Reading {
    std::string outcome;
    std::unique_ptr<Document> document;
    bool grewTooLarge = false;
};

Reading read(InStream& in) {
    const MessageCollector diagnostics;
    DocumentReader reader;
    const bool ok = reader.parse(in);
    Reading reading;
    reading.outcome = outcome(ok, reader.getErrorMessage(), reader.getDocument(), in, diagnostics);
    reading.document.reset(reader.extractDocument());
    reading.grewTooLarge = reader.getErrorMessage().find(kGrowthMessage) != std::string::npos;
    return reading;
}

std::string naiveOutcome(InStream& in) {
    const MessageCollector diagnostics;
    test::NaiveDocumentReader reader;
    const bool ok = reader.parse(in);
    return outcome(ok, reader.error(), reader.document.get(), in, diagnostics);
}

// Reads twice, from the window and by tokens. `withStream` calls what it is given with a new stream over the text.
template <class WithStream>
void checkBothWays(const std::string& text, const WithStream& withStream) {
    const auto run = [&] {
        std::string shown;
        withStream([&](InStream& in) {
            shown = read(in).outcome;
            shown += test::placesOf(in, text.size());
        });
        return shown;
    };
    const std::string fast = run();
    const test::WithoutFastContent off;
    expectSame("from the window all is read as by tokens", run(), fast);
}

void checkStandardStreams(const std::string& text, const std::string& path) {
    std::ifstream file;
    FileInStream in(path, &file);
    const Reading reading = read(in);
    test::TextStream fewBytes(text, {1 + text.size() % 7});
    FileInStream inFewBytes(&fewBytes);
    expectSame("a stream with few bytes at hand is read as a file", reading.outcome, read(inFewBytes).outcome);

    checkBothWays(text, [&](const auto& use) {
        test::LendingSource source(text, 1 + text.size() % 37);
        use(source);
    });
    checkBothWays(text, [&](const auto& use) {
        std::istringstream stream(text);
        FileInStream source(&stream);
        use(source);
    });

    if (reading.grewTooLarge) return;  // the naive readers know no bound
    try {
        std::istringstream naiveStream(text);
        Counted<FileInStream> naiveIn(&naiveStream);
        expectSame("a file stream is read as by the naive readers", naiveOutcome(naiveIn), reading.outcome);
    } catch (const OutOfSteps&) {}
}

void checkRoundTrip(Document& document) {
    MessageCollector diagnostics;
    const Written written = writtenDocument(document, diagnostics);
    StringInStream in(written.text);
    DocumentReader reader;
    reader.parse(in);
    const Document* again = reader.getDocument();
    if (!written.refusal.empty()) {
        expectTrue("refused is " + written.refusal, again == nullptr, written.text);
        return;
    }
    expectTrue("what was written can be read", again != nullptr, reader.getErrorMessage() + "\n" + written.text);
    expectSame("what is read is what was written", test::dump(&document), test::dump(again));
    expectSame("written, read and written again is the same", written.nextText, test::textOf(*again));
}

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& text) {
    const test::GrowthLimit limit(kEntityGrowth);
    StringInStream string(text);
    const Reading reading = read(string);

    checkBothWays(text, [&](const auto& use) {
        StringInStream source(text);
        use(source);
    });

    BareInStream bare(text);
    expectSame("a bare source is read as a string", reading.outcome, read(bare).outcome);
    const std::string path = pathOfFileWith(text);
    FileSpecInStream file{OrvSys::FileSpec(path)};
    expectSame("a platform file is read as a string", reading.outcome, read(file).outcome);
    checkStandardStreams(text, path);
    if (reading.document != nullptr) checkRoundTrip(*reading.document);
}

}  // namespace Xml::fuzz
