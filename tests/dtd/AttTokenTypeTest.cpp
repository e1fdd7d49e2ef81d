#include "xml/dtd/AttTokenType.h"

#include "models/Models.h"
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {

using Kind = AttTokenType::Kind;

TEST(AttTokenTypeTest, WritesItsKeyword) {
    const struct {
        Kind kind;
        const char* text;
    } kCases[] = {
        {Kind::Id, "ID #IMPLIED"},
        {Kind::IdRef, "IDREF #IMPLIED"},
        {Kind::IdRefs, "IDREFS #IMPLIED"},
        {Kind::EntityName, "ENTITY #IMPLIED"},
        {Kind::EntityNames, "ENTITIES #IMPLIED"},
        {Kind::NmToken, "NMTOKEN #IMPLIED"},
        {Kind::NmTokens, "NMTOKENS #IMPLIED"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const AttTokenType definition(c.kind, IMPLIED);
        EXPECT_EQ(definition.getKind(), c.kind);
        EXPECT_EQ(written(definition), c.text);
    }
    EXPECT_EQ(written(AttTokenType(Kind::NmTokens, DEFAULT, "a b")), "NMTOKENS \"a b\"");
}

TEST(AttTokenTypeTest, TakesNamesAndTokensOneOrSeveral) {
    const struct {
        const char* value;
        bool name, names, token, tokens;
    } kCases[] = {
        {"a", true, true, true, true},
        {"p:a-1.b_", true, true, true, true},
        {"gr\xC3\xB6\xC3\x9F", true, true, true, true},
        {"1a", false, false, true, true},
        {"-", false, false, true, true},
        {"\xC2\xB7", false, false, true, true},
        {"a b", false, true, false, true},
        {"a 1", false, false, false, true},
        {"", false, false, false, false},
        {" ", false, false, false, false},
        {" a", false, false, false, false},
        {"a ", false, false, false, false},
        {"a  b", false, false, false, false},
        {"a\tb", false, false, false, false},
        {"a,b", false, false, false, false},
        {"\xC3\x97", false, false, false, false},
        {"\xF0\x9F\x98\x80", true, true, true, true},
        {"\xFF", false, false, false, false},
        {"a\xC3", false, false, false, false},
        {"\xF0", false, false, false, false},
        {"\xC0\x80", false, false, false, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.value);
        for (const Kind kind : {Kind::Id, Kind::IdRef, Kind::EntityName}) {
            EXPECT_EQ(AttTokenType(kind, IMPLIED).validate(c.value), c.name);
        }
        for (const Kind kind : {Kind::IdRefs, Kind::EntityNames}) {
            EXPECT_EQ(AttTokenType(kind, IMPLIED).validate(c.value), c.names);
        }
        EXPECT_EQ(AttTokenType(Kind::NmToken, IMPLIED).validate(c.value), c.token);
        EXPECT_EQ(AttTokenType(Kind::NmTokens, IMPLIED).validate(c.value), c.tokens);
    }
}

TEST(AttTokenTypeTest, ClonesIntoOneOfItsKindThatStandsAlone) {
    auto definition = std::make_unique<AttTokenType>(Kind::IdRefs, FIXED, "a b");
    const std::unique_ptr<AttDef> copy(definition->clone());
    definition.reset();
    ASSERT_NE(dynamic_cast<AttTokenType*>(copy.get()), nullptr);
    EXPECT_EQ(static_cast<AttTokenType&>(*copy).getKind(), Kind::IdRefs);
    EXPECT_EQ(copy->getDefault(), "a b");
    EXPECT_EQ(written(*copy), "IDREFS #FIXED\"a b\"");
}

}  // namespace Xml::test
