// What several threads may do at the same time. A test here proves little by passing; it is run under the thread
// sanitizer, which reports every pair of accesses that nothing keeps apart.
#include "dom/Settings.h"
#include "orvsys/Files.h"
#include "orvsys/Localization.h"
#include "orvsys/Uni16.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "threads/InThreads.h"
#include "xml/xml.h"
#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

const char kText[] =
    "<!DOCTYPE r [<!ELEMENT r (a | b)*><!ELEMENT a (#PCDATA)><!ELEMENT b EMPTY>"
    "<!ATTLIST a k CDATA 'default' l CDATA #IMPLIED><!ATTLIST b k CDATA #REQUIRED><!ENTITY e 'value'>]>"
    "<r><a l='1'>text &amp; &e;</a><b k='2'/><a>more</a><b k='3'/></r>";

TEST(ThreadsTest, DocumentsReadSeparatelyAreUsedInThreadsOfTheirOwn) {
    const std::string expected = [] {
        const Outcome outcome = readDocument(kText);
        return textOf(*outcome.document);
    }();
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            Outcome outcome = readDocument(kText, round % 2 == 0 ? Source::String : Source::Bare);
            Document& document = *outcome.document;
            int& failed = failures[static_cast<std::size_t>(number)];
            failed += !outcome.ok || !document.validate() || textOf(document) != expected;

            XPath query(&document);
            failed +=
                query.GetValues(u"//b[@k > 2]/preceding::a") != 2 || query.GetValue(u"//a", -1) != u"text & value";
            failed += query.GetValues(u"//nothing") != 0 || query.GetErrorString().empty();

            const Document copy(document);
            document.find("a")->setAttribute("k", "own");
            document.find("b")->getParent()->toElement()->addElement("a", "added");
            delete document.getRoot()->extractChild(0);
            failed += !document.validate() || textOf(document) == expected || textOf(copy) != expected;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

// What class a node is exactly of is found out when it is first asked for, here by all at once.
TEST(ThreadsTest, ATreeThatACallerBuiltIsCopiedForTheFirstTimeByAll) {
    class Own : public Element {
    public:
        Own() : Element("own") {}
        Own(const Own&) = default;
        Object* clone() const override { return new Own(*this); }
    };
    for (int round = 0; round < kRounds; ++round) {
        Element top("top");
        for (int i = 0; i < 10; ++i) {
            top.addElement("a", "text");
            top.addChild(new Own);
        }
        std::vector<int> failures(kThreads);
        inThreads([&](int number) {
            const Element copy(top);
            int& failed = failures[static_cast<std::size_t>(number)];
            for (int i = 0; i < copy.getChildCount(); ++i)
                failed += (dynamic_cast<const Own*>(copy.getChild(i)) != nullptr) != (i % 2 == 1);
            failed += dump(&copy) != dump(&top);
        });
        EXPECT_EQ(failures, std::vector<int>(kThreads));
    }
}

TEST(ThreadsTest, OneTreeIsLookedAtAndAskedAndCopiedByAll) {
    const Outcome outcome = readDocument(kText);
    ASSERT_TRUE(outcome.ok);
    Document& shared = *outcome.document;
    const Document& document = shared;
    const std::string tree = dump(document.getRoot());
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            int& failed = failures[static_cast<std::size_t>(number)];
            failed += dump(document.getRoot()) != tree;
            const Element* const a = document.find("a");
            failed += a->getAttributeValue("k") != "default" || a->getParent() != document.getRoot();
            DataHolder text;
            a->getChild(0)->toCharData()->getData(&text);
            failed += text != "text & value";

            XPath query(&shared);
            failed += query.GetValues(u"//a[. = 'text & value']/following-sibling::*") != 3;
            failed += query.GetValues(u"//@k/ancestor::*") != 4 || query.GetValues(u"//b/preceding::a") != 2;
            failed += dump(Document(document).getRoot()) != tree;

            const Element& root = *document.getRoot();
            const std::unique_ptr<Object> whole(document.clone());
            const std::unique_ptr<Object> part(root.clone());
            failed += dump(whole.get()) != tree || dump(part.get()) != tree;
            const Element* const last = root.getElementByAttribute("k", "3");
            failed += last != root.getChild(3) || root.findElementByAttribute("k", "default", 1) != root.getChild(2);
            std::vector<const Element*> found;
            root.findAllElements("b", found);
            failed += found != document.findAll("b") || found.size() != 2 || found.back() != last;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

// The strings of long texts are made when they are first asked for, here by all at once: there is one for all.
TEST(ThreadsTest, AllThatAskFirstForALongTextGetTheSameString) {
    constexpr int kTexts = 40;
    const auto longText = [](int i) { return "a text that no string holds without memory, " + std::to_string(i); };
    std::string text = "<r>";
    for (int i = 0; i < kTexts; ++i) text += "<a k='" + longText(i) + "'>" + longText(i) + "</a>";
    text += "</r>";
    for (int round = 0; round < kRounds; ++round) {
        const Outcome outcome = readDocument(text);
        ASSERT_TRUE(outcome.ok);
        const Element& root = *static_cast<const Document&>(*outcome.document).getRoot();
        std::array<std::vector<const DataHolder*>, kThreads> strings;
        inThreads([&](int number) {
            for (int i = 0; i < kTexts; ++i) {
                const int at = number % 2 == 0 ? i : kTexts - 1 - i;
                const Element& a = *root.getElement(at);
                const DataHolder& value = a.getAttribute(0)->getValue();
                const DataHolder& data = static_cast<const CharData*>(a.getChild(0))->data();
                if (value != longText(at) || data != longText(at)) return;  // which the lists show
                auto& mine = strings[static_cast<std::size_t>(number)];
                mine.insert(number % 2 == 0 ? mine.end() : mine.begin(), {&value, &data});
            }
        });
        ASSERT_EQ(strings[0].size(), 2U * kTexts);
        for (const auto& mine : strings) ASSERT_EQ(mine, strings[0]);
    }
}

// Parts of one tree lie in the same memory, which goes with the last of them.
TEST(ThreadsTest, PartsOfOneTreeAreUsedAndDestroyedInThreadsOfTheirOwn) {
    std::string text = "<r>";
    for (int i = 0; i < 3000; ++i) text += "<a k='a value of some length'><b/>text of some length<b/></a>";
    text += "</r>";
    for (int round = 0; round < 10; ++round) {
        Outcome outcome = readDocument(text);
        ASSERT_TRUE(outcome.ok);
        Element& root = *outcome.document->getRoot();
        std::array<std::vector<std::unique_ptr<Object>>, kThreads> parts;
        for (std::size_t i = 0; root.getChildCount() > 0; ++i)
            parts[i % kThreads].emplace_back(root.extractChild(root.getChildCount() - 1));
        if (round % 2 == 0) outcome.document.reset();
        std::vector<int> failures(kThreads);
        inThreads([&](int number) {
            const auto at = static_cast<std::size_t>(number);
            for (const auto& part : parts[at]) {
                Element& a = *part->toElement();
                failures[at] += a.getAttribute("k")->getValue() != "a value of some length";
                a.getChild(1)->toCharData()->setData("another text of some length");
                delete a.extractChild(0);
                failures[at] += a.toString() != "a k=\"a value of some length\"";
            }
            parts[at].clear();
        });
        EXPECT_EQ(failures, std::vector<int>(kThreads));
    }
}

TEST(ThreadsTest, FilesAreWrittenAndReadByThreadsOfTheirOwn) {
    const Outcome outcome = readDocument(kText);
    const std::string expected = textOf(*outcome.document);
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        const std::string path = scratchPath("threads-" + std::to_string(number));
        int& failed = failures[static_cast<std::size_t>(number)];
        const auto read = [&](InStream& in) {
            DocumentReader reader;
            failed += !reader.parse(in) || textOf(*reader.getDocument()) != expected;
        };
        for (int round = 0; round < kRounds; ++round) {
            const Outcome own = readDocument(kText);
            if (round % 2 == 0) {
                std::ofstream sink;
                FileOutStream out(path, &sink);
                own.document->toStream(out);
            } else {
                FileSpecOutStream out{OrvSys::FileSpec(path)};
                own.document->toStream(out);
            }
            failed += readFile(path) != expected;
            if (round % 4 < 2) {
                std::ifstream source;
                FileInStream in(path, &source);
                read(in);
            } else {
                FileSpecInStream in{OrvSys::FileSpec(path)};
                read(in);
            }
        }
        std::remove(path.c_str());
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(ThreadsTest, OneExternalSubsetIsReadByAll) {
    const std::string path = scratchPath("threads.dtd");
    writeFile(path, "<!ELEMENT r (#PCDATA)><!ATTLIST r k CDATA 'default'><!ENTITY e 'value'>");
    const std::string text = "<!DOCTYPE r SYSTEM '" + path + "'><r>&e;</r>";
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            const Outcome outcome = readDocument(text);
            const Element* const root = outcome.ok ? outcome.document->getRoot() : nullptr;
            failed += root == nullptr || root->getCharData() != "value" || root->getAttributeValue("k") != "default";
        }
    });
    std::remove(path.c_str());
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(ThreadsTest, EachReaderSaysWhatIsWrongWithItsOwnText) {
    const struct {
        const char* text;
        const char* error;
    } kCases[] = {
        {"<a>", "(line = 1, column = 3) Unexpected end of stream"},
        {"<a></b>", "(line = 1, column = 6) \"a\" expected"},
        {"<a>\r\n\r\n<1/></a>", "(line = 2, column = 2) not a name: 1"},
        {"<!DOCTYPE a [<!ELEMENT b EMPTY>]><a/>", "(line = 1, column = 37) Doc could not be validated"},
        {"<!DOCTYPE a [<!ELEMENT a (b,c|d)>]><a/>", "(line = 1, column = 30) unexpected \"|\""},
        {"<!DOCTYPE a SYSTEM '/no/such/file'><a/>", "(line = 1, column = 34) Could not open file: /no/such/file"},
    };
    std::vector<std::string> wrong(kThreads);
    inThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            for (const auto& c : kCases) {
                const std::string error = errorOf(c.text, round % 2 == 0 ? Source::String : Source::Bare);
                if (error != c.error) wrong[static_cast<std::size_t>(number)] = error;
            }
        }
    });
    EXPECT_EQ(wrong, std::vector<std::string>(kThreads));
}

TEST(ThreadsTest, TreesAndDocumentTypesAreMadeByHand) {
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        const std::string value = "value " + std::to_string(number);
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            Dtd base("r");
            base.addElementDecl("a");
            base.addAttDecl("a", "k", new AttStringType(DEFAULT, value));
            base.setEntity("e", value);
            auto* dtd = new Dtd("r");
            dtd->addElementDecl("r", "a", REP_ONE_OR_MORE);
            dtd->setEntity("e", "another value");
            dtd->merge(base, true);

            Document document(new Element("r"), dtd);
            Element& root = *document.getRoot();
            failed += document.validate();
            auto* a = new Element("a");
            a->addChild(new CharData(Entity("e")));
            root.addChild(a);
            root.addElement("a", "<" + value);
            root.getElement(1)->setAttribute("l", value);
            failed += document.validate();
            root.getElement(1)->removeAttribute("l");
            failed += !document.validate() || a->getCharData() != value || a->getAttributeValue("k") != value;
            failed += textOf(root) != "<r>\n\t<a>&e;</a>\n\t<a>&lt;" + value + "</a>\n</r>";
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(ThreadsTest, WhatHasNotChangedIsNotWrittenAgain) {
    const RewriteSetting rewrite(true);
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        int& failed = failures[static_cast<std::size_t>(number)];
        for (int round = 0; round < kRounds; ++round) {
            const Outcome outcome = readDocument(kText);
            const std::string all = textOf(*outcome.document);
            std::ostringstream sink(std::string(all.size(), '.'));
            FileOutStream out(&sink);
            outcome.document->toStream(out);
            failed += sink.str() != std::string(all.size(), '.') || out.getPosition() != static_cast<int>(all.size());

            // Now the root and the element are written, and nothing of the document type in front of them.
            outcome.document->find("b")->setAttribute("k", std::to_string(number));
            out.setPosition(0);
            outcome.document->toStream(out);
            const std::string changed = "<b k=\"" + std::to_string(number) + "\"/>";
            failed +=
                sink.str().find(changed) != all.find("<b k=\"2\"/>") || sink.str().find("ENTITY") != std::string::npos;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(ThreadsTest, ATreeIsHandedOnAndDestroyedByAnotherThread) {
    std::array<std::atomic<Document*>, kThreads> handed{};  // to each thread by the one before it
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        const auto own = static_cast<std::size_t>(number);
        std::atomic<Document*>& next = handed[(own + 1) % kThreads];
        for (int round = 0; round < kRounds; ++round) {
            Outcome outcome = readDocument(kText);
            outcome.document->getRoot()->getElement("a")->getCharData();
            while (next != nullptr) std::this_thread::yield();
            next = outcome.document.release();

            while (handed[own] == nullptr) std::this_thread::yield();
            const std::unique_ptr<Document> other(handed[own].exchange(nullptr));
            Element& a = *other->getRoot()->getElement("a");
            failures[own] += a.getCharData() != "text & value";
            a.setCharData("new");
            failures[own] += !other->validate() || XPath(other.get()).GetValue(u"//a", -1) != u"new";
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

TEST(ThreadsTest, LocalisedTextsAreReadWhileOthersAreInstalled) {
    std::vector<int> failures(kThreads);
    inThreads([&](int number) {
        const std::string key = "key " + std::to_string(number);
        for (int round = 0; round < kRounds; ++round) {
            OrvSys::Localization::SetString(key, "threads", u"text");
            failures[static_cast<std::size_t>(number)] +=
                OrvSys::Localization::GetString(key, "threads", u"") != u"text" ||
                OrvSys::Localization::GetString("xpat/xerr/NONE", "XPath", u"") == u"";
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace Xml::test
