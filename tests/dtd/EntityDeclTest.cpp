// What a Dtd keeps of the entities and notations of XML 1.0.
#include "xml/dtd/EntityDecl.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Kind = EntityDecl::Kind;

EntityDecl internal(const std::string& text) { return {Kind::Internal, text, {}, {}, {}}; }
EntityDecl external(const std::string& systemId) { return {Kind::External, {}, "-//p//", systemId, {}}; }
EntityDecl unparsed(const std::string& systemId) { return {Kind::Unparsed, {}, {}, systemId, "gif"}; }

// What is known of each name, in order: "e=value" for a value, "e:text" for an internal entity, "e@file" and
// "e@file gif" for others, after them "%e" and the notations as "!n".
std::string known(const Dtd& dtd) {
    std::string result;
    for (const char* name : {"e", "f", "g", "h"}) {
        if (dtd.isEntityName(name)) result += std::string(name) + "=" + dtd.getEntityValue(name) + " ";
    }
    for (const auto& [name, entity] : dtd.getEntityDecls()) {
        result += name;
        result += entity.kind == Kind::Internal ? ":" + entity.text : "@" + entity.publicId + entity.systemId;
        result += entity.notation + " ";
    }
    for (const auto& [name, entity] : dtd.getParameterEntityDecls()) result += "%" + name + ":" + entity.text + " ";
    for (const auto& [name, notation] : dtd.getNotationDecls()) {
        result += "!" + name + "@" + notation.publicId + notation.systemId + " ";
    }
    return result;
}

// --- One Dtd ---

TEST(EntityDeclTest, TheFirstDeclarationOfANameCounts) {
    Dtd dtd("a");
    EXPECT_TRUE(dtd.addEntityDecl("e", internal("x")));
    EXPECT_FALSE(dtd.addEntityDecl("e", internal("y")));
    EXPECT_FALSE(dtd.addEntityDecl("e", external("y")));
    EXPECT_TRUE(dtd.addEntityDecl("f", unparsed("z")));
    EXPECT_FALSE(dtd.addEntityDecl("f", internal("y")));
    EXPECT_TRUE(dtd.addParameterEntityDecl("e", internal("p")));
    EXPECT_FALSE(dtd.addParameterEntityDecl("e", internal("y")));
    EXPECT_TRUE(dtd.addNotationDecl("e", {"", "n"}));
    EXPECT_FALSE(dtd.addNotationDecl("e", {"y", "y"}));
    EXPECT_EQ(known(dtd), "e=x e:x f@zgif %e:p !e@n ");
}

TEST(EntityDeclTest, OnlyInternalEntitiesHaveAValue) {
    MessageCollector messages;
    Dtd dtd("a");
    dtd.addEntityDecl("e", external("y"));
    EXPECT_FALSE(dtd.isEntityName("e"));
    EXPECT_EQ(dtd.getEntityValue("e"), "&e;");
    dtd.addEntityDecl("f", internal("<b/>"));
    EXPECT_TRUE(dtd.isEntityValue("<b/>"));
    EXPECT_EQ(dtd.getEntityName("<b/>"), "f");
}

TEST(EntityDeclTest, AValueThatWasSetStays) {
    Dtd dtd("a");
    dtd.setEntity("e", "set");
    EXPECT_FALSE(dtd.addEntityDecl("e", external("y")));
    EXPECT_TRUE(dtd.addEntityDecl("e", internal("&f;")));
    EXPECT_EQ(known(dtd), "e=set e:&f; ");
}

TEST(EntityDeclTest, AValueThatIsSetReplacesTheDeclaration) {
    Dtd dtd("a");
    dtd.addEntityDecl("e", internal("x"));
    dtd.addEntityDecl("f", external("y"));
    dtd.setEntity("e", "1");
    dtd.setEntity("f", "2");
    EXPECT_EQ(known(dtd), "e=1 f=2 ");
}

TEST(EntityDeclTest, WritingHasValuesAlone) {
    Dtd dtd("a");
    dtd.addEntityDecl("e", internal("x"));
    dtd.addEntityDecl("f", unparsed("y"));
    dtd.addParameterEntityDecl("g", internal("z"));
    dtd.addNotationDecl("gif", {"", "n"});
    EXPECT_EQ(written(dtd), "<!DOCTYPE a [\n<!ENTITY e \"x\">\n]>\n");
}

// --- Several ---

void fill(Dtd& dtd, const std::string& suffix) {
    dtd.addEntityDecl("e", internal("x" + suffix));
    dtd.addEntityDecl("f", unparsed("y" + suffix));
    dtd.setEntity("g", "v" + suffix);
    dtd.addParameterEntityDecl("e", internal("z" + suffix));
    dtd.addNotationDecl("gif", {"p", "n" + suffix});
}

TEST(EntityDeclTest, CopiesHaveAllOfThem) {
    auto dtd = std::make_unique<Dtd>("a");
    fill(*dtd, "1");
    const std::string before = known(*dtd);
    EXPECT_EQ(before, "e=x1 g=v1 e:x1 f@y1gif %e:z1 !gif@pn1 ");
    const std::unique_ptr<Object> copy(dtd->clone());
    dtd.reset();
    EXPECT_EQ(known(static_cast<Dtd&>(*copy)), before);
}

TEST(EntityDeclTest, MergingAddsOrReplaces) {
    Dtd other("b");
    fill(other, "2");
    {
        Dtd dtd("a");
        dtd.merge(other, false);
        EXPECT_EQ(known(dtd), known(other));
    }
    {
        Dtd dtd("a");
        fill(dtd, "1");
        const std::string before = known(dtd);
        dtd.merge(other, false);
        EXPECT_EQ(known(dtd), before);
        dtd.merge(other, true);
        EXPECT_EQ(known(dtd), known(other));
    }
}

// However it is declared, a name is one entity.
TEST(EntityDeclTest, MergingTakesAnEntityWholeOrNotAtAll) {
    Dtd other("b");
    other.addEntityDecl("e", external("2"));
    other.addEntityDecl("f", internal("2"));
    other.setEntity("g", "2");
    other.setEntity("h", "2");
    const auto filled = [] {
        auto dtd = std::make_unique<Dtd>("a");
        dtd->addEntityDecl("e", internal("1"));
        dtd->addEntityDecl("f", external("1"));
        dtd->addEntityDecl("g", external("1"));
        dtd->addEntityDecl("h", internal("1"));
        return dtd;
    };
    const auto kept = filled();
    kept->merge(other, false);
    EXPECT_EQ(known(*kept), known(*filled()));
    const auto replaced = filled();
    replaced->merge(other, true);
    EXPECT_EQ(known(*replaced), known(other));
}

}  // namespace
}  // namespace Xml::test
