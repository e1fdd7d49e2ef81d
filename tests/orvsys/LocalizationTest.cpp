#include "orvsys/Localization.h"
#include "support/PathErrorKeys.h"
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using OrvSys::Localization;
using OrvSys::Uni16String;

TEST(LocalizationTest, BringsAnEnglishTextOfItsOwnForEachPathError) {
    std::set<Uni16String> seen;
    for (const char* name : Xml::test::kPathErrorKeys) {
        SCOPED_TRACE(name);
        const Uni16String text = Localization::GetString(std::string("xpat/xerr/") + name, "XPath", u"");
        ASSERT_FALSE(text.empty());
        EXPECT_TRUE(seen.insert(text).second);
        EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u' ' && c <= u'~'; }));
        EXPECT_TRUE(text.front() >= u'A' && text.front() <= u'Z');
        // A path may be appended to it.
        EXPECT_NE(text.back(), u'.');
        EXPECT_NE(text.find(u' '), Uni16String::npos);
    }
}

TEST(LocalizationTest, GivesTheFallbackUnlessKeyAndDomainBothFit) {
    Localization::SetString("menu/open", "LocalizationTest.Fit", u"Open");
    const struct {
        const char* name;
        const char* key;
        const char* domain;
        const char16_t* text;
    } kCases[] = {
        {"both fit", "menu/open", "LocalizationTest.Fit", u"Open"},
        {"other key", "menu/close", "LocalizationTest.Fit", u"-"},
        {"part of the key", "menu/", "LocalizationTest.Fit", u"-"},
        {"key in other case", "Menu/Open", "LocalizationTest.Fit", u"-"},
        {"other domain", "menu/open", "XPath", u"-"},
        {"unknown domain", "menu/open", "LocalizationTest.Nowhere", u"-"},
        {"no key", "", "LocalizationTest.Fit", u"-"},
        {"no domain", "menu/open", "", u"-"},
        {"path key without its prefix", "NODE NOT FOUND", "XPath", u"-"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Localization::GetString(c.key, c.domain, u"-"), c.text);
    }
}

TEST(LocalizationTest, TheLastTextInstalledForAKeyCounts) {
    Localization::SetString("k", "LocalizationTest.Last", u"first");
    Localization::SetString("k", "LocalizationTest.Last", u"second");
    EXPECT_EQ(Localization::GetString("k", "LocalizationTest.Last", u"-"), u"second");
}

TEST(LocalizationTest, AnInstalledEmptyTextIsNoReasonForTheFallback) {
    Localization::SetString("k", "LocalizationTest.Empty", u"");
    EXPECT_EQ(Localization::GetString("k", "LocalizationTest.Empty", u"-"), u"");
}

TEST(LocalizationTest, KeysTextsAndDomainsMayHoldAnyCharacter) {
    const std::string key("a\0b", 3);
    const Uni16String text(u"\0\U0001F600\xD800", 4);
    Localization::SetString(key, "", text);
    EXPECT_EQ(Localization::GetString(key, "", u"-"), text);
    EXPECT_EQ(Localization::GetString("a", "", u"-"), u"-");
}

TEST(LocalizationTest, ATextThatTheLibraryBringsCanBeReplaced) {
    const std::string key = "xpat/xerr/NODE NOT FOUND";
    const Uni16String english = Localization::GetString(key, "XPath", u"");
    Localization::SetString(key, "XPath", u"Kein Knoten gefunden");
    EXPECT_EQ(Localization::GetString(key, "XPath", english), u"Kein Knoten gefunden");
    Localization::SetString(key, "XPath", english);
    EXPECT_EQ(Localization::GetString(key, "XPath", u""), english);
}

// The object is made before the texts are, so that it goes behind what goes with them.
TEST(LocalizationTest, StaticObjectsMayAskForTextsWhenTheProgramEnds) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto job = [] {
        static const struct Late {
            ~Late() {
                const Uni16String text = Localization::GetString("xpat/xerr/NODE NOT FOUND", "XPath", u"");
                std::_Exit(text.empty() ? 1 : 7);
            }
        } late;
        if (!Localization::GetString("xpat/xerr/NODE NOT FOUND", "XPath", u"").empty()) std::exit(0);
    };
    EXPECT_EXIT(job(), testing::ExitedWithCode(7), "");
}

TEST(LocalizationTest, ThreadsThatReplaceATextNeverShowAMixture) {
    const std::string domain = "LocalizationTest.Threads";
    const Uni16String texts[] = {Uni16String(40, u'a'), Uni16String(90, u'b')};
    Localization::SetString("shared", domain, texts[0]);
    std::atomic<int> mixtures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 1000; ++i) {
                Localization::SetString("shared", domain, texts[(t + i) % 2]);
                Localization::SetString("own" + std::to_string(t * 1000 + i), domain, texts[t % 2]);
                const Uni16String read = Localization::GetString("shared", domain, u"");
                if (read != texts[0] && read != texts[1]) ++mixtures;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(mixtures, 0);
    EXPECT_EQ(Localization::GetString("own3999", domain, u""), texts[1]);
}

}  // namespace
