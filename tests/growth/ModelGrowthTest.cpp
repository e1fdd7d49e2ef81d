// What a document type costs to read, write, copy and validate by grows as its declarations, its models and the content
// do.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "models/Models.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dtd/internal/FastValidation.h"
#include "xml/xml.h"
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

// --- Declarations ---

// Whatever a document type has many of. The root "r" is declared.
const TextCase kDeclarations[] = {
    {"elements",
     [](int n) {
         return "<!ELEMENT r ANY>" + pieces(n, [](int i) { return numbered("<!ELEMENT e", i) + " EMPTY>"; });
     }},
    {"elements with models and attribute lists",
     [](int n) {
         return "<!ELEMENT r ANY>" + pieces(n, [](int i) {
                    return numbered("<!ELEMENT e", i) + " (a, b?)>" + numbered("<!ATTLIST e", i) +
                           " k CDATA 'v' l CDATA #IMPLIED>";
                });
     }},
    {"attributes of one element",
     [](int n) {
         return "<!ELEMENT r ANY><!ATTLIST r" + pieces(n, [](int i) { return numbered(" a", i) + " CDATA #IMPLIED"; }) +
                ">";
     }},
    {"attributes with defaults",
     [](int n) {
         return "<!ELEMENT r ANY><!ATTLIST r" + pieces(n, [](int i) { return numbered(" a", i) + " CDATA '&lt;v'"; }) +
                ">";
     }},
    {"attribute lists of one element",
     [](int n) {
         return "<!ELEMENT r ANY>" + pieces(n, [](int i) { return numbered("<!ATTLIST r a", i) + " CDATA #IMPLIED>"; });
     }},
    {"names of a mixed model",
     [](int n) { return "<!ELEMENT r (#PCDATA" + pieces(n, [](int i) { return numbered("|e", i); }) + ")*>"; }},
    {"members of a choice",
     [](int n) { return "<!ELEMENT r (e" + pieces(n, [](int i) { return numbered("|e", i); }) + ")*>"; }},
    {"members of a sequence",
     [](int n) { return "<!ELEMENT r (e?" + pieces(n, [](int i) { return numbered(",e", i) + "?"; }) + ")>"; }},
    {"groups beside each other", [](int n) { return "<!ELEMENT r ((a,b)?" + repeated(",(a|b)?", n) + ")>"; }},
    {"choices in each other",
     [](int n) { return "<!ELEMENT r (" + repeated("(", n) + "e" + repeated("|f)", n) + ")?>"; }},
    {"sequences in each other",
     [](int n) { return "<!ELEMENT r (" + repeated("(", n) + "e" + repeated(",f)*", n) + ")?>"; }},
    {"groups that open at the end",
     [](int n) { return "<!ELEMENT r " + repeated("(e,(f|", n) + "g" + repeated("))?", n) + ">"; }},
    {"entities",
     [](int n) {
         return "<!ELEMENT r ANY>" + pieces(n, [](int i) { return numbered("<!ENTITY e", i) + " '&lt;value'>"; });
     }},
    {"entities, each made of the one before",
     [](int n) {
         return "<!ELEMENT r ANY>" +
                pieces(n, [](int i) { return numbered("<!ENTITY e", i + 1) + " '" + numbered("&e", i) + ";'>"; });
     }},
    {"an entity of many references",
     [](int n) { return "<!ELEMENT r ANY><!ENTITY e 'v'><!ENTITY f '" + repeated("&e;&lt;&g;", n) + "'>"; }},
    {"a long entity", [](int n) { return "<!ELEMENT r ANY><!ENTITY e '" + repeated("some & words ", n) + "'>"; }},
};

TEST(ModelGrowthTest, ReadingIsLinearInTheDeclarations) {
    const TextCase kNotKept[] = {
        {"one entity again and again", [](int n) { return "<!ELEMENT r ANY>" + repeated("<!ENTITY e 'value'>", n); }},
        {"comments", [](int n) { return "<!ELEMENT r ANY>" + repeated("<!-- c -->", n); }},
        {"lines that end with CR LF", [](int n) { return "<!ELEMENT r ANY>" + repeated("\r\n", n); }},
        {"lines in a model", [](int n) { return "<!ELEMENT r (e" + repeated("\r\n|\r\ne", n) + ")*>"; }},
    };
    const auto expectLinearReading = [](const TextCase& c) {
        expectLinear(
            c.name, [&c](int n) { return reading("<!DOCTYPE r [" + c.text(n) + "]><r/>"); }, SourceCalls);
    };
    for (const TextCase& c : kDeclarations) expectLinearReading(c);
    for (const TextCase& c : kNotKept) expectLinearReading(c);
}

TEST(ModelGrowthTest, ReadingThatFailsIsLinearInTheDeclarationsToo) {
    const TextCase kCases[] = {
        {"a model without an end", [](int n) { return "<!ELEMENT r (e" + repeated("|e", n) + ">"; }},
        {"groups without an end", [](int n) { return "<!ELEMENT r " + repeated("(", n) + "e>"; }},
        {"separators that change", [](int n) { return "<!ELEMENT r " + repeated("(e|(f,", n) + "g,h|i"; }},
        {"an attribute list without an end",
         [](int n) { return "<!ATTLIST r" + pieces(n, [](int i) { return numbered(" a", i) + " CDATA 'v'"; }); }},
        {"a declaration of no kind",
         [](int n) { return pieces(n, [](int i) { return numbered("<!ELEMENT e", i) + " EMPTY>"; }) + "<!OTHER>"; }},
    };
    for (const TextCase& c : kCases) {
        expectLinear(
            c.name, [&c](int n) { return reading("<!DOCTYPE r [" + c.text(n), false); }, SourceCalls);
    }
}

// What is done with each document type is linear in its declarations.
void expectLinearUse(const std::function<void(const Dtd&)>& use, Kind kind) {
    for (const TextCase& c : kDeclarations) {
        expectLinear(
            c.name, [&](int n) { return [dtd = std::shared_ptr<Dtd>(readDtd(c.text(n))), &use] { use(*dtd); }; }, kind);
    }
}

TEST(ModelGrowthTest, WritingIsLinearInTheDeclarations) {
    const auto write = [](const Dtd& dtd) {
        CountingSink out;
        dtd.toStream(out);
    };
    expectLinearUse(write, SinkCalls);
}

TEST(ModelGrowthTest, CopyingIsLinearInTheDeclarations) {
    expectLinearUse([](const Dtd& dtd) { const Dtd copy(dtd); }, AllocatedBytes);
}

TEST(ModelGrowthTest, MergingIsLinearInTheDeclarations) {
    const auto merge = [](const Dtd& dtd) {
        Dtd copy("r");
        copy.merge(dtd, false);
        copy.merge(dtd, false);
        copy.merge(dtd, true);
    };
    expectLinearUse(merge, AllocatedBytes);
}

// --- Validation ---

// Lets the names `name` of a model belong to another Dtd.
void retargetNames(ParticleValue& particle, const std::string& name, std::size_t dtd) {
    if (particle.name == name) particle.dtd = dtd;
    for (ParticleValue& member : particle.members) retargetNames(member, name, dtd);
}

TEST(ModelGrowthTest, ValidatingIsLinearInTheChildren) {
    const std::string width = pieces(200, [](int i) { return numbered(" | e", i); });
    const struct {
        std::string name;
        std::string model;
    } kCases[] = {
        {"a star", "(a*)"},
        {"a plus", "(a+)"},
        {"a star on a group", "(a)*"},
        {"a choice", "(a | b)*"},
        {"a choice, the last of which fits", "((b, c) | (c, b) | a)*"},
        {"optional members", "((a?, b?)*, c?)"},
        {"pairs", "((a, a)*)"},
        {"pairs tried in vain", "(((a, b) | (a, c) | a)*)"},
        {"choices in a sequence in a choice", "((b | (a, (c | a))) | c)*"},
        {"a star on what stays empty", "((b?, c?)*, a*)*"},
        {"a star given up at every child", "((a*, b) | a)*"},
        {"a plus given up at every child", "((a+, b) | a)*"},
        {"stars given up in each other", "((((a*, b) | a)*, c) | a)*"},
        {"pairs given up", "(((a, a)*, b) | (a*, b) | a)*"},
        {"pairs given up for what is known to fail", "((((a | b?), (a | b*))*, c+) | a)*"},
        {"choices given up", "(((a | b)*, (b, c)) | a)*"},
        {"a mixed model", "(#PCDATA | a | b)*"},
        {"a wide choice", "(b" + width + " | a)*"},
        {"a wide choice after a group", "((b, c)" + width + " | a)*"},
        {"a wide mixed model", "(#PCDATA" + width + " | a)*"},
        {"choices in each other", repeated("(", 50) + "a" + repeated(" | b)", 50) + "*"},
        {"sequences in each other", "(" + repeated("(", 50) + "a" + repeated(", b?)", 50) + "*)"},
        {"stars in each other", "(" + repeated("(", 50) + "a" + repeated(")*", 50) + ")"},
    };
    for (const auto& c : kCases) {
        const auto dtd = readDtd("<!ELEMENT r " + c.model +
                                 "><!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ELEMENT c EMPTY>"
                                 "<!ATTLIST a k CDATA #IMPLIED>");
        expectLinear(
            c.name,
            [&dtd](int n) {
                auto root = std::make_shared<Element>("r");
                for (int i = 0; i < n; ++i) root->addChild(new CountingElement("a"));
                return [root, &dtd] { EXPECT_TRUE(dtd->validate(root.get())); };
            },
            NodeCalls);
    }
}

TEST(ModelGrowthTest, ValidatingIsLinearInTheChildrenWhereTwoDtdsTakeTurns) {
    // The names "x" belong to a second Dtd.
    const struct {
        std::string name;
        std::string model;
        std::function<std::string(int)> children;
    } kCases[] = {
        {"once, near the beginning", "((a*, b) | a | x)*", [](int n) { return "axa" + repeated("a", n); }},
        {"once, in the middle", "((a*, b) | a | x)*", [](int n) { return repeated("a", n) + "x" + repeated("a", n); }},
        {"once, at the end", "((a+, b) | a | x)*", [](int n) { return repeated("a", n) + "x"; }},
        {"at every child", "((a*, b) | a | x)*", [](int n) { return repeated("ax", n); }},
        {"within what is given up", "((x*, a*, b) | a | x)*", [](int n) { return "xxx" + repeated("a", n); }},
        {"in stars in each other", "((((a*, b) | a | x)*, c) | a | x)*",
         [](int n) { return "axa" + repeated("a", n); }},
    };
    for (const auto& c : kCases) {
        ParticleValue model = particleOf(c.model);
        retargetNames(model, "x", 1);
        const auto first = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY; x: EMPTY");
        const auto second = dtdOf("x: EMPTY");
        first->addElementDecl("r", makeChildren(model, {first.get(), second.get()}));
        expectLinear(
            c.name,
            [&](int n) {
                auto root = std::make_shared<Element>("r");
                for (const char name : c.children(n)) root->addChild(new CountingElement(std::string(1, name)));
                return [root, &first] { EXPECT_TRUE(first->validate(root.get())); };
            },
            NodeCalls, 200);
    }
}

TEST(ModelGrowthTest, ValidatingTakesNoMoreMemoryForMoreRowsOfNestedRepetitions) {
    // What came of repetitions is forgotten with the row that it is about: not even the heap is asked again for the
    // next row.
    for (const char* const model : {"((a*, b) | a)*", "((a+, b) | a)*", "((((a*, b) | a)*, c) | a)*",
                                    "((a*, b?)*, c?)*", "(((a | b)*, (b, c)) | a)*"}) {
        const auto dtd = readDtd(std::string("<!ELEMENT r (row*)><!ELEMENT row ") + model +
                                 "><!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ELEMENT c EMPTY>");
        expectSame(
            model,
            [&dtd](int n) {
                auto root = std::make_shared<Element>("r");
                for (int i = 0; i < n; ++i) {
                    auto* const row = new Element("row");
                    for (int k = 0; k < 10; ++k) row->addChild(new Element("a"));
                    root->addChild(row);
                }
                return [root, &dtd] { EXPECT_TRUE(dtd->validate(root.get())); };
            },
            AllocatedBytes, 200);
    }
}

TEST(ModelGrowthTest, ValidatingAsksAChildNoMoreOftenWhereAChoiceIsWider) {
    // A choice among plain names is looked up, not tried one by one: neither a match nor a miss costs its width.
    for (const std::string& name : {numbered("e", 0), std::string("last"), std::string("other")}) {
        for (const bool mixed : {false, true}) {
            expectSame(
                name + (mixed ? " in a mixed model" : " in a choice"),
                [&](int n) {
                    auto root = std::make_shared<Element>("r");
                    for (int i = 0; i < 100; ++i) root->addChild(new CountingElement(name));
                    const auto dtd = std::shared_ptr<Dtd>(
                        readDtd(std::string(mixed ? "<!ELEMENT r (#PCDATA" : "<!ELEMENT r (first") +
                                pieces(n, [](int i) { return numbered("|e", i); }) + "|last)*>" +
                                numbered("<!ELEMENT e", 0) + " EMPTY><!ELEMENT last EMPTY>"));
                    const bool valid = name != "other";
                    return [root, dtd, valid] { EXPECT_EQ(dtd->validate(root.get()), valid); };
                },
                NodeCalls, 100);
        }
    }
}

TEST(ModelGrowthTest, ValidatingIsLinearInTheModel) {
    // Members are tried one by one where they are no plain names, so a wider or deeper model may cost its size, and no
    // more. The last child is one that does not fit into it.
    const struct {
        const char* name;
        Kind kind;
        std::function<std::string(int)> model;
    } kCases[] = {
        {"the width of a choice of groups", NodeCalls,
         [](int n) { return "((e, f)" + pieces(n, [](int i) { return numbered(" | (a, e", i) + ")"; }) + " | a)*"; }},
        {"the width of a choice of optional names", NodeCalls,
         [](int n) { return "((e, f)" + pieces(n, [](int i) { return numbered(" | e", i) + "+"; }) + " | a)*"; }},
        {"the length of a sequence", NodeCalls,
         [](int n) { return "(e?" + pieces(n, [](int i) { return numbered(", e", i) + "?"; }) + ", a*)"; }},
        {"choices in each other", AllocatedBytes,
         [](int n) { return repeated("(", n) + "a" + repeated(" | b)", n) + "*"; }},
        {"choices that are tried in vain", NodeCalls,
         [](int n) { return repeated("(b | d+ | ", n) + "a" + repeated(")", n) + "*"; }},
        {"sequences in each other", NodeCalls,
         [](int n) { return "(" + repeated("(", n) + "a" + repeated(", b?)", n) + "*)"; }},
        {"sequences that are tried in vain", NodeCalls,
         [](int n) { return "(" + repeated("(b?, ", n) + "a" + repeated(")", n) + "*)"; }},
        {"optional groups in each other", NodeCalls,
         [](int n) { return "(" + repeated("(", n) + "a, b" + repeated(")?, b?", n) + ", a*)"; }},
        {"stars in each other", AllocatedBytes,
         [](int n) { return "(" + repeated("(", n) + "a" + repeated(")*", n) + ")"; }},
        {"stars and optional members in each other", NodeCalls,
         [](int n) { return "(" + repeated("(", n) + "a" + repeated(", b?)*", n) + ")"; }},
    };
    for (const auto& c : kCases) {
        expectLinear(
            c.name,
            [&c](int n) {
                auto root = std::make_shared<Element>("r");
                for (int i = 0; i < 20; ++i) root->addChild(new CountingElement("a"));
                root->addChild(new CountingElement("c"));
                const auto dtd = std::shared_ptr<Dtd>(readDtd(
                    "<!ELEMENT r (" + c.model(n) + ", c)><!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ELEMENT c EMPTY>"));
                return [root, dtd] { EXPECT_TRUE(dtd->validate(root.get())); };
            },
            c.kind, 200);
    }
}

TEST(ModelGrowthTest, ValidatingIsLinearInTheDepth) {
    // Each level has an "l" of the caller's, in front of the next level and after it.
    const struct {
        const char* name;
        const char* model;
    } kCases[] = {
        {"one way", "(l, a?, l)"},
        {"alternatives that begin alike", "((l, a, m) | (l, a, a) | (l, a?, l))"},
        {"alternatives that end alike", "((m?, l, a?, m) | (l?, l, a?, m) | (l?, a?, l))"},
        {"a choice in a repetition", "(l | a)*"},
        {"a mixed model", "(#PCDATA | l | a)*"},
    };
    for (const auto& c : kCases) {
        const auto dtd = readDtd(std::string("<!ELEMENT a ") + c.model +
                                 "><!ATTLIST a k CDATA #IMPLIED><!ELEMENT l EMPTY><!ELEMENT m EMPTY>");
        expectLinear(
            c.name,
            [&dtd](int n) {
                auto root = std::make_shared<Element>("a");
                Element* inner = root.get();
                for (int i = 1; i < n; ++i) {
                    inner->addChild(new CountingElement("l"));
                    auto* next = new Element("a");
                    inner->addChild(next);
                    inner->addChild(new CountingElement("l"));
                    inner = next;
                }
                inner->addChild(new CountingElement("l"));
                inner->addChild(new CountingElement("l"));
                return [root, &dtd] { EXPECT_TRUE(dtd->validate(root.get())); };
            },
            NodeCalls, 250);
    }
}

TEST(ModelGrowthTest, AcceptingAtOnceIsLinear) {
    const std::string leaves = "<!ELEMENT a EMPTY><!ELEMENT b EMPTY>";
    const struct {
        const char* name;
        std::function<std::string(int)> declarations;
        std::function<std::string(int)> tree;
    } kCases[] = {
        {"elements that get their links with the next around them",
         [](int) { return "<!ELEMENT r (x)><!ELEMENT x (r | y)><!ELEMENT y ANY><!ATTLIST r k CDATA #IMPLIED>"; },
         [](int n) { return repeated("<r><x>", n) + "<y/>" + repeated("</x></r>", n); }},
        {"elements that get their links with the outermost",
         [](int) { return "<!ELEMENT r (x)><!ATTLIST r k CDATA #IMPLIED><!ELEMENT x (x | y)><!ELEMENT y ANY>"; },
         [](int n) { return "<r>" + repeated("<x>", n) + "<y/>" + repeated("</x>", n) + "</r>"; }},
        {"what is below ANY", [](int) { return "<!ELEMENT r ANY><!ATTLIST r k CDATA #IMPLIED>"; },
         [](int n) { return "<r>" + repeated("<x>text<y/>", n) + repeated("</x>", n) + "</r>"; }},
        {"the length of a sequence",
         [&](int n) {
             return leaves + "<!ELEMENT r (b?" + pieces(n, [](int i) { return numbered(", e", i) + "?"; }) + ", a*)>";
         },
         [](int) { return "<r><a/><a/></r>"; }},
        {"the width of a choice",
         [&](int n) {
             return leaves + "<!ELEMENT r (b" + pieces(n, [](int i) { return numbered("|e", i); }) + "|a)*>";
         },
         [](int) { return "<r><a/><a/></r>"; }},
        {"the width of a mixed model",
         [&](int n) {
             return leaves + "<!ELEMENT r (#PCDATA" + pieces(n, [](int i) { return numbered("|e", i); }) + "|a)*>";
         },
         [](int) { return "<r><a/><a/></r>"; }},
        {"choices in each other",
         [&](int n) { return leaves + "<!ELEMENT r " + repeated("(", n + 1) + "a" + repeated(" | b)", n) + "*)>"; },
         [](int) { return "<r><a/><b/></r>"; }},
        {"sequences in each other",
         [&](int n) { return leaves + "<!ELEMENT r " + repeated("(", n) + "a" + repeated(", b?)*", n) + ">"; },
         [](int) { return "<r><a/><b/><a/></r>"; }},
        {"groups that open at the end",
         [&](int n) { return leaves + "<!ELEMENT r " + repeated("(a?, (b | ", n) + "a" + repeated("))?", n) + ">"; },
         [](int) { return "<r><b/></r>"; }},
    };
    for (const auto& c : kCases) {
        expectLinear(
            c.name,
            [&c](int n) {
                const auto dtd = std::shared_ptr<Dtd>(readDtd(c.declarations(n)));
                const auto root = std::shared_ptr<Element>(readElement(c.tree(n)));
                return [root, dtd] { EXPECT_TRUE(FastValidation::accepts(*dtd, *root)); };
            },
            AllocatedBytes);
    }
}

}  // namespace
}  // namespace Xml::test
