// Reading XML 1.0 takes work that grows as the text does.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/standard/Read.h"
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>

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
    {"references to a parameter entity",
     [](int n) { return declaring("<!ENTITY % p '<!--x-->'>" + repeated("%p;", n)); }},
    {"groups in each other",
     [](int n) { return declaring("<!ELEMENT r " + repeated("(", n) + "a" + repeated(",b)", n) + ">"); }},
    {"names in a choice",
     [](int n) { return declaring("<!ELEMENT r (a" + pieces(n, [](int i) { return numbered("|a", i); }) + ")>"); }},
};

const TextCase kRefused[] = {
    {"levels without an end", [](int n) { return repeated("<a>", n); }},
    {"a wrong end after siblings", [](int n) { return "<r>" + repeated("<a/>", n) + "</s>"; }},
    {"a wrong end in an entity, after lines",
     [](int n) { return repeated("\n", n) + declaring("<!ENTITY e '</s>'>", repeated("\n<a/>", n) + "&e;"); }},
};

void expectReadingLinear(const TextCase& c, bool isRead) {
    expectAtMostLinear(
        c.name,
        [&](int n) { return [text = c.text(n), isRead] { EXPECT_EQ(static_cast<bool>(readText(text)), isRead); }; },
        AllocatedBytes, 1'000);
}

TEST(StandardGrowthTest, ReadingIsLinearInWhateverADocumentHasManyOf) {
    for (const TextCase& c : kRead) expectReadingLinear(c, true);
    for (const TextCase& c : kRefused) expectReadingLinear(c, false);
}

// Work that is no allocation shows by size: where it is quadratic this takes minutes to days.
TEST(StandardGrowthTest, ReadsManyOfEach) {
    constexpr int kMany = 300'000 / kScale;
    for (const TextCase& c : kRead) {
        SCOPED_TRACE(c.name);
        const ReadResult result = readText(c.text(kMany));
        EXPECT_TRUE(result) << result.message();
    }
    for (const TextCase& c : kRefused) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(readText(c.text(kMany)));
    }
}

}  // namespace
}  // namespace Xml::test
