#include "Queries.h"
#include "support/ForeignNumbers.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

TEST(ClassicNumbersPathTest, PathsReadNumbersAsUnderTheClassicLocale) {
    const Tree tree("<shelf><i i='a' p='10.7'/><i i='b' p='10.2'/><i i='c' p='10,9'/><i i='d'>1.75</i></shelf>");
    const PathCase kCases[] = {
        {"value of an attribute", u"//i[@p > 10.5]", "a"},
        {"literal", u"//i[@p = '10.70' + 0]", "a"},
        {"comma ends a number", u"//i[@p = 10]", "c"},
        {"text", u"//i[text() * 2 = 3.5]", "d"},
    };
    for (const char point : {',', '.'}) {
        const ForeignNumbers foreign(point, point == ',' ? '.' : ',');
        for (const auto& c : kCases) {
            SCOPED_TRACE(c.name);
            EXPECT_EQ(answer(tree.document(), c.path), c.answer);
        }
    }
}

}  // namespace

}  // namespace Xml::test
