// Document types that were written to break a reader or a validation: nesting, models that consume nothing, entities
// that multiply, and names of files that are none.
#include "hostile/Inputs.h"
#include "support/Places.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <cstdint>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

constexpr int kMany = kMillion / 10;

std::string with(const std::string& declared, const std::string& root = "<r/>") {
    return "<!DOCTYPE r [" + declared + "]>" + root;
}

std::string modelled(const std::string& model, const std::string& content) {
    return with("<!ELEMENT r " + model + "><!ELEMENT a EMPTY><!ELEMENT b EMPTY>", "<r>" + content + "</r>");
}

// Whether there are declarations; writing those that are of no interest here costs more than reading them.
std::string justRead(InStream& source) {
    DTDReader reader("r");
    return reader.parse(source) ? "read" : reader.getErrorMessage();
}

TEST(HostileDocumentTypeTest, ARepetitionThatConsumesNothingEnds) {
    const struct {
        const char* model;
        const char* content;
        const char* expected;
    } kCases[] = {
        {"(a?)*", "", "valid"},
        {"(a?)*", "<b/>", "not valid"},
        {"(a*)*", "<a/><a/>", "valid"},
        {"(a*)+", "", "valid"},
        {"((a?)*)*", "<a/><b/>", "not valid"},
        {"((a?, b?)*)+", "<b/><a/><a/><b/>", "valid"},
        // The first alternative matches nothing at all, and is taken.
        {"((a* | b*)*, b)+", "<b/>", "valid"},
        {"(a* | b)*", "<b/>", "not valid"},
        {"((a?)+ | (b?)+)*", "", "valid"},
        {"(((a*)+, (b*)?)*)*", "<a/><b/><a/>", "valid"},
        {"((a? | #PCDATA)*)*", "text", "not valid"},
        {"((b | #PCDATA)*)*", "text<b/>", "valid"},
        {"((((((((a?)*)*)*)*)*)*)*)*", "<b/>", "not valid"},
    };
    for (const auto& c : kCases) {
        expectOutcomes({{c.model, [&c] { return modelled(c.model, c.content); }, validity, c.expected}});
    }
}

TEST(HostileDocumentTypeTest, AlternativesDoNotMultiply) {
    // Each level is met by several alternatives before one fits.
    const auto levels = [](int depth, const std::string& model) {
        return [depth, model] {
            return with("<!ELEMENT r " + model + "><!ELEMENT b EMPTY><!ELEMENT c EMPTY>",
                        repeated("<r>", depth) + repeated("</r>", depth));
        };
    };
    const auto name = [](int i) { return "e" + std::to_string(i); };
    expectOutcomes({
        {"choices of optional items", levels(kMillion / 2, "((r, c?, c) | (r?, c) | (r, b?))?"), validity, "valid",
         kLarge},
        {"choices in sequences", levels(kMany, "((r, c) | (r, c, b))?"), validity, "not valid", kLarge},
    });
    const auto givenUp = [](int depth, int children) {
        return [depth, children] {
            const std::string model = "(" + repeated("((", depth) + "a" + repeated(")*, b) | a", depth) + ")*";
            return with("<!ELEMENT r " + model + "><!ELEMENT a EMPTY><!ELEMENT b EMPTY>",
                        "<r>" + repeated("<a/>", children) + "</r>");
        };
    };
    expectOutcomes({
        {"repetitions in each other that are given up", givenUp(30, 30), validity, "valid"},
        {"many of them, over many children", givenUp(400, 400), validity, "valid", kLarge},
        {"one, over very many children", givenUp(1, kMillion), validity, "valid", kLarge},
        {"repetitions right within each other, over many children",
         [] {
             const int count = kMany / 50;
             return modelled("(" + repeated("(", count) + "a" + repeated(")+", count) + ", b)*",
                             repeated("<a/><b/>", count));
         },
         validity,
         "valid",
         {16 * kMiB}},
    });
    const int width = 50'000 / kScale;
    expectOutcomes({
        {"a choice of many names over many children",
         [&] {
             std::string names = "x";
             std::string leaves;
             std::string children;
             for (int i = 0; i < width; ++i) {
                 names += "|" + name(i);
                 leaves += "<!ELEMENT " + name(i) + " EMPTY>";
                 children += "<" + name(width - 1 - i) + "/>";
             }
             return with("<!ELEMENT r (" + names + ")*>" + leaves, "<r>" + children + "</r>");
         },
         validity, "valid"},
        {"a choice of many groups that begin alike",
         [&] {
             return modelled("(" + pieces(width, [&](int i) { return "(a, " + name(i) + ") | "; }) + "(a, b))*",
                             "<a/><b/>");
         },
         validity, "valid", kLarge},
    });
}

TEST(HostileDocumentTypeTest, ManyDeclarationsAreReadInTurn) {
    const auto name = [](int i) { return "e" + std::to_string(i * 7'919LL % kMillion); };
    const auto declared = [](int count, int each, int extra = 0) {
        return std::to_string(count * each + extra + static_cast<int>(std::string("<!DOCTYPE r [\n]>\n").size())) +
               " bytes written";
    };
    expectOutcomes({
        {"entities", [&] { return pieces(kMillion, [](int i) { return "<!ENTITY e" + std::to_string(i) + " 'v'>"; }); },
         justRead, "read", kLarge},
        {"one entity", [] { return repeated("<!ENTITY e '&lt;'>", kMany); }, declarations, declared(1, 19)},
        {"elements",
         [&] { return pieces(kMillion, [&](int i) { return "<!ELEMENT " + name(kMillion - 1 - i) + " ANY>"; }); },
         justRead, "read", kLarge},
        {"one element", [] { return repeated("<!ELEMENT e EMPTY>", kMany); }, declarations, declared(1, 19)},
        {"attributes of one element",
         [&] {
             return "<!ELEMENT r ANY><!ATTLIST r" +
                    pieces(kMillion, [&](int i) { return " " + name(i) + " CDATA ''"; }) + ">";
         },
         justRead, "read", kLarge},
        {"attribute lists of undeclared elements",
         [&] { return pieces(kMany, [&](int i) { return "<!ATTLIST " + name(i) + " a CDATA 'v'>"; }); }, declarations,
         declared(0, 0), kLarge},
        {"names of a mixed model",
         [] {
             return "<!ELEMENT e (#PCDATA" + pieces(kMany, [](int i) { return "|e" + std::to_string(kMillion + i); }) +
                    ")*>";
         },
         justRead, "read", kLarge},
        {"one name of a mixed model", [] { return "<!ELEMENT e (#PCDATA" + repeated("|a", kMany) + ")*>"; },
         declarations, declared(1, 28)},
        {"items without separators", [] { return "<!ELEMENT e (" + repeated("a ", kMany) + ")>"; }, declarations,
         declared(1, 17)},
        {"repeated items without separators", [] { return "<!ELEMENT e (" + repeated("a* ", kMany) + ")>"; }, justRead,
         "read"},
        {"comments", [] { return repeated("<!---->", kMany); }, declarations, declared(0, 0)},
        {"an element without end", [] { return "<!ELEMENT e (a" + repeated("|a", kMany); }, declarations,
         Expected(failed<ChildrenSpecReader>(2 * kMany + 14, "Unexpected end of stream"),
                  failed<ChildrenSpecReader>(-1, "unexpected \"a")),
         kLarge},
        {"an attribute list without end", [] { return "<!ATTLIST e" + repeated(" a CDATA ''", kMany); }, declarations,
         Expected(failed<AttListReader>(11 * kMany + 11, "Unexpected end of stream"),
                  failed<AttListReader>(-1, "Unexpected end of stream"))},
        {"no declarations", [] { return repeated("]", kMany); }, declarations,
         failed<DTDReader>(0, "unexpected token \"]\"")},
    });
}

TEST(HostileDocumentTypeTest, AnElementAsksForItsOwnAttributesHoweverManyAreDefined) {
    const auto input = [](const char* last) {
        return [last] {
            return "<!DOCTYPE r [<!ELEMENT r (a*)><!ELEMENT a EMPTY><!ATTLIST a" +
                   pieces(kMany, [](int i) { return " x" + std::to_string(i) + " CDATA #IMPLIED"; }) + last + ">]><r>" +
                   repeated("<a z=''/>", kMany) + "</r>";
        };
    };
    expectOutcomes({
        {"none of them required", input(" z CDATA #IMPLIED"), validity, "valid", kLarge},
        {"one of them required", input(" z CDATA #REQUIRED"), validity, "valid", kLarge},
        {"another one required", input(" z CDATA #IMPLIED zz CDATA #REQUIRED"), validity, "not valid", kLarge},
    });
}

TEST(HostileDocumentTypeTest, LongThingsInDeclarationsAreReadWhole) {
    constexpr int kLong = kLongName / 4;
    const std::string name = repeated("n", kLong);
    const auto ask = [](InStream& source) {
        DTDReader reader("r");
        if (!reader.parse(source)) return reader.getErrorMessage();
        return std::to_string(reader.getDtd()->getEntityValue("e").size()) + " " +
               std::to_string(reader.getDtd()->getDefaultValue("e", "a").size());
    };
    const Bounds bounds = {static_cast<std::size_t>(16) * kLong + 64 * kMiB};
    expectOutcomes({
        {"an entity's value", [&] { return "<!ENTITY e '" + name + "'>"; }, ask, std::to_string(kLong) + " 0", bounds},
        {"an entity's value of references", [] { return "<!ENTITY e '" + repeated("&lt;", kLong / 4) + "'>"; }, ask,
         std::to_string(kLong / 4) + " 0", bounds},
        {"a default", [&] { return "<!ATTLIST e a CDATA '" + name + "'>"; }, ask, "3 " + std::to_string(kLong), bounds},
        {"an entity's name", [&] { return "<!ENTITY " + name + " 'v'>"; }, ask, "3 0", bounds},
        {"an element's name", [&] { return "<!ELEMENT " + name + " (" + name + ")>"; }, ask, "3 0", bounds},
        {"a comment", [&] { return "<!--" + name + "-->"; }, ask, "3 0", bounds},
        {"a keyword", [&] { return "<!" + name + ">"; }, ask,
         failed<DTDReader>(0, "unexpected token \"<!" + name + "\""), bounds},
        {"a content", [&] { return "<!ELEMENT e " + name + ">"; },
         [](InStream& source) {
             const std::string answer = declarations(source);
             return answer + " " + std::to_string(Message::lastMessage().size());
         },
         "silent " + std::to_string(kLong + std::string("<ElementDeclReader::parse> don't know what to do ").size()),
         bounds},
    });
}

// --- Entities ---

// e0 is ten bytes, and every further one ten times the one before.
std::string tenfold(int levels) {
    std::string text = "<!ENTITY e0 '0123456789'>";
    for (int i = 1; i <= levels; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '" + repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return text;
}

// Reads declarations with another bound on what entities make.
Ask within(std::int64_t bound, Ask ask) {
    return [bound, ask](InStream& source) {
        Dtd::setEntityGrowthLimit(bound);
        return ask(source);
    };
}

std::string entitySize(InStream& source) {
    DocumentReader reader;
    if (!reader.parse(source)) {
        // Where the failure is depends on how long the text before it is; what counts is what and whose it is.
        const std::string& message = reader.getErrorMessage();
        return message.substr(message.find(')') + 2);
    }
    const Document& read = *reader.getDocument();
    return std::to_string(read.getDtd()->getEntityValue("e4").size()) + " " +
           std::to_string(read.getRoot()->getAttributeValue("a").size());
}

TEST(HostileDocumentTypeTest, TheLongNameOfAnElementIsLookedForOnceForAllItsAttributes) {
    const auto input = [] {
        return "<!ATTLIST " + repeated("e", kLongName / 2) +
               pieces(kMany, [](int i) { return " a" + std::to_string(i) + " CDATA #IMPLIED"; }) + ">";
    };
    expectOutcomes({{"attributes", input, justRead, "read", kLarge}});
}

TEST(HostileDocumentTypeTest, EntitiesThatMultiplyAreBounded) {
    constexpr std::int64_t kAtFirst = 64 * 1024 * 1024;
    const std::string declared = "<!ELEMENT r ANY><!ATTLIST r a CDATA #IMPLIED>";
    const auto refused = [](const char* readerClass) {
        return "entity text too large <" + std::string(readerClass) + ">";
    };
    const std::string inEntity = refused(typeid(EntityReader).name());
    const std::string inValue = refused(typeid(ElementReader).name());

    const auto growing = [&](int levels) { return [=] { return with(declared + tenfold(levels), "<r a='&e1;'/>"); }; };
    // One entity of 100,000 bytes in that many attributes.
    const auto large = [&](int count) {
        return [=] {
            return with("<!ELEMENT r ANY><!ENTITY e4 '" + repeated("v", 100'000) + "'>",
                        "<r>" + repeated("<r a='&e4;'/>", count) + "<r a='&e4;&e4;'/></r>");
        };
    };
    constexpr Bounds kBounded = {200 * kMiB};
    expectOutcomes({
        {"by ten, to a size that is none", growing(100), entitySize, inEntity, kBounded},
        {"by ten, below the bound", growing(4), entitySize, "100000 100"},
        {"by ten, another bound", growing(5), within(200'000, entitySize), inEntity},
        {"by ten, another bound that is not passed", growing(4), within(200'000, entitySize), "100000 100"},
        {"by ten, past the bound", growing(7), entitySize, inEntity, kBounded},
        {"by ten, without a bound", growing(7), within(0, entitySize), "100000 100", kLarge},
        {"one value in many attributes", large(2'000), entitySize, inValue, Bounds{300 * kMiB}},
        {"one value in some attributes", large(50), entitySize, "100000 0"},
        {"one value in many attributes, without a bound", large(kMemoryIsBounded ? 1'000 : 10), within(0, entitySize),
         "100000 0", Bounds{300 * kMiB}},
        {"a reference to itself", [&] { return with(declared + "<!ENTITY e4 '&e4;&e4;'>", "<r a='&e4;'/>"); },
         entitySize, "8 8"},
        {"references in a circle",
         [&] { return with(declared + "<!ENTITY e4 '&f;'><!ENTITY f '&e4;'><!ENTITY e4 '&f;&f;'>", "<r a='&e4;'/>"); },
         entitySize, "6 6"},
        {"an entity declared again and again from itself",
         [&] { return with(declared + "<!ENTITY e4 '0123456789'>" + repeated("<!ENTITY e4 '&e4;&e4;'>", 60)); },
         entitySize, inEntity, kBounded},
        {"defaults, which are not replaced",
         [&] { return with("<!ELEMENT r ANY><!ATTLIST r b CDATA '&e4;&e4;'>" + tenfold(4)); }, entitySize, "100000 0"},
        {"text, which is not replaced",
         [&] { return with(declared + tenfold(4), "<r>" + repeated("&e4;", kMany) + "</r>"); }, entitySize, "100000 0"},
    });
    EXPECT_EQ(Dtd::setEntityGrowthLimit(kAtFirst), kAtFirst);
}

TEST(HostileDocumentTypeTest, TheBoundIsMetToTheByte) {
    const std::string big =
        "<!ENTITY e0 '" + repeated("v", 10'000) + "'><!ENTITY e1 '" + repeated("&e0;", 1'000) + "'>";
    ASSERT_LT(big.size(), 10'000'000U / 100) << "a hundred times what was read counts where that is more";
    const auto ask = [](InStream& source) {
        DTDReader reader("r");
        return std::string(reader.parse(source) ? "read" : "refused");
    };
    expectOutcomes({
        {"as much as the bound", [&] { return big; }, within(10'000'000, ask), "read"},
        {"a byte more", [&] { return big; }, within(9'999'999, ask), "refused"},
        {"much more than a small bound, little for what was read",
         [&] { return "<!--" + repeated("-", 100'000) + "-->" + big; }, within(1, ask), "read"},
    });
}

TEST(HostileDocumentTypeTest, TextIsReplacedWhenAskedForAndNothingIsKeptWhereMemoryRunsOut) {
    // Nothing but the memory there is bounds what comes of a text: all its references times the largest entity.
    constexpr int kValue = 100'000 / kScale;
    using Question = std::function<std::size_t(Document&, XPath&)>;
    const auto asked = [](int references, const Question& ask) {
        return [references, ask]() -> std::string {
            const Outcome outcome =
                readDocument(with("<!ELEMENT r (#PCDATA | a)*><!ELEMENT a (#PCDATA)>"
                                  "<!ENTITY e '" +
                                      repeated("v", kValue) + "'>",
                                  "<r>" + repeated("&e;", references) + "<a>&amp;</a></r>"));
            if (!outcome.ok) return outcome.error;
            Document& tree = *outcome.document;
            const std::string before = factsOf(*tree.getRoot());
            XPath query(&tree);
            std::string answer;
            try {
                answer = std::to_string(ask(tree, query));
            } catch (const std::bad_alloc&) {
                const std::string room(48 * kMiB, 'x');  // of 64: throws again if what was made is still there
                answer = "memory ran out, nothing kept";
            }
            if (factsOf(*tree.getRoot()) != before) answer += ", another tree";
            if (query.GetValue(u"/r/a[. = '&']", -1) != u"&") answer += ", not asked again";
            tree.getRoot()->setCharData("x");
            if (query.GetValues(u"/r[. = 'x']") != 1 || !tree.validate()) answer += ", not changed";
            return answer;
        };
    };
    const Question text = [](Document& tree, XPath&) { return tree.getRoot()->getCharData().size(); };
    const Question textOfNode = [](Document& tree, XPath&) { return tree.getRoot()->getChild(0)->toString().size(); };
    const Question textInto = [](Document& tree, XPath&) {
        DataHolder held;
        tree.getRoot()->getChild(0)->toCharData()->getData(&held);
        return held.size();
    };
    const Question textByPath = [](Document&, XPath& query) { return query.GetValue(u"/r", -1).size(); };
    const Question comparison = [](Document&, XPath& query) {
        return static_cast<std::size_t>(query.GetValues(u"/r = 'x'"));
    };
    const Question predicate = [](Document&, XPath& query) {
        return static_cast<std::size_t>(query.GetValues(u"//r[text() = 'x']"));
    };

    constexpr int kSome = 20;
    const std::string some = std::to_string(std::int64_t{kSome} * kValue);
    const auto all = [](const std::string& unbounded) {
        return kMemoryIsBounded ? std::string("memory ran out, nothing kept") : unbounded;
    };
    const std::string product = std::to_string(std::int64_t{kMany} * kValue);
    expectOutcomes({
        {"some text", asked(kSome, text), some},
        {"some text of a node", asked(kSome, textOfNode), some},
        {"some text into a variable", asked(kSome, textInto), some},
        {"some text by a path", asked(kSome, textByPath), some},
        {"some text compared by a path", asked(kSome, comparison), "0"},
        {"some text compared in a predicate", asked(kSome, predicate), "0"},
        {"text", asked(kMany, text), all(product)},
        {"text of a node", asked(kMany, textOfNode), all(product)},
        {"text into a variable", asked(kMany, textInto), all(product)},
        {"text by a path", asked(kMany, textByPath), all(product)},
        {"text compared by a path", asked(kMany, comparison), all("0")},
        {"text compared in a predicate", asked(kMany, predicate), all("0")},
    });
}

// --- Files ---

TEST(HostileDocumentTypeTest, OnlyRegularFilesAreOpened) {
    const std::string missing = scratchPath("missing.dtd");
    const std::string pipe = scratchPath("pipe.dtd");
    const std::string circle = scratchPath("circle.dtd");
    const std::string folderLink = scratchPath("folder.dtd");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_EQ(symlink(circle.c_str(), circle.c_str()), 0);
    ASSERT_EQ(symlink("/", folderLink.c_str()), 0);
    const ScratchFile file("regular.dtd", "<!ELEMENT r ANY>");
    const std::string names[] = {missing,
                                 pipe,
                                 circle,
                                 folderLink,
                                 scratchFolder(),
                                 "/",
                                 ".",
                                 "/dev/zero",
                                 "/dev/null",
                                 "/dev/random",
                                 "",
                                 file.path + "/",
                                 file.path + std::string(1, '\0'),
                                 "http://example.org/r.dtd",
                                 "file://" + file.path,
                                 "%s%n%d",
                                 repeated("x", 100'000),
                                 repeated("../", 10'000) + "dev/zero"};
    for (const std::string& name : names) {
        const std::string start = "<!DOCTYPE r SYSTEM '" + name + "'";
        const int column = static_cast<int>(start.size());
        const std::string shown = name.substr(0, name.find('\0'));
        expectOutcomes({
            {name.c_str(), [&] { return start + "><r/>"; }, document,
             failed<DoctypeReader>(column, "Could not open file: " + shown)},
            {name.c_str(), [&] { return start + "><r/>"; },
             [](InStream& source) {
                 DoctypeReader::refuseExternalSubsets(true);
                 return document(source);
             },
             failed<DoctypeReader>(column, "external subset refused: " + shown)},
        });
    }
    for (const std::string& path : {pipe, circle, folderLink}) std::remove(path.c_str());
}

TEST(HostileDocumentTypeTest, AnExternalSubsetIsAsHostileAsAnInternalOne) {
    const auto systemDoctype = [](const std::string& path) {
        return [path] { return "<!DOCTYPE r SYSTEM '" + path + "'><r/>"; };
    };
    {
        const ScratchFile file("external.dtd",
                               "<!ELEMENT r " + repeated("(", kGroups) + "r" + repeated(")?", kGroups) + ">");
        expectOutcomes({{"nested groups", systemDoctype(file.path), validity, "valid", kLarge}});
    }
    {
        const ScratchFile file("external.dtd", "<!ELEMENT r ANY>" + tenfold(100));
        expectOutcomes(
            {{"entities that multiply", systemDoctype(file.path), entitySize,
              "entity text too large <" + std::string(typeid(EntityReader).name()) + ">", Bounds{200 * kMiB}}});
    }
    {
        const ScratchFile file("external.dtd",
                               "<!ELEMENT r ANY>" + repeated("<!--" + repeated("-", 1'000) + "-->", 16'000 / kScale));
        expectOutcomes({{"16 MB of comments", systemDoctype(file.path), validity, "valid"}});
    }
    {
        const ScratchFile file("external.dtd", std::string(static_cast<std::size_t>(kLongName), '\0'));
        expectOutcomes({{"zero bytes", systemDoctype(file.path), document, failed<DTDReader>(-1, "unexpected token \""),
                         Bounds{256 * kMiB}}});
    }
    const std::string self = scratchPath("itself.xml");
    writeFile(self, "<!DOCTYPE r SYSTEM '" + self + "'><r/>");
    expectOutcomes({{"the document itself", [&] { return readFile(self); }, document,
                     failed<DTDReader>(0, "unexpected token \"<!DOCTYPE\"")}});
    std::remove(self.c_str());

    // A file of more than 2^31 - 1 bytes, nearly all of which are a hole.
    const std::string huge = scratchPath("huge.dtd");
    writeFile(huge, "<!ELEMENT r ANY>");
    ASSERT_EQ(::truncate(huge.c_str(), off_t{1} << 31), 0);
    expectOutcomes({{"a huge file", systemDoctype(huge), document, failed<DTDReader>(0, "Source too large")}});
    std::remove(huge.c_str());
}

TEST(HostileDocumentTypeTest, FilesThatTheSystemMakesUpEnd) {
    // They are regular by their kind, have no length, and one of them has no end.
    for (const std::string name : {"/proc/self/mem", "/proc/self/pagemap"}) {
        if (::access(name.c_str(), R_OK) != 0) GTEST_SKIP() << name << " cannot be read here";
        const std::string answer = runGuarded(
            [&name] {
                StringInStream source("<!DOCTYPE r SYSTEM '" + name + "'><r/>");
                DocumentReader reader;
                return std::string(reader.parse(source)               ? "read"
                                   : reader.getErrorMessage().empty() ? "silent"
                                                                      : "located message");
            },
            Bounds{64 * kMiB, 10});
        EXPECT_EQ(answer, "located message") << name;
    }
}

}  // namespace
}  // namespace Xml::test
