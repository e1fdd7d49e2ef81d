// XML 1.0, from every kind of source.
//
// Text, stream, file and events must give the same: the tree with all places, or the same problem. What is in another
// encoding, or broken, has places within the input, and a problem has a text, a rule and an excerpt that fits. The tree
// can be copied and written, and every option may be set. As XML 1.0 it is written as the same document; a filter over
// its events gives a document too.
//
// Input: three bytes that choose the options, the number of bytes that a stream gives at a time, and what is called in
// between; then the document.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "models/Snapshot.h"
#include "standard/Streamed.h"
#include "stream/TextBuffer.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include "xml/standard/Write.h"
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Xml::fuzz {
namespace {

using Event = StreamReader::Event;

// Enough for any input that does not multiply its entities.
constexpr std::int64_t kEntityGrowth = 50'000;

struct Setting {
    ReadOptions options;
    std::size_t chunk;  // bytes that a stream has at hand; 0: none, each is asked for
    unsigned calls;     // a bit for each of the next starts: whether the element is read or passed over
};

Setting settingOf(Decisions& decisions) {
    Setting setting;
    ReadOptions& options = setting.options;
    const unsigned flags = decisions.byte();
    options.source = "source";
    options.entityGrowth = kEntityGrowth;
    options.keepPlaces = true;
    options.keepComments = (flags & 1) == 0;
    options.keepInstructions = (flags & 2) == 0;
    options.keepCData = (flags & 4) != 0;
    options.namespaces = (flags & 8) == 0;
    options.space = static_cast<Space>((flags >> 4) % 3);
    const unsigned more = decisions.byte();
    static const char* const kEncodings[] = {"", "", "", "", "UTF-8", "UTF-16", "ISO-8859-1", "Shift_JIS"};
    options.encoding = kEncodings[more & 7];
    options.maxDepth = (more & 8) != 0 ? 3 : 0;
    options.maxBytes = (more & 16) != 0 ? 40 : 0;
    static const std::size_t kChunks[] = {0, 1, 2, 3, 5, 7, 16, 61};
    setting.chunk = kChunks[(more >> 5) & 7];
    setting.calls = decisions.byte();
    return setting;
}

// --- Problems ---

// `size` is that of the source. Where bytes before a limit are no text, the limit has no line.
void checkProblem(const Problem& problem, std::size_t size, std::int64_t most) {
    const std::string shown = problem.toString() + "\n" + problem.rule + "\n" + problem.excerpt;
    expectTrue("a problem has a text", !problem.text.empty(), shown);
    expectTrue("a problem has a rule", !problem.rule.empty(), shown);
    expectTrue("a text is one line", problem.text.find('\n') == std::string::npos, shown);
    const Place& place = problem.place;
    if (problem.rule == "maxBytes") {
        expectTrue("a limit is where it is set", place.offset == most, shown + std::to_string(place.offset));
        if (place.line == 0) return;
    }
    expectTrue("a place is within the source", place.offset >= 0 && static_cast<std::size_t>(place.offset) <= size,
               shown + std::to_string(place.offset));
    expectTrue("a place has line and column", place.line >= 1 && place.column >= 1, shown);
    const std::size_t end = problem.excerpt.find('\n');
    expectTrue("below the line is a caret", end != std::string::npos && problem.excerpt.back() == '^', shown);
}

std::string shown(const std::vector<Problem>& problems) {
    std::string lines;
    for (const Problem& problem : problems) {
        lines += problem.toString() + " " + std::to_string(problem.place.offset) + " " + problem.rule + " " +
                 problem.source + "\n";
    }
    return lines;
}

// --- Trees ---

std::string outcome(const ReadResult& result) {
    if (!result) return shown(result.problems()) + result.message();
    const Document& document = *result;
    const Prolog& prolog = prologOf(document);
    return test::linesOf(document) + prolog.encoding + prolog.newline + (prolog.hasMark ? "mark" : "") +
           (prolog.hasDeclaration ? "declaration" : "") + (prolog.standalone ? *prolog.standalone ? "yes" : "no" : "") +
           test::fullText(document.getDtd());
}

// A problem's line may end where a stream has not come further, and the path has no numbers; all else is the same.
void checkStreamed(const ReadResult& result, const std::string& document, const Setting& setting) {
    test::BufferHabits habits;
    habits.chunk = setting.chunk;
    habits.seekable = false;
    test::TextStream stream(document, habits);
    const ReadResult streamed = readStream(stream, setting.options);
    expectSame("a stream is read as a text", outcome(result), outcome(streamed));
    ReadOptions options = setting.options;
    const ReadResult file = readFile(pathOfFileWith(document), options);
    expectTrue("a file is read as a text", static_cast<bool>(file) == static_cast<bool>(result), file.message());
    if (file) expectSame("a file is read as a text", outcome(result), outcome(file));
}

void checkTree(const Document& document) {
    const std::unique_ptr<Object> copy(document.clone());
    expectSame("a copy is the same", test::dump(&document), test::dump(copy.get()));
    expectSame("a copy writes the same", test::textOf(document), test::textOf(*copy));
}

// Only an encoding that was given may be another one than that of the declaration, which is written; and that may be
// one that cannot be.
void checkWriting(const Document& document, const ReadOptions& setting) {
    const WriteResult written = writeText(document, asRead(document));
    if (!written) {
        const Problem& problem = written.problems().front();
        expectTrue("what was read can be written",
                   problem.kind == Problem::Kind::Unsupported || !setting.encoding.empty(), written.message());
        return;
    }
    ReadOptions options = everything();
    options.namespaces = setting.namespaces;
    for (const bool isIndented : {true, false}) {
        const std::string text = isIndented ? writeText(document).text() : written.text();
        const ReadResult again = readText(text, options);
        expectTrue("what is written can be read", static_cast<bool>(again), again.message() + "\n" + text);
        if (isIndented) continue;
        expectSame("what is written is the same document", test::dump(&document), test::dump(again.get()));
        expectSame("and is written as it was", text, writeText(*again, asRead(*again)).text());
    }
}

// --- Events ---

void checkEvents(const ReadResult& result, const std::string& document, const ReadOptions& options) {
    StreamReader reader{std::string_view(document), options};
    const std::string lines = test::linesOf(reader);
    if (result) {
        if (options.space != Space::Content) expectSame("events are those of the tree", test::linesOf(*result), lines);
        expectTrue("events end well", lines.size() >= 9 && lines.substr(lines.size() - 9) == "finished\n", lines);
    } else {
        expectSame("events end with the problem of the tree", shown(result.problems()), shown(reader.problems()));
    }
    expectTrue("what is over stays so",
               reader.next() == (result ? Event::Finished : Event::Failed) && reader.name().empty(), lines);
}

// What is well-formed is written whole, and what is not as far as it is.
void checkFilter(const std::string& document, const ReadOptions& options, bool isWell) {
    StreamReader reader{std::string_view(document), options};
    std::ostringstream stream;
    StreamWriter writer(stream);
    Event event = Event::Start;
    while (event != Event::Finished && event != Event::Failed) {
        event = reader.next();
        writer.copy(reader);
    }
    expectTrue("a filter is as good as what it reads", writer.finish() == isWell, shown(writer.problems()));
    if (!isWell) return;
    ReadOptions reading = everything();
    reading.namespaces = options.namespaces;
    const ReadResult read = readText(stream.str(), reading);
    expectTrue("what a filter writes can be read", static_cast<bool>(read), read.message() + "\n" + stream.str());
}

// Some elements read as trees, and some passed over: the same as of a text, from a stream.
std::string mixed(StreamReader& reader, unsigned calls) {
    std::string lines;
    for (;;) {
        const Event event = reader.next();
        lines += test::lineOf(reader, event);
        if (event == Event::Finished) return lines;
        if (event == Event::Failed) return lines + shown(reader.problems());
        if (event != Event::Start) continue;
        const unsigned call = calls & 3;
        calls = calls >> 1 | (calls & 1) << 7;
        if (call == 1) reader.skipElement();
        if (call == 3) {
            const std::unique_ptr<Element> element = reader.readElement();
            lines += element != nullptr ? test::nodesOf(*element) : "none\n";
        }
    }
}

void checkMixed(const std::string& document, const Setting& setting, bool isWell) {
    StreamReader whole{std::string_view(document), setting.options};
    test::BufferHabits habits;
    habits.chunk = setting.chunk;
    habits.seekable = false;
    test::TextStream stream(document, habits);
    StreamReader pieces(stream, setting.options);
    const std::string lines = mixed(whole, setting.calls);
    const bool isTooLong = !whole.problems().empty() && whole.problems()[0].rule == "maxBytes";
    if (isTooLong) return;  // a stream gives what it has before that many bytes came
    expectSame("from a stream all is as from a text", lines, mixed(pieces, setting.calls));
    expectTrue("it ends as the tree does", whole.problems().empty() == isWell, lines);
}

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& input) {
    const test::MessageCollector quiet;  // showing a document type says what it has already
    Decisions decisions(input);
    const Setting setting = settingOf(decisions);
    const std::string document = input.size() > 3 ? input.substr(3) : "";

    const ReadResult result = readText(document, setting.options);
    expectTrue("there is a document or a problem", static_cast<bool>(result) == (result.get() != nullptr), "");
    expectTrue("a refusal says why", static_cast<bool>(result) == result.message().empty(), result.message());
    for (const Problem& problem : result.problems()) checkProblem(problem, document.size(), setting.options.maxBytes);
    checkStreamed(result, document, setting);
    if (result) {
        checkTree(*result);
        checkWriting(*result, setting.options);
    }
    checkEvents(result, document, setting.options);
    checkFilter(document, setting.options, static_cast<bool>(result));
    checkMixed(document, setting, static_cast<bool>(result));
}

}  // namespace Xml::fuzz
