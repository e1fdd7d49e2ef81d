#include "xml/easy/Diagnostics.h"

#include "xml/text/Message.h"
#include <cstdarg>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::vector<std::string> gHandled;

void handle(const char* text, ...) { gHandled.emplace_back(text); }
void handleOther(const char* text, ...) { gHandled.push_back("other " + std::string(text)); }

// Puts the handler back that a test finds.
class DiagnosticsTest : public testing::Test {
protected:
    DiagnosticsTest() : found(Message::mMessageHandler) {
        gHandled.clear();
        Message::InstallMessageHandler(handle);
    }
    ~DiagnosticsTest() override {
        onDiagnostic({});
        Message::InstallMessageHandler(found);
    }

private:
    Message::Handler found;
};

TEST_F(DiagnosticsTest, GoToTheFunctionThatIsSetLast) {
    std::vector<std::string> first, second;
    onDiagnostic([&first](std::string_view text) { first.emplace_back(text); });
    Message(std::string("one"));
    const auto before = onDiagnostic([&second](std::string_view text) { second.emplace_back(text); });
    Message(std::string("two"));
    onDiagnostic(before);
    Message(std::string("three"));
    EXPECT_EQ(first, (std::vector<std::string>{"one", "three"}));
    EXPECT_EQ(second, (std::vector<std::string>{"two"}));
    EXPECT_TRUE(gHandled.empty());
}

TEST_F(DiagnosticsTest, AreQuietWithoutAFunctionTillThatIsPutBack) {
    const auto before = onDiagnostic({});
    Message(std::string("unheard"));
    EXPECT_EQ(Message::lastMessage(), "unheard");
    const auto none = onDiagnostic(before);
    EXPECT_FALSE(none);
    Message(std::string("heard"));
    EXPECT_EQ(gHandled, std::vector<std::string>{"heard"});
    EXPECT_EQ(Message::mMessageHandler, handle);
}

TEST_F(DiagnosticsTest, AFunctionThatWasInstalledCanBeCalled) {
    const auto before = onDiagnostic({});
    before("text");
    EXPECT_EQ(gHandled, std::vector<std::string>{"text"});
}

TEST_F(DiagnosticsTest, AHandlerThatIsInstalledLaterTakesOver) {
    std::vector<std::string> heard;
    onDiagnostic([&heard](std::string_view text) { heard.emplace_back(text); });
    Message::InstallMessageHandler(handleOther);
    Message(std::string("one"));
    EXPECT_EQ(gHandled, std::vector<std::string>{"other one"});
    const auto before = onDiagnostic([&heard](std::string_view text) { heard.emplace_back(text); });
    Message(std::string("two"));
    onDiagnostic(before);
    Message(std::string("three"));
    EXPECT_EQ(heard, std::vector<std::string>{"two"});
    EXPECT_EQ(gHandled, (std::vector<std::string>{"other one", "other three"}));
}

TEST_F(DiagnosticsTest, ComeWholeAndWithoutTheByteInFront) {
    std::vector<std::string> heard;
    onDiagnostic([&heard](std::string_view text) { heard.emplace_back(text); });
    Message(std::string("zero \0 inside", 13));
    Message("%s %d", "formatted", 7);
    Message("%s", "");
    Message("%s", std::string(256, 'x').c_str());
    Message(std::string{});
    EXPECT_EQ(heard, (std::vector<std::string>{std::string("zero \0 inside", 13), "formatted 7", "",
                                               std::string(256, 'x'), ""}));
}

}  // namespace
}  // namespace Xml::test
