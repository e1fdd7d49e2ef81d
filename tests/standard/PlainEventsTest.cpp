// Ordinary pieces of content are read as events without the lexer; what is not ordinary is left to it.
#include "xml/standard/internal/PlainEvents.h"

#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

using Event = Lexer::Event;

std::string lineOf(Event which, const EventAtHand& event) {
    const std::string place = std::to_string(event.offset) + " " + std::to_string(event.depth) + " ";
    const std::string name(event.name);
    if (which == Event::Text) return place + "'" + std::string(event.text) + "'\n";
    if (which == Event::End) return place + "</" + name + "\n";
    std::string line = place + "<" + name;
    for (std::size_t i = 0; i < event.attributeCount; ++i)
        line += " " + std::string(event.attributes[i].name) + "=" + std::string(event.attributes[i].value);
    return line + "\n";
}

// The events of what stands at first in the root, with their places and depths, and then what is left.
std::string taken(const std::string& content, const ReadOptions& options, bool triesUsual,
                  const std::string& before = "<r>") {
    const std::string text = before + content;
    Lexer lexer({options.namespaces, options.maxDepth, 0});
    lexer.setWindow(text, true);
    while (lexer.next() != Event::Start) {}
    PlainEvents plain(lexer, options);
    std::string lines;
    EventAtHand event;
    if (!plain.goOn(0)) return "nothing";
    for (;;) {
        event.clear();
        Event which = triesUsual ? plain.take(event) : Event::More;
        if (which == Event::More) which = plain.takeLessUsual(event);
        if (which == Event::More || (which == Event::Start && !plain.takeStart(event)))
            return lines + std::string(lexer.ahead());
        lines += lineOf(which, event);
    }
}

// Near the end of the window what is usual is read in another way.
void expectTaken(const std::string& content, const std::string& expected, const ReadOptions& options = {}) {
    for (const std::string after : {"&e;", "&e; and more than is looked at in one step, and so on</r>"}) {
        for (const bool triesUsual : {true, false})
            EXPECT_EQ(taken(content + after, options, triesUsual), expected + after) << content;
    }
}

TEST(PlainEventsTest, TakeTagsAndTexts) {
    expectTaken("<a>t</a>", "3 2 <a\n6 2 't'\n7 2 </a\n");
    expectTaken("<a x='1' long-name_2.b=\"a value of more than sixteen bytes\" >t</a>",
                "3 2 <a x=1 long-name_2.b=a value of more than sixteen bytes\n"
                "64 2 't'\n65 2 </a\n");
    expectTaken("<a/><b x='/'/>", "3 2 <a\n3 2 </a\n7 2 <b x=/\n7 2 </b\n");
    expectTaken("<a\n\t x='1'\r\n  y='2'\t/>", "3 2 <a x=1 y=2\n3 2 </a\n");
    expectTaken("<a1234567890123456789><b12345678><c1234567 /></b12345678></a1234567890123456789>",
                "3 2 <a1234567890123456789\n25 3 <b12345678\n36 4 <c1234567\n36 4 </c1234567\n48 3 </b12345678\n"
                "60 2 </a1234567890123456789\n");
    expectTaken("a ] b > ]] \xEF\xBC\xA1 \xC3\xB6\r\nc\rd<a/>",
                "3 1 'a ] b > ]] \xEF\xBC\xA1 \xC3\xB6\nc\nd'\n25 2 <a\n25 2 </a\n");
    expectTaken("a text of more than sixteen bytes, and of more than twice as many<a/>",
                "3 1 'a text of more than sixteen bytes, and of more than twice as many'\n68 2 <a\n68 2 </a\n");
    expectTaken("<a b='1' c='2' d='3' e='4'/>", "3 2 <a b=1 c=2 d=3 e=4\n3 2 </a\n");
}

TEST(PlainEventsTest, LeaveWhatIsNotOrdinary) {
    for (const std::string piece : {
             "<!-- c -->",
             "<?i?>",
             "<![CDATA[c]]>",
             "<p:a/>",
             "<a p:x='1'/>",
             "<a xmlns='u'/>",
             "<gr\xC3\xB6\xC3\x9F"
             "e/>",
             "<a \xC3\xB6='1'/>",
             "<a x='1' x='2'/>",
             "<a b='1' c='2' b='3'/>",
             "<a x='1'y='2'/>",
             "<a x ='1'/>",
             "<a x= '1'/>",
             "<a x='&lt;'/>",
             "<a x='<'/>",
             "<a x='\t'/>",
             "<a x='\xEF\xBC\xA1'/>",
             "<a x=1/>",
             "<a x/>",
             "<a/ >",
             "<1/>",
             "</s>",
             "</r>",
             "</r >",
             "t &amp; u",
             "t ]]> u",
             "t \x01 u",
             "t \xEF\xBF\xBE u",
         }) {
        const std::string text = piece + "<b/> and so on, for more than is looked at in one step</r>";
        for (const bool triesUsual : {true, false}) EXPECT_EQ(taken(text, {}, triesUsual), text);
    }
}

// Names are compared some bytes at a time.
TEST(PlainEventsTest, LeaveAnEndTagOfAnotherName) {
    for (std::size_t size = 1; size <= 40; ++size) {
        const std::string name(size, 'a');
        expectTaken("<" + name + "></" + name + ">",
                    "3 2 <" + name + "\n" + std::to_string(5 + size) + " 2 </" + name + "\n");
        for (std::size_t place = 0; place < size; ++place) {
            std::string other = name;
            other[place] = 'b';
            for (const std::string after : {"", "&e; and more than is looked at in one step, and so on</r>"}) {
                const std::string end = "</" + other + ">" + after;
                for (const bool triesUsual : {true, false})
                    EXPECT_EQ(taken("<" + name + ">" + end, {}, triesUsual), "3 2 <" + name + "\n" + end);
            }
        }
    }
}

TEST(PlainEventsTest, LeaveATextThatMayGoOn) {
    ReadOptions options;
    options.keepComments = false;
    expectTaken("t<!-- c -->", "t<!-- c -->", options);
    expectTaken("t\r<!-- c -->", "t\r<!-- c -->", options);
    options = everything();
    expectTaken("t<!-- c -->", "3 1 't'\n<!-- c -->", options);
    expectTaken("t<?i?>", "3 1 't'\n<?i?>", options);
}

TEST(PlainEventsTest, DropWhiteSpace) {
    ReadOptions options;
    options.space = Space::Dropped;
    expectTaken(" <a> \r\n </a>\n t<b/>", "4 2 <a\n11 2 </a\n15 1 '\n t'\n18 2 <b\n18 2 </b\n", options);
}

TEST(PlainEventsTest, LeaveTagsBeyondTheDepth) {
    ReadOptions options;
    options.maxDepth = 2;
    expectTaken("<a>t<b/></a>", "3 2 <a\n6 2 't'\n<b/></a>", options);
}

TEST(PlainEventsTest, LeaveTagsOfWhichTheDocumentTypeSaysSomething) {
    EXPECT_EQ(taken("t<a/>", {}, true, "<!DOCTYPE r [<!ATTLIST a x CDATA '1'>]><r>"), "42 1 't'\n<a/>");
}

// After the start tags of the first two elements of a text, which stays.
struct InTwoElements {
    explicit InTwoElements(std::string_view text) {
        lexer.setWindow(text, true);
        lexer.next();
        lexer.next();
    }

    // With so many open elements, or fewer, the innermost one is not to end.
    void takeEmptyElement(std::size_t outer) {
        ASSERT_TRUE(plain.goOn(outer));
        ASSERT_EQ(plain.takeLessUsual(event), Event::Start);
        ASSERT_TRUE(plain.takeStart(event));
        ASSERT_EQ(plain.takeLessUsual(event), Event::End);
    }

    Lexer lexer{{}};
    PlainEvents plain{lexer, {}};
    EventAtHand event;
};

TEST(PlainEventsTest, LeaveTheEndOfWhatDeclaresPrefixes) {
    InTwoElements in("<r><a xmlns='u'><b/></a></r>");
    auto& [lexer, plain, event] = in;
    ASSERT_NO_FATAL_FAILURE(in.takeEmptyElement(0));
    EXPECT_EQ(event.depth, 3U);
    EXPECT_EQ(plain.takeLessUsual(event), Event::More);
    ASSERT_EQ(lexer.next(), Event::End);
    EXPECT_EQ(lexer.name(), "a");
    ASSERT_TRUE(plain.goOn(0));
    EXPECT_EQ(plain.takeLessUsual(event), Event::More);
}

TEST(PlainEventsTest, LeaveEndsThatAreAskedFor) {
    InTwoElements in("<r><a><b/></a></r>");
    ASSERT_NO_FATAL_FAILURE(in.takeEmptyElement(2));
    EXPECT_EQ(in.plain.takeLessUsual(in.event), Event::More);
}

}  // namespace
}  // namespace Xml::test
