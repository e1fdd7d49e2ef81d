#include "support/Messages.h"
#include "xml/text/Message.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::Message;
using Xml::test::MessageCollector;

TEST(MessageTest, WritesToStandardErrorAtFirst) {
    testing::internal::CaptureStderr();
    Message(std::string("abc"));
    Message("100% of %s, as it stands"s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "abc\n100% of %s, as it stands\n");
}

TEST(MessageTest, WritesToStandardErrorUnformatted) {
    testing::internal::CaptureStderr();
    const char fill = std::cerr.fill('*');
    std::cerr.setf(std::ios_base::left, std::ios_base::adjustfield);
    std::cerr.width(10);
    Message(std::string("abc"));
    EXPECT_EQ(std::cerr.width(), 10);  // is left for the caller's own output
    Message(std::string());
    std::cerr.width(0);
    std::cerr.fill(fill);
    std::cerr.unsetf(std::ios_base::adjustfield);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "abc\n\n");
}

TEST(MessageTest, WritesUpToTheFirstZeroByteAndKeepsAll) {
    testing::internal::CaptureStderr();
    Message("a\0b"s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a\n");
    EXPECT_EQ(Message::lastMessage(), "a\0b"s);
}

TEST(MessageTest, KeepsACopyOfTheLastTextUnderBothNames) {
    const MessageCollector messages;
    std::string text = "abc";
    const Message message(text);
    text = "changed";
    EXPECT_EQ(Message::lastMessage(), "abc");
    EXPECT_EQ(&Message::getLastMessage(), &Message::lastMessage());
    Message(std::string("next"));
    EXPECT_EQ(Message::getLastMessage(), "next");
    Message(std::string());
    EXPECT_EQ(Message::lastMessage(), "");
}

TEST(MessageTest, HandsFormattedTextsOverAfterTheirLength) {
    MessageCollector messages;
    Message("%s!", "x");
    EXPECT_EQ(Message::lastMessage(), "%s!");
    Message("line %d", 5);
    EXPECT_EQ(Message::lastMessage(), "line %d");
    Message("plain");
    EXPECT_EQ(Message::lastMessage(), "plain");
    Message("%d%% of %c in %.2f", 7, 'k', 0.5);
    EXPECT_EQ(messages.texts(), (std::vector<std::string>{"\2x!", "\6line 5", "\5plain",
                                                          "\x0f"
                                                          "7% of k in 0.50"}));
}

// What the handler got, the length byte apart: it may be zero.
int leadingByte = -1;
std::string following;

void keepLengthAndText(const char* text, ...) {
    leadingByte = static_cast<unsigned char>(text[0]);
    following = text + 1;
}

TEST(MessageTest, CutsFormattedTextsAt270CharactersAndTheirLengthAtAByte) {
    const MessageCollector restores;
    Message::InstallMessageHandler(keepLengthAndText);
    for (const std::size_t length : {0U, 1U, 255U, 256U, 257U, 269U, 270U, 271U, 300U, 100'000U}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'm');
        const std::size_t kept = std::min<std::size_t>(length, 270);
        Message("%s", text.c_str());
        EXPECT_EQ(leadingByte, static_cast<int>(kept % 256));
        EXPECT_EQ(following, text.substr(0, kept));
        EXPECT_EQ(Message::lastMessage(), "%s");
    }
}

TEST(MessageTest, DoesNotTakeAStringForAFormat) {
    const MessageCollector messages;
    Message("%s %n %d"s);
    EXPECT_EQ(messages.texts(), std::vector<std::string>{"%s %n %d"});
    EXPECT_EQ(Message::lastMessage(), "%s %n %d");
}

TEST(MessageTest, DoesNotCutStrings) {
    const MessageCollector messages;
    const std::string text(5000, 'm');
    const Message message(text);
    EXPECT_EQ(messages.texts(), std::vector<std::string>{text});
}

TEST(MessageTest, IsSilencedByFalseAndLetThroughByTrue) {
    const MessageCollector messages;
    EXPECT_TRUE(Message::out);
    EXPECT_TRUE(Message::disableOutput(false));
    EXPECT_FALSE(Message::out);
    Message(std::string("unheard"));
    EXPECT_EQ(Message::lastMessage(), "unheard");
    Message("unheard %d", 1);
    EXPECT_EQ(Message::lastMessage(), "unheard %d");
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_FALSE(Message::disableOutput(false));
    EXPECT_FALSE(Message::disableOutput(true));
    EXPECT_TRUE(Message::disableOutput(true));
    Message(std::string("heard"));
    EXPECT_EQ(messages.texts(), std::vector<std::string>{"heard"});
    Message::out = false;
    Message(std::string("unheard"));
    EXPECT_EQ(messages.texts().size(), 1U);
}

TEST(MessageTest, RoutesEverythingToTheInstalledHandlerAndNothingToStandardError) {
    testing::internal::CaptureStderr();
    {
        MessageCollector messages;
        Message(std::string("one"));
        Message("two");
        EXPECT_EQ(messages.take(), (std::vector<std::string>{"one", "\3two"}));
        Message(std::string("three"));
        EXPECT_EQ(messages.texts(), std::vector<std::string>{"three"});
        EXPECT_NE(Message::mMessageHandler, nullptr);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MessageTest, InstallsTheHandlerInItsPublicPlace) {
    const MessageCollector restores;
    Message::InstallMessageHandler(keepLengthAndText);
    EXPECT_EQ(Message::mMessageHandler, keepLengthAndText);
}

}  // namespace
