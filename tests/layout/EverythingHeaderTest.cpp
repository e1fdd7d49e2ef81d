// The one header for everything: this source includes nothing else of the library.
#include "xml/xml.h"
#include <gtest/gtest.h>

namespace {

TEST(EverythingHeaderTest, BringsInThePlatformLayerThatUsersNeed) {
    OrvSys::Localization::SetString("greeting", "EverythingHeaderTest", u"Hello");
    EXPECT_TRUE(OrvSys::Localization::GetString("greeting", "EverythingHeaderTest", u"") == u"Hello");
}

}  // namespace
