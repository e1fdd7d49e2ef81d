#include "xml/dom/internal/NameTable.h"

#include "support/Rounds.h"
#include "xml/text/internal/ByteClasses.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// A few names, and many that differ at their ends, in their middles and in their lengths.
std::vector<std::string> manyNames() {
    std::vector<std::string> names = {"a", "b", "ab", "abcdefgh", "abcdefghi", "abcdefgi", "x", "name", "names"};
    for (int i = 0; i < 3000; ++i) names.push_back("name-" + std::to_string(i * 7919 % 3000));
    for (std::size_t i = 1; i < 70; ++i) names.emplace_back(i, 'n');
    return names;
}

// Names without memory around them: what looks past the end is found out.
const SharedName* read(NameTable& names, NodeMemory& memory, const std::string& run, std::size_t& length) {
    const std::unique_ptr<char[]> bytes(new char[run.size()]);
    std::memcpy(bytes.get(), run.data(), run.size());
    const char* at = bytes.get();
    const SharedName* const name = names.read<ByteClass::kNameChar>(at, bytes.get() + run.size(), memory);
    length = static_cast<std::size_t>(at - bytes.get());
    return name;
}

TEST(NameTableTest, KeepsEachNameOnce) {
    NodeMemory memory;
    NameTable names;
    const std::vector<std::string> texts = manyNames();
    std::set<const SharedName*> kept;
    for (const std::string& text : texts) {
        const SharedName& name = names.find(text, memory);
        EXPECT_EQ(name.text, text);
        kept.insert(&name);
    }
    EXPECT_EQ(kept.size(), std::set<std::string>(texts.begin(), texts.end()).size());
    for (const std::string& text : texts) EXPECT_EQ(kept.count(&names.find(text, memory)), 1U);
    EXPECT_EQ(names.find("", memory).text, "");
}

// The names of a table come in any order, repeated or not; each read is one found.
TEST(NameTableTest, ReadsTheNameThatBeginsARun) {
    std::mt19937 random(1);
    const std::vector<std::string> many = manyNames();
    for (const std::size_t count : {1U, 5U, 16U, 17U, 40U, 3000U}) {
        NodeMemory memory;
        NameTable names;
        for (int i = 0; i < rounds(4000); ++i) {
            const std::string& text = many[std::min<std::size_t>(random() % count, i % 3 == 0 ? 3 : count)];
            const std::string after[] = {"", "=", " ", "\x80", "/>", "=\"a longer value\"", "\t\n  ..."};
            const std::string& rest = after[random() % 7];
            std::size_t length = 0;
            const SharedName* const name = read(names, memory, text + rest, length);
            ASSERT_EQ(length, text.size()) << text << rest;
            if (rest.empty()) {
                ASSERT_EQ(name, nullptr) << "it may go on";
                continue;
            }
            ASSERT_EQ(name->text, text) << rest;
            ASSERT_EQ(&names.find(text, memory), name);
        }
    }
}

// What stood before an element makes no difference to what is expected in it and after it.
TEST(NameTableTest, ExpectsWhatCameInSuchATagAndAfterSuchAnElement) {
    for (const int others : {0, 30}) {
        NodeMemory memory;
        NameTable names;
        const auto find = [&](const char* name) -> const SharedName& { return names.find(name, memory); };
        const SharedName &list = find("list"), &item = find("item"), &sku = find("sku"), &count = find("count");
        for (int i = 0; i < others; ++i) find(("other-" + std::to_string(i)).c_str());

        names.begin(find("item"));
        find("sku");
        find("count");
        names.end(item, &list);
        find("note");

        find("unrelated");
        names.begin(find("item"));
        EXPECT_EQ(names.expected(), &sku);
        names.takeExpected();
        EXPECT_EQ(names.expected(), &count);
        names.takeExpected();
        names.end(item, &list);
        ASSERT_NE(names.expected(), nullptr);
        EXPECT_EQ(names.expected()->text, "note");

        names.end(item, &sku);
        EXPECT_EQ(names.expected(), nullptr) << "nothing came after an item in such an element";
        find("more");
        names.end(item, &list);
        EXPECT_EQ(names.expected()->text, "note");
        names.end(item, &sku);
        EXPECT_EQ(names.expected()->text, "more");
        names.begin(item);
        EXPECT_EQ(names.expected(), &sku);
    }
}

TEST(SharedNameTest, IsComparedAsItsText) {
    std::vector<std::string> texts = {"",
                                      "a",
                                      "a\xff",
                                      "abcdefg",
                                      "abcdefgh",
                                      "abcdefgha",
                                      "abcdefghb",
                                      "abcdefgi",
                                      "b",
                                      "\x80",
                                      "\xff\xff",
                                      std::string("a\0", 2),
                                      std::string("abcdefgh\0", 9)};
    for (const std::string& a : texts) {
        const SharedName name(a, SharedName::headOf(a), nullptr);
        EXPECT_EQ(name.number, 0U);
        for (const std::string& b : texts) {
            const SharedName other(b, SharedName::headOf(b), const_cast<SharedName*>(&name));
            EXPECT_EQ(other.number, 1U);
            EXPECT_EQ(name.isBefore(other), a < b) << a << " " << b;
            EXPECT_EQ(name.begins(b.data(), b.data() + b.size()), b.compare(0, a.size(), a) == 0) << a << " " << b;
        }
    }
}

}  // namespace
}  // namespace Xml::test
