// What several threads may do at the same time. A test here proves little by passing; it is run under the thread sanitizer, which
// reports every pair of accesses that nothing keeps apart.
#include "orvsys/Localization.h"
#include "orvsys/Uni16.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Xml::test {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 50;

// Runs the job in several threads that begin together; the job gets the number of its thread.
template <class Job>
void inThreads(Job job) {
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&waiting, &job, number] {
            --waiting;
            while (waiting > 0) std::this_thread::yield();
            job(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

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
