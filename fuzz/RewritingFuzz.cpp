// Rewriting: a document is edited and written, again and again, with the RW optimisation on and by one open stream that
// goes back to its start. Up to where the stream stands then, its bytes must be those that a copy of the document
// writes.
//
// By rule a writer passes over what has no mark and stands where it was written last. So what leaves no mark is
// followed by a touch (Attribute::setValue, the non-const data()), a node that was written is put back as a copy, and
// children are touched when their parent's layout changes: with text beside them they stand in the line, without on
// lines of their own.
//
// Input: a byte chooses an operation, those after it what it works on.
#include "dom/Settings.h"
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

constexpr std::size_t kMostNodes = 200;

const char* const kNames[] = {"a", "b", "c", "longer", "a1", "x:y"};
const char* const kTexts[] = {"", "t", "text", "a<b", "one\ntwo", "\n", "a text that is longer"};

void collectElements(Element* element, std::vector<Element*>& elements) {
    elements.push_back(element);
    for (int i = 0; i < element->getChildCount(); ++i) {
        if (element->getChild(i)->isElement()) collectElements(element->getChild(i)->toElement(), elements);
    }
}

bool isMixed(const Element& element) {
    for (int i = 0; i < element.getChildCount(); ++i) {
        if (element.getChild(i)->isCharData()) return true;
    }
    return false;
}

class Editor {
public:
    Editor(Decisions decisions, bool withDtd)
        : program(decisions), document(new Element("r"), withDtd ? new Dtd("r") : nullptr), out(&stream) {}

    void run() {
        while (!program.empty()) {
            if (program.below(5) == 0) {
                write();
            } else {
                edit();
            }
        }
        write();
    }

private:
    std::vector<Element*> elements() {
        std::vector<Element*> all;
        collectElements(document.getRoot(), all);
        return all;
    }

    Object* someChild(Element& element) {
        if (element.getChildCount() == 0) return nullptr;
        return element.getChild(static_cast<int>(program.below(static_cast<std::size_t>(element.getChildCount()))));
    }

    void edit() {
        const std::vector<Element*> all = elements();
        Element& element = *all[program.below(all.size())];
        const bool wasMixed = isMixed(element);
        edit(element, all.size() < kMostNodes);
        if (isMixed(element) == wasMixed) return;
        for (int i = 0; i < element.getChildCount(); ++i) element.getChild(i)->touch();
    }

    void edit(Element& element, bool mayGrow) {
        const std::size_t operation = program.below(17);
        const std::string name = kNames[program.below(std::size(kNames))];
        const std::string text = kTexts[program.below(std::size(kTexts))];
        Object* const child = someChild(element);
        switch (operation) {
        case 0: element.setName(name); break;
        case 1: element.setAttribute(name, text); break;
        case 2: element.removeAttribute(name); break;
        case 3:
            if (mayGrow) element.addElement(name, text);
            break;
        case 4:
            if (mayGrow) element.addChild(new Element(name));
            break;
        case 5:
            if (mayGrow) element.insertChild(child, new Element(name));
            break;
        case 6:
            if (mayGrow) element.insertChild(child, new CharData(DataHolder(text)));
            break;
        case 7:
            if (child != nullptr) taken.emplace_back(element.extractChild(child));
            break;
        case 8:
            if (mayGrow) putBack(element, child);
            break;
        case 9: element.killChildren(); break;
        case 10: element.setCharData(text); break;
        case 11:
            if (child != nullptr && child->isCharData()) child->toCharData()->setData(DataHolder(text));
            break;
        case 12:
            if (child != nullptr && child->isCharData()) {
                child->toCharData()->data() = text;
                child->touch();
            }
            break;
        case 13:
            if (Attribute* attribute = element.getAttribute(name)) {
                attribute->setValue(text);
                attribute->touch();
            }
            break;
        case 14: element.touch(); break;
        case 15:
            if (document.getDtd() != nullptr) document.getDtd()->addElementDecl(name);
            break;
        default:
            if (document.getDtd() != nullptr) document.getDtd()->addAttDecl(name, name, REQUIRED);
            break;
        }
    }

    // In front of `before`, at the end for null.
    void putBack(Element& element, const Object* before) {
        if (taken.empty()) return;
        std::unique_ptr<Object> node = std::move(taken.back());
        taken.pop_back();
        const bool wasWritten = NodeTestAccess::writeStart(*node) != -1;
        if (wasWritten) node.reset(node->clone());
        element.insertChild(before, node.release());
    }

    void write() {
        out.setPosition(0);
        {
            const test::RewriteSetting rewriting(true);
            document.toStream(out);
        }
        const std::string written = stream.str().substr(0, static_cast<std::size_t>(out.getPosition()));
        expectSame("a rewritten document reads as a fresh one", test::textOf(Document(document)), written);
    }

    Decisions program;
    Document document;
    std::vector<std::unique_ptr<Object>> taken;
    std::stringstream stream;
    FileOutStream out;
};

}  // namespace

const std::size_t kLongestInput = 800;

void check(const std::string& input) {
    Decisions program(input);
    const test::MessageCollector quiet;
    const bool withDtd = program.below(2) == 1;
    Editor(program, withDtd).run();
}

}  // namespace Xml::fuzz
