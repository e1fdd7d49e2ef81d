// The tokenizer: the same operations over the same bytes from every kind of source.
//
// String, bare source and platform file must answer alike, and as the naive tokenizer does over the primitives of a
// string; standard streams, over a file and over a buffer of few bytes, as the naive tokenizer does over the primitives
// of a file stream, and the caller's stream must stand where those leave it.
//
// Input: a line of operations, each a letter and a byte that it uses or not, then the text. Without a line break there
// is only text. After the operations tokens are read to the end.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "models/NaiveTokenizer.h"
#include "stream/TextBuffer.h"
#include "support/Sources.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Xml::fuzz {
namespace {

using test::BareInStream;
using test::NaiveTokenizer;

constexpr int kMostTokens = 300;

struct Script {
    std::string operations;
    std::string text;
};

Script scriptOf(const std::string& input) {
    const std::size_t end = input.find('\n');
    if (end == std::string::npos) return {"", input};
    return {input.substr(0, end), input.substr(end + 1)};
}

const std::string& expectedOf(char parameter) {
    static const std::vector<std::string> kExpected = {">", "<",  "a",  "TYPE", "[", "",   "=", "/>",  "xml",
                                                       "]", "--", "\"", "]]>",  ";", "?>", "(", "-->", "\r\n"};
    return kExpected[static_cast<unsigned char>(parameter) % kExpected.size()];
}

std::string verdict(bool ok, const std::string& text = "") { return (ok ? "true " : "false ") + text; }

// What a caller sees after each operation.
struct Step {
    std::string seen;
    std::string buffer;  // the naive tokenizer's
};
using Steps = std::vector<Step>;

// One side's run. What the sides keep between the operations is their own.
template <class Tokenizer>
class Run {
public:
    Run(Tokenizer& tokenizer, std::size_t textLength) : in(tokenizer), size(textLength) {}

    std::string perform(char operation, char parameter) {
        std::string text = "untouched";
        char c = 'Z';
        bool ok = false;
        switch (operation) {
        case 't': ok = in.getToken(text); return verdict(ok, text);
        case 'n': ok = in.getName(text); return verdict(ok, text);
        case 's': ok = in.getString(text); return verdict(ok, text);
        case 'T': return verdict(in.getTokenInParseBuffer());
        case 'N': return verdict(in.getNameInParseBuffer());
        case 'S': return verdict(in.getStringInParseBuffer());
        case 'L': return verdict(in.getTokenltInParseBuffer());
        case 'd': ok = in.getCharData(data); return verdict(ok, data);
        case 'g': ok = in.get(c); return verdict(ok, std::string(1, c));
        case 'b': in.putBackChar(); return "";
        case 'c': return verdict(in.checkToken(expectedOf(parameter)));
        case 'C': {
            const std::string& expected = expectedOf(parameter);
            return verdict(in.checkTokenInParseBuffer(expected.data(), static_cast<int>(expected.size())));
        }
        case 'k': return verdict(in.skip(expectedOf(parameter)));
        case 'w': in.eatWhite(); return "";
        case 'm': marks.push_back(in.StorePosition()); return "";
        case 'r':
            if (!marks.empty()) in.RestorePosition(marks[static_cast<unsigned char>(parameter) % marks.size()]);
            return "";
        case 'G': ok = in.getChar(c); return verdict(ok, std::string(1, c));
        case 'p': in.setPosition(static_cast<int>(static_cast<unsigned char>(parameter) % (size + 1))); return "";
        case 'e': return verdict(in.eof());
        default: return "no operation";
        }
    }

private:
    Tokenizer& in;
    std::size_t size;
    DataHolder data;
    std::vector<std::pair<int, int>> marks;
};

template <class Tokenizer>
std::string lookAt(const Tokenizer& in) {
    return " at " + std::to_string(in.getPosition()) + " (" + std::to_string(in.getLine()) + ", " +
           std::to_string(in.getColumn()) + ") " + in.getErrorMessage() + " buffer " +
           std::to_string(in.StorePosition().second);
}

// Calls `step` with each operation of the script, then with one more token until it says that none was left.
template <class StepFunction>
void forEachOperation(const Script& script, StepFunction step) {
    for (std::size_t i = 0; i + 1 < script.operations.size(); i += 2) {
        step(script.operations[i], script.operations[i + 1]);
    }
    for (int i = 0; i < kMostTokens && step('t', ' '); ++i) {}
}

bool isTrue(const std::string& seen) { return seen[0] == 't'; }

Steps naiveSteps(const Script& script, InStream& bytes) {
    NaiveTokenizer naive(bytes);
    Run<NaiveTokenizer> run(naive, script.text.size());
    Steps steps;
    forEachOperation(script, [&](char operation, char parameter) {
        std::string seen = run.perform(operation, parameter);
        const bool goesOn = isTrue(seen);
        steps.push_back({std::move(seen) + lookAt(naive), naive.parseBuffer()});
        return goesOn;
    });
    return steps;
}

// Goes through the operations side by side with what the naive tokenizer saw.
void compare(const char* source, const Script& script, InStream& in, const Steps& expected) {
    Run<InStream> run(in, script.text.size());
    std::size_t i = 0;
    forEachOperation(script, [&](char operation, char parameter) {
        std::string seen = run.perform(operation, parameter);
        const bool goesOn = isTrue(seen);
        if (i < expected.size()) {
            const auto what = [&] {
                return std::string("a ") + source + " answers '" + operation + "', operation " + std::to_string(i) +
                       ", as the naive tokenizer does";
            };
            const Step& step = expected[i];
            seen += lookAt(in);
            if (seen != step.seen) expectSame(what(), step.seen, seen);
            const bool alike = in.CheckParseBufferEnd(step.buffer.data(), static_cast<int>(step.buffer.size()));
            if (!alike) expectTrue(what() + " with the same parse buffer", alike, step.buffer);
        }
        ++i;
        return goesOn;
    });
}

// Where the caller's stream stands. Asked of the buffer: the stream's own tellg would put an end of file down as a
// failure.
std::string stateOf(std::istream& stream) {
    std::string state = std::to_string(static_cast<int>(stream.rdstate()));
    if (!stream.good()) return state;
    const auto place = stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    return state + "@" + std::to_string(static_cast<std::streamoff>(place));
}

void checkPromptSources(const Script& script, const std::string& path) {
    Steps expected;  // stays empty where the naive tokenizer takes too long: then the library must still end
    try {
        Counted<StringInStream> bytes(script.text);
        expected = naiveSteps(script, bytes);
    } catch (const OutOfSteps&) {}
    StringInStream string(script.text);
    compare("string", script, string, expected);
    BareInStream bare(script.text);
    compare("bare source", script, bare, expected);
    FileSpecInStream file{OrvSys::FileSpec(path)};
    compare("platform file", script, file, expected);
}

// As long as positions are in the text, what buffer a standard stream has makes no difference.
void checkStandardStreams(const Script& script, const std::string& path) {
    std::istringstream naiveStream(script.text);
    Steps expected;
    try {
        Counted<FileInStream> bytes(&naiveStream);
        expected = naiveSteps(script, bytes);
    } catch (const OutOfSteps&) {}
    const auto compareStream = [&](const char* name, std::istream& stream) {
        FileInStream in(&stream);
        compare(name, script, in, expected);
        if (expected.empty()) return;
        expectSame("the caller's stream stands where the primitives leave it", stateOf(naiveStream), stateOf(stream));
    };
    std::ifstream file(path, std::ios::binary);
    compareStream("file stream", file);
    test::TextStream fewBytes(script.text, {1 + script.text.size() % 7});
    compareStream("stream with few bytes at hand", fewBytes);
}

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& input) {
    const Script script = scriptOf(input);
    const std::string path = pathOfFileWith(script.text);
    checkPromptSources(script, path);
    checkStandardStreams(script, path);
}

}  // namespace Xml::fuzz
