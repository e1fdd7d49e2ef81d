#include "Shapes.h"
#include <cstdint>
#include <iterator>

namespace bench {

namespace {

// Numbers that look random and are the same everywhere.
class Numbers {
public:
    std::size_t below(std::size_t bound) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::size_t>(state >> 33) % bound;
    }

private:
    std::uint64_t state = 1;
};

// A root with rows below it, until there are so many bytes.
template <class AddRow>
std::string rows(std::size_t bytes, AddRow addRow) {
    Numbers numbers;
    std::string text = "<?xml version=\"1.0\"?>\n<rows>\n";
    text.reserve(bytes + 1024);
    while (text.size() < bytes) addRow(text, numbers);
    return text + "</rows>\n";
}

const char* const kWords[] = {"river", "copper",  "a",     "winter", "of",      "harbour", "the",  "slow",
                              "and",   "evening", "glass", "under",  "morning", "to",      "fern", "stone"};

void addWords(std::string& text, std::size_t count, Numbers& numbers) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) text += ' ';
        text += kWords[numbers.below(std::size(kWords))];
    }
}

void addAttribute(std::string& text, const char* name, const std::string& value) {
    text += std::string(" ") + name + "=\"" + value + "\"";
}

void addLeaf(std::string& text, const char* name, const std::string& content) {
    text += std::string("<") + name + ">" + content + "</" + name + ">";
}

// --- Forty types: e0 is the root, e1 to e19 have children, e20 to e39 have none. ---

constexpr std::size_t kTypes = 40;
constexpr std::size_t kFirstLeaf = 20;

std::string typeName(std::size_t type) { return "e" + std::to_string(type); }

bool isEmptyType(std::size_t type) { return type % 3 == 0; }

// The leaves in the model of an inner type: one, either of two any number of times, at least one of the last.
std::size_t leafOf(std::size_t type, std::size_t place) {
    return kFirstLeaf + (type * 3 + place * 5) % (kTypes - kFirstLeaf);
}

std::string declarationsOfManyTypes() {
    std::string text = "<!ELEMENT e0 (";
    for (std::size_t type = 1; type < kFirstLeaf; ++type) text += (type > 1 ? " | " : "") + typeName(type);
    text += ")*>\n";
    for (std::size_t type = 1; type < kFirstLeaf; ++type) {
        const std::string nested = type + 1 < kFirstLeaf ? typeName(type + 1) + "?, " : "";
        text += "<!ELEMENT " + typeName(type) + " (" + nested + typeName(leafOf(type, 0)) + ", (" +
                typeName(leafOf(type, 1)) + " | " + typeName(leafOf(type, 2)) + ")*, " + typeName(leafOf(type, 3)) +
                "+)>\n<!ATTLIST " + typeName(type) + " id CDATA #REQUIRED kind CDATA \"plain\">\n";
    }
    for (std::size_t type = kFirstLeaf; type < kTypes; ++type) {
        text += "<!ELEMENT " + typeName(type) + (isEmptyType(type) ? " EMPTY>\n" : " (#PCDATA)>\n");
        text += "<!ATTLIST " + typeName(type) + " size CDATA #IMPLIED>\n";
    }
    return text;
}

void addTypedLeaf(std::string& text, std::size_t type, Numbers& numbers) {
    text += "<" + typeName(type);
    if (numbers.below(2) == 0) addAttribute(text, "size", std::to_string(numbers.below(1000)));
    if (isEmptyType(type)) {
        text += "/>";
        return;
    }
    text += ">";
    addWords(text, 1 + numbers.below(4), numbers);
    text += "</" + typeName(type) + ">";
}

// At most nineteen levels: an inner type holds none but the next.
void addTyped(std::string& text, std::size_t type, Numbers& numbers) {
    text += "<" + typeName(type);
    addAttribute(text, "id", std::to_string(numbers.below(100000)));
    if (numbers.below(4) == 0) addAttribute(text, "kind", "special");
    text += ">";
    if (type + 1 < kFirstLeaf && numbers.below(2) == 0) addTyped(text, type + 1, numbers);
    addTypedLeaf(text, leafOf(type, 0), numbers);
    for (std::size_t i = numbers.below(5); i > 0; --i) addTypedLeaf(text, leafOf(type, 1 + numbers.below(2)), numbers);
    for (std::size_t i = 1 + numbers.below(3); i > 0; --i) addTypedLeaf(text, leafOf(type, 3), numbers);
    text += "</" + typeName(type) + ">";
}

}  // namespace

std::string attributeHeavy(std::size_t bytes) {
    return rows(bytes, [](std::string& text, Numbers& numbers) {
        text += "\t<row";
        addAttribute(text, "id", std::to_string(numbers.below(1000000)));
        addAttribute(text, "name", kWords[numbers.below(std::size(kWords))]);
        addAttribute(text, "width", std::to_string(numbers.below(1000)) + ".5");
        addAttribute(text, "state", numbers.below(2) == 0 ? "open" : "closed");
        addAttribute(text, "description", "");
        text.pop_back();
        addWords(text, 4, numbers);
        text += "\"/>\n";
    });
}

std::string elementHeavy(std::size_t bytes) {
    return rows(bytes, [](std::string& text, Numbers& numbers) {
        text += "\t<row>\n\t\t";
        addLeaf(text, "id", std::to_string(numbers.below(1000000)));
        text += "\n\t\t<size>";
        addLeaf(text, "width", std::to_string(numbers.below(1000)));
        addLeaf(text, "height", std::to_string(numbers.below(1000)));
        text += "</size>\n\t\t<open/>\n\t\t";
        addLeaf(text, "name", kWords[numbers.below(std::size(kWords))]);
        text += "\n\t</row>\n";
    });
}

std::string textHeavy(std::size_t bytes) {
    return rows(bytes, [](std::string& text, Numbers& numbers) {
        text += "\t<p>";
        addWords(text, 40 + numbers.below(80), numbers);
        text += ".</p>\n";
    });
}

std::string siblings(std::size_t count) {
    std::string text = "<r>";
    for (std::size_t i = 0; i < count; ++i) text += "<a>x</a>";
    return text + "</r>";
}

std::string references(std::size_t count) {
    const char* const kReferences[] = {"word &amp;", "word &lt; ", "word &gt; ", "see &quot;", "aka &apos;"};
    std::string text = "<r>";
    for (std::size_t i = 0; i < count; ++i) text += kReferences[i % std::size(kReferences)];
    return text + "</r>";
}

std::string tiny() {
    return "<?xml version=\"1.0\"?>\n<order id=\"4711\" state=\"open\">\n\t<item sku=\"A-17\" count=\"2\">Copper "
           "wire</item>\n"
           "\t<item sku=\"B-03\" count=\"1\">Lamps</item>\n\t<note>By midday.</note>\n</order>\n";
}

std::string wide(std::size_t count) {
    std::string text = "<r>";
    for (std::size_t i = 0; i < count; ++i) text += "<a/>";
    return text + "</r>";
}

std::string deep(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += "<x>";
    text += "<y/>";
    for (std::size_t i = 0; i < count; ++i) text += "</x>";
    return text;
}

Typed manyTypes(std::size_t bytes) {
    Numbers numbers;
    Typed typed{"e0", declarationsOfManyTypes(), "<e0>"};
    while (typed.text.size() < bytes) addTyped(typed.text, 1 + numbers.below(kFirstLeaf - 1), numbers);
    typed.text += "</e0>";
    return typed;
}

Typed manyChildren(std::size_t count) {
    Numbers numbers;
    Typed typed{"r", "<!ELEMENT r ((a, b?) | c)*>\n<!ELEMENT a EMPTY>\n<!ELEMENT b EMPTY>\n<!ELEMENT c (#PCDATA)>\n",
                "<r>"};
    bool mayTakeB = false;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t kind = numbers.below(mayTakeB ? 3 : 2);
        mayTakeB = kind == 0;
        typed.text += kind == 0 ? "<a/>" : kind == 1 ? "<c>text</c>" : "<b/>";
    }
    typed.text += "</r>";
    return typed;
}

}  // namespace bench
