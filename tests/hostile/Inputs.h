#pragma once

#include "hostile/Guarded.h"
#include "support/Sources.h"
#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

namespace Xml {
class Element;
class InStream;
}  // namespace Xml

// Tables of hostile inputs: how each is made, what is asked of it, and what must come of it.
namespace Xml::test {

#ifdef __SANITIZE_ADDRESS__
constexpr int kScale = 100;
#else
constexpr int kScale = 1;
#endif
constexpr int kMillion = 1'000'000 / kScale;
constexpr int kGroups = 500'000 / kScale;
constexpr int kBrackets = kScale > 1 ? 2'000 : 100'000;  // more than a path may have
constexpr int kLongName = 16'000'000 / kScale;
constexpr int kLongText = 64'000'000 / kScale;

// What must come of an input: over a file stream, whose end shows one read late, it may be something else.
struct Expected {
    std::string prompt;
    std::string late;

    Expected(const char* text) : prompt(text), late(text) {}
    Expected(std::string text) : prompt(std::move(text)), late(prompt) {}
    Expected(std::string promptText, std::string lateText) : prompt(std::move(promptText)), late(std::move(lateText)) {}
};

// "(line = 1, column = 5) text <class>", cut as a reader cuts it.
std::string located(int line, int column, const std::string& text, const char* readerClass);

template <class R>
std::string failed(int column, const std::string& text, int line = 1) {
    return located(line, column, text, typeid(R).name());
}

// What a reader says of data that ends too early, `size` bytes in one line.
template <class R>
Expected ended(int size) {
    return {failed<R>(size, "Unexpected end of stream"), failed<R>(-1, "Unexpected end of stream")};
}

// How many elements there are below and with the root, how many levels of them, how many attributes, texts, and bytes
// in both.
std::string factsOf(const Element& root);
std::string facts(int elements, int levels, int attributes = 0, int texts = 0, int bytes = 0);

// --- What is asked of a source ---

using Ask = std::function<std::string(InStream&)>;

// Reads a document: its facts, or the message; after facts the note that a success may leave. "silent" without a
// message.
std::string document(InStream& in);

// The same, and whether what is written of it reads back as the same text: "..., written".
std::string documentWritten(InStream& in);

// Reads declarations into a Dtd, as an external subset: how much it writes, or the message.
std::string declarations(InStream& in);

// Reads a document: "valid", "not valid", or the message.
std::string validity(InStream& in);

struct ReadCase {
    const char* name;
    std::function<std::string()> input;
    Ask ask;
    Expected expected;
    Bounds bounds = {};
};

// Every case from every kind of source, each in a process of its own.
void expectOutcomes(const std::vector<ReadCase>& cases);

struct RunCase {
    const char* name;
    std::function<std::string()> run;
    std::string expected;
    Bounds bounds = {};
};

// The same of what is not read from a source.
void expectOutcomes(const std::vector<RunCase>& cases);

// Expectations (EXPECT_EQ and the like, but no SCOPED_TRACE, which keeps memory) that hold in a process of its own.
struct CheckCase {
    const char* name;
    std::function<void()> checks;
    Bounds bounds = {std::size_t{1} << 30};
};

void expectToHold(const std::vector<CheckCase>& cases);

// What a job returns for such expectations: those that failed, "" when all hold.
std::string failuresOf(const std::function<void()>& checks);

}  // namespace Xml::test
