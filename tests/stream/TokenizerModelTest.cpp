// The library's tokenizer beside the naive one: the same random operations over the same bytes from the same kind of
// source, compared after each. What is at stake is everything that the tokenizer does to be quick: it reads bytes in
// memory where a source has them, and must leave result, message, position, lines, columns and the caller's stream as
// the primitives alone would.
#include "TextBuffer.h"
#include "models/NaiveTokenizer.h"
#include "orvsys/Files.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/WithoutReadAhead.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Xml::DataHolder;
using Xml::FileInStream;
using Xml::FileSpecInStream;
using Xml::InStream;
using Xml::StreamAccess;
using Xml::StringInStream;
using Xml::test::BareInStream;
using Xml::test::BufferHabits;
using Xml::test::NaiveTokenizer;
using Xml::test::scratchPath;
using Xml::test::TextStream;
using Xml::test::WithoutReadAhead;
using Xml::test::writeFile;

using Random = std::mt19937;

int below(Random& random, int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

bool oneIn(Random& random, int n) { return below(random, n) == 0; }

std::string escaped(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c >= ' ' && c <= '~' && c != '\\' && c != '"') {
            result += c;
        } else if (c == '\n') {
            result += "\\n";
        } else if (c == '\r') {
            result += "\\r";
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            result += hex;
        }
    }
    return result + "\"";
}

// Long texts by their length, a hash and their last bytes.
std::string shortened(const std::string& text) {
    if (text.size() <= 120) return escaped(text);
    return std::to_string(text.size()) + " bytes (" + std::to_string(std::hash<std::string>()(text)) + ") ending in " +
           escaped(text.substr(text.size() - 60));
}

// --- Sources that the tokenizer must not see through ---

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Each hands the tokenizer other bytes than its base would.
template <class Base>
class UpperCased : public Base {
public:
    using Base::Base;
    bool getChar(char& c) override {
        if (!Base::getChar(c)) return false;
        c = upper(c);
        return true;
    }
};

// Its positions begin at 1000.
template <class Base>
class Shifted : public Base {
public:
    using Base::Base;
    int getPosition() const override { return Base::getPosition() + kShift; }
    void setPosition(int place) override {
        if (place >= 0) Base::setPosition(place - kShift);
    }

private:
    static constexpr int kShift = 1000;
};

// Cannot be moved to an odd position, only right before it.
template <class Base>
class EvenOnly : public Base {
public:
    using Base::Base;
    void setPosition(int place) override { Base::setPosition(place - place % 2); }
};

// Ends after 20 bytes, whatever is there: by eof alone, which the platform file's getChar asks.
class ShortPlatformFile : public FileSpecInStream {
public:
    using FileSpecInStream::FileSpecInStream;
    bool eof() override { return FileSpecInStream::eof() || getPosition() >= 20; }
};

// Adds nothing: still a class that might.
template <class Base>
class Plain : public Base {
public:
    using Base::Base;
};

// --- Kinds of source ---

enum class Kind {
    String,
    Bare,
    StringStream,
    StrictStringStream,  // exceptions switched on
    FileStream,          // opened by the caller
    PathStream,          // opened by the source
    StrictFileStream,
    PlatformFile,
    CallersPlatformFile,
    UpperString,
    UpperStream,
    UpperPlatformFile,
    ShiftedString,
    ShiftedStream,
    EvenString,
    EvenStream,
    ShortPlatform,
    PlainString,
    PlainStream,
    PlainPlatformFile,
    Chunked,
    Unbuffered,
    Unseekable,
    Throwing,
    StrictThrowing,
};

bool needsFile(Kind kind) {
    return kind == Kind::FileStream || kind == Kind::PathStream || kind == Kind::StrictFileStream ||
           kind == Kind::PlatformFile || kind == Kind::CallersPlatformFile || kind == Kind::UpperPlatformFile ||
           kind == Kind::ShortPlatform || kind == Kind::PlainPlatformFile;
}

// Where the files are that both sides read.
const std::string& modelPath() {
    static const std::string path = scratchPath("model");
    return path;
}

// One source and what its caller holds of it.
struct Subject {
    std::unique_ptr<std::istream> stream;
    std::unique_ptr<OrvSys::FileIO> file;
    std::unique_ptr<InStream> in;  // goes first
};

template <class Class>
void useStream(Subject& subject, std::unique_ptr<std::istream> stream) {
    subject.in = std::make_unique<Class>(stream.get());
    subject.stream = std::move(stream);
}

constexpr auto kAllExceptions = std::ios::badbit | std::ios::failbit | std::ios::eofbit;

Subject makeSubject(Kind kind, const std::string& text, const std::string& path) {
    Subject subject;
    const auto strings = [&text] { return std::make_unique<std::istringstream>(text); };
    const auto buffered = [&text](BufferHabits habits) { return std::make_unique<TextStream>(text, habits); };
    switch (kind) {
    case Kind::String: subject.in = std::make_unique<StringInStream>(text); break;
    case Kind::Bare: subject.in = std::make_unique<BareInStream>(text); break;
    case Kind::StringStream: useStream<FileInStream>(subject, strings()); break;
    case Kind::StrictStringStream:
        useStream<FileInStream>(subject, strings());
        subject.stream->exceptions(kAllExceptions);
        break;
    case Kind::FileStream:
        useStream<FileInStream>(subject, std::make_unique<std::ifstream>(path, std::ios::binary));
        break;
    case Kind::PathStream: {
        auto file = std::make_unique<std::ifstream>();
        subject.in = std::make_unique<FileInStream>(path, file.get());
        subject.stream = std::move(file);
        break;
    }
    case Kind::StrictFileStream:
        useStream<FileInStream>(subject, std::make_unique<std::ifstream>(path, std::ios::binary));
        subject.stream->exceptions(kAllExceptions);
        break;
    case Kind::PlatformFile: subject.in = std::make_unique<FileSpecInStream>(OrvSys::FileSpec(path)); break;
    case Kind::CallersPlatformFile:
        subject.file = std::make_unique<OrvSys::FileIO>(OrvSys::FileSpec(path));
        subject.file->OpenForReading();
        subject.in = std::make_unique<FileSpecInStream>(*subject.file);
        break;
    case Kind::UpperString: subject.in = std::make_unique<UpperCased<StringInStream>>(text); break;
    case Kind::UpperStream: useStream<UpperCased<FileInStream>>(subject, strings()); break;
    case Kind::UpperPlatformFile:
        subject.in = std::make_unique<UpperCased<FileSpecInStream>>(OrvSys::FileSpec(path));
        break;
    case Kind::ShiftedString: subject.in = std::make_unique<Shifted<StringInStream>>(text); break;
    case Kind::ShiftedStream: useStream<Shifted<FileInStream>>(subject, strings()); break;
    case Kind::EvenString: subject.in = std::make_unique<EvenOnly<StringInStream>>(text); break;
    case Kind::EvenStream: useStream<EvenOnly<FileInStream>>(subject, strings()); break;
    case Kind::ShortPlatform: subject.in = std::make_unique<ShortPlatformFile>(OrvSys::FileSpec(path)); break;
    case Kind::PlainString: subject.in = std::make_unique<Plain<StringInStream>>(text); break;
    case Kind::PlainStream: useStream<Plain<FileInStream>>(subject, strings()); break;
    case Kind::PlainPlatformFile: subject.in = std::make_unique<Plain<FileSpecInStream>>(OrvSys::FileSpec(path)); break;
    case Kind::Chunked: useStream<FileInStream>(subject, buffered({1 + text.size() % 7, true})); break;
    case Kind::Unbuffered: useStream<FileInStream>(subject, buffered({0, true})); break;
    case Kind::Unseekable: useStream<FileInStream>(subject, buffered({text.size() % 5, false})); break;
    case Kind::Throwing: useStream<FileInStream>(subject, buffered({text.size() % 5, true, text.size() / 2})); break;
    case Kind::StrictThrowing:
        useStream<FileInStream>(subject, buffered({text.size() % 5, true, text.size() / 2}));
        subject.stream->exceptions(kAllExceptions);
        break;
    }
    return subject;
}

// --- Texts ---

// What decides something in the tokenizer, alone or at the seam of two.
const std::vector<std::string>& fragments() {
    static const std::vector<std::string> all = {
        "\"",
        "'",
        "\"a b\"",
        "'x'",
        "&",
        ";",
        "&amp;",
        "&#65;",
        "&a b;",
        "a&b;c",
        "<",
        "</",
        "</a>",
        "<!",
        "<!--",
        "-->",
        "--",
        "-",
        "<!-- x -->",
        "<![CDATA[",
        "<![ CDATA [",
        "<! [ CDATA[",
        "<!\r\n[\tCDATA\r\n[",
        "<![",
        "<![CDATA",
        "CDATA",
        "]]>",
        "]]",
        "<?",
        "<?xml",
        "<?xml ",
        "<?php ",
        "<?x.xml ",
        "<? xml ",
        "?>",
        "<!DOCTYPE ",
        "<! ENTITY ",
        "<!ELEMENT",
        "<!1",
        "<!\"[\"",
        "<!&[;",
        "<!<![",
        "<?<?xml",
        "<!-x",
        "\r",
        "\n",
        "\r\n",
        "\r\r",
        "\r\n\r\n",
        "\n\r",
        "\r\r\r",
        " ",
        "  ",
        "\t",
        " \t\n",
        "name",
        "a",
        "xml",
        "b-c.d:e_f",
        "_",
        ":",
        "1",
        "1abc",
        "42",
        ".",
        "#",
        "#PCDATA",
        "#REQUIRED",
        "%",
        "%p;",
        std::string(1, '\0'),
        std::string("a\0b", 3),
        "\xff",
        "\xc3\xa9",
        "caf\xc3\xa9 ",
        "\x80",
        "\f",
        "\v",
        "/>",
        "/",
        "/ >",
        "=",
        "!",
        "(",
        ")",
        "*",
        "+",
        ",",
        ">",
        "?",
        "[",
        "\\",
        "]",
        "|",
        "{",
        "}",
        "~",
        "@",
        "$",
        "^",
        "`",
        "a=\"b\"",
        "<a b='c'>",
        "text ",
        "TYPE",
        "\x1a",
    };
    return all;
}

const std::string& anyFragment(Random& random) {
    return fragments()[static_cast<std::size_t>(below(random, static_cast<int>(fragments().size())))];
}

std::string randomText(Random& random, int fragmentCount) {
    std::string text;
    for (int i = 0; i < fragmentCount; ++i) {
        text += anyFragment(random);
        // A run of one thing now and then: what is taken in one go has more than a byte or two.
        if (oneIn(random, 30)) {
            const std::string run = oneIn(random, 2) ? std::string(1, "a \r\n-]"[below(random, 6)]) : "\r\n";
            const int count = 1 + below(random, 40);
            for (int k = 0; k < count; ++k) text += run;
        }
    }
    return text;
}

std::string textOf(Random& random, const std::vector<std::string>& pieces, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += pieces[static_cast<std::size_t>(below(random, static_cast<int>(pieces.size())))];
    return text;
}

std::string smallText(Random& random) {
    static const std::vector<std::string> breaks = {"\r\n", "\r", "\n",       "\r\r", "a", " ",
                                                    "'",    "<",  "\r\n\r\n", "&",    ";"};
    if (oneIn(random, 5)) return textOf(random, breaks, below(random, 40));
    return randomText(random, below(random, 14));
}

// Markup that begins and begins again. The naive tokenizer tries each mark twice in every mark around it, so few.
std::string textOfMarks(Random& random) {
    static const std::vector<std::string> marks = {"<!", "<!",    "<!",  "<?",   "<?", "[",    "<![", "CDATA", "CDATA[",
                                                   "--", "-",     "xml", "xml ", " ",  "\r\n", "\r",  "x",     "1",
                                                   "'",  "\"[\"", "&[;", "<",    "</", ">",    "["};
    return textOf(random, marks, below(random, 13));
}

// Markup that tries references, which may end far away or nowhere.
std::string textOfMarksAndReferences(Random& random) {
    static const std::vector<std::string> pieces = {"<!", "<?", "<!&", "<?&", "&",    "&a;", ";", ">",
                                                    " ",  "x",  "\r",  "\n",  "\r\n", "'",   "[", "--"};
    return textOf(random, pieces, below(random, 16));
}

// Fragments around the place where a source's buffer ends, with something long and uniform before and after.
template <int Place>
std::string textAcross(Random& random) {
    const std::size_t place = static_cast<std::size_t>(Place - below(random, 2));
    const char* const kFillings[] = {"a", " ", "\r\n", "&amp;", "ab ", "x=", "\n", "<a/>", "\r"};
    const auto filling = [&](std::size_t length, std::string& text) {
        const std::string run = kFillings[below(random, 9)];
        const std::size_t end = text.size() + length;
        // The naive tokenizer looks through all breaks for each.
        const bool breaks = run[0] == '\r';
        if (breaks && length > 1000) text.append(length - 1000, 'a');
        while (text.size() + run.size() <= end) text += run;
    };
    std::string text;
    const char* const kOpeners[] = {"", "\"", "'", "&", "<!--", "<", "<!", "/"};
    text += kOpeners[below(random, 8)];
    if (oneIn(random, 2)) {
        filling(place / 2, text);
        text += anyFragment(random);
    }
    const std::size_t reach = static_cast<std::size_t>(below(random, 24));
    if (text.size() + reach < place) filling(place - text.size() - reach, text);
    text += randomText(random, 8);
    if (oneIn(random, 2)) {
        filling(static_cast<std::size_t>(below(random, 12000)), text);
        text += randomText(random, 3);
    }
    return text;
}

// --- Operations ---

enum Operation {
    kGetToken,
    kGetName,
    kGetString,
    kTokenInBuffer,
    kNameInBuffer,
    kStringInBuffer,
    kTokenLtInBuffer,
    kGetCharData,
    kGet,
    kPutBackChar,
    kCheckToken,
    kCheckTokenInBuffer,
    kSkip,
    kEatWhite,
    kStore,
    kRestore,
    kRestoreAnywhere,
    kOperations,  // below: of the source, and of what its caller holds
    kGetChar = kOperations,
    kSetPosition,
    kEof,
    kCallerReads,
    kCallerPeeks,
    kCallerSeeks,
    kCallerClears,
    kCallerUngets,
    kCallerPutsBack,
    kCallerSkips,
    kCallerReplaces,  // the text of a string stream; a file is closed and opened again
    kSteps,
};

const char* const kOperationNames[] = {"getToken",
                                       "getName",
                                       "getString",
                                       "getTokenInParseBuffer",
                                       "getNameInParseBuffer",
                                       "getStringInParseBuffer",
                                       "getTokenltInParseBuffer",
                                       "getCharData",
                                       "get",
                                       "putBackChar",
                                       "checkToken",
                                       "checkTokenInParseBuffer",
                                       "skip",
                                       "eatWhite",
                                       "StorePosition",
                                       "RestorePosition",
                                       "RestorePosition to",
                                       "getChar",
                                       "setPosition",
                                       "eof",
                                       "caller reads",
                                       "caller peeks",
                                       "caller seeks",
                                       "caller clears",
                                       "caller ungets",
                                       "caller puts back",
                                       "caller skips",
                                       "caller replaces"};

struct Step {
    int operation = kGetToken;
    int number = 0;
    int length = 0;
    std::string text;
    bool looksAfter = true;  // whether position, line, column are asked for after it
};

std::string nameOf(const Step& step) {
    return std::string(kOperationNames[step.operation]) + " " + std::to_string(step.number) + "," +
           std::to_string(step.length) + " " + escaped(step.text);
}

int anyPosition(Random& random, std::size_t textLength, std::size_t place) {
    if (oneIn(random, 12)) {
        const int kOdd[] = {-1, -2, -1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 0, 1};
        return kOdd[below(random, 7)];
    }
    if (place != 0 && !oneIn(random, 4)) return static_cast<int>(place) - 30 + below(random, 40);
    return below(random, static_cast<int>(textLength) + 4);
}

Step randomStep(Random& random, std::size_t textLength, std::size_t place) {
    const char* const kExpected[] = {">", "<", "name", "TYPE", "[", "", "=", "/>", "xml", "a b", "--", "]]>"};
    const char* const kTerminators[] = {"-->", ">", "", "?>", "]]>", "\r\n", "aa", "--", ";", "\r", "<"};
    Step step;
    const int choice = below(random, 100);
    if (choice < 25) {
        step.operation = kGetToken;
    } else if (choice < 82) {
        step.operation = below(random, kOperations);
    } else if (choice < 91) {
        step.operation = kGetChar + below(random, 3);
    } else {
        step.operation = kCallerReads + below(random, kSteps - kCallerReads);
    }
    if (step.operation == kCheckToken || step.operation == kCheckTokenInBuffer)
        step.text = kExpected[below(random, 12)];
    if (step.operation == kCallerReplaces) step.text = randomText(random, 6);
    if (step.operation == kSkip) {
        step.text = kTerminators[below(random, 11)];
        if (oneIn(random, 4)) step.text = anyFragment(random);
    }
    step.number = step.operation == kRestore || step.operation == kCallerSkips ? below(random, 50)
                                                                               : anyPosition(random, textLength, place);
    step.length = below(random, 30);
    step.looksAfter = !oneIn(random, 4);
    return step;
}

// What one side keeps between its steps.
struct Kept {
    std::vector<std::pair<int, int>> positions;
    DataHolder data;
};

std::string verdict(bool ok, const std::string& text = "") { return (ok ? "true " : "false ") + shortened(text); }

std::string stateOf(std::istream& stream) {
    std::string state = std::to_string(static_cast<int>(stream.rdstate()));
    if (stream.good()) {
        // Asked of the buffer: the stream's own tellg would put an end of file down as a failure.
        try {
            state += "@" + std::to_string(
                               static_cast<std::streamoff>(stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in)));
        } catch (const std::exception&) {
            state += "@?";
        }
    }
    return state;
}

// What the caller does with his own stream or file between two operations.
std::string callerActs(const Step& step, Subject& subject) {
    if (subject.file != nullptr) {
        if (step.operation == kCallerReads) return std::to_string(subject.file->ReadUInt8());
        if (step.operation == kCallerSeeks) subject.file->Seek(step.number);
        if (step.operation == kCallerReplaces) {
            subject.file->Close();
            if (step.length % 4 != 0) subject.file->OpenForReading();
        }
        return "";
    }
    if (subject.stream == nullptr) return "";
    std::istream& stream = *subject.stream;
    // The standard library's file buffer does not know its position any more once another byte was put back into it.
    if (step.operation == kCallerPutsBack && dynamic_cast<std::ifstream*>(&stream) != nullptr) return "";
    try {
        switch (step.operation) {
        case kCallerReads: return std::to_string(stream.get());
        case kCallerPeeks: return std::to_string(stream.peek());
        case kCallerSeeks: stream.seekg(step.number); break;
        case kCallerClears: stream.clear(); break;
        case kCallerUngets: stream.unget(); break;
        case kCallerPutsBack: stream.putback('Q'); break;
        case kCallerSkips: stream.ignore(step.number); break;
        case kCallerReplaces:
            if (auto* const strings = dynamic_cast<std::istringstream*>(&stream)) {
                strings->str(step.text);
            } else if (auto* const file = dynamic_cast<std::ifstream*>(&stream)) {
                file->close();
                if (step.length % 4 != 0) file->open(modelPath(), std::ios::binary);
            }
            break;
        }
    } catch (const std::exception&) {
        return "threw";
    }
    return "";
}

// One step of either side; the result as text.
template <class Tokenizer>
std::string perform(const Step& step, Tokenizer& in, Subject& subject, Kept& kept) {
    std::string text = "untouched";
    char c = 'Z';
    bool ok = false;
    switch (step.operation) {
    case kGetToken: ok = in.getToken(text); return verdict(ok, text);
    case kGetName: ok = in.getName(text); return verdict(ok, text);
    case kGetString: ok = in.getString(text); return verdict(ok, text);
    case kTokenInBuffer: return verdict(in.getTokenInParseBuffer());
    case kNameInBuffer: return verdict(in.getNameInParseBuffer());
    case kStringInBuffer: return verdict(in.getStringInParseBuffer());
    case kTokenLtInBuffer: return verdict(in.getTokenltInParseBuffer());
    case kGetCharData: ok = in.getCharData(kept.data); return verdict(ok, kept.data);
    case kGet: ok = in.get(c); return verdict(ok, std::string(1, c));
    case kPutBackChar: in.putBackChar(); return "";
    case kCheckToken: return verdict(in.checkToken(step.text));
    case kCheckTokenInBuffer:
        return verdict(in.checkTokenInParseBuffer(step.text.data(), static_cast<int>(step.text.size())));
    case kSkip: return verdict(in.skip(step.text));
    case kEatWhite: in.eatWhite(); return "";
    case kStore: kept.positions.push_back(in.StorePosition()); return "";
    case kRestore:
        if (kept.positions.empty()) return "";
        in.RestorePosition(kept.positions[static_cast<std::size_t>(step.number) % kept.positions.size()]);
        return "";
    case kRestoreAnywhere: in.RestorePosition({step.number, step.length}); return "";
    case kGetChar: ok = in.getChar(c); return verdict(ok, std::string(1, c));
    case kSetPosition: in.setPosition(step.number); return "";
    case kEof: return verdict(in.eof());
    default: return callerActs(step, subject);
    }
}

template <class Tokenizer>
std::string lookAt(const Tokenizer& in) {
    const int position = in.getPosition();
    const int line = in.getLine();
    const int column = in.getColumn();
    return "at " + std::to_string(position) + " line " + std::to_string(line) + " column " + std::to_string(column);
}

// What was met along the way: a comparison of nothing but empty inputs would agree as well.
struct Met {
    std::set<std::string> tokens;
    std::set<std::string> messages;
    int mostLines = 0;
    int inputs = 0;
};

// What the operations of one comparison run in.
enum class Setting { Alone, InAReader };

// Runs both over the text; "" when they agree, else what they did.
std::string compare(Kind kind, Setting setting, const std::string& text, Random& random, std::size_t place, Met& met) {
    const std::string& path = modelPath();
    if (needsFile(kind)) {
        std::remove(path.c_str());  // emptying one that is there makes some file systems wait for the disk
        writeFile(path, text);
    }
    Subject library = makeSubject(kind, text, path);
    Subject model = makeSubject(kind, text, path);
    NaiveTokenizer naive(*model.in);
    Kept libraryKept;
    Kept modelKept;
    std::optional<StreamAccess::Session> reader;
    if (setting == Setting::InAReader) reader.emplace(*library.in);
    const std::string& message =
        library.in->getErrorMessage();  // shows later ones too, but in a reader when asked again

    std::string history;
    const int stepCount = 3 + below(random, 16);
    for (int i = 0; i < stepCount; ++i) {
        Step step = randomStep(random, text.size(), place);
        if (reader && step.operation >= kCallerReads) step.operation = kGetToken;  // the stream is the reader's
        std::string got = perform(step, *library.in, library, libraryKept);
        std::string wanted = perform(step, naive, model, modelKept);
        if (step.operation == kGetToken) met.tokens.insert(wanted);

        // First what the caller sees without asking the source.
        const auto callersView = [](Subject& subject) {
            std::string view;
            if (subject.stream != nullptr) view += " stream " + stateOf(*subject.stream);
            if (subject.file != nullptr) view += " file @" + std::to_string(subject.file->GetPosition());
            return view;
        };
        if (!reader) {
            got += callersView(library);
            wanted += callersView(model);
        }
        const bool looks = step.looksAfter || i + 1 == stepCount;
        if (reader && looks) library.in->getErrorMessage();
        if (!reader || looks) {
            got += " message " + shortened(message);
            wanted += " message " + shortened(naive.getErrorMessage());
        }
        if (looks) {
            got += " " + lookAt(*library.in);
            wanted += " " + lookAt(naive);
            const std::string& buffer = naive.parseBuffer();
            got += " buffer " + std::to_string(library.in->StorePosition().second) + " alike " +
                   std::to_string(library.in->CheckParseBufferEnd(buffer.data(), static_cast<int>(buffer.size())));
            wanted += " buffer " + std::to_string(naive.StorePosition().second) + " alike 1";
        }
        history += "  " + nameOf(step) + "\n    -> " + wanted + "\n";
        if (got != wanted) return history + "  but " + got + "\n";
        met.messages.insert(naive.getErrorMessage().substr(0, 12));
    }
    met.mostLines = std::max(met.mostLines, naive.getLine());
    ++met.inputs;
    return "";
}

struct Run {
    const char* name;
    Kind kind;
    int inputs;
    Setting setting = Setting::Alone;
};

// `place` is where a buffer ends that the texts cross, 0 for small texts.
void compareRuns(const std::vector<Run>& runs, std::string (*makeText)(Random&), std::size_t place = 0) {
    unsigned seed = 20'000 + static_cast<unsigned>(runs.size());
    for (const Run& run : runs) {
        SCOPED_TRACE(run.name);
        Random random(++seed + static_cast<unsigned>(place));
        Met met;
        const int inputs = std::max(Xml::test::rounds(run.inputs), std::min(run.inputs, 100));
        for (int i = 0; i < inputs; ++i) {
            const std::string text = makeText(random);
            const std::string difference = compare(run.kind, run.setting, text, random, place, met);
            const std::string shown =
                text.size() < 2000 ? text : "..." + text.substr(std::min(text.size() - 1, place) - 200);
            ASSERT_EQ(difference, "") << "input " << i << ": " << escaped(shown);
        }
        EXPECT_EQ(met.inputs, inputs);
        EXPECT_GT(met.tokens.size(), 20U);
        EXPECT_GE(met.messages.size(), 3U);
        EXPECT_GE(met.mostLines, run.kind == Kind::Unseekable ? 1 : 2);
    }
    std::remove(modelPath().c_str());
}

// --- The comparisons ---

TEST(TokenizerModelTest, StringsAndBareSourcesAgree) {
    compareRuns({{"string", Kind::String, 40'000}, {"bare source", Kind::Bare, 12'000}}, smallText);
}

TEST(TokenizerModelTest, StreamsInMemoryAgreeAndStandWhereThePrimitivesLeaveThem) {
    compareRuns({{"string stream", Kind::StringStream, 40'000},
                 {"stream that has a few bytes at hand", Kind::Chunked, 6'000},
                 {"stream that never has a byte at hand", Kind::Unbuffered, 3'000}},
                smallText);
}

TEST(TokenizerModelTest, FilesAgreeAndStandWhereThePrimitivesLeaveThem) {
    compareRuns({{"the caller's file stream", Kind::FileStream, 3'000},
                 {"file stream opened from a path", Kind::PathStream, 1'500},
                 {"platform file", Kind::PlatformFile, 4'000},
                 {"the caller's platform file", Kind::CallersPlatformFile, 4'000}},
                smallText);
}

TEST(TokenizerModelTest, MarksInMarksAgree) {
    compareRuns({{"string", Kind::String, 15'000},
                 {"bare source", Kind::Bare, 8'000},
                 {"string stream", Kind::StringStream, 10'000},
                 {"string in upper case", Kind::UpperString, 2'000},
                 {"stream that has a few bytes at hand", Kind::Chunked, 2'000},
                 {"stream without positions", Kind::Unseekable, 2'000},
                 {"string that steps back too far", Kind::EvenString, 2'000},
                 {"stream with positions of its own", Kind::ShiftedStream, 1'000},
                 {"platform file", Kind::PlatformFile, 2'000},
                 {"the caller's file stream", Kind::FileStream, 1'000}},
                textOfMarks);
}

// A reader keeps the window, and what was read ahead, from operation to operation. A source that does not go where it
// is sent is none for readers.
const std::vector<Run> kReaderRuns = {
    {"string", Kind::String, 4'000, Setting::InAReader},
    {"bare source", Kind::Bare, 4'000, Setting::InAReader},
    {"platform file", Kind::PlatformFile, 500, Setting::InAReader},
    {"file stream", Kind::PathStream, 500, Setting::InAReader},
    {"string in upper case", Kind::UpperString, 1'000, Setting::InAReader},
    {"string with positions of its own", Kind::ShiftedString, 1'000, Setting::InAReader}};

TEST(TokenizerModelTest, OperationsWithinAReaderAgree) {
    compareRuns(kReaderRuns, smallText);
    compareRuns(kReaderRuns, textOfMarks);
    compareRuns(kReaderRuns, textOfMarksAndReferences);
}

TEST(TokenizerModelTest, OperationsAgreeWithoutWhatIsReadAhead) {
    const WithoutReadAhead off;
    compareRuns(kReaderRuns, smallText);
    compareRuns(kReaderRuns, textOfMarks);
    compareRuns(kReaderRuns, textOfMarksAndReferences);
    compareRuns({{"string", Kind::String, 15'000}, {"string stream", Kind::StringStream, 5'000}}, textOfMarks);
}

TEST(TokenizerModelTest, DerivedSourcesHaveTheirOwnPrimitivesCalled) {
    compareRuns({{"string in upper case", Kind::UpperString, 2'000},
                 {"stream in upper case", Kind::UpperStream, 2'000},
                 {"platform file in upper case", Kind::UpperPlatformFile, 1'000},
                 {"string with positions of its own", Kind::ShiftedString, 2'000},
                 {"stream with positions of its own", Kind::ShiftedStream, 2'000},
                 {"string that steps back too far", Kind::EvenString, 2'000},
                 {"stream that steps back too far", Kind::EvenStream, 2'000},
                 {"platform file that ends early", Kind::ShortPlatform, 1'000},
                 {"string as it was", Kind::PlainString, 1'000},
                 {"stream as it was", Kind::PlainStream, 1'000},
                 {"platform file as it was", Kind::PlainPlatformFile, 1'000}},
                smallText);
}

TEST(TokenizerModelTest, StreamsThatFailOrHaveNoPositionsAgreeAndThrowNothing) {
    compareRuns({{"string stream, exceptions on", Kind::StrictStringStream, 4'000},
                 {"file stream, exceptions on", Kind::StrictFileStream, 1'000},
                 {"stream without positions", Kind::Unseekable, 4'000},
                 {"stream whose buffer throws", Kind::Throwing, 4'000},
                 {"stream whose buffer throws, exceptions on", Kind::StrictThrowing, 2'000}},
                smallText);
}

TEST(TokenizerModelTest, TokensAcrossTheEndOfAFileStreamsBufferAgree) {
    compareRuns({{"the caller's file stream", Kind::FileStream, 800},
                 {"file stream opened from a path", Kind::PathStream, 200},
                 {"file stream, exceptions on", Kind::StrictFileStream, 100},
                 {"string stream", Kind::StringStream, 300},
                 {"stream that has a few bytes at hand", Kind::Chunked, 200}},
                textAcross<8192>, 8192);
}

// A reader that has come far goes on in blocks, the first of which begins after three get areas.
TEST(TokenizerModelTest, TokensAcrossTheEndOfABlockAgree) {
    compareRuns({{"file stream", Kind::PathStream, 300, Setting::InAReader},
                 {"the caller's file stream", Kind::FileStream, 100, Setting::InAReader},
                 {"platform file", Kind::PlatformFile, 100, Setting::InAReader}},
                textAcross<3 * 8191>, 3 * 8191);
    compareRuns({{"file stream", Kind::PathStream, 150, Setting::InAReader}}, textAcross<6 * 8191>, 6 * 8191);
}

TEST(TokenizerModelTest, TokensAcrossTheEndOfAPlatformFilesBufferAgree) {
    compareRuns({{"platform file", Kind::PlatformFile, 200},
                 {"the caller's platform file", Kind::CallersPlatformFile, 200},
                 {"string", Kind::String, 100},
                 {"the caller's file stream", Kind::FileStream, 100}},
                textAcross<65'536>, 65'536);
}

}  // namespace
