// What does not compile: the types say who owns a node and what may go where. Each line is compiled twice, in the same
// place of the same source: as it must be written, and as it is refused. So it cannot be refused for another reason.
#include "support/Pattern.h"
#include "support/Places.h"
#include <array>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

struct Outcome {
    bool compiles;
    std::string messages;
};

// A function with that line, and what it may work with.
Outcome compile(const std::string& line) {
    const std::string path = scratchFolder() + "/refused.cpp";
    std::ofstream(path) << "#include \"xml/easy.h\"\n#include \"xml/dom/Comment.h\"\n#include \"xml/dtd/Dtd.h\"\n"
                           "using namespace Xml;\n"
                           "void use(Element& parent, Element& owned, const Element& fixed, Document& document,\n"
                           "         std::unique_ptr<Element> mine) {\n"
                           "    "
                        << line << "\n    (void)parent, (void)owned, (void)fixed, (void)document, (void)mine;\n}\n";
    const std::string command =
        "'" + compilerPath() + "' -std=c++17 -fsyntax-only -I'" + sourceFolder() + "' '" + path + "' 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return {false, "no compiler"};
    std::string messages;
    std::array<char, 4096> buffer;
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe))
        messages.append(buffer.data(), size);
    return {pclose(pipe) == 0, messages};
}

struct Case {
    const char* name;
    const char* accepted;
    const char* refused;
    const char* reason;  // in what the compiler says
};

const char* const kDeleted = "deleted";
const char* const kNoMatch = "no matching function";
const char* const kConst = "const Xml::|discards|drops|no matching function";

const Case kCases[] = {
    {"a node that has an owner already", "append(parent, detach(owned));", "append(parent, owned);", kNoMatch},
    {"a node that may have an owner", "append(parent, std::move(mine));", "append(parent, &owned);", kNoMatch},
    {"an owner that would be left behind", "append(parent, std::move(mine));", "append(parent, mine);", kDeleted},
    {"an attribute as child", "append(parent, copyOf(owned));", "append(parent, copyOf(*owned.getAttribute(0)));",
     kDeleted},
    {"a document as child", "append(parent, copyOf(*document.getRoot()));", "append(parent, copyOf(document));",
     kDeleted},
    {"a document type as child", "append(parent, copyOf(*document.getRoot()));",
     "append(parent, copyOf(*document.getDtd()));", kDeleted},
    {"a const node as child", "append(parent, std::unique_ptr<Element>());",
     "append(parent, std::unique_ptr<const Element>());", kDeleted},
    {"what is no node as child", "append(parent, std::make_unique<Comment>(\"c\"));",
     "append(parent, std::make_unique<int>(1));", kDeleted},
    {"a child of a const element", "append(parent, \"a\");", "append(fixed, \"a\");", kConst},
    {"an owned node before another one", "insertBefore(owned, std::move(mine));", "insertBefore(owned, parent);",
     kNoMatch},
    {"an attribute before a child", "insertBefore(owned, copyOf(owned));",
     "insertBefore(owned, copyOf(*owned.getAttribute(0)));", kDeleted},
    {"a node before an attribute", "insertBefore(owned, copyOf(owned));",
     "insertBefore(*owned.getAttribute(0), copyOf(owned));", kDeleted},
    {"taking out an attribute", "detach(owned);", "detach(*owned.getAttribute(0));", kDeleted},
    {"taking out a document", "detach(*document.getRoot());", "detach(document);", kDeleted},
    {"taking out a document type", "detach(*document.getRoot());", "detach(*document.getDtd());", kDeleted},
    {"taking out a const node", "detach(owned);", "detach(fixed);", kDeleted},
    {"replacing by a node that has an owner", "replace(owned, std::move(mine));", "replace(owned, parent);",
     "invalid initialization|could not convert|no viable conversion|no matching function|cannot convert"},
    {"replacing a const node", "replace(owned, std::move(mine));", "replace(fixed, std::move(mine));", kConst},
    {"a root that has an owner", "setRoot(document, std::move(mine));", "setRoot(document, owned);",
     "could not convert|no viable conversion|no matching function|cannot convert"},
    {"a node out of a const range", "for (const Element& e : elements(fixed)) (void)e;",
     "for (Element& e : elements(fixed)) (void)e;", kConst},
    {"an attribute out of a const range", "for (const Attribute& a : attributes(fixed)) (void)a;",
     "for (Attribute& a : attributes(fixed)) (void)a;", kConst},
    {"a parent of a const node", "const Element* p = parentOf(fixed); (void)p;",
     "Element* p = parentOf(fixed); (void)p;", "invalid conversion|cannot initialize"},
    {"setting a value of a const element", "setValue(parent, \"k\", 1);", "setValue(fixed, \"k\", 1);", kConst},
    {"a pointer as a value", "setValue(parent, \"k\", 1);", "setValue(parent, \"k\", &parent);", kNoMatch},
    {"a character as a number", "value<signed char>(fixed, \"k\");", "value<char>(fixed, \"k\");",
     "a value is a bool, an integer, a floating point number or a string"},
    {"a view of a text that is made anew", "content<std::string>(fixed);", "content<std::string_view>(fixed);",
     "a view of it would dangle"},
    {"sorting a const element", "sortChildren(parent, [](const Object&, const Object&) { return false; });",
     "sortChildren(fixed, [](const Object&, const Object&) { return false; });", kConst},
    {"setting the text of a const element", "setText(parent, \"x\");", "setText(fixed, \"x\");", kConst},
};

TEST(RefusedCodeTest, WhatIsAcceptedCompiles) {
    std::string all;
    for (const Case& c : kCases) all += "{ " + std::string(c.accepted) + " }\n";
    const Outcome outcome = compile(all);
    EXPECT_TRUE(outcome.compiles) << outcome.messages;
}

TEST(RefusedCodeTest, WhatIsRefusedDoesNotForItsReason) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const Outcome outcome = compile("{ " + std::string(c.refused) + " }");
        EXPECT_FALSE(outcome.compiles);
        EXPECT_TRUE(Pattern(c.reason).isIn(outcome.messages)) << outcome.messages;
    }
}

}  // namespace
}  // namespace Xml::test
