#include "xml/standard/internal/ModelText.h"

#include "standard/Models.h"
#include "support/Messages.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/internal/ModelBuilder.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

TEST(ModelTextTest, IsReadAsTheSameModel) {
    for (const char* const text : {"EMPTY", "ANY", "(#PCDATA)", "(#PCDATA|a|b)*", "(a)", "(a)?", "(a?)", "(a,b)+",
                                   "(a|b)*", "((a,b)?|c+)*", "(((a)))", "((a|b),(c|(d,e)))", "(a,(b),c)"}) {
        SCOPED_TRACE(text);
        Dtd dtd("r");
        const std::unique_ptr<ContentSpec> model = makeModel(text, dtd);
        std::string written = modelText(*model);
        std::string compact;
        for (const char c : written) {
            if (c != ' ') compact += c;
        }
        Dtd other("r");
        EXPECT_EQ(normalModel(*makeModel(compact, other)), normalModel(*model)) << written;
    }
}

// A group without enough in it is nothing that can be read, and no diagnostic.
TEST(ModelTextTest, WhatIsNoModelIsNoDiagnostic) {
    const MessageCollector messages;
    Dtd dtd("r");
    auto choice = std::make_unique<ChoiceSpec>(&dtd);
    const ChildrenSpec model(&dtd, choice.release(), REP_ZERO_OR_MORE);
    EXPECT_EQ(modelText(model), "()*");
    EXPECT_TRUE(messages.texts().empty());
}

}  // namespace
}  // namespace Xml::test
