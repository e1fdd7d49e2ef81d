// Reading and writing XML 1.0 takes work that grows as the text does.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "stream/TextBuffer.h"
#include "support/Texts.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/StreamWriter.h"
#include "xml/standard/Write.h"
#include "xml/standard/internal/ForeignOffsets.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

std::string in(const std::string& content) { return "<r>" + content + "</r>"; }
std::string declaring(const std::string& declarations, const std::string& content = "") {
    return "<!DOCTYPE r [" + declarations + "]>" + in(content);
}
std::string entities(int n) {
    return pieces(n, [](int i) { return numbered("<!ENTITY e", i) + " 'x'>"; });
}

const TextCase kRead[] = {
    {"siblings", [](int n) { return in(repeated("<a/>", n)); }},
    {"indented siblings", [](int n) { return in(repeated("\n\t<a></a>", n) + "\n"); }},
    {"indented siblings before a text", [](int n) { return in(repeated("\n\t<a></a>", n) + "x"); }},
    {"indented siblings before a text, nested", [](int n) { return in(in(repeated("\n\t<a></a>", n) + "x")); }},
    {"levels", [](int n) { return repeated("<a>", n) + repeated("</a>", n); }},
    {"indented levels", [](int n) { return repeated("<a>\n", n) + repeated("</a>\n", n); }},
    {"attributes", [](int n) { return "<r" + pieces(n, [](int i) { return numbered(" a", i) + "='v'"; }) + "/>"; }},
    {"attributes with prefixes",
     [](int n) {
         return "<r xmlns:p='u' xmlns:q='v'" +
                pieces(n, [](int i) { return numbered(i % 2 == 0 ? " p:a" : " q:a", i) + "='v'"; }) + "/>";
     }},
    {"prefixes in scope",
     [](int n) { return pieces(n, [](int i) { return numbered("<a xmlns:p", i) + "='u'>"; }) + repeated("</a>", n); }},
    {"references", [](int n) { return in(repeated("&amp;&#10;", n)); }},
    {"references in a value", [](int n) { return "<r a='" + repeated("&lt;&#9;", n) + "'/>"; }},
    {"carriage returns", [](int n) { return in(repeated("\r", n)); }},
    {"brackets", [](int n) { return in(repeated("]", n)); }},
    {"a comment of dashes", [](int n) { return in("<!--" + repeated("- ", n) + "-->"); }},
    {"sections", [](int n) { return in(repeated("<![CDATA[x]]>", n)); }},
    {"comments and instructions", [](int n) { return in(repeated("\n<!--c--><?t?>", n) + "<a/>"); }},
    {"comments and instructions after the root", [](int n) { return in("") + repeated("\n<!--c--><?t?>", n); }},
    {"white space beside comments, before a text", [](int n) { return in(repeated("\n<!--c-->\n<a/>", n) + "x"); }},
    {"sections side by side", [](int n) { return in("\n<a/>" + repeated("<![CDATA[]]>\n<![CDATA[x]]>", n)); }},
    {"texts around comments", [](int n) { return in(repeated("x<!-- c -->", n)); }},
    {"entities",
     [](int n) { return declaring(entities(n), pieces(n, [](int i) { return numbered("&e", i) + ";"; })); }},
    {"entities in each other",
     [](int n) {
         return declaring(pieces(n, [](int i) { return numbered("<!ENTITY e", i) + numbered(" '&e", i + 1) + ";'>"; }) +
                              numbered("<!ENTITY e", n) + " 'x'>",
                          "&e10000000;");
     }},
    {"attribute lists",
     [](int n) {
         return declaring(pieces(n, [](int i) { return numbered("<!ATTLIST a x", i) + " CDATA 'v'>"; }), "<a/>");
     }},
    {"defaults",
     [](int n) {
         return declaring("<!ATTLIST a x CDATA 'v' y CDATA 'v' z CDATA 'v'>", repeated("<a b='w' c='w'/>", n));
     }},
    {"nodes in an entity",
     [](int n) { return declaring("<!ENTITY e '" + repeated("<a x=\"\"/>t", n) + "'>", "&e;<a/>&e;"); }},
    {"references to a parameter entity",
     [](int n) { return declaring("<!ENTITY % p '<!--x-->'>" + repeated("%p;", n)); }},
    {"groups in each other",
     [](int n) { return declaring("<!ELEMENT r " + repeated("(", n) + "a" + repeated(",b)", n) + ">"); }},
    {"groups of one in each other",
     [](int n) { return declaring("<!ELEMENT r " + repeated("(", n) + "a" + repeated(")?", n) + ">"); }},
    {"names in a mixed model",
     [](int n) {
         return declaring("<!ELEMENT r (#PCDATA" + pieces(n, [](int i) { return numbered("|a", i); }) + ")*>");
     }},
    {"one name in a mixed model", [](int n) { return declaring("<!ELEMENT r (#PCDATA" + repeated("|a", n) + ")*>"); }},
    {"elements",
     [](int n) { return declaring(pieces(n, [](int i) { return numbered("<!ELEMENT a", i) + " (b,(c|d)*)>"; })); }},
    {"attributes of elements",
     [](int n) {
         return declaring(
             pieces(n, [](int i) { return numbered("<!ATTLIST a", i) + " x (y|z) 'y' t IDREFS #REQUIRED>"; }));
     }},
    {"values of an attribute",
     [](int n) {
         return declaring("<!ATTLIST r x (a" + pieces(n, [](int i) { return numbered("|a", i); }) + ") #IMPLIED>");
     }},
    {"notations and what is of them",
     [](int n) {
         return declaring(pieces(n, [](int i) {
             return numbered("<!NOTATION n", i) + numbered(" SYSTEM 's'><!ENTITY e", i) +
                    numbered(" SYSTEM 's' NDATA n", i) + ">";
         }));
     }},
    {"parameter entities",
     [](int n) { return declaring(pieces(n, [](int i) { return numbered("<!ENTITY % p", i) + " '<!--x-->'>"; })); }},
    {"entities that grow from one to the next",
     [](int n) {
         return declaring(
             pieces(n, [](int i) { return numbered("<!ENTITY e", i) + numbered(" 'x&e", i + 1) + ";'>"; }));
     }},
    {"names in a choice",
     [](int n) { return declaring("<!ELEMENT r (a" + pieces(n, [](int i) { return numbered("|a", i); }) + ")>"); }},
};

const TextCase kRefused[] = {
    {"levels without an end", [](int n) { return repeated("<a>", n); }},
    {"a wrong end after siblings", [](int n) { return "<r>" + repeated("<a/>", n) + "</s>"; }},
    {"a wrong end in an entity, after lines",
     [](int n) { return repeated("\n", n) + declaring("<!ENTITY e '</s>'>", repeated("\n<a/>", n) + "&e;"); }},
};

// All events of a text, and all that they say; the text comes so many bytes at a time, 0: at once.
bool readEvents(const std::string& text, std::size_t chunk) {
    BufferHabits habits;
    habits.chunk = chunk;
    TextStream stream(text, habits);
    StreamReader reader = chunk == 0 ? StreamReader(std::string_view(text)) : StreamReader(stream);
    for (;;) {
        const StreamReader::Event event = reader.next();
        reader.place();
        for (int i = 0; i < reader.attributeCount(); ++i) {
            if (reader.attribute(reader.attributeName(i)) != reader.attributeValue(i)) return false;
        }
        if (event == StreamReader::Event::Finished) return true;
        if (event == StreamReader::Event::Failed) return false;
    }
}

// As little as can be kept, and all that can be.
std::vector<ReadOptions> allOptions() {
    ReadOptions least;
    least.keepComments = least.keepInstructions = false;
    ReadOptions most = everything();
    most.keepPlaces = true;
    ReadOptions content = most;
    content.space = Space::Content;
    return {least, most, content};
}

void expectReadingLinear(const TextCase& c, bool isRead) {
    for (const ReadOptions& options : allOptions()) {
        expectAtMostLinear(
            c.name,
            [&](int n) {
                return [text = c.text(n), isRead, &options] {
                    EXPECT_EQ(static_cast<bool>(readText(text, options)), isRead);
                };
            },
            AllocatedBytes, 1'000);
    }
    for (const std::size_t chunk : {0, 100}) {
        expectAtMostLinear(
            std::string(c.name) + (chunk == 0 ? ", events" : ", events of a stream"),
            [&](int n) { return [text = c.text(n), isRead, chunk] { EXPECT_EQ(readEvents(text, chunk), isRead); }; },
            AllocatedBytes, 1'000);
    }
}

TEST(StandardGrowthTest, ReadingIsLinearInWhateverADocumentHasManyOf) {
    for (const TextCase& c : kRead) expectReadingLinear(c, true);
    for (const TextCase& c : kRefused) expectReadingLinear(c, false);
}

// --- Writing ---

const char* const kEncodings[] = {"UTF-8", "US-ASCII"};

WriteOptions indentedIn(const char* encoding) {
    WriteOptions options;
    options.encoding = encoding;
    return options;
}

// Through a reader and a writer, event by event.
bool copyEvents(const std::string& text, const char* encoding) {
    std::ostringstream stream;
    StreamReader reader{std::string_view(text)};
    StreamWriter writer(stream, indentedIn(encoding));
    while (reader.next() != StreamReader::Event::Finished) writer.copy(reader);
    return writer.copy(reader).finish();
}

TEST(StandardGrowthTest, WritingIsLinearInWhateverATreeHasManyOf) {
    for (const TextCase& c : kRead) {
        expectAtMostLinear(
            c.name,
            [&](int n) {
                auto read = std::make_shared<ReadResult>(readText(c.text(n), everything()));
                return [read] { EXPECT_TRUE(writeText(**read)); };
            },
            AllocatedBytes, 10'000);
        expectAtMostLinear(
            std::string(c.name) + ", copied",
            [&](int n) { return [text = c.text(n)] { EXPECT_TRUE(copyEvents(text, "US-ASCII")); }; }, AllocatedBytes,
            10'000);
    }
}

TEST(StandardGrowthTest, WritesManyOfEach) {
    constexpr int kMany = 100'000 / kScale;
    for (const TextCase& c : kRead) {
        SCOPED_TRACE(c.name);
        const std::string text = c.text(kMany);
        ReadResult read = readText(text, everything());
        for (const char* const encoding : kEncodings) EXPECT_TRUE(writeText(*read, indentedIn(encoding)));
        EXPECT_TRUE(copyEvents(text, "US-ASCII"));
        read->getRoot()->addChild(new Comment("--"));
        EXPECT_FALSE(writeText(*read));
    }
}

// Work that is no allocation shows by size: where it is quadratic this takes minutes to days.
TEST(StandardGrowthTest, ReadsManyOfEach) {
    constexpr int kMany = 300'000 / kScale;
    for (const ReadOptions& options : allOptions()) {
        for (const TextCase& c : kRead) {
            SCOPED_TRACE(c.name);
            const ReadResult result = readText(c.text(kMany), options);
            EXPECT_TRUE(result) << result.message();
        }
        for (const TextCase& c : kRefused) {
            SCOPED_TRACE(c.name);
            EXPECT_FALSE(readText(c.text(kMany), options));
        }
    }
}

// Places are looked up from the source's beginning on in other encodings too.
TEST(StandardGrowthTest, KnowsManyPlacesInOtherEncodings) {
    constexpr int kMany = 300'000 / kScale;
    const std::string content = repeated("\n<a b='w'>t</a><!--c-->", kMany);
    ReadOptions options = everything();
    options.keepPlaces = true;
    for (const char* const encoding : {"ISO-8859-1", "windows-1252", "GB18030"}) {
        const std::string declaration = "<?xml version='1.0' encoding='" + std::string(encoding) + "'?>";
        const ReadResult result = readText(declaration + in(content), options);
        EXPECT_TRUE(result) << result.message();
    }
}

TEST(StandardGrowthTest, LooksUpAPlaceInTheSameMemoryHoweverFarItIs) {
    const auto jobs = [](int n) {
        return [bytes = std::string(static_cast<std::size_t>(n), 'x')] {
            ForeignOffsets offsets("windows-1251", 0, 0);
            const auto last = static_cast<std::int64_t>(bytes.size());
            EXPECT_EQ(offsets.sourceOffset(last, bytes), last);
        };
    };
    expectSame("place", jobs, AllocatedBytes, 10'000);
}

TEST(StandardGrowthTest, GivesTheEventsOfManyOfEach) {
    constexpr int kMany = 300'000 / kScale;
    for (const std::size_t chunk : {0, 1000, 1}) {
        for (const TextCase& c : kRead) {
            SCOPED_TRACE(c.name);
            EXPECT_TRUE(readEvents(c.text(chunk == 1 ? kMany / 10 : kMany), chunk));
        }
        for (const TextCase& c : kRefused) {
            SCOPED_TRACE(c.name);
            EXPECT_FALSE(readEvents(c.text(chunk == 1 ? kMany / 10 : kMany), chunk));
        }
    }
}

}  // namespace
}  // namespace Xml::test
