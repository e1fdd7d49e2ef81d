// Whole trees over random documents: beside libxml2's, beside the lexer's events, and from other encodings.
#include "standard/WholeTree.h"

#include "standard/Documents.h"
#include "standard/Encoded.h"
#include "standard/Events.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Place.h"
#include "xml/standard/Read.h"
#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

ReadOptions everythingInItsPlace() {
    ReadOptions options = everything();
    options.keepPlaces = true;
    return options;
}

// Most have an encoding declaration, which another encoding would make wrong.
std::string withoutDeclaration(const std::string& text) {
    if (text.rfind("<?xml", 0) != 0 || text.find("?>") == std::string::npos) return text;
    const bool isTarget = text.size() > 5 && text[5] != ' ' && text[5] != '\n' && text[5] != '\r' && text[5] != '\t';
    return isTarget ? text : text.substr(text.find("?>") + 2);
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

bool isAttribute(const std::string& line) { return line.rfind("  ", 0) == 0; }

// Takes the first such line away. False: there is none.
template <class IsWanted>
bool takeIf(std::vector<std::string>& lines, IsWanted isWanted) {
    const auto found = std::find_if(lines.begin(), lines.end(), isWanted);
    if (found == lines.end()) return false;
    lines.erase(found);
    return true;
}
bool take(std::vector<std::string>& lines, const std::string& line) {
    return takeIf(lines, [&](const std::string& other) { return other == line; });
}

// A tree of ours beside libxml2's.
class Comparison {
public:
    explicit Comparison(const std::string& text)
        : mayHaveUnread(text.find('%') != std::string::npos),
          mayHaveLostPrefixes(text.find("<!ENTITY") != std::string::npos),
          mayHaveOtherLineEnds(mayHaveLostPrefixes && text.find("&#13;") != std::string::npos) {}

    bool areSame(const std::string& ours, const std::string& others) {
        const std::vector<std::string> lines = linesOf(ours), otherLines = linesOf(others);
        auto line = lines.begin(), other = otherLines.begin();
        while (line != lines.end() && other != otherLines.end()) {
            if (!areSameLines(*line++, *other++)) return false;
            if (!areSameAttributes(takeAttributes(line, lines.end()), takeAttributes(other, otherLines.end())))
                return false;
        }
        return line == lines.end() && other == otherLines.end();
    }

    int defaults = 0;
    bool isExcused = false;  // but for the defaults of declarations that are not processed

private:
    using Place = std::vector<std::string>::const_iterator;

    static std::vector<std::string> takeAttributes(Place& from, Place to) {
        const Place first = from;
        from = std::find_if_not(from, to, isAttribute);
        return {first, from};
    }

    // 2.11: line ends are those of external entities, so a carriage return by reference stays one in an internal
    // entity, and is a blank of its own in a value; libxml2 makes one line feed of a line end there.
    bool areSameLines(const std::string& ours, const std::string& other) {
        return ours == other || excuse(mayHaveOtherLineEnds && withoutLineEnds(ours) == withoutLineEnds(other));
    }

    // Each run of them is one, which the lines write as two characters.
    static std::string withoutLineEnds(const std::string& line) {
        return std::regex_replace(line, std::regex(R"((\\r|\\n)+)"), R"(\n)");
    }

    // 5.1: declarations after a parameter entity that is not read are not processed. libxml2 goes by them: it supplies
    // the defaults that they declare, which ours may lack, and drops blanks by the types.
    //
    // 3.3.2: a default is supplied wherever the attribute is not given. libxml2 leaves out declarations of prefixes
    // that are in scope with the same name already.
    bool areSameAttributes(const std::vector<std::string>& ours, std::vector<std::string> others) {
        for (std::string line : ours) {
            const bool isDefault = line.back() == '*';
            if (isDefault) {
                line.pop_back();
                ++defaults;
            }
            if (take(others, line)) continue;
            const bool isLike = takeWithoutPrefix(others, line) ||
                                ((mayHaveUnread || mayHaveOtherLineEnds) && takeWithOtherBlanks(others, line)) ||
                                (isDefault && line.rfind("  xmlns", 0) == 0);
            if (!excuse(isLike)) return false;
        }
        return others.empty() || mayHaveUnread;
    }

    bool excuse(bool isLike) {
        isExcused |= isLike;
        return isLike;
    }

    static bool takeWithOtherBlanks(std::vector<std::string>& others, const std::string& line) {
        return takeIf(others, [wanted = withoutBlanks(line)](const std::string& other) {
            return withoutBlanks(other) == wanted;
        });
    }
    static std::string withoutBlanks(std::string line) {
        line.erase(std::remove(line.begin() + 2, line.end(), ' '), line.end());  // but those that begin it
        return line;
    }

    // 6.1 of Namespaces: the declaration of a prefix is in scope up to the end tag, so also within an entity. libxml2
    // reads an entity by itself, and the attributes in it lose their prefixes.
    bool takeWithoutPrefix(std::vector<std::string>& others, const std::string& line) const {
        const std::size_t colon = line.find(':');
        return mayHaveLostPrefixes && colon < line.find('=') && take(others, "  " + line.substr(colon + 1));
    }

    bool mayHaveUnread;
    bool mayHaveLostPrefixes;
    bool mayHaveOtherLineEnds;
};

TEST(WholeTreeTest, IsThatOfLibxml2) {
    const int count = documentCount();
    Dice dice(documentSeed(21));
    int compared = 0;
    int defaults = 0;
    int excused = 0;
    for (int i = 0; i < count && !HasFailure(); ++i) {
        const std::string text = randomDocument(dice);
        const ReadResult result = readText(text, everything());
        if (!result) continue;
        const auto other = libxml2Tree(text);
        if (!other) continue;
        // No Prefix Undeclaring: a document has no such thing. libxml2 makes it of prefixes in entities.
        if (other->find("xmlns:p=''") != std::string::npos || other->find("xmlns:q=''") != std::string::npos) continue;
        ++compared;
        const std::string ours = wholeTree(*result, AttributeOrder::ByName, Sections::Nodes);
        Comparison comparison(text);
        EXPECT_TRUE(comparison.areSame(ours, *other)) << ours << "\n" << *other << "\n" << text;
        defaults += comparison.defaults;
        excused += comparison.isExcused ? 1 : 0;
    }
    EXPECT_GT(compared, count / 8 * 3);
    EXPECT_GT(defaults, count / 100);
    EXPECT_LE(excused, compared / 1000) << "where libxml2 differs is rare";
}

TEST(WholeTreeTest, HasTheEventsInOrder) {
    Dice dice(22);
    int read = 0;
    for (int i = 0; i < rounds(2000) && !HasFailure(); ++i) {
        std::string text = randomDocument(dice);
        if (dice.chance(20)) text = mutated(dice, text);
        const Lexed events = lex(text);
        const ReadResult result = readText(text, everythingInItsPlace());
        if (!result) continue;
        ++read;
        EXPECT_EQ(wholeTree(*result, AttributeOrder::OfTag, Sections::Texts), events.events) << text;
    }
    EXPECT_GT(read, atLeast(700));
}

// --- Encodings ---

// The text with other characters where the encoding has not all of them.
std::string possibleIn(const EncodingUnderTest& encoding, const std::string& text) {
    if (encoding.hasAll) return text;
    const std::string own = charactersOf(encoding.own).front();
    std::string result;
    for (const std::string& character : charactersOf(text)) {
        const bool isAscii = character.size() == 1;
        result += isAscii ? character : own.size() == 1 ? "o" : own;
    }
    return result;
}

// The places of all nodes, a line each; the offsets apart.
struct AllPlaces {
    std::string lines;
    std::vector<std::int64_t> offsets;
};
AllPlaces placesOf(const Document& document) {
    AllPlaces all;
    forEachNode(document, [&](const Object& node) {
        const Place place = placeOf(node);
        all.lines += std::to_string(place.line) + ":" + std::to_string(place.column) + "\n";
        all.offsets.push_back(place.offset);
    });
    return all;
}

TEST(WholeTreeTest, IsTheSameFromEveryEncoding) {
    const std::vector<EncodingUnderTest> encodings = encodingsUnderTest();
    ASSERT_GE(encodings.size(), 10U);
    Dice dice(23);
    int compared = 0;
    for (int i = 0; i < rounds(400) && !HasFailure(); ++i) {
        const std::string random = withoutDeclaration(randomDocument(dice));
        for (const EncodingUnderTest& encoding : encodings) {
            SCOPED_TRACE(encoding.name);
            const std::string text =
                "<?xml version='1.0' encoding='" + std::string(encoding.name) + "'?>" + possibleIn(encoding, random);
            ReadOptions asUtf8 = everythingInItsPlace();
            asUtf8.encoding = "UTF-8";
            const ReadResult plain = readText(text, asUtf8);
            const bool hasMark = encoding.markSize > 0 && dice.chance(50);
            const Encoded encoded = encode(text, encoding, hasMark);
            const ReadResult result = readText(encoded.bytes, everythingInItsPlace());
            ASSERT_EQ(result.isWellFormed(), plain.isWellFormed()) << text << "\n" << result.message();
            std::vector<std::int64_t> starts(text.size() + 1, -1);  // of bytes of the text at which characters begin
            std::size_t at = 0;
            const auto characters = charactersOf(text);
            for (std::size_t c = 0; c <= characters.size(); ++c) {
                starts[at] = encoded.starts[c];
                if (c < characters.size()) at += characters[c].size();
            }
            if (!plain) {
                const Problem& expected = plain.problems().front();
                const Problem& found = result.problems().front();
                EXPECT_EQ(found.text, expected.text);
                EXPECT_EQ(found.place.line, expected.place.line);
                EXPECT_EQ(found.place.column, expected.place.column);
                EXPECT_EQ(found.place.offset, starts[static_cast<std::size_t>(expected.place.offset)]);
                continue;
            }
            ++compared;
            EXPECT_EQ(wholeTree(*result, AttributeOrder::OfTag, Sections::Nodes),
                      wholeTree(*plain, AttributeOrder::OfTag, Sections::Nodes));
            const AllPlaces expected = placesOf(*plain);
            const AllPlaces found = placesOf(*result);
            EXPECT_EQ(found.lines, expected.lines);
            ASSERT_EQ(found.offsets.size(), expected.offsets.size());
            for (std::size_t n = 0; n < found.offsets.size(); ++n) {
                EXPECT_EQ(found.offsets[n], starts[static_cast<std::size_t>(expected.offsets[n])]) << text;
            }
        }
    }
    EXPECT_GT(compared, atLeast(1500));
}

// --- Places ---

// Counts from the beginning.
Place naivePlace(const std::string& text, std::size_t offset) {
    Place place{static_cast<std::int64_t>(offset), 1, 1};
    for (std::size_t i = 0; i < offset; ++i) {
        const bool goesOn = (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
        if (text[i] == '\n' || (text[i] == '\r' && text[i + 1] != '\n')) {
            ++place.line;
            place.column = 1;
        } else if (!goesOn) {
            ++place.column;
        }
    }
    return place;
}

// Whether the node may begin with what stands there.
bool mayBegin(const Object& node, const std::string& rest) {
    const auto begins = [&](const std::string& with) { return rest.rfind(with, 0) == 0; };
    if (begins("&")) return true;  // from an entity, or a text that begins with a reference
    switch (kindOf(node)) {
    case NodeKind::Element: return begins("<" + node.toElement()->getName());
    case NodeKind::Comment: return begins("<!--");
    case NodeKind::Instruction: return begins("<?" + static_cast<const Instruction&>(node).getTarget());
    case NodeKind::CData: return begins("<![CDATA[");
    case NodeKind::Attribute: {
        const Attribute& attribute = *node.toAttribute();
        if (isDefault(attribute)) return begins("<" + attribute.getParent()->toElement()->getName());
        return begins(attribute.getName());
    }
    case NodeKind::Text: {
        const char first = node.toCharData()->getData().front();
        return rest.front() == first || (first == '\n' && rest.front() == '\r');
    }
    default: return false;
    }
}

TEST(WholeTreeTest, KnowsThePlaceOfEveryNode) {
    Dice dice(24);
    int nodes = 0;
    for (int i = 0; i < rounds(4000) && !HasFailure(); ++i) {
        const std::string text = randomDocument(dice);
        ReadOptions options = everythingInItsPlace();
        if (dice.chance(50)) options.space = Space::Content;
        if (dice.chance(30)) options.keepComments = false;
        if (dice.chance(30)) options.keepInstructions = false;
        if (dice.chance(30)) options.keepCData = false;
        const ReadResult result = readText(text, options);
        if (!result) continue;
        std::int64_t before = -1;
        forEachNode(*result, [&](const Object& node) {
            ++nodes;
            const Place place = placeOf(node);
            ASSERT_GE(place.offset, 0) << text;
            const auto offset = static_cast<std::size_t>(place.offset);
            ASSERT_LT(offset, text.size());
            const Place naive = naivePlace(text, offset);
            EXPECT_EQ(place.line, naive.line) << text;
            EXPECT_EQ(place.column, naive.column) << text;
            const bool isSection =
                !options.keepCData && kindOf(node) == NodeKind::Text && text.compare(offset, 9, "<![CDATA[") == 0;
            EXPECT_TRUE(isSection || mayBegin(node, text.substr(offset))) << offset << " of " << text;
            if (kindOf(node) == NodeKind::Attribute && isDefault(*node.toAttribute())) return;
            EXPECT_GE(place.offset, before) << text;
            before = place.offset;
        });
    }
    EXPECT_GT(nodes, atLeast(10000));
}

}  // namespace
}  // namespace Xml::test
