#include "xml/dtd/AttEnumeratedType.h"

#include "models/Models.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {

using Kind = AttEnumeratedType::Kind;
using Values = std::vector<std::string>;

TEST(AttEnumeratedTypeTest, WritesItsValuesInTheirOrder) {
    EXPECT_EQ(written(AttEnumeratedType(Kind::Tokens, {"b", "a"}, REQUIRED)), "(b | a) #REQUIRED");
    EXPECT_EQ(written(AttEnumeratedType(Kind::Tokens, {"1"}, DEFAULT, "1")), "(1) \"1\"");
    EXPECT_EQ(written(AttEnumeratedType(Kind::Notations, {"gif", "png"}, IMPLIED)), "NOTATION (gif | png) #IMPLIED");
}

TEST(AttEnumeratedTypeTest, TakesItsValuesAlone) {
    const AttEnumeratedType definition(Kind::Tokens, {"yes", "no"}, IMPLIED);
    for (const char* value : {"yes", "no"}) EXPECT_TRUE(definition.validate(value)) << value;
    for (const char* value : {"", "y", "yes no", "Yes", " yes", "yes|no"}) {
        EXPECT_FALSE(definition.validate(value)) << value;
    }
}

TEST(AttEnumeratedTypeTest, ClonesIntoOneOfItsKindThatStandsAlone) {
    auto definition = std::make_unique<AttEnumeratedType>(Kind::Notations, Values{"a", "b"}, FIXED, "b");
    const std::unique_ptr<AttDef> copy(definition->clone());
    definition.reset();
    const auto* const type = dynamic_cast<AttEnumeratedType*>(copy.get());
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getKind(), Kind::Notations);
    EXPECT_EQ(type->getValues(), (Values{"a", "b"}));
    EXPECT_EQ(written(*copy), "NOTATION (a | b) #FIXED\"b\"");
}

}  // namespace Xml::test
