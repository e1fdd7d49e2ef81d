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

}  // namespace Xml::test
