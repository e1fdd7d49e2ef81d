#include "easy/RandomTrees.h"

#include "support/Trees.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Instruction.h"
#include "xml/standard/Read.h"
#include <stdexcept>

namespace Xml::test {

namespace {

const char* const kNames[] = {"a", "b", "c", "p:a", "p:d"};
const char* const kKeys[] = {"k", "m", "n", "z"};
const char* const kTexts[] = {"x", "1", "2 3", "a &lt; b", "&amp;", "long enough for no short string at all", "'q'"};
const char* const kPlain[] = {"", "x", "1", "<&>", "'\"", "\xC3\xB6", "&amp;"};

std::string randomTag(Dice& dice) {
    std::string tag = dice.any(kNames);
    const std::size_t first = dice.below(4);
    const std::size_t last = dice.below(4);
    // Not in the order of the names.
    for (std::size_t i = first; i-- > last;) tag += std::string(" ") + kKeys[i] + "=\"" + dice.any(kTexts) + "\"";
    return tag;
}

std::string randomElement(Dice& dice, int depth, bool isStandard) {
    std::string text = randomTag(dice);
    const std::string name = text.substr(0, text.find(' '));
    text = "<" + text + ">";
    const std::size_t count = depth > 0 ? dice.below(5) : 0;
    for (std::size_t i = 0; i < count; ++i) {
        switch (dice.below(isStandard ? 6 : 4)) {
        case 0: text += dice.any(kTexts); break;
        case 1:
        case 2: text += randomElement(dice, depth - 1, isStandard); break;
        case 3: text += "<!--c-->"; break;
        case 4: text += "<?t c?>"; break;
        default: text += "<![CDATA[" + dice.any(kPlain) + "]]>"; break;
        }
    }
    return text + "</" + name + ">";
}

std::unique_ptr<Element> randomByHand(Dice& dice, int depth) {
    auto element = std::make_unique<Element>(dice.any(kNames));
    for (std::size_t i = dice.below(4); i-- > 0;) element->setAttribute(dice.any(kKeys), dice.any(kPlain));
    for (std::size_t i = depth > 0 ? dice.below(6) : 0; i-- > 0;) {
        switch (dice.below(7)) {
        case 0:
        case 1: element->addChild(randomByHand(dice, depth - 1).release()); break;
        case 2: element->addChild(new Comment("c")); break;
        case 3: element->addChild(new Instruction("t", "c")); break;
        case 4: element->addChild(new CDataSection(dice.any(kPlain))); break;
        default: element->addChild(new CharData(dice.any(kPlain))); break;
        }
    }
    return element;
}

constexpr int kDepth = 4;

std::string inRoot(const std::string& content) { return "<r xmlns:p='urn:p'>" + content + "</r>"; }

}  // namespace

std::string randomText(Dice& dice) { return inRoot(randomElement(dice, kDepth, false)); }

std::string randomStandardText(Dice& dice) { return inRoot(randomElement(dice, kDepth, true)); }

std::vector<std::unique_ptr<Document>> randomTrees(Dice& dice) {
    std::vector<std::unique_ptr<Document>> trees;
    const std::string text = randomText(dice);
    Outcome outcome = readDocument(text);
    if (!outcome.ok) throw std::logic_error(outcome.error + " " + text);
    trees.push_back(std::move(outcome.document));
    ReadResult result = readText(randomStandardText(dice), everything());
    if (!result) throw std::logic_error(result.message());
    trees.push_back(result.take());
    trees.push_back(std::make_unique<Document>(randomByHand(dice, kDepth).release(), nullptr));
    return trees;
}

std::vector<Element*> elementsOf(Element& top) {
    std::vector<Element*> all = {&top};
    for (int i = 0; i < top.getChildCount(); ++i) {
        if (!top.getChild(i)->isElement()) continue;
        for (Element* below : elementsOf(*top.getChild(i)->toElement())) all.push_back(below);
    }
    return all;
}

Element& anyElement(Dice& dice, Document& document) {
    const std::vector<Element*> all = elementsOf(*document.getRoot());
    return *all[dice.below(all.size())];
}

}  // namespace Xml::test
