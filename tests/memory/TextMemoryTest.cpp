// Values, references, numbers and diagnostics while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/DataHolder.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"
#include "xml/text/Numbers.h"
#include <functional>
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

// Made before any allocation fails.
const Dtd& entities() {
    static const Dtd& made = [] {
        static Dtd dtd("a");
        dtd.setEntity("soil-in-the-lower-garden", kLong);
        return std::ref(dtd);
    }();
    return made;
}

struct TextCase {
    const char* name;
    std::function<std::string()> make;
    std::string expected;
};

void expectTexts(const std::vector<TextCase>& cases) {
    const QuietMessages quiet;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            std::string text;
            if (attempt([&] { text = c.make(); })) {
                EXPECT_EQ(text, c.expected);
            }
        });
    }
}

}  // namespace

TEST(TextMemoryTest, NoTextIsWrongForLackOfMemory) {
    const std::string reference = "&" + kLong + ";";
    expectTexts({
        {"value from characters", [] { return DataHolder(kLong.c_str()); }, kLong},
        {"value from a string", [] { return DataHolder(kLong).toString(); }, kLong},
        {"copied value", [value = DataHolder(kLong)] { return DataHolder(value); }, kLong},
        {"name of an unknown value", [] { return getEntityName(kLong + "!"); }, kLong + "!"},
        {"name of a value of the Dtd", [] { return getEntityName(kLong, &entities()); }, "soil-in-the-lower-garden"},
        {"value of an unknown name", [] { return getEntityValue(kLong); }, reference},
        {"value of a name of the Dtd", [] { return getEntityValue("soil-in-the-lower-garden", &entities()); }, kLong},
        {"value of a decimal reference", [] { return getEntityValue("#" + std::string(40, '0') + "65"); }, "A"},
        {"value of a hexadecimal reference", [] { return getEntityValue("#x" + std::string(40, '0') + "41"); }, "A"},
        {"escaped and quoted", [] { return toXmlString(kLong + "<"); }, "\"" + kLong + "&lt;\""},
        {"text of a large number", [] { return toString(1e30); }, "1000000000000000019884624838656"},
    });
}

TEST(TextMemoryTest, NumbersAreReadWithoutMemory) {
    const std::string blanks(40, ' ');
    const std::string whole = blanks + "42 rows";
    const std::string fraction = blanks + "2.5 rows" + std::string(400, '5');
    Attempt first(1);
    int number = 0;
    double real = 0;
    EXPECT_TRUE(first([&] {
        number = toInt(whole);
        real = toDouble(fraction);
    }));
    EXPECT_FALSE(first.hasFailed());
    EXPECT_EQ(number, 42);
    EXPECT_EQ(real, 2.5);
}

TEST(TextMemoryTest, ATextThatCannotBeReplacedStaysAsItWas) {
    struct Case {
        const char* name;
        std::string text;
        std::function<void(DataHolder&)> replace;
        std::string expected;
    };
    const std::string references = "&amp;&soil-in-the-lower-garden;&" + kLong + ";&#x0000000000000000000041;";
    const Case kCases[] = {
        {"references", references, [](DataHolder& text) { replaceEntities(text, &entities()); },
         "&" + kLong + "&" + kLong + ";A"},
        {"characters", kLong + "<&>", [](DataHolder& text) { insertStdEntities(text); }, kLong + "&lt;&amp;&gt;"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            DataHolder text = c.text;
            const bool complete = attempt([&] { c.replace(text); });
            EXPECT_EQ(text, complete ? c.expected : c.text);
        });
    }
}

TEST(TextMemoryTest, AMessageThatCannotBeKeptIsNotHandedOn) {
    const QuietMessages quiet;
    // Longer than any other, and longer each time: the text that is kept never has room for it.
    std::string text(2'000, 'x');
    forEachFailingAllocation([&](Attempt& attempt) {
        Message("before");
        const int before = quiet.count();
        text += text;
        const bool complete = attempt([&] { Message message(text); });
        EXPECT_EQ(Message::lastMessage(), complete ? text : "before");
        EXPECT_EQ(quiet.count(), complete ? before + 1 : before);
    });
    forEachFailingAllocation([&](Attempt& attempt) {
        Message("before");
        const int before = quiet.count();
        text += text;
        const bool complete = attempt([&] { Message message(text.c_str(), 1); });
        EXPECT_EQ(Message::getLastMessage(), complete ? text : "before");
        EXPECT_EQ(quiet.count(), complete ? before + 1 : before);
    });
}

}  // namespace Xml::test
