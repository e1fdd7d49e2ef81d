// Documents of XML 1.0 that were written to break a reader: as trees, and as events of a stream that is made as it is
// read, with memory for a little of it.
#include "hostile/Inputs.h"
#include "support/Places.h"
#include "support/Rounds.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <istream>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLittle = {kMiB};
constexpr Bounds kLarge = {400 * kMiB};
constexpr int kMany = kMillion / 10;

// A piece of text many times, as it is read, between a beginning and an end.
class Endless : public std::streambuf {
public:
    Endless(std::string first, std::string many, int times, std::string last)
        : before(std::move(first)), piece(std::move(many)), after(std::move(last)), left(times) {
        while (piece.size() < 4096 && left % 2 == 0 && left > 0) {
            piece += piece;
            left /= 2;
        }
    }

protected:
    int_type underflow() override {
        std::string* next = nullptr;
        if (isFirst) {
            next = &before;
        } else if (left > 0) {
            --left;
            next = &piece;
        } else if (!isLast) {
            isLast = true;
            next = &after;
        }
        isFirst = false;
        if (next == nullptr) return traits_type::eof();
        if (next->empty()) return underflow();
        setg(next->data(), next->data(), next->data() + next->size());
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string before, piece, after;
    int left;
    bool isFirst = true, isLast = false;
};

struct Made {
    std::string before, piece;
    int times;
    std::string after;
};

// What its events are: how many elements and levels, how many bytes in texts and values; or what is wrong.
std::string eventsOf(StreamReader& reader) {
    int elements = 0;
    int levels = 0;
    std::size_t attributes = 0;
    std::size_t bytes = 0;
    for (;;) {
        switch (reader.next()) {
        case StreamReader::Event::Start:
            ++elements;
            levels = std::max(levels, reader.depth());
            attributes += static_cast<std::size_t>(reader.attributeCount());
            for (int i = 0; i < reader.attributeCount(); ++i) bytes += reader.attributeValue(i).size();
            break;
        case StreamReader::Event::Failed: return reader.problems()[0].rule;
        case StreamReader::Event::Finished:
            return std::to_string(elements) + " elements, " + std::to_string(levels) + " levels, " +
                   std::to_string(attributes) + " attributes, " + std::to_string(bytes) + " bytes";
        default: bytes += reader.text().size();
        }
    }
}

std::string facts(int elements, int levels, int attributes, long long bytes) {
    return std::to_string(elements) + " elements, " + std::to_string(levels) + " levels, " +
           std::to_string(attributes) + " attributes, " + std::to_string(bytes) + " bytes";
}

std::function<std::string()> streamed(const Made& made) {
    return [made] {
        Endless buffer(made.before, made.piece, made.times, made.after);
        std::istream stream(&buffer);
        StreamReader reader(stream);
        return eventsOf(reader);
    };
}

TEST(HostileStandardTest, AStreamTakesTheMemoryOfItsLargestPart) {
    const std::string record =
        "<record id='17' xmlns:p='urn:p'><p:name>some name</p:name><!--c--><p:v x='1'/>\r\n</record>";
    constexpr int kRecords = (1 << 19) / kScale;  // some 50 MB
    const auto many = [&](const std::string& piece, int times) { return Made{"<r>", piece, times, "</r>"}; };
    expectOutcomes({
        {"records", streamed(many(record, kRecords)),
         facts(3 * kRecords + 1, 3, 3 * kRecords, kRecords * (9LL + 1 + 2 + 5 + 1 + 1)), kLittle},
        {"records read as trees",
         [&] {
             const Made made = many(record, kRecords / 8);
             Endless buffer(made.before, made.piece, made.times, made.after);
             std::istream stream(&buffer);
             StreamReader reader(stream);
             int records = 0;
             for (auto event = reader.next(); event != StreamReader::Event::Finished; event = reader.next()) {
                 if (event == StreamReader::Event::Failed) return reader.problems()[0].toString();
                 if (event != StreamReader::Event::Start || reader.name() != "record") continue;
                 if (reader.readElement()->getChildCount() == 3) ++records;
             }
             return std::to_string(records) + " records";
         },
         std::to_string(kRecords / 8) + " records", kLittle},
        {"records passed over",
         [&] {
             const Made made = many(record, kRecords);
             Endless buffer(made.before, "<b>" + made.piece + "</b>", made.times, made.after);
             std::istream stream(&buffer);
             StreamReader reader(stream);
             int elements = 0;
             for (auto event = reader.next(); event != StreamReader::Event::Finished; event = reader.next()) {
                 if (event == StreamReader::Event::Failed) return reader.problems()[0].toString();
                 if (event != StreamReader::Event::Start || reader.name() != "b") continue;
                 reader.skipElement();
                 ++elements;
             }
             return std::to_string(elements);
         },
         std::to_string(kRecords), kLittle},
        {"comments around the root",
         [] {
             Endless buffer("<r/>", "<!-- c -->\n", 1 << 20, "");
             std::istream stream(&buffer);
             StreamReader reader(stream);
             return eventsOf(reader);
         },
         facts(1, 1, 0, 3LL * (1 << 20)), kLittle},
        {"namespaces, each of another name",
         [] {
             class Names : public std::streambuf {
             protected:
                 int_type underflow() override {
                     if (number > kMillion) return traits_type::eof();
                     text = number == 0 ? "<r>"
                            : number == kMillion
                                ? "</r>"
                                : "<a xmlns:p" + std::to_string(number) + "='urn:" + std::to_string(number) + "'/>";
                     ++number;
                     setg(text.data(), text.data(), text.data() + text.size());
                     return traits_type::to_int_type(*gptr());
                 }

             private:
                 std::string text;
                 int number = 0;
             } buffer;
             std::istream stream(&buffer);
             StreamReader reader(stream);
             int elements = 0;
             for (auto event = reader.next(); event != StreamReader::Event::Finished; event = reader.next()) {
                 if (event == StreamReader::Event::Failed) return reader.problems()[0].toString();
                 if (event == StreamReader::Event::Start) ++elements;
             }
             return std::to_string(elements);
         },
         std::to_string(kMillion), kLittle},
        {"a text passed over by dropping comments in it",
         [] {
             ReadOptions options;
             options.keepComments = false;
             Endless buffer("<r>", "<!-- c --><a/>", 1 << 20, "</r>");
             std::istream stream(&buffer);
             StreamReader reader(stream, options);
             return eventsOf(reader);
         },
         facts((1 << 20) + 1, 2, 0, 0), kLittle},
    });
}

TEST(HostileStandardTest, AStreamMayHaveDeepAndLongParts) {
    expectOutcomes({
        {"levels", streamed({"", "<a>", kMillion, repeated("</a>", kMillion)}), facts(kMillion, kMillion, 0, 0),
         kLarge},
        {"levels without an end", streamed({"", "<a>", kMillion, ""}), "element", kLarge},
        {"levels in an element that is read",
         [] {
             const std::string text = "<r>" + repeated("<a>", kMillion) + repeated("</a>", kMillion) + "</r>";
             StreamReader reader{std::string_view(text)};
             reader.next();
             const auto element = reader.readElement();
             return std::string(element != nullptr && reader.next() == StreamReader::Event::Finished ? "read" : "not");
         },
         "read", kLarge},
        {"attributes",
         [] {
             const std::string text =
                 "<a" + pieces(kMany, [](int i) { return " x" + std::to_string(i) + "='v'"; }) + "/>";
             StreamReader reader{std::string_view(text)};
             reader.next();
             int found = 0;
             for (int i = 0; i < kMany; ++i) found += reader.attribute("x" + std::to_string(i)) == "v" ? 1 : 0;
             return std::to_string(found) + " " + eventsOf(reader);
         },
         std::to_string(kMany) + " " + facts(0, 0, 0, 0), kLarge},
        {"a long name", streamed({"<", repeated("n", 1000), 1 << 13, "/>"}), facts(1, 1, 0, 0), kLarge},
        {"a long text", streamed({"<a>", repeated("text ", 200), 1 << 14, "</a>"}), facts(1, 1, 0, 1000LL << 14),
         kLarge},
        {"a long text with references", streamed({"<a>", repeated("&amp;&#65;", 100), 1 << 13, "</a>"}),
         facts(1, 1, 0, 200LL << 13), kLarge},
        {"a long comment", streamed({"<a><!--", repeated("- x>", 100), 1 << 14, "--></a>"}),
         facts(1, 1, 0, 400LL << 14), kLarge},
        {"a long value", streamed({"<a x='", repeated("&lt;>", 100), 1 << 14, "'/>"}), facts(1, 1, 1, 200LL << 14),
         kLarge},
        {"a long document type", streamed({"<!DOCTYPE a [", repeated("<!ELEMENT b ANY>", 10), 1 << 14, "]><a/>"}),
         facts(1, 1, 0, 0), kLarge},
        {"sections in a text", streamed({"<a>", repeated("x<![CDATA[y]]>", 100), 1 << 12, "</a>"}),
         facts(1, 1, 0, 200LL << 12), kLarge},
    });
}

// --- What entities make ---

std::string declaring(const std::string& declarations, const std::string& content) {
    return "<!DOCTYPE r [" + declarations + "]><r>" + content + "</r>";
}

// Each entity is ten times the one before it.
std::string laughs(const std::string& first) {
    std::string text = "<!ENTITY e0 '" + first + "'>";
    for (int i = 1; i < 12; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '" + repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return text;
}

TEST(HostileStandardTest, WhatEntitiesMakeIsBounded) {
    const struct {
        const char* name;
        std::string text;
    } kTexts[] = {
        {"a billion laughs", declaring(laughs("ha"), "&e11;")},
        {"of nothing", declaring(laughs(""), "&e11;")},
        {"of elements", declaring(laughs("<a/>"), "&e11;")},
        {"of elements with attributes", declaring(laughs("<a b=\"\"/>"), "&e11;")},
        {"of comments", declaring(laughs("<!---->"), "&e11;")},
        {"of instructions", declaring(laughs("<?p?>"), "&e11;")},
        {"of sections", declaring(laughs("<![CDATA[]]>"), "&e11;")},
        {"of levels", declaring(laughs("<a>x</a>"), "&e11;")},
        {"in a value", declaring(laughs("ha"), "<a b='&e11;'/>")},
        {"in a default", declaring(laughs("ha") + "<!ATTLIST a b CDATA '&e11;'>", "<a/>")},
        {"of parameter entities", "<!DOCTYPE r [<!ENTITY % p0 '<!ENTITY x \"y\">'>" +
                                      pieces(12,
                                             [](int i) {
                                                 return "<!ENTITY % p" + std::to_string(i + 1) + " '" +
                                                        repeated("&#37;p" + std::to_string(i) + ";", 10) + "'>";
                                             }) +
                                      "%p12;]><r/>"},
        {"one large entity many times",
         declaring("<!ENTITY e '" + repeated("x", 500'000) + "'>", repeated("&e;", 500'000))},
        {"one large default many times",
         declaring("<!ATTLIST a b CDATA '" + repeated("x", 500'000) + "'>", repeated("<a/>", 500'000))},
        {"many small defaults",
         declaring("<!ATTLIST a" + pieces(20'000, [](int i) { return " x" + std::to_string(i) + " CDATA ''"; }) + ">",
                   repeated("<a/>", 20'000))},
    };
    ReadOptions options;
    options.entityGrowth = rounds(static_cast<int>(options.entityGrowth));
    std::vector<RunCase> cases;
    for (const auto& c : kTexts) {
        cases.push_back(
            {c.name, [&] { return readText(c.text, options).problems().at(0).rule; }, "entityGrowth", kLarge});
        cases.push_back({c.name,
                         [&] {
                             StreamReader reader(std::string_view(c.text), options);
                             return eventsOf(reader);
                         },
                         "entityGrowth", kLarge});
    }
    expectOutcomes(cases);
}

TEST(HostileStandardTest, EntitiesMayNestDeeply) {
    const std::string text = declaring(
        pieces(kMany, [](int i) { return "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i + 1) + ";'>"; }) +
            "<!ENTITY e" + std::to_string(kMany) + " 'x'>",
        "&e0;");
    expectOutcomes({
        {"as a tree", [&] { return std::string(readText(text) ? "read" : "not"); }, "read", kLarge},
        {"as events",
         [&] {
             StreamReader reader{std::string_view(text)};
             return eventsOf(reader);
         },
         facts(1, 1, 0, 1), kLarge},
    });
}

// From text, file and stream.
std::vector<RunCase> fromAll(const char* name, const std::string& text, const std::string& outcome) {
    const auto said = [](const ReadResult& result) {
        if (result) return std::string("read");
        const Problem& problem = result.problems().at(0);
        const bool isShort = problem.text.size() < 400 && problem.excerpt.size() < 1000;
        return isShort ? problem.rule : "a message of " + std::to_string(result.message().size()) + " bytes";
    };
    return {
        {name, [=] { return said(readText(text)); }, outcome, kLarge},
        {name,
         [=] {
             std::istringstream stream(text);
             return said(readStream(stream));
         },
         outcome, kLarge},
        {name,
         [=] {
             const std::string path = scratchFolder() + "/hostile-standard.xml";
             std::ofstream(path, std::ios::binary) << text;
             return said(Xml::readFile(path));
         },
         outcome, kLarge},
    };
}

TEST(HostileStandardTest, AllSourcesEndAlike) {
    const std::string many = pieces(kMany, [](int i) { return "<!ELEMENT e" + std::to_string(i) + " ANY>"; });
    const struct {
        const char* name;
        std::string text;
        const char* outcome;
    } kTexts[] = {
        {"levels", repeated("<a>", kMillion) + repeated("</a>", kMillion), "read"},
        {"levels without an end", repeated("<a>", kMillion), "element"},
        {"attributes", "<a" + pieces(kMany, [](int i) { return " x" + std::to_string(i) + "=''"; }) + "/>", "read"},
        {"declarations", declaring(many, ""), "read"},
        {"references", declaring("<!ENTITY e ''>", repeated("&e;", kMillion)), "read"},
        {"laughs", declaring(laughs("ha"), "&e11;"), "entityGrowth"},
        {"quadratic", declaring("<!ENTITY e '" + repeated("x", 500'000) + "'>", repeated("&e;", 500'000)),
         "entityGrowth"},
        {"comments around the root", repeated("<!---->", kMillion) + "<a/>" + repeated("<?t?>", kMillion), "read"},
        {"a line that is wrong at its end", "<a>" + repeated("x", kLongText / 4) + "</b>", "Element Type Match"},
        {"a line that is wrong at its beginning", "<a></b>" + repeated("x", kLongText / 4), "Element Type Match"},
        {"a long name that is not closed", "<a><" + repeated("n", kLongName) + "></a>", "Element Type Match"},
        {"a long name of an entity", "<a>&" + repeated("n", kLongName) + ";</a>", "Entity Declared"},
    };
    for (const auto& c : kTexts) expectOutcomes(fromAll(c.name, c.text, c.outcome));
}

TEST(HostileStandardTest, LongAndDeepDocumentsAreReadAsTrees) {
    const auto read = [](const std::string& text) {
        return [text] {
            const ReadResult result = readText(text);
            return result ? std::string("read") : result.problems()[0].rule;
        };
    };
    expectOutcomes({
        {"levels", read(repeated("<a>", kMillion) + repeated("</a>", kMillion)), "read", kLarge},
        {"levels without an end", read(repeated("<a>", kMillion)), "element", kLarge},
        {"attributes", read("<a" + pieces(kMany, [](int i) { return " x" + std::to_string(i) + "=''"; }) + "/>"),
         "read", kLarge},
        {"attributes of one name", read("<a" + repeated(" x=''", kMany) + "/>"), "Unique Att Spec", kLarge},
        {"prefixes", read("<a" + pieces(kMany, [](int i) { return " xmlns:p" + std::to_string(i) + "='u'"; }) + "/>"),
         "read", kLarge},
        {"attributes of one name under many prefixes",
         read("<a" +
              pieces(kMany,
                     [](int i) { return " xmlns:p" + std::to_string(i) + "='u' p" + std::to_string(i) + ":x=''"; }) +
              "/>"),
         "Attributes Unique", kLarge},
        {"a long name", read("<" + repeated("n", kLongName) + "/>"), "read", kLarge},
        {"declarations",
         read(declaring(pieces(kMany, [](int i) { return "<!ENTITY e" + std::to_string(i) + " ''>"; }), "")), "read",
         kLarge},
        {"groups", read(declaring("<!ELEMENT r " + repeated("(", kMany) + "a" + repeated(")", kMany) + ">", "")),
         "read", kLarge},
    });
}

}  // namespace
}  // namespace Xml::test
