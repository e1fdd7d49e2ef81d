// Document types of XML 1.0 that are deep, or many, or mean to fill the memory.
//
// To add a case: a row of kDtds.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

std::string declaring(const std::string& declarations, const std::string& content = "") {
    return "<!DOCTYPE r [" + declarations + "]><r>" + content + "</r>";
}

const char kLeaves[] = "<!ELEMENT a EMPTY><!ELEMENT b EMPTY>";

std::string groups(const char* open, const char* close, const char* content) {
    return declaring("<!ELEMENT r " + repeated(open, kMillion) + "a" + repeated(close, kMillion) + ">" + kLeaves,
                     content);
}

// Each entity ten times the one before it.
std::string laughs(int levels) {
    return "<!ENTITY e0 'ha'>" + pieces(levels, [](int i) {
               const std::string inner = "&e" + std::to_string(i) + ";";
               return "<!ENTITY e" + std::to_string(i + 1) + " '" + repeated(inner.c_str(), 10) + "'>";
           });
}

struct DtdCase {
    const char* name;
    std::function<std::string()> text;
    bool isValid;
};

const DtdCase kDtds[] = {
    {"sequences", [] { return groups("(b?,", ")", "<b/><a/>"); }, true},
    {"choices", [] { return groups("(b|", ")", "<a/>"); }, true},
    {"groups of one", [] { return groups("(", ")?", ""); }, true},
    {"elements",
     [] {
         const auto element = [](int i) { return "<!ELEMENT e" + std::to_string(i) + " (a,(b|c)+)>"; };
         return declaring(pieces(kMillion / 4, element));
     },
     false},
    {"entities that multiply, and nothing refers to", [] { return declaring(laughs(100) + "<!ELEMENT r ANY>"); }, true},
    {"a large entity in many",
     [] {
         const auto entity = [](int i) { return "<!ENTITY f" + std::to_string(i) + " '&e;'>"; };
         return declaring("<!ELEMENT r ANY><!ENTITY e '" + repeated("x", kMillion) + "'>" +
                          pieces(kMillion / 10, entity));
     },
     true},
};

TEST(HostileStandardDtdTest, ReadsCopiesWritesAndUsesDeclarations) {
    for (const DtdCase& c : kDtds) {
        expectToHold({{c.name, [&c] {
                           const ReadResult result = readText(c.text());
                           ASSERT_TRUE(result) << result.message();
                           const std::unique_ptr<Object> copy(result->clone());
                           EXPECT_TRUE(textOf(*copy) == textOf(*result));
                           EXPECT_EQ(copy->toDocument()->validate(), c.isValid);
                       }}});
    }
}

}  // namespace
}  // namespace Xml::test
