// What is read without tokens before the root element, beside what is read by tokens: everything that shows must be the
// same.
#include "xml/reader/internal/FastProlog.h"

#include "models/Snapshot.h"
#include "stream/LendingSource.h"
#include "support/Dice.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/WithoutFastContent.h"
#include "xml/dom/Document.h"
#include "xml/reader/DocumentReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

TEST(FastPrologTest, TakesTheDeclarationsThatAreUsual) {
    const struct {
        std::string text;
        bool taken;
    } kCases[] = {
        {"<?xml version=\"1.0\"?>", true},
        {"<?xml version='1.0'?>", true},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", true},
        {"<?xml version='1.0' encoding=\"UTF-8\"?>", true},
        {"<?xml version=\"1.0\" encoding='UTF-8'?>", true},
        {"<?xml version=\"1.0\" encoding=\"utf-8\"?>", false},
        {"<?xml version=\"1.0\" standalone=\"yes\"?>", false},
        {"<?xml version=\"1.1\"?>", false},
        {"<?xml version=\"1.0'?>", false},
        {"<?xml version=\"1.0\" ?>", false},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"", false},
        {"<?xml version = \"1.0\"?>", false},
        {"<?xml\nversion=\"1.0\"?>", false},
        {" <?xml version=\"1.0\"?>", false},
        {"<?xml version=\"1.0\"? >", false},
        {"<?xml version=\"1.0\"?", false},
        {"<r/>", false},
        {"", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        StringInStream in(c.text);
        const StreamAccess::Session session(in);
        const std::size_t length = c.text.size();
        EXPECT_EQ(FastProlog::takeDeclaration(in), c.taken);
        EXPECT_EQ(StreamAccess::tell(in), c.taken ? static_cast<int>(length) : 0);
        EXPECT_EQ(StreamAccess::token(in), c.taken ? ">" : "");
    }
}

TEST(FastPrologTest, KnowsAnElementByItsFirstTwoBytes) {
    const struct {
        std::string text;
        bool known;
    } kCases[] = {{"<a>", true}, {"<_", true},  {"<:", true}, {"<", false}, {"< a", false},  {"<!--", false},
                  {"<?", false}, {"</", false}, {"a", false}, {"", false},  {" <a>", false}, {"<1>", false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        StringInStream in(c.text);
        const StreamAccess::Session session(in);
        StreamAccess::lend(in);
        EXPECT_EQ(FastProlog::isBeforeElement(in), c.known);
        EXPECT_EQ(StreamAccess::tell(in), 0);
        EXPECT_EQ(StreamAccess::token(in), c.known ? "<" : "");
    }
}

TEST(FastPrologTest, TakesNothingWhereContentIsReadByTokens) {
    const WithoutFastContent off;
    StringInStream in("<?xml version=\"1.0\"?>");
    const StreamAccess::Session session(in);
    EXPECT_FALSE(FastProlog::takeDeclaration(in));
    StringInStream element("<r/>");
    StreamAccess::lend(element);
    EXPECT_FALSE(FastProlog::isBeforeElement(element));
}

TEST(FastPrologTest, HasBytesLentOnce) {
    LendingSource in("<?xml version='1.0'?><r/>", 100);
    const StreamAccess::Session session(in);
    EXPECT_TRUE(FastProlog::takeDeclaration(in));
    EXPECT_TRUE(FastProlog::isBeforeElement(in));
    EXPECT_EQ(in.lent, 1);
    EXPECT_EQ(in.takenBack, 0);
    BareInStream bare("<?xml version='1.0'?>");
    EXPECT_FALSE(FastProlog::takeDeclaration(bare));
    EXPECT_EQ(StreamAccess::lend(bare).loan, Window::Loan::Never);
}

// --- Beside tokens ---

std::string shows(InStream& in) { return stateOf(in) + " [" + StreamAccess::token(in) + "]\n"; }

// The steps of a reading, as far as they are asked for, what they leave, and the tokens after them.
std::string stepsIn(InStream& in, int steps) {
    const MessageCollector diagnostics;
    DocumentReader reader;
    std::string text;
    bool ok = true;
    const auto step = [&](bool (DocumentReader::*run)(InStream&)) {
        ok = ok && (reader.*run)(in);
        text += (ok ? "true " : "false ") + reader.getErrorMessage() + " " + shows(in);
    };
    if (steps == 0) {
        step(&DocumentReader::parse);
    } else {
        step(&DocumentReader::parseProlog);
        if (steps > 1) step(&DocumentReader::parseElement);
        if (steps > 2) step(&DocumentReader::parseMisc);
    }
    text += linksOf(reader.getDocument(), nullptr) + "\n";
    std::string token;
    for (int i = 0; i < 3; ++i) text += (in.getToken(token) ? token : "none") + " " + shows(in);
    return text;
}

void expectReadAlike(const std::string& text) {
    const auto compare = [&](const std::string& name, const std::function<std::unique_ptr<InStream>()>& make) {
        for (int steps = 0; steps < 4; ++steps) {
            const auto outcome = [&] {
                const std::unique_ptr<InStream> in = make();
                const std::string steppedThrough = stepsIn(*in, steps);
                return steppedThrough + placesOf(*in, text.size());
            };
            const std::string fast = outcome();
            const WithoutFastContent off;
            ASSERT_EQ(fast, outcome()) << name << ", " << steps << " steps over " << ::testing::PrintToString(text);
        }
    };
    compare("string", [&] { return std::make_unique<StringInStream>(text); });
    for (const std::size_t piece : {1, 2, 7, 20, 22, 64}) {
        compare("pieces of " + std::to_string(piece),
                [&] { return std::make_unique<LendingSource>(text, piece, Window::Loan::ForNow, false); });
    }
    std::optional<std::istringstream> stream;
    compare("standard stream", [&] {
        stream.emplace(text);
        return std::make_unique<FileInStream>(&*stream);
    });
}

class Maker : public Dice {
public:
    using Dice::Dice;

    std::string prolog() {
        static const char* const kDeclarations[] = {"<?xml version=\"1.0\"?>",
                                                    "<?xml version='1.0' encoding='UTF-8'?>",
                                                    "<?xml version=\"1.0\" encoding=\"latin\"?>",
                                                    "<?xml version=\"1.0\"\r\n?>",
                                                    "<?xml version='1.0' encoding='UTF-8' standalone='no'?>",
                                                    "",
                                                    "<?php x?>",
                                                    "\r<?xml version=\"1.0\"?>"};
        static const char* const kMisc[] = {"<!-- c -->", "<?p i?>", "<!--\r\n-->", "", "", "<!DOCTYPE r [<!--c-->]>"};
        static const char* const kRoots[] = {"<r/>", "<r></r>", "<r>t</r>", "<r\r\n/>", "<\r\nr/>", "< r/>", "<1/>",
                                             "<r",   "<",       "t",        "</r>",     "<!x>",     "<?",    ""};
        std::string text = any(kDeclarations) + white();
        while (chance(30)) text += any(kMisc) + white();
        text += any(kRoots) + white();
        while (chance(30)) text += any(kMisc) + white();
        return chance(20) ? text.substr(0, below(text.size() + 1)) : text + (chance(20) ? "<s/> t" : "");
    }

private:
    std::string white() {
        static const char* const kWhite[] = {"", "", "\n", "\r\n", " ", "\r", "\r\r", "\n\r", "\t \r\n\r\n"};
        return any(kWhite);
    }
};

TEST(FastPrologTest, ReadsRandomPrologsAsTheTokensDo) {
    for (unsigned seed = 1; seed <= static_cast<unsigned>(rounds(4'000)); ++seed) {
        expectReadAlike(Maker(seed).prolog());
        if (HasFailure()) return;
    }
}

TEST(FastPrologTest, ReadsEveryPrefixAsTheTokensDo) {
    const std::string whole = "<?xml version=\"1.0\" encoding='UTF-8'?>\r\n<!-- c -->\r\n<r a='1'>text</r>\r\n<?p?> ";
    for (std::size_t length = 0; length <= whole.size(); ++length) expectReadAlike(whole.substr(0, length));
}

}  // namespace
}  // namespace Xml::test
