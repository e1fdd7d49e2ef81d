// Ten documents that together use the whole dialect, and all that becomes of them by one change: every prefix, every
// byte replaced by each other byte, left out, doubled. Whatever comes of one is one of the outcomes that there are, is
// the same from every source that shows its end at once, and is what the naive readers make of it, also over the
// primitives of a file stream, whose end shows late.
#include "hostile/Guarded.h"
#include "hostile/Inputs.h"
#include "hostile/LateSource.h"
#include "hostile/SilentFailures.h"
#include "models/NaiveReaders.h"
#include "models/Snapshot.h"
#include "orvsys/Files.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "xml/dom/Document.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/AttListReader.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/reader/MixedSpecReader.h"
#include "xml/reader/PIReader.h"
#include "xml/reader/VersionInfoReader.h"
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace Xml::test {

namespace {

struct Sample {
    const char* name;
    std::string text;
};

const Sample kSamples[] = {
    {"elements", "<a x=\"1&lt;\" y='&#65;' >t &amp; u<b/> v\r\n<c></c ></a>"},
    {"text", "<r>\"q\"<b/>'s'<!-- c --><!-->&e;<b>x; </b>\r\r\t<b /></xr>"},
    {"around the root", "<?xml version=\"1.0\" encoding='L1'?><!-- c --> <?p q?>\r\n<a/><!-- d --><?s?> "},
    {"declaration", " <?xml version = '1.0' encoding=\"UTF-8\" standalone='yes' a b c ?>\n<_:a-.1/>"},
    {"children", "<!DOCTYPE a [<!ELEMENT a (b,(b|c)+,d?)><!ELEMENT b EMPTY><!ELEMENT c ANY>]><a><b/><c>t</c></a>"},
    {"separators", "<!DOCTYPE a [<!ELEMENT a (b c)><!ELEMENT c ((a b)|#PCDATA)*><!ELEMENT b (a b*)>]><a><c>t</c></a>"},
    {"mixed", "<!DOCTYPE a [<!ELEMENT a (#PCDATA|a|b)*><!-- c --><!ELEMENT b (#PCDATA)>]><a>x<b>y</b></a>"},
    {"attributes",
     "<!DOCTYPE a[<!ELEMENT a (#PCDATA)*><!ATTLIST a x CDATA #REQUIRED y CDATA #IMPLIED z CDATA 'd' f CDATA #FIXED "
     "\"v\">]>"
     "<a x='1'/>"},
    {"entities",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA ''><!ENTITY e 'v&lt;'><!ENTITY f \"&e;&e;\">]><a "
     "x='&f;&g;&#x41;&e'>&f;</a>"},
    {"skipped", "<!DOCTYPE a PUBLIC \"-//p//q\" 's'> <a x=''>t</a><!-- c -->"},
};

std::vector<std::string> changesOf(const std::string& text) {
    std::vector<std::string> changed;
    for (std::size_t i = 0; i <= text.size(); ++i) changed.push_back(text.substr(0, i));
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string other = text;
        for (int byte = 0; byte < 256; ++byte) {
            other[i] = static_cast<char>(byte);
            if (other[i] != text[i]) changed.push_back(other);
        }
        changed.push_back(text.substr(0, i) + text.substr(i + 1));
        changed.push_back(text.substr(0, i) + text[i] + text.substr(i));
    }
    return changed;
}

// What one run did, as far as it shows.
struct Result {
    bool ok = false;
    std::string message;
    std::string rest;  // tree, Dtd, state of the stream, diagnostics
    int position = 0;
    std::vector<std::string> diagnostics;
};

template <class Read>
Result resultOf(InStream& in, const Read& read) {
    Result result;
    MessageCollector messages;
    read(in, result);
    result.rest += "\n" + stateOf(in);
    result.position = in.getPosition();
    for (const std::string& text : messages.take()) {
        // Whether a missing file is reported besides the reader's message is no rule.
        if (text.find("<Xml::FileInStream::FileInStream>") != 0) result.diagnostics.push_back(text);
    }
    return result;
}

void describe(Result& result, const Document* document) {
    const Dtd* dtd = document != nullptr ? document->getDtd() : nullptr;
    result.rest = linksOf(document, dtd) + "\n" + fullText(dtd);
}

void readByLibrary(InStream& in, Result& result) {
    DocumentReader reader;
    result.ok = reader.parse(in);
    result.message = reader.getErrorMessage();
    describe(result, reader.getDocument());
}

void readNaively(InStream& in, Result& result) {
    NaiveDocumentReader reader;
    result.ok = reader.parse(in);
    result.message = reader.error();
    describe(result, reader.document.get());
}

bool same(const Result& a, const Result& b) {
    return a.ok == b.ok && a.message == b.message && a.rest == b.rest && a.diagnostics == b.diagnostics;
}

std::string shown(const Result& result) {
    std::string text = (result.ok ? "true \"" : "false \"") + result.message + "\" " + result.rest;
    for (const std::string& diagnostic : result.diagnostics) text += "\n" + diagnostic;
    return text;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Whether this is one of the texts of docs/errors.md, with its place in front and the name of a reader after it. An
// internal subset that runs out over a file stream reports what the stream said last, which may be nothing.
bool isLocatedMessage(const std::string& message) {
    if (message == "(line = 1, column = -1)  <" + std::string(typeid(DTDReader).name()) + ">") return true;
    const char* const kClasses[] = {
        typeid(CommentReader).name(),     typeid(PIReader).name(),           typeid(VersionInfoReader).name(),
        typeid(ElementReader).name(),     typeid(EntityReader).name(),       typeid(MixedSpecReader).name(),
        typeid(ElementDeclReader).name(), typeid(ChildrenSpecReader).name(), typeid(AttListReader).name(),
        typeid(DTDReader).name(),         typeid(DoctypeReader).name(),      typeid(DocumentReader).name()};
    // A zero byte in a text ends it.
    const char* const kTexts[][2] = {
        {"Unexpected end of stream", ""},   {"not a name: ", ""},          {"\"", "\" expected"},
        {"unexpected markup \"", "\""},     {"Unexpected token \"", ""},   {"unexpected token \"", ""},
        {"unexpected repetition type", ""}, {"unexpected \"", ""},         {"Could not open file: ", ""},
        {"Doc could not be validated", ""}, {"Unsupported encoding: ", ""}};
    int line = 0;
    int column = -2;
    int length = 0;
    if (std::sscanf(message.c_str(), "(line = %d, column = %d) %n", &line, &column, &length) != 2 || length == 0)
        return false;
    if (line < 1 || column < -1) return false;
    const std::string text = message.substr(static_cast<std::size_t>(length));
    for (const char* name : kClasses) {
        const std::string end = std::string(" <") + name + ">";
        if (!endsWith(text, end)) continue;
        const std::string rest = text.substr(0, text.size() - end.size());
        for (const auto& known : kTexts) {
            if (rest.rfind(known[0], 0) == 0 && endsWith(rest, known[1])) return true;
        }
    }
    return false;
}

bool isNote(const std::string& message) {
    return message.find(") Unexpected end of stream <") != std::string::npos ||
           message.find(") Unsupported encoding: ") != std::string::npos;
}

// Why the result is none that there may be; empty when it is one.
std::string objection(const Result& result, const std::string& text) {
    if (!result.message.empty() && !isLocatedMessage(result.message)) return "no located message";
    if (result.ok) return result.message.empty() || isNote(result.message) ? "" : "a success that leaves no note";
    if (!result.message.empty()) return "";
    return silentFailure(text, result.position, result.diagnostics).empty() ? "silent without a reason" : "";
}

class Judge {
public:
    void compare(const char* what, const Result& expected, const Result& actual, const std::string& text) {
        if (!same(expected, actual)) complain(std::string(what) + "\nexpected " + shown(expected), actual, text);
    }

    void judge(const Result& result, const std::string& text) {
        const std::string reason = objection(result, text);
        if (!reason.empty()) complain(reason, result, text);
        ++outcomes[result.ok ? 0 : result.message.empty() ? 2 : 1];
    }

    // How many succeeded, left a message, were silent; or the first complaints.
    std::string verdict() const {
        if (complaints > 0) return std::to_string(complaints) + " complaints:" + texts;
        return outcomes[0] > 0 && outcomes[1] > 0 ? "all as they may be" : "there is no success, or no failure";
    }

private:
    void complain(const std::string& what, const Result& result, const std::string& text) {
        if (++complaints <= 5)
            texts += "\n" + ::testing::PrintToString(text) + ": " + what + "\nactual " + shown(result) + "\n";
    }

    int outcomes[3] = {};
    int complaints = 0;
    std::string texts;
};

// Reads the text from all sources and compares what comes of it. The text is in the file at the path already.
void check(const std::string& text, const std::string& path, Judge& judge) {
    Result prompt;
    {
        BareInStream in(text);
        prompt = resultOf(in, readNaively);
    }
    Result late;
    {
        LateSource in(text);
        late = resultOf(in, readNaively);
    }
    for (const Source source : kAllSources) {
        withSource(source, text, path, [&](InStream& in) {
            const Result result = resultOf(in, readByLibrary);
            const bool isLate = source == Source::FileStream;
            judge.compare(isLate ? "over a file stream" : "over a prompt source", isLate ? late : prompt, result, text);
            if (isLate || source == Source::String) judge.judge(result, text);
        });
    }
    LateSource in(text);
    judge.compare("over the primitives of a file stream", late, resultOf(in, readByLibrary), text);
}

// A regular file in memory, which costs no work of a disk however often it is rewritten. It has a path as long as it
// lives.
class MemoryFile {
public:
    MemoryFile() : descriptor(::memfd_create("changed", 0)), path("/proc/self/fd/" + std::to_string(descriptor)) {
        if (descriptor < 0) throw std::runtime_error("no file in memory");
    }
    ~MemoryFile() { ::close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void hold(const std::string& text) {
        const auto size = static_cast<ssize_t>(text.size());
        if (::ftruncate(descriptor, size) != 0 || ::pwrite(descriptor, text.data(), text.size(), 0) != size)
            throw std::runtime_error("the file in memory cannot be written");
    }

private:
    const int descriptor;

public:
    const std::string path;
};

// What is made only once is made here, and not by a process that must give everything back.
void makeWhatIsMadeOnce(MemoryFile& file) {
    Judge judge;
    for (const char* text : {"<a b", "<!DOCTYPE a [<!ELEMENT a b ", "<?xml a"}) {
        file.hold(text);
        check(text, file.path, judge);
    }
}

// All changes of a sample, in a process of its own.
std::string judged(const std::string& sample) {
    MemoryFile file;
    makeWhatIsMadeOnce(file);
    return runGuarded([&] {
        Judge judge;
        int number = 0;
        for (const std::string& text : changesOf(sample)) {
            if (kScale > 1 && ++number % 8 != 0) continue;
            nowAt(text);
            file.hold(text);
            check(text, file.path, judge);
        }
        return judge.verdict();
    });
}

}  // namespace

TEST(ChangedDocumentsTest, TheDocumentsThemselvesAreRead) {
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.name);
        EXPECT_LE(sample.text.size(), 170U);
        const MessageCollector messages;
        BareInStream in(sample.text);
        Result result;
        readByLibrary(in, result);
        EXPECT_TRUE(result.ok) << result.message;
    }
}

TEST(ChangedDocumentsTest, EveryPrefixAndEveryChangeOfAByteEndsAsItMay) {
    for (const Sample& sample : kSamples) EXPECT_EQ(judged(sample.text), "all as they may be") << sample.name;
}

TEST(ChangedDocumentsTest, SoDoThoseOfADocumentWithAnExternalSubset) {
    const ScratchFile subset("s.dtd", "<!ELEMENT a ANY>");
    EXPECT_EQ(judged("<!DOCTYPE a SYSTEM '" + subset.path + "'><a>t</a>"), "all as they may be");
}

TEST(ChangedDocumentsTest, SoDoThoseOfTheSubsetItself) {
    MemoryFile subset;
    const std::string document = "<!DOCTYPE a SYSTEM '" + subset.path + "'><a x='&e;'/>";
    const ScratchFile file("document.xml", document);
    makeWhatIsMadeOnce(subset);
    const std::string answer = runGuarded([&] {
        Judge judge;
        int number = 0;
        for (const std::string& text :
             changesOf("<!ELEMENT a (b|c)*>\r\n<!ATTLIST a x CDATA 'y'><!-- c --><!ENTITY e '&lt;'>\n")) {
            if (kScale > 1 && ++number % 8 != 0) continue;
            nowAt(text);
            subset.hold(text);
            Result prompt;
            {
                BareInStream in(document);
                prompt = resultOf(in, readNaively);
            }
            int stoppedAt = 0;
            {
                const MessageCollector messages;
                LateSource in(text);
                NaiveDTDReader("a", false).parse(in);
                stoppedAt = in.getPosition();
            }
            for (const Source source : kAllSources) {
                withSource(source, document, file.path, [&](InStream& in) {
                    const Result result = resultOf(in, readByLibrary);
                    // The document has ended with its root, at the latest: nothing but the end of the data may differ.
                    if (source == Source::FileStream) {
                        if (result.ok != prompt.ok) judge.compare("over a file stream", prompt, result, text);
                    } else {
                        judge.compare("over a prompt source", prompt, result, text);
                    }
                    if (!result.ok && result.message.empty()) {
                        if (silentFailure(text, stoppedAt, result.diagnostics).empty()) {
                            judge.compare("silent without a reason", Result(), result, text);
                        }
                    } else {
                        judge.judge(result, document);
                    }
                });
            }
        }
        return judge.verdict();
    });
    EXPECT_EQ(answer, "all as they may be");
}

}  // namespace Xml::test
