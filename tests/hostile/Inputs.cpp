#include "hostile/Inputs.h"

#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/stream/StringInStream.h"
#include <algorithm>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <utility>

namespace Xml::test {

std::string located(int line, int column, const std::string& text, const char* readerClass) {
    const std::string whole = "(line = " + std::to_string(line) + ", column = " + std::to_string(column) + ") " + text +
                              " <" + readerClass + ">";
    return whole.substr(0, 255);
}

std::string factsOf(const Element& root) {
    std::size_t elements = 0;
    std::size_t levels = 0;
    std::size_t attributes = 0;
    std::size_t texts = 0;
    std::size_t bytes = 0;
    std::vector<std::pair<const Element*, std::size_t>> waiting = {{&root, 1}};
    while (!waiting.empty()) {
        const auto [element, level] = waiting.back();
        waiting.pop_back();
        ++elements;
        levels = std::max(levels, level);
        const int attributeCount = element->getAttributeCount();
        attributes += static_cast<std::size_t>(attributeCount);
        for (int i = 0; i < attributeCount; ++i) bytes += element->getAttribute(i)->getValue().size();
        for (int i = 0; i < element->getChildCount(); ++i) {
            const Object* child = element->getChild(i);
            if (child->isElement()) {
                waiting.emplace_back(child->toElement(), level + 1);
            } else {
                ++texts;
                bytes += child->toCharData()->data().size();
            }
        }
    }
    return facts(static_cast<int>(elements), static_cast<int>(levels), static_cast<int>(attributes),
                 static_cast<int>(texts), static_cast<int>(bytes));
}

std::string facts(int elements, int levels, int attributes, int texts, int bytes) {
    return std::to_string(elements) + " elements, " + std::to_string(levels) + " levels, " +
           std::to_string(attributes) + " attributes, " + std::to_string(texts) + " texts, " + std::to_string(bytes) +
           " bytes";
}

namespace {

std::string messageOf(const Reader& reader) {
    return reader.getErrorMessage().empty() ? "silent" : reader.getErrorMessage();
}

std::string factsWithNote(const DocumentReader& reader) {
    const std::string text = factsOf(*reader.getDocument()->getRoot());
    return reader.getErrorMessage().empty() ? text : text + "; " + reader.getErrorMessage();
}

}  // namespace

std::string document(InStream& in) {
    DocumentReader reader;
    return reader.parse(in) ? factsWithNote(reader) : messageOf(reader);
}

std::string documentWritten(InStream& in) {
    DocumentReader reader;
    if (!reader.parse(in)) return messageOf(reader);
    const std::string written = textOf(*reader.getDocument());
    StringInStream again(written);
    DocumentReader other;
    if (!other.parse(again)) return "written, " + messageOf(other);
    const bool same = textOf(*other.getDocument()) == written;
    return factsWithNote(reader) + (same ? ", written" : ", written as something else");
}

std::string declarations(InStream& in) {
    DTDReader reader("r");
    if (!reader.parse(in)) return messageOf(reader);
    return std::to_string(textOf(*reader.getDtd()).size()) + " bytes written";
}

std::string validity(InStream& in) {
    DocumentReader reader;
    if (reader.parse(in)) return "valid";
    return reader.getDocument() != nullptr ? "not valid" : messageOf(reader);
}

void expectOutcomes(const std::vector<ReadCase>& cases) {
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string text = c.input();
        const ScratchFile file("hostile", text);
        for (const Source source : kAllSources) {
            const auto job = [&] {
                std::string answer;
                withSource(source, text, file.path, [&](InStream& in) { answer = c.ask(in); });
                return answer;
            };
            const std::string answer = runGuarded(job, c.bounds);
            EXPECT_EQ(answer, source == Source::FileStream ? c.expected.late : c.expected.prompt) << source;
        }
    }
}

void expectOutcomes(const std::vector<RunCase>& cases) {
    for (const RunCase& c : cases) EXPECT_EQ(runGuarded(c.run, c.bounds), c.expected) << c.name;
}

std::string failuresOf(const std::function<void()>& checks) {
    testing::TestPartResultArray results;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &results);
        checks();
    }
    std::string text;
    for (int i = 0; i < results.size(); ++i) {
        const testing::TestPartResult& result = results.GetTestPartResult(i);
        if (result.failed()) text += "line " + std::to_string(result.line_number()) + ": " + result.message() + "\n";
    }
    return text;
}

void expectToHold(const std::vector<CheckCase>& cases) {
    for (const CheckCase& c : cases) {
        EXPECT_EQ(runGuarded([&c] { return failuresOf(c.checks); }, c.bounds), "") << c.name;
    }
}

}  // namespace Xml::test
