#include "xml/xpath/internal/Characters.h"

#include <gtest/gtest.h>
#include <string>

namespace Xml {
namespace {

using OrvSys::Uni16String;

TEST(CharactersTest, JudgesAUnitByItsLowByte) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        SCOPED_TRACE(unit);
        const auto wide = static_cast<OrvSys::uni16char>(unit);
        const auto low = static_cast<char>(unit & 0xFF);
        const auto in = [low](const char* all) {
            return low != '\0' && std::string(all).find(low) != std::string::npos;
        };
        const bool letter = in("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_");
        ASSERT_EQ(IsWhiteSpace(wide), in("\t\n\r "));
        ASSERT_EQ(IsWhiteSpace(low), in("\t\n\r "));
        ASSERT_EQ(IsBeginLiteral(wide), in("'\""));
        ASSERT_EQ(isFirstNCChar(wide), letter);
        ASSERT_EQ(isNCChar(wide), letter || in("-.0123456789"));
    }
}

struct ReadCase {
    const char16_t* text;
    const char16_t* read;  // null where nothing is
    std::size_t units;     // that the place moved by
};

TEST(CharactersTest, ReadsANameWithAnOptionalPrefix) {
    const ReadCase kCases[] = {
        {u"item", u"item", 4},
        {u"xs:item", u"xs:item", 7},
        {u"a-b.c_1=2", u"a-b.c_1", 7},
        {u"a:b:c", u"a:b", 3},
        {u"a:", u"a", 1},
        {u"a:1", u"a", 1},
        {u"a:*", u"a", 1},
        {u"_", u"_", 1},
        {u"", nullptr, 0},
        {u"1a", nullptr, 0},
        {u":a", nullptr, 0},
        {u"-a", nullptr, 0},
        {u"\u0141a", u"\u0141a", 2},
    };
    for (const auto& c : kCases) {
        const Uni16String text = c.text;
        SCOPED_TRACE(OrvSys::Uni16CharToPlatformCString(text));
        Unit at = text.data();
        Uni16String name = u"before";
        EXPECT_EQ(GetQName(at, text.data() + text.size(), name), c.read != nullptr);
        EXPECT_EQ(name, c.read != nullptr ? c.read : u"before");
        EXPECT_EQ(static_cast<std::size_t>(at - text.data()), c.units);
    }
}

TEST(CharactersTest, PassesTheMarkOfTheAttributeAxis) {
    const ReadCase kCases[] = {
        {u"@id", u"", 1},
        {u"@", u"", 1},
        {u"attribute::id", u"", 11},
        {u"attribute:id", nullptr, 0},
        {u"", nullptr, 0},
        {u"child::id", nullptr, 0},
        {u" @id", nullptr, 0},
    };
    for (const auto& c : kCases) {
        const Uni16String text = c.text;
        SCOPED_TRACE(OrvSys::Uni16CharToPlatformCString(text));
        Unit at = text.data();
        EXPECT_EQ(IsAttributeAxis(at, text.data() + text.size()), c.read != nullptr);
        EXPECT_EQ(static_cast<std::size_t>(at - text.data()), c.units);
    }
}

}  // namespace
}  // namespace Xml
