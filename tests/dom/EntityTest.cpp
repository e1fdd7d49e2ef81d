#include "xml/dom/Entity.h"

#include "support/Messages.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

TEST(EntityTest, IsAReferenceWhateverTheNameAndReportsWhatIsNoName) {
    const struct {
        const char* description;
        const char* name;
        bool reported;
    } kCases[] = {
        {"name", "nbsp", false},    {"standard name", "amp", false},
        {"colon", ":", false},      {"digit first", "9a", true},
        {"empty", "", true},        {"blank", "a b", true},
        {"character", "#65", true}, {"per cent", "a%s", true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.description);
        MessageCollector collector;
        const Entity entity(c.name);
        std::vector<std::string> messages;
        if (c.reported) messages.push_back(std::string("<Xml::Entity::Entity> not a valid name: ") + c.name);
        EXPECT_EQ(collector.take(), messages);
        EXPECT_EQ(entity.toString(), "&" + std::string(c.name) + ";");
        EXPECT_EQ(entity.toString(), "&" + std::string(c.name) + ";");
        EXPECT_TRUE(collector.texts().empty());
    }
}

TEST(EntityTest, ACopyHasATextOfItsOwnAndReportsNothing) {
    MessageCollector collector;
    const Entity original("9");
    collector.take();
    const std::string& text = original.toString();
    const Entity copy(original);
    EXPECT_EQ(copy.toString(), "&9;");
    EXPECT_NE(&copy.toString(), &text);
    EXPECT_TRUE(collector.texts().empty());
}

}  // namespace
}  // namespace Xml::test
