#include "xml/reader/EntityReader.h"

#include "reader/GrowthLimit.h"
#include "reader/ReadCase.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

// What the entities `e` and `f` stand for afterwards, when `d` is there already.
Reading readEntity(InStream& in) {
    Dtd dtd("t");
    dtd.setEntity("d", "[d &amp; more]");
    dtd.setEntity("none", "");
    EntityReader reader(&dtd);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), dtd.isEntityName("e") ? "e=" + dtd.getEntityValue("e") : ""};
}

// Entities, each ten times as long as the one before; the last is 10^count bytes.
std::string tenfold(int count) {
    std::string text = "<!ENTITY e1 \"xxxxxxxxxx\">\n";
    for (int i = 2; i <= count; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) text += "&e" + std::to_string(i - 1) + ";";
        text += "\">\n";
    }
    return text;
}

}  // namespace

TEST(EntityReaderTest, DeclaresTheEntityWithItsDecodedValue) {
    expectReadings(
        {
            {"plain", "<!ENTITY e \"value\">z", yes("z").builds("e=value")},
            {"single quotes", " <!ENTITY\n e\n 'value'\n >z", yes("z").builds("e=value")},
            {"empty", "<!ENTITY e ''>z", yes("z").builds("e=")},
            {"the other quote", "<!ENTITY e \"it's\">z", yes("z").builds("e=it's")},
            {"markup", "<!ENTITY e '<b x=\"1\">'>z", yes("z").builds("e=<b x=\"1\">")},
            {"ampersand", "<!ENTITY e 'a&amp;b'>z", yes("z").builds("e=a&b")},
            {"other standard references", "<!ENTITY e '&lt;&gt;&quot;&apos;'>z", yes("z").builds("e=<>\"'")},
            {"character references", "<!ENTITY e '&#65;&#x42;'>z", yes("z").builds("e=AB")},
            {"an entity declared before", "<!ENTITY e '-&d;-'>z", yes("z").builds("e=-[d &amp; more]-")},
            {"an unknown one", "<!ENTITY e '-&u;-'>z", yes("z").builds("e=-&u;-")},
            {"itself", "<!ENTITY e '-&e;-'>z", yes("z").builds("e=-&e;-")},
            {"unfinished", "<!ENTITY e 'a&u'>z", yes("z").builds("e=a&u;")},
            {"references are replaced once", "<!ENTITY e '&#38;lt;'>z", yes("z").builds("e=&lt;")},
            {"a value that would become empty stays", "<!ENTITY e '&none;'>z", yes("z").builds("e=&none;")},
            {"an end like that of an empty element", "<!ENTITY e 'v'/>z", yes("z").builds("e=v")},
            {"ends with the data", "<!ENTITY e 'v'>", yes().builds("e=v")},
        },
        classOf<EntityReader>(), readEntity);
}

TEST(EntityReaderTest, ReportsWhatTheDeclarationLacks) {
    expectReadings(
        {
            {"nothing", "", ended()},
            {"another declaration", "<!ELEMENT e>z", no("\"<!ENTITY\" expected", " e>z")},
            {"parameter entity", "<!ENTITY % e 'v'>z", no("not a name: %", " e 'v'>z")},
            {"digit first", "<!ENTITY 1e 'v'>z", no("not a name: 1e", " 'v'>z")},
            {"external entity", "<!ENTITY e SYSTEM 'v'>z", no("\"\"\" or \"'\" expected", "YSTEM 'v'>z")},
            {"no value", "<!ENTITY e>z", no("\"\"\" or \"'\" expected", "z")},
            {"something after the value", "<!ENTITY e 'v' x>z", no("\">\" expected", ">z")},
            {"only the keyword", "<!ENTITY ", ended()},
            {"only a name", "<!ENTITY e ", ended()},
            {"the name ends the data", "<!ENTITY e", ended(), no("not a name: e").goes()},
            {"unfinished value", "<!ENTITY e \"v'>", ended()},
            {"no end", "<!ENTITY e 'v'", ended()},
        },
        classOf<EntityReader>(), readEntity);
}

TEST(EntityReaderTest, ReplacesAnEarlierDeclarationSilently) {
    const auto readTwo = [](InStream& in) {
        Dtd dtd("t");
        EntityReader reader(&dtd);
        const bool ok = reader.parse(in) && reader.parse(in);
        return Reading{ok, reader.getErrorMessage(), "e=" + dtd.getEntityValue("e")};
    };
    expectReadings(
        {
            {"another value", "<!ENTITY e '1'><!ENTITY e '2'>z", yes("z").builds("e=2")},
            {"by its own value", "<!ENTITY e '1'><!ENTITY e '&e;&e;'>z", yes("z").builds("e=11")},
        },
        classOf<EntityReader>(), readTwo);
}

TEST(EntityReaderTest, KeepsADeclarationOfAStandardNameBesideTheStandardOne) {
    Dtd dtd("t");
    EntityReader reader(&dtd);
    StringInStream in("<!ENTITY lt 'x'><!ENTITY e '&lt;'>");
    ASSERT_TRUE(reader.parse(in));
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(dtd.getEntityValue("lt"), "x");
    EXPECT_EQ(dtd.getEntityValue("e"), "<");
}

TEST(EntityReaderTest, BoundsTheTextMadeFromEntitiesThatMultiply) {
    const std::string text = tenfold(6);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        const GrowthLimit limit(1000);
        withSource(source, text, [](InStream& in) {
            DTDReader reader("t");
            EXPECT_FALSE(reader.parse(in));
            EXPECT_EQ(reader.getErrorMessage(),
                      located(1, in.getColumn(), "entity text too large", classOf<EntityReader>()));
            EXPECT_EQ(reader.getDtd()->getEntityValue("e3").size(), 1000U);
            EXPECT_FALSE(reader.getDtd()->isEntityName("e6"));
        });
    }
}

TEST(EntityReaderTest, MakesMuchTextWhenTheBoundIsLiftedOrFarAway) {
    const std::string text = tenfold(6);
    for (const std::int64_t bytes : {std::int64_t{0}, std::int64_t{2000000}}) {
        SCOPED_TRACE(bytes);
        const GrowthLimit limit(bytes);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            withSource(source, text, [](InStream& in) {
                DTDReader reader("t");
                ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
                EXPECT_EQ(reader.getDtd()->getEntityValue("e6").size(), 1000000U);
            });
        }
    }
}

TEST(EntityReaderTest, AllowsAHundredTimesTheBytesReadWhateverTheBound) {
    const GrowthLimit limit(1);
    StringInStream in(tenfold(3));
    DTDReader reader("t");
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
}

TEST(EntityReaderTest, LetsEachDeclarationReadAloneMakeAsMuchText) {
    const GrowthLimit limit(25000);
    Dtd dtd("t");
    dtd.setEntity("e", DataHolder(std::string(6000, 'x')));
    for (int declarations = 0; declarations < 10; ++declarations) {
        StringInStream in("<!ENTITY f '&e;&e;'>");
        EntityReader reader(&dtd);
        ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage() << " in declaration " << declarations;
    }
    StringInStream in("<!ENTITY f '&e;&e;&e;&e;&e;'>");
    EXPECT_FALSE(EntityReader(&dtd).parse(in));
    EXPECT_EQ(dtd.getEntityValue("f").size(), 12000U);
}

TEST(EntityReaderTest, ReturnsTheBoundThatWasSetBefore) {
    EXPECT_EQ(Dtd::setEntityGrowthLimit(5), std::int64_t{64} * 1024 * 1024);
    EXPECT_EQ(Dtd::setEntityGrowthLimit(0), 5);
    EXPECT_EQ(Dtd::setEntityGrowthLimit(std::int64_t{64} * 1024 * 1024), 0);
}

}  // namespace Xml::test
