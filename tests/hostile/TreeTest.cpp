// Trees that were made to break what edits, copies, validates, writes and destroys them.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

std::string number(int i) { return std::to_string(10'000'000 + i); }

std::string all(bool yes) { return yes ? "all" : "not all"; }

// An element in an element, and so on, made from the inside out: to add at the bottom would walk up to the top.
std::unique_ptr<Element> deep(int levels) {
    auto inner = std::make_unique<Element>("z");
    for (int i = 1; i < levels; ++i) {
        auto outer = std::make_unique<Element>("a");
        outer->insertChild(nullptr, inner.release());
        inner = std::move(outer);
    }
    return inner;
}

TEST(HostileTreeTest, DeepTreesAreMadeCopiedChangedAndDestroyed) {
    constexpr int kOuter = 2'000 - 1;  // elements around the innermost: <a> and </a>, each on a line of its own
    expectOutcomes({
        {"made by hand", [] { return factsOf(*deep(2'000)); }, facts(2'000, 2'000)},
        {"written with its indentation",
         [] {
             // A tab a level, in front of each tag: the square of the levels, by rule.
             const std::string text = textOf(*deep(2'000));
             const auto tabs = std::count(text.begin(), text.end(), '\t');
             return std::to_string(text.size()) + " bytes, " + std::to_string(tabs) + " tabs";
         },
         std::to_string(kOuter * kOuter + kOuter * 9 + 4) + " bytes, " + std::to_string(kOuter * kOuter) + " tabs"},
    });
}

TEST(HostileTreeTest, ManyEditsAreOneAfterTheOther) {
    expectOutcomes({
        {"added at the end and taken from there",
         [] {
             Element root("r");
             for (int i = 0; i < kMillion; ++i) root.addElement("a", "");
             const bool full = root.getChildCount() == kMillion;
             while (root.getChildCount() > 0) delete root.extractChild(root.getChildCount() - 1);
             return all(full);
         },
         "all", kLarge},
        {"attributes set in reverse and removed in turn",
         [] {
             Element root("r");
             const int count = kMillion / 20;
             for (int i = count; i-- > 0;) root.setAttribute("a" + number(i), "v");
             const bool full = root.getAttributeCount() == count;
             for (int i = 0; i < count; ++i) root.removeAttribute("a" + number(i));
             return all(full && root.getAttributeCount() == 0);
         },
         "all"},
        {"one attribute set again and again",
         [] {
             Element root("r");
             for (int i = 0; i < kMillion; ++i) root.setAttribute("a", number(i));
             return root.getAttributeValue("a").toString();
         },
         number(kMillion - 1)},
        {"texts replaced",
         [] {
             Element root("r");
             for (int i = 0; i < kMillion; ++i) root.setCharData(number(i));
             return dump(&root);
         },
         "r('" + number(kMillion - 1) + "')"},
        {"children that are not there",
         [] {
             Element root("r");
             root.addElement("a", "");
             const int kPlaces[] = {-1, 1, 2'147'483'647, -2'147'483'647 - 1};
             bool none = true;
             for (const int place : kPlaces) {
                 none = none && root.getChild(place) == nullptr && root.extractChild(place) == nullptr &&
                        root.getAttribute(place) == nullptr && root.getElement(place) == nullptr &&
                        root.getElement("a", place) == nullptr;
                 // Searches count down to below one: the first match is the one below none too.
                 none = none && root.findElement("a", place) == (place < 0 ? root.getChild(0) : nullptr);
                 root.removeAttribute(place);
             }
             return all(none && root.getChildCount() == 1);
         },
         "all"},
        {"names that are none",
         [] {
             Element root("r");
             const std::string kNames[] = {
                 "", " ", "1", "a b", "<", std::string(1, '\0'), "\xC3\xA9", "%s%n", repeated("&", kMillion)};
             for (const std::string& name : kNames) {
                 root.setName(name);
                 root.addElement(name, "x");
                 root.setAttribute(name, "v");
             }
             return std::to_string(root.getChildCount()) + " " + std::to_string(root.getAttributeCount()) + " " +
                    root.getName();
         },
         "9 9 r"},
    });
}

TEST(HostileTreeTest, ValidationOfTreesMadeByHandEnds) {
    expectOutcomes({
        {"nothing", [] { return all(Dtd("r").validate(nullptr)); }, "not all"},
        {"a document of nothing", [] { return all(Document(nullptr, new Dtd("r")).validate()); }, "not all"},
        {"a choice of nothing",
         [] {
             Dtd dtd("r");
             dtd.addElementDecl("r", new ChoiceSpec(&dtd), REP_ZERO_OR_MORE);
             Element root("r");
             return all(dtd.validate(&root));
         },
         "all"},
        {"a sequence of nothing, for ever",
         [] {
             Dtd dtd("r");
             dtd.addElementDecl("r", new SeqSpec(&dtd), REP_ONE_OR_MORE);
             Element root("r");
             const bool alone = dtd.validate(&root);
             root.addElement("a", "");
             return all(alone && !dtd.validate(&root));
         },
         "all"},
        {"a mark that is none",
         [] {
             Dtd dtd("r");
             dtd.addElementDecl("r", "a", static_cast<RepType>(77));
             Element root("r");
             dtd.validate(&root);
             return all(!textOf(dtd).empty());
         },
         "all"},
    });
}

TEST(HostileTreeTest, AnyTextIsWrittenSoThatItReadsBack) {
    const auto backAndForth = [](const std::string& value) {
        return [value] {
            Document document(new Element("r"), nullptr);
            document.getRoot()->setAttribute("a", value);
            const Outcome outcome = readDocument(textOf(document));
            return all(outcome.ok && outcome.document->getRoot()->getAttributeValue("a") == value);
        };
    };
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    expectOutcomes({
        {"every byte", backAndForth(bytes), "all"},
        {"every byte, often", backAndForth(repeated(bytes, kMillion / 256)), "all"},
        {"quotes", backAndForth(repeated("\"'", kMillion)), "all"},
        {"ampersands", backAndForth(repeated("&", kMillion)), "all"},
        {"references", backAndForth(repeated("&amp;amp;", kMillion)), "all", kLarge},
        {"markup", backAndForth(repeated("]]><!--</r>", kMillion)), "all", kLarge},
        {"formats", backAndForth("%s%n%d%1000000000d"), "all"},
        {"nothing", backAndForth(""), "all"},
    });
}

TEST(HostileTreeTest, SinksThatFailLoseWhatIsWrittenAndNothingElse) {
    const auto written = [](OutStream& out) {
        const Outcome outcome = readDocument("<a k='&amp;'>" + repeated("<b>x</b>", 10'000) + "</a>");
        outcome.document->toStream(out);
        outcome.document->toStream(out);
        return factsOf(*outcome.document->getRoot());
    };
    const std::string answer = facts(10'001, 2, 1, 10'000, 10'001);
    constexpr auto kAllExceptions = std::ios::badbit | std::ios::failbit | std::ios::eofbit;
    expectOutcomes({
        {"a full device",
         [&] {
             std::ofstream file;
             FileOutStream out("/dev/full", &file);
             return written(out);
         },
         answer},
        {"a full device, with exceptions",
         [&] {
             std::ofstream file;
             file.exceptions(kAllExceptions);
             FileOutStream out("/dev/full", &file);
             return written(out);
         },
         answer},
        {"a directory",
         [&] {
             std::ofstream file;
             FileOutStream out("/", &file);
             return written(out);
         },
         answer},
        {"a directory of the platform",
         [&] {
             FileSpecOutStream out{OrvSys::FileSpec("/")};
             return written(out) + (out.isValid() ? " valid" : " not valid");
         },
         answer + " not valid"},
        {"a device of the platform",
         [&] {
             FileSpecOutStream out{OrvSys::FileSpec("/dev/full")};
             return written(out) + (out.isValid() ? " valid" : " not valid");
         },
         answer + " not valid"},
        {"a stream that is closed, with exceptions",
         [&] {
             std::ofstream file;
             FileOutStream out(&file);
             file.setstate(std::ios::badbit);
             return written(out);
         },
         answer},
        {"positions that are none",
         [&] {
             std::ostringstream text;
             FileOutStream out(&text);
             out.setPosition(-1);
             out.setPosition(2'147'483'647);
             return written(out);
         },
         answer},
        {"a file at its largest position",
         [&] {
             const std::string path = scratchPath("far");
             FileSpecOutStream out{OrvSys::FileSpec(path)};
             out.setPosition(2'147'483'647);
             std::remove(path.c_str());
             const std::string facts = written(out);
             return facts + " " + std::to_string(out.getPosition());
         },
         answer + " -1"},
    });
}

TEST(HostileTreeTest, NumbersOfAnySizeAndPrecisionAreText) {
    const std::string digits = repeated("9", 300);
    expectOutcomes({
        {"the largest number",
         [] {
             setFloatPrecision(2'147'483'647);
             return std::to_string(toString(1.7976931348623157e308).size());
         },
         "309"},
        {"the smallest number",
         [] {
             setFloatPrecision(2'147'483'647);
             return std::to_string(toString(4.9406564584124654e-324).size());
         },
         "1076"},
        {"300 digits", [&] { return std::to_string(toInt(digits)) + " " + std::to_string(toInt("-" + digits)); },
         "2147483647 -2147483648"},
        {"16 million digits", [] { return std::to_string(toInt(repeated("9", kLongName))); }, "2147483647", kLarge},
        {"16 million digits after a point", [] { return toString(toDouble("0." + repeated("0", kLongName) + "1")); },
         "0", kLarge},
        {"an exponent of 300 digits", [&] { return all(toDouble("1e" + digits) > 1e308); }, "all"},
        {"no number", [] { return toString(0.0 / 1.0) + toString(1e308 * 10.0); }, "0inf"},
        {"a long text escaped", [] { return std::to_string(toXmlString(repeated("<", kLongName)).size()); },
         std::to_string(4 * kLongName + 2), kLarge},
        {"a long text decoded",
         [] {
             DataHolder text(repeated("&#65", kLongName / 4));
             return std::to_string(replaceEntities(text).size());
         },
         "1", kLarge},
        {"a message of formats",
         [] {
             const Message message(std::string("%s%n%1000000000d"));
             return Message::lastMessage();
         },
         "%s%n%1000000000d"},
    });
}

}  // namespace
}  // namespace Xml::test
