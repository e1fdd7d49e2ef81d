#include "xml/dtd/AttDef.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/AttStringType.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <sstream>

namespace Xml::test {

using Texts = std::vector<std::string>;

TEST(AttDefTest, KnowsItsRuleAndKeepsADefaultOnlyWhereThereIsOne) {
    const struct {
        const char* name;
        AttType rule;
        const char* value;
        bool required;
        bool hasDefault;
        const char* kept;
        bool reported;
    } kCases[] = {
        {"default", DEFAULT, "x", false, true, "x", false},
        {"default, empty", DEFAULT, "", false, true, "", false},
        {"required", REQUIRED, "", true, false, "", false},
        {"required with a value", REQUIRED, "x", true, false, "", true},
        {"implied", IMPLIED, "", false, false, "", false},
        {"implied with a value", IMPLIED, " ", false, false, "", true},
        {"fixed", FIXED, "1.0", false, true, "1.0", false},
        {"fixed, empty", FIXED, "", false, true, "", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        MessageCollector messages;
        const AttStringType definition(c.rule, c.value);
        EXPECT_EQ(messages.take(),
                  c.reported ? Texts{"<AttDef::AttDef> no default value for REQUIRED or IMPLIED"} : Texts());
        EXPECT_EQ(definition.isRequired(), c.required);
        EXPECT_EQ(definition.hasDefault(), c.hasDefault);
        EXPECT_EQ(definition.getDefault(), c.kept);
        EXPECT_EQ(messages.texts(), Texts());
    }
}

TEST(AttDefTest, NumbersTheRules) {
    EXPECT_EQ(static_cast<unsigned>(DEFAULT), 0U);
    EXPECT_EQ(static_cast<unsigned>(AttType::REQUIRED), 1U);
    EXPECT_EQ(static_cast<unsigned>(IMPLIED), 2U);
    EXPECT_EQ(static_cast<unsigned>(AttType::FIXED), 3U);
    EXPECT_EQ(sizeof(AttType), 4U);
    EXPECT_EQ(sizeof(RepType), 4U);
}

TEST(AttDefTest, WritesTypeRuleAndQuotedDefault) {
    const struct {
        const char* name;
        AttType rule;
        const char* value;
        const char* text;
    } kCases[] = {
        {"required", REQUIRED, "", "CDATA #REQUIRED"},
        {"implied", IMPLIED, "", "CDATA #IMPLIED"},
        {"default", DEFAULT, "a&b", "CDATA \"a&amp;b\""},
        {"default, empty", DEFAULT, "", "CDATA \"\""},
        {"fixed stands directly before its value", FIXED, "1.0", "CDATA #FIXED\"1.0\""},
        {"fixed, empty", FIXED, "", "CDATA #FIXED\"\""},
        {"all five special characters", DEFAULT, "<\">&'", "CDATA \"&lt;&quot;&gt;&amp;&apos;\""},
        {"a reference is escaped again", DEFAULT, "&amp;", "CDATA \"&amp;amp;\""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const AttStringType definition(c.rule, c.value);
        EXPECT_EQ(written(definition), c.text);
        const std::unique_ptr<AttDef> copy(definition.clone());
        EXPECT_EQ(written(*copy), c.text);
    }
}

TEST(AttDefTest, AValueThatWasDiscardedIsNotWritten) {
    MessageCollector messages;
    EXPECT_EQ(written(AttStringType(REQUIRED, "x")), "CDATA #REQUIRED");
    EXPECT_EQ(written(AttStringType(IMPLIED, "x")), "CDATA #IMPLIED");
}

TEST(AttDefTest, IndentsTheLinesOfADefault) {
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    AttStringType(DEFAULT, "one\ntwo").toStream(out);
    EXPECT_EQ(text.str(), "\tCDATA \"one\n\ttwo\"");
}

TEST(AttStringTypeTest, AcceptsEveryValue) {
    const AttStringType definition(FIXED, "x");
    for (const char* value : {"", "x", "y", "<&>", "\xFF\x01"}) EXPECT_TRUE(definition.validate(value)) << value;
    EXPECT_TRUE(AttStringType(REQUIRED).validate(""));
}

TEST(AttStringTypeTest, WritesItsTypeAlone) {
    std::ostringstream text;
    FileOutStream out(&text);
    AttStringType(FIXED, "x").typeToStream(out);
    EXPECT_EQ(text.str(), "CDATA");
}

TEST(AttStringTypeTest, ClonesIntoOneOfItsKindThatStandsAlone) {
    auto definition = std::make_unique<AttStringType>(FIXED, "1.0");
    const std::unique_ptr<AttDef> copy(definition->clone());
    definition.reset();
    EXPECT_NE(dynamic_cast<AttStringType*>(copy.get()), nullptr);
    EXPECT_TRUE(copy->hasDefault());
    EXPECT_FALSE(copy->isRequired());
    EXPECT_EQ(copy->getDefault(), "1.0");
}

TEST(AttStringTypeTest, HasNoDefaultValueUnlessGiven) {
    MessageCollector messages;
    EXPECT_EQ(AttStringType(DEFAULT).getDefault(), "");
    EXPECT_TRUE(AttStringType(DEFAULT).hasDefault());
    EXPECT_TRUE(AttStringType(REQUIRED).isRequired());
    EXPECT_EQ(messages.texts(), Texts());
}

namespace {

// A value type of a caller's own.
class NumberType : public AttDef {
public:
    NumberType(AttType type, const DataHolder& value) : AttDef(type, value) {}
    void typeToStream(OutStream& out) const override { out << "NUMBER"; }
    bool validate(const DataHolder& value) const override { return value == "1"; }
    AttDef* clone() const override { return new NumberType(*this); }
};

}  // namespace

TEST(AttDefTest, WritesTheKeywordOfATypeOfACallersOwn) {
    MessageCollector messages;
    EXPECT_EQ(written(NumberType(FIXED, "1")), "NUMBER #FIXED\"1\"");
    EXPECT_EQ(written(NumberType(DEFAULT, "1")), "NUMBER \"1\"");
    EXPECT_EQ(messages.take(), Texts());
    EXPECT_EQ(written(NumberType(IMPLIED, "1")), "NUMBER #IMPLIED");
    EXPECT_EQ(messages.take(), Texts{"<AttDef::AttDef> no default value for REQUIRED or IMPLIED"});

    const std::unique_ptr<AttDef> copy(NumberType(FIXED, "1").clone());
    EXPECT_EQ(written(*copy), "NUMBER #FIXED\"1\"");
    EXPECT_EQ(messages.take(), Texts());
}

}  // namespace Xml::test
