#include "xml/reader/internal/Report.h"

#include "support/Sources.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/text/Message.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <ios>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

// Asks for the source's own place whenever code of callers runs.
class Places {
public:
    explicit Places(std::function<int()> ask)
        : handlerBefore(Xml::Message::mMessageHandler), outBefore(Xml::Message::disableOutput(true)) {
        asking = std::move(ask);
        seen.clear();
        Xml::Message::InstallMessageHandler(note);
    }
    ~Places() {
        Xml::Message::InstallMessageHandler(handlerBefore);
        Xml::Message::disableOutput(outBefore);
        asking = nullptr;
    }
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    static void note(const char*, ...) { seen.push_back(asking()); }
    static std::vector<int> all() { return seen; }

private:
    Xml::Message::Handler handlerBefore;
    bool outBefore;
    static std::function<int()> asking;
    static std::vector<int> seen;
};

std::function<int()> Places::asking;
std::vector<int> Places::seen;

template <class AnyReader>
class Noting : public AnyReader {
public:
    using AnyReader::AnyReader;
    void message(InStream& in, const std::string& text) override {
        Places::note(nullptr);
        AnyReader::message(in, text);
    }
};

template <class AnyReader, class... Arguments>
std::function<void(InStream&)> readingWith(Arguments... arguments) {
    return [arguments...](InStream& in) { Noting<AnyReader>(arguments...).parse(in); };
}

// Where a file's own get area stands at each report, and where the primitives leave a source at it.
std::vector<int> placesOfFile(const std::string& text, const std::function<void(InStream&)>& read) {
    const ScratchFile file("report.txt", text);
    std::ifstream stream(file.path, std::ios_base::in | std::ios_base::binary);
    FileInStream in(&stream);
    const Places places(
        [&] { return static_cast<int>(stream.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in)); });
    read(in);
    return Places::all();
}

std::vector<int> placesOfPrimitives(const std::string& text, const std::function<void(InStream&)>& read) {
    BareInStream in(text);
    const Places places([&] { return in.getPosition(); });
    read(in);
    return Places::all();
}

}  // namespace

TEST(ReportTest, FindsTheSourceWhereThePrimitivesLeaveItWheneverAReaderReports) {
    const auto element = readingWith<ElementReader>();
    const auto declarations = readingWith<DTDReader>("t");
    const struct {
        const char* name;
        std::string text;
        std::function<void(InStream&)> read;
    } kCases[] = {
        {"message", "<a x='1'>text<b/></c>.........", element},
        {"message before a name", "< 1a>.........", element},
        {"message of declarations", "<!ELEMENT a ANY> nothing <!-- c --> ", declarations},
        {"unknown content", "<!ELEMENT a NONE>.........", declarations},
        {"default that is no string", "<!ATTLIST a b CDATA c>.........", declarations},
        {"element declared again", "<!ELEMENT a ANY><!ELEMENT a ANY><!-- c --> ", declarations},
        {"attribute defined again", "<!ATTLIST a b CDATA '1' b CDATA '2'><!-- c --> ", declarations},
        {"attribute defined again elsewhere", "<!ATTLIST a b CDATA '1'><!ATTLIST a b CDATA '2'><!-- c --> ",
         declarations},
        {"name repeated", "<!ELEMENT a (#PCDATA|b|b)*><!-- c --> ", declarations},
        {"particle given up", "<!ELEMENT a (b c?)><!-- c --> ", declarations},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::vector<int> places = placesOfFile(c.text, c.read);
        EXPECT_FALSE(places.empty());
        EXPECT_EQ(places, placesOfPrimitives(c.text, c.read));
    }
}

TEST(ReportTest, GivesBackWhatAnOperationReturns) {
    BareInStream in("text");
    EXPECT_EQ(Report::during(in, [] { return 5; }), 5);
    EXPECT_EQ(&Report::during(in, [&in]() -> InStream& { return in; }), &in);
}

}  // namespace Xml::test
