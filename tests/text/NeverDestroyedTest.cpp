#include "xml/text/Message.h"
#include "xml/text/internal/EmptyData.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <unistd.h>

namespace {

using Xml::DataHolder;
using Xml::Message;
using Xml::NeverDestroyed;

// Compared without allocating: what was freed must not be taken anew by the texts that it is compared with.
const std::string kBefore = "before " + std::string(100, 'm');
const std::string kAfter = "after " + std::string(100, 'm');

// Made before all that the library makes on first use, and so destroyed after it.
class LastOfAll {
public:
    ~LastOfAll() {
        if (atExit != nullptr) atExit();
    }

    void (*atExit)() = nullptr;
};
LastOfAll lastOfAll;

void quiet(const char*, ...) {}

void reportOnceMore() {
    if (Message::lastMessage() != kBefore) _exit(1);
    Message{kAfter};
    if (Message::lastMessage() != kAfter) _exit(2);
    _exit(0);
}

TEST(NeverDestroyedTest, TheLastMessageOutlivesEveryStaticObject) {
    const auto leave = [] {
        Message::InstallMessageHandler(quiet);
        Message{kBefore};
        lastOfAll.atExit = reportOnceMore;
        std::exit(3);
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

void askForTheEmptyValue() { _exit(Xml::emptyData() == kBefore ? 0 : 1); }

TEST(NeverDestroyedTest, TheEmptyValueOutlivesEveryStaticObject) {
    const auto leave = [] {
        // An empty string looks the same before and after its destructor, a long one does not.
        const_cast<DataHolder&>(Xml::emptyData()) = kBefore;
        lastOfAll.atExit = askForTheEmptyValue;
        std::exit(3);
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST(NeverDestroyedTest, HoldsOneObjectMadeOnceAndHasNoDestructor) {
    NeverDestroyed<DataHolder> held;
    EXPECT_EQ(held.get(), "");
    held.get() = "a";
    EXPECT_EQ(held.get(), "a");
    EXPECT_TRUE(std::is_trivially_destructible_v<NeverDestroyed<DataHolder>>);
}

}  // namespace
