// What does not compile: the types say who owns a node and what may go where. Each line is compiled twice, in the same
// place of the same source: as it must be written, and as it is refused. So it cannot be refused for another reason.
#include "support/Pattern.h"
#include "support/Places.h"
#include <array>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

struct Outcome {
    bool compiles = false;
    std::map<int, std::string> messages;  // about the line with that number; about none of them with -1
};

// Each line in a function of its own, with what it may work with. All at once: a compiler goes on after an error.
Outcome compile(const std::vector<std::string>& lines) {
    const std::string path = scratchFolder() + "/refused.cpp";
    std::ofstream source(path);
    source << "#include \"xml/easy.h\"\n#include \"xml/dom/Comment.h\"\n#include \"xml/dtd/Dtd.h\"\nusing namespace "
              "Xml;\n";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        source << "#line 1 \"case-" << i << "\"\n"
               << "void use" << i << "(Element& parent, Element& owned, const Element& fixed, Document& document,\n"
               << "         std::unique_ptr<Element> mine) {\n    " << lines[i]
               << "\n    (void)parent, (void)owned, (void)fixed, (void)document, (void)mine;\n}\n";
    }
    source.close();
    const std::string noLimit = compilerPath().find("clang") != std::string::npos ? " -ferror-limit=0" : "";
    const std::string command = "'" + compilerPath() + "' -std=c++17 -fsyntax-only" + noLimit + " -I'" +
                                sourceFolder() + "' '" + path + "' 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return {};
    std::string printed;
    std::array<char, 4096> buffer;
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe))
        printed.append(buffer.data(), size);

    Outcome outcome;
    outcome.compiles = pclose(pipe) == 0;
    static const Pattern about("\\bcase-([0-9]+):");
    int number = -1;
    std::istringstream messages(printed);
    for (std::string line; std::getline(messages, line);) {
        if (const Pattern::Groups found = about.find(line); !found.empty()) number = std::stoi(found[1]);
        outcome.messages[number] += line + "\n";
    }
    return outcome;
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
    std::vector<std::string> lines;
    for (const Case& c : kCases) lines.push_back(c.accepted);
    const Outcome outcome = compile(lines);
    EXPECT_TRUE(outcome.compiles);
    for (const auto& [number, messages] : outcome.messages) ADD_FAILURE() << messages;
}

TEST(RefusedCodeTest, WhatIsRefusedDoesNotForItsReason) {
    std::vector<std::string> lines;
    for (const Case& c : kCases) lines.push_back(c.refused);
    Outcome outcome = compile(lines);
    EXPECT_FALSE(outcome.compiles);
    int number = 0;
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string& messages = outcome.messages[number++];
        EXPECT_NE(messages.find("error: "), std::string::npos);
        EXPECT_TRUE(Pattern(c.reason).isIn(messages)) << messages;
    }
}

}  // namespace
}  // namespace Xml::test
