#include "growth/Texts.h"

#include "growth/Work.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <utility>

namespace Xml::test {

std::string numbered(const std::string& name, int number) { return name + std::to_string(10'000'000 + number); }

std::function<void()> reading(std::string text, bool ok) {
    return [text = std::move(text), ok] {
        CountingSource in(text);
        DocumentReader reader;
        EXPECT_EQ(reader.parse(in), ok) << reader.getErrorMessage();
    };
}

std::unique_ptr<Element> readElement(const std::string& text) {
    StringInStream in(text);
    ElementReader reader;
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    return std::unique_ptr<Element>(reader.extractRoot());
}

std::unique_ptr<Dtd> readDtd(const std::string& declarations) {
    StringInStream in(declarations);
    DTDReader reader("r");
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    return std::unique_ptr<Dtd>(reader.extractDtd());
}

}  // namespace Xml::test
