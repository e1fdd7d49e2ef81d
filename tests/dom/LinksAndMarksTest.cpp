#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Entity.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/RepType.h"
#include "xml/dtd/SeqSpec.h"
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// A document with a Dtd, written once, so that everything is clean but the attributes:
//
//   r [x=1]
//     a [y=2]
//       'one'
//       b
//         'two'
//     'three'
//     c
//
// Everything in it links to the Dtd, the document itself included. What an operation does to links, parents, marks and
// records is listed by node: "label:" and what changed about it ("-", "D", "E", "C" the link, to nothing, to the
// document's Dtd, to another, to that of a copied document; "*" now marked; "." now clean; "^p" the parent; "@" where
// it was written). "+label(...)" is a node that was not there, "~label" one that is gone.
class Links {
public:
    struct State {
        std::string link;
        std::string parent;
        bool dirty;
        int start;
        int end;

        bool operator==(const State& other) const {
            return link == other.link && parent == other.parent && dirty == other.dirty && start == other.start &&
                   end == other.end;
        }
    };

    Links() {
        d = new Dtd("d");
        r = new Element("r");
        r->setAttribute("x", "1");
        a = new Element("a");
        a->setAttribute("y", "2");
        r->addChild(a);
        one = new CharData(DataHolder("one"));
        a->addChild(one);
        b = new Element("b");
        a->addChild(b);
        two = new CharData(DataHolder("two"));
        b->addChild(two);
        three = new CharData(DataHolder("three"));
        r->addChild(three);
        c = new Element("c");
        r->addChild(c);
        document = std::make_unique<Document>(r, d);
        document->setDtd(d);
        textOf(*document);
        labels = {{document.get(), "d"}, {d, "dtd"},         {r, "r"}, {a, "a"}, {one, "'one'"}, {b, "b"},
                  {two, "'two'"},        {three, "'three'"}, {c, "c"}};
        before = states();
    }

    // Loose nodes go before the Dtds that they may link to.
    ~Links() { loose.clear(); }

    // The node will be deleted: another one may come to stand at its address.
    void dies(const Object* node) { labels.erase(node); }

    // What has changed since the document was made.
    std::string changes() {
        const std::map<std::string, State> after = states();
        std::string text;
        auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " ") + part; };
        for (const std::string& label : order) {
            const State& now = after.at(label);
            auto found = before.find(label);
            if (found == before.end()) {
                add("+" + label + "(" + now.link + (now.dirty ? "*" : ".") + "^" + now.parent +
                    (now.start != -1 || now.end != -1 ? "@" : "") + ")");
            } else if (const State& was = found->second; !(was == now)) {
                std::string part = label + ":";
                if (now.link != was.link) part += now.link;
                if (now.dirty != was.dirty) part += now.dirty ? "*" : ".";
                if (now.parent != was.parent) part += "^" + now.parent;
                if (now.start != was.start || now.end != was.end) part += "@";
                add(part);
            }
        }
        for (const auto& [label, was] : before) {
            if (after.count(label) == 0) add("~" + label);
        }
        return text;
    }

    // The nodes that link to the document's Dtd, in document order.
    std::string linked() {
        const std::map<std::string, State> now = states();
        std::string text;
        for (const std::string& label : order) {
            if (now.at(label).link == "D") text += (text.empty() ? "" : " ") + label;
        }
        return text;
    }

    // Marks and records of all nodes.
    std::string marks() {
        const std::map<std::string, State> now = states();
        std::string text;
        for (const std::string& label : order) {
            const State& state = now.at(label);
            text +=
                label + (state.dirty ? "*" : ".") + std::to_string(state.start) + "-" + std::to_string(state.end) + " ";
        }
        return text;
    }

    Dtd other{"e"};
    std::vector<std::unique_ptr<Object>> loose;  // what was handed out
    std::unique_ptr<Dtd> dtdTaken;
    std::unique_ptr<Document> document;
    Dtd* d;
    Element* r;
    Element* a;
    CharData* one;
    Element* b;
    CharData* two;
    CharData* three;
    Element* c;

private:
    std::string linkOf(const Object& node) const {
        const Dtd* link = NodeTestAccess::dtd(node);
        if (link == nullptr) return "-";
        if (link == d) return "D";
        if (link == &other) return "E";
        for (const auto& each : loose) {
            if (each->isDocument() && each->toDocument()->getDtd() == link) return "C";
        }
        return "?";
    }

    std::string labelOf(const Object* node) const {
        if (node == nullptr) return "none";
        if (auto found = labels.find(node); found != labels.end()) return found->second;
        if (node->isElement()) return node->toElement()->getName();
        if (node->isCharData()) return "'" + node->toCharData()->data() + "'";
        if (node->isDocument()) return "d";
        return node->isDtd() ? "dtd" : "@" + node->toAttribute()->getName();
    }

    void visit(const Object* node, std::string label, std::map<std::string, State>& result) {
        while (result.count(label) > 0) label += "'";  // copies carry the names of what they copy
        names[node] = label;
        order.push_back(label);
        const Object* parent = node->getParent();
        result[label] = {linkOf(*node), names.count(parent) > 0 ? names[parent] : labelOf(parent),
                         NodeTestAccess::dirty(*node), NodeTestAccess::writeStart(*node),
                         NodeTestAccess::writeEnd(*node)};
        if (node->isDocument()) {
            if (const Dtd* owned = node->toDocument()->getDtd()) visit(owned, labelOf(owned), result);
            if (const Element* root = node->toDocument()->getRoot()) visit(root, labelOf(root), result);
        }
        if (!node->isElement()) return;
        const Element& element = *node->toElement();
        for (int i = 0; i < element.getAttributeCount(); ++i) {
            visit(element.getAttribute(i), names[node] + "@" + element.getAttribute(i)->getName(), result);
        }
        for (int i = 0; i < element.getChildCount(); ++i)
            visit(element.getChild(i), labelOf(element.getChild(i)), result);
    }

    std::map<std::string, State> states() {
        std::map<std::string, State> result;
        order.clear();
        names.clear();
        visit(document.get(), "d", result);
        for (const auto& node : loose) visit(node.get(), labelOf(node.get()), result);
        if (dtdTaken != nullptr) visit(dtdTaken.get(), "dtd", result);
        return result;
    }

    std::map<const Object*, std::string> labels;  // of the nodes that were there at first
    std::map<const Object*, std::string> names;   // of all nodes at the last look
    std::vector<std::string> order;
    std::map<std::string, State> before;
};

struct LinkCase {
    const char* name;
    std::function<void(Links&)> operate;
    const char* changes;
};

void check(const LinkCase& c) {
    SCOPED_TRACE(c.name);
    MessageCollector collector;
    Links links;
    c.operate(links);
    EXPECT_EQ(links.changes(), c.changes);
}

TEST(LinksAndMarksTest, ADocumentThatWasWrittenIsCleanButItsAttributesAreNot) {
    Links links;
    EXPECT_EQ(links.changes(), "");
    for (const Object* node : std::vector<const Object*>{links.document.get(), links.d, links.r, links.a, links.one,
                                                         links.b, links.two, links.three, links.c}) {
        EXPECT_FALSE(NodeTestAccess::dirty(*node));
        EXPECT_GE(NodeTestAccess::writeStart(*node), 0);
        EXPECT_GT(NodeTestAccess::writeEnd(*node), NodeTestAccess::writeStart(*node));
        EXPECT_EQ(NodeTestAccess::dtd(*node), node == links.d ? nullptr : links.d);
    }
    for (const Object* node : std::vector<const Object*>{links.r->getAttribute(0), links.a->getAttribute(0)}) {
        EXPECT_TRUE(NodeTestAccess::dirty(*node));
        EXPECT_EQ(NodeTestAccess::writeStart(*node), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(*node), -1);
        EXPECT_EQ(NodeTestAccess::dtd(*node), links.d);
    }
}

TEST(LinksAndMarksTest, OperationsOnChildrenMarkAndUnlinkTheWayUpAndPassTheLinkThatWasThere) {
    const LinkCase kCases[] = {
        {"addChild", [](Links& l) { l.b->addChild(new Element("n")); }, "d:-* r:-* a:-* b:-* +n(D*^b)"},
        {"addChild of a tree",
         [](Links& l) {
             auto* n = new Element("n", "new");
             n->setAttribute("k", "1");
             l.b->addChild(n);
         },
         "d:-* r:-* a:-* b:-* +n(D*^b) +n@k(D*^n) +'new'(D*^n)"},
        {"addChild twice: the second comes to an element without a link",
         [](Links& l) {
             l.b->addChild(new Element("n"));
             l.b->addChild(new Element("m"));
         },
         "d:-* r:-* a:-* b:-* +n(D*^b) +m(-*^b)"},
        {"addChild below an unlinked parent: what it brought is cleared",
         [](Links& l) {
             auto* n = new Element("n", "new");
             n->setDtd(&l.other);
             l.b->touch();
             l.b->addChild(n);
         },
         "d:-* r:-* a:-* b:-* +n(-*^b) +'new'(-*^n)"},
        {"addChild of a clean tree leaves it clean",
         [](Links& l) {
             auto* n = new Element("n", "new");
             textOf(*n);
             n->setDtd(&l.other);
             l.c->addChild(n);
         },
         "d:-* r:-* c:-* +n(D.^c@) +'new'(D.^n@)"},
        {"insertChild", [](Links& l) { l.b->insertChild(l.two, new Element("n")); }, "d:-* r:-* a:-* b:-* +n(D*^b)"},
        {"insertChild at the end", [](Links& l) { l.b->insertChild(nullptr, new Element("n")); },
         "d:-* r:-* a:-* b:-* +n(D*^b)"},
        {"insertChild of a clean tree",
         [](Links& l) {
             auto* n = new Element("n", "new");
             textOf(*n);
             l.c->insertChild(l.two, n);
         },
         "d:-* r:-* c:-* +n(D.^c@) +'new'(D.^n@)"},
        {"addElement", [](Links& l) { l.b->addElement("n", "new"); }, "d:-* r:-* a:-* b:-* +n(D*^b) +'new'(D*^n)"},
        {"extractChild by index", [](Links& l) { l.loose.emplace_back(l.r->extractChild(0)); },
         "d:-* r:-* a:-^none a@y:- 'one':- b:- 'two':-"},
        {"extractChild by pointer", [](Links& l) { l.loose.emplace_back(l.a->extractChild(l.b)); },
         "d:-* r:-* a:-* b:-^none 'two':-"},
        {"extractChild of a text", [](Links& l) { l.loose.emplace_back(l.b->extractChild(0)); },
         "d:-* r:-* a:-* b:-* 'two':-^none"},
        {"extractChild at -1", [](Links& l) { l.r->extractChild(-1); }, ""},
        {"extractChild at the count", [](Links& l) { l.r->extractChild(3); }, ""},
        {"extractChild of null", [](Links& l) { l.r->extractChild(static_cast<Object*>(nullptr)); }, ""},
        {"extractChild of a grandchild", [](Links& l) { l.r->extractChild(l.b); }, ""},
        {"killChildren", [](Links& l) { l.a->killChildren(); }, "d:-* r:-* a:-* ~'one' ~'two' ~b"},
        {"killChildren without any", [](Links& l) { l.c->killChildren(); }, "d:-* r:-* c:-*"},
        {"taken out and put back", [](Links& l) { l.c->addChild(l.a->extractChild(l.b)); }, "d:-* r:-* a:-* c:-* b:^c"},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, OperationsOnNamesAndAttributesMarkAndUnlinkTheWayUp) {
    const LinkCase kCases[] = {
        {"setName", [](Links& l) { l.b->setName("q"); }, "d:-* r:-* a:-* b:-*"},
        {"setName to the same", [](Links& l) { l.b->setName("b"); }, "d:-* r:-* a:-* b:-*"},
        {"setName refused", [](Links& l) { l.b->setName("9"); }, ""},
        {"setAttribute", [](Links& l) { l.a->setAttribute("k", "1"); }, "d:-* r:-* a:-* +a@k(D*^a)"},
        {"setAttribute of one that is there", [](Links& l) { l.a->setAttribute("y", "3"); }, "d:-* r:-* a:-*"},
        {"setAttribute twice: the second gets no link",
         [](Links& l) {
             l.a->setAttribute("k", "1");
             l.a->setAttribute("y", "2");
         },
         "d:-* r:-* a:-* +a@k(D*^a) a@y:-"},
        {"setAttribute with a bad name", [](Links& l) { l.a->setAttribute("1", "1"); }, "d:-* r:-* a:-* +a@1(D*^a)"},
        {"setAttribute with no name", [](Links& l) { l.a->setAttribute("", "1"); }, "d:-* r:-* a:-* +a@(D*^a)"},
        {"removeAttribute", [](Links& l) { l.a->removeAttribute("y"); }, "d:-* r:-* a:-* ~a@y"},
        {"removeAttribute by index", [](Links& l) { l.r->removeAttribute(0); }, "d:-* r:-* ~r@x"},
        {"removeAttribute of an absent one", [](Links& l) { l.a->removeAttribute("x"); }, ""},
        {"removeAttribute at -1", [](Links& l) { l.a->removeAttribute(-1); }, ""},
        {"removeAttribute at the count", [](Links& l) { l.a->removeAttribute(1); }, ""},
        {"Attribute::setValue", [](Links& l) { l.a->getAttribute("y")->setValue("3"); }, ""},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, OperationsOnTextMarkAndUnlinkTheWayUp) {
    const LinkCase kCases[] = {
        {"setData", [](Links& l) { l.two->setData(DataHolder("two")); }, "d:-* r:-* a:-* b:-* 'two':-*"},
        {"setData of an entity", [](Links& l) { l.two->setData(Entity("e")); }, "d:-* r:-* a:-* b:-* 'two':-*"},
        {"data()", [](Links& l) { l.two->data() = "changed"; }, ""},
        {"getData", [](Links& l) { l.two->getData(); }, ""},
        {"setCharData removes a text first: the new one gets no link",
         [](Links& l) {
             l.dies(l.one);
             l.a->setCharData("new");
         },
         "d:-* r:-* a:-* +'new'(-*^a) ~'one'"},
        {"setCharData without a text before: the new one gets the link", [](Links& l) { l.c->setCharData("new"); },
         "d:-* r:-* c:-* +'new'(D*^c)"},
        {"setElementCharData",
         [](Links& l) {
             l.dies(l.two);
             l.a->setElementCharData("b", "new");
         },
         "d:-* r:-* a:-* b:-* +'new'(-*^b) ~'two'"},
        {"setElementCharData of an absent one", [](Links& l) { l.r->setElementCharData("b", "new"); }, ""},
        {"findAndSetElementCharData", [](Links& l) { l.r->findAndSetElementCharData("c", "new"); },
         "d:-* r:-* c:-* +'new'(D*^c)"},
        {"findAndSetElementCharData of an absent one", [](Links& l) { l.r->findAndSetElementCharData("n", "new"); },
         ""},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, TouchSetDtdAndSetParentReachTheirOwnNodes) {
    const LinkCase kCases[] = {
        {"touch of a text", [](Links& l) { l.two->touch(); }, "d:-* r:-* a:-* b:-* 'two':-*"},
        {"touch of an element", [](Links& l) { l.a->touch(); }, "d:-* r:-* a:-*"},
        {"touch of an attribute", [](Links& l) { l.a->getAttribute("y")->touch(); }, "d:-* r:-* a:-* a@y:-"},
        {"touch of the document", [](Links& l) { l.document->touch(); }, "d:-*"},
        {"touch of the Dtd", [](Links& l) { l.d->touch(); }, "d:-* dtd:*"},
        {"a declaration in the Dtd", [](Links& l) { l.d->addElementDecl("r"); }, "d:-* dtd:*"},
        {"an attribute declaration in the Dtd", [](Links& l) { l.d->addAttDecl("r", "x", IMPLIED); }, "d:-* dtd:*"},
        {"an entity in the Dtd", [](Links& l) { l.d->setEntity("e", "x"); }, ""},
        {"a merge into the Dtd",
         [](Links& l) {
             l.other.addElementDecl("r");
             l.d->merge(l.other, true);
         },
         ""},
        {"setDtd of an element", [](Links& l) { l.a->setDtd(&l.other); }, "a:E a@y:E 'one':E b:E 'two':E"},
        {"setDtd of an element to nothing", [](Links& l) { l.b->setDtd(nullptr); }, "b:- 'two':-"},
        {"setDtd of a text", [](Links& l) { l.two->setDtd(&l.other); }, "'two':E"},
        {"setDtd of an attribute", [](Links& l) { l.a->getAttribute(0)->setDtd(nullptr); }, "a@y:-"},
        {"setDtd of the document reaches nothing below", [](Links& l) { l.document->setDtd(&l.other); }, "d:E"},
        {"setDtd of the Dtd", [](Links& l) { l.d->setDtd(&l.other); }, "dtd:E"},
        {"setDtd reaches the subtree also where the element had that link",
         [](Links& l) {
             l.two->touch();
             l.two->setDtd(&l.other);
             l.r->setDtd(nullptr);
             l.r->setDtd(l.d);
         },
         "d:-* r:* a:* b:* 'two':*"},
        {"setDtd to what the element links to already, below which something was cleared",
         [](Links& l) {
             l.b->touch();
             l.r->setDtd(l.d);
             l.b->setDtd(nullptr);
             l.r->setDtd(l.d);
         },
         "d:-* r:* a:* b:*"},
        {"setParent", [](Links& l) { l.b->setParent(l.c); }, "b:^c"},
        {"setParent, and the way up is another",
         [](Links& l) {
             l.b->setParent(l.c);
             l.two->touch();
         },
         "d:-* r:-* b:-*^c 'two':-* c:-*"},
        {"reading",
         [](Links& l) {
             l.r->toString();
             l.document->toString();
             l.r->findElement("b")->getCharData();
             l.r->getAttributeValue("none");
             l.document->find("c");
             dump(l.r);
         },
         ""},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, CopiesOfElementsLinkToNoDtdThoseOfAttributesAndTextsKeepTheirLink) {
    const LinkCase kCases[] = {
        {"clone of an element", [](Links& l) { l.loose.emplace_back(l.a->clone()); },
         "+a'(-*^none) +a'@y(D*^a') +'one''(D*^a') +b'(-*^a') +'two''(D*^b')"},
        {"copy construction of an element", [](Links& l) { l.loose.emplace_back(new Element(*l.a)); },
         "+a'(-*^none) +a'@y(D*^a') +'one''(D*^a') +b'(-*^a') +'two''(D*^b')"},
        {"clone of a text", [](Links& l) { l.loose.emplace_back(l.two->clone()); }, "+'two''(D*^none)"},
        {"clone of an attribute", [](Links& l) { l.loose.emplace_back(l.a->getAttribute(0)->clone()); },
         "+@y(D*^none)"},
        {"clone of an element that holds an attribute without a name",
         [](Links& l) {
             l.c->setAttribute("", "1");
             l.c->setAttribute("1", "1");
             l.loose.emplace_back(l.c->clone());
         },
         "d:-* r:-* c:-* +c@(D*^c) +c@1(-*^c) +c'(-*^none) +c'@(D*^none) +c'@1(-*^c')"},
        {"a clone put into the tree gets one link all over", [](Links& l) { l.c->addChild(l.b->clone()); },
         "d:-* r:-* c:-* +b'(D*^c) +'two''(D*^b')"},
        {"clone of the document: all links are to its own Dtd",
         [](Links& l) {
             l.document->setDtd(nullptr);
             l.loose.emplace_back(l.document->clone());
         },
         "d:- +d'(-*^none) +dtd'(-*^d') +r'(C*^d') +r'@x(C*^r') +a'(C*^r') +a'@y(C*^a') +'one''(C*^a') +b'(C*^a') "
         "+'two''(C*^b') +'three''(C*^r') +c'(C*^r')"},
        {"clone of a Dtd",
         [](Links& l) {
             l.d->setDtd(&l.other);
             l.loose.emplace_back(l.d->clone());
         },
         "dtd:E +dtd'(E*^none)"},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, TakingRootOrDtdOutOfADocumentClearsLinksAndMarksNothing) {
    const LinkCase kCases[] = {
        {"extractRoot", [](Links& l) { l.loose.emplace_back(l.document->extractRoot()); },
         "r:-^none r@x:- a:- a@y:- 'one':- b:- 'two':- 'three':- c:-"},
        {"extractDtd", [](Links& l) { l.dtdTaken.reset(l.document->extractDtd()); },
         "d:- r:- r@x:- a:- a@y:- 'one':- b:- 'two':- 'three':- c:- dtd:^none"},
        {"extractDtd of one that has a link of its own",
         [](Links& l) {
             l.d->setDtd(&l.other);
             l.dtdTaken.reset(l.document->extractDtd());
             EXPECT_EQ(NodeTestAccess::dtd(*l.dtdTaken), nullptr);
         },
         "d:- r:- r@x:- a:- a@y:- 'one':- b:- 'two':- 'three':- c:- dtd:^none"},
        {"extractDtd where there is none any more: nothing changes",
         [](Links& l) {
             l.dtdTaken.reset(l.document->extractDtd());
             l.document->setDtd(&l.other);
             l.r->setDtd(&l.other);
             EXPECT_EQ(l.document->extractDtd(), nullptr);
         },
         "d:E r:E r@x:E a:E a@y:E 'one':E b:E 'two':E 'three':E c:E dtd:^none"},
        {"extractRoot where there is none any more: nothing changes",
         [](Links& l) {
             l.loose.emplace_back(l.document->extractRoot());
             EXPECT_EQ(l.document->extractRoot(), nullptr);
         },
         "r:-^none r@x:- a:- a@y:- 'one':- b:- 'two':- 'three':- c:-"},
        {"extractDtd without a root",
         [](Links& l) {
             l.loose.emplace_back(l.document->extractRoot());
             l.dtdTaken.reset(l.document->extractDtd());
         },
         "d:- r:-^none r@x:- a:- a@y:- 'one':- b:- 'two':- 'three':- c:- dtd:^none"},
    };
    for (const auto& c : kCases) check(c);
}

TEST(LinksAndMarksTest, ANewDocumentLinksItsRootsTreeAndMarksNothing) {
    const Dtd other("e");
    for (bool withDtd : {false, true}) {
        SCOPED_TRACE(withDtd);
        auto* root = new Element("r", "text");
        root->setAttribute("x", "1");
        root->setDtd(&other);
        textOf(*root);
        auto* dtd = withDtd ? new Dtd("d") : nullptr;
        if (dtd != nullptr) textOf(*dtd);
        const Document document(root, dtd);
        EXPECT_EQ(NodeTestAccess::dtd(document), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(document));
        for (const Object* node :
             std::vector<const Object*>{root, root->getAttribute(0), static_cast<const Object*>(root->getChild(0))}) {
            EXPECT_EQ(NodeTestAccess::dtd(*node), dtd);
        }
        EXPECT_FALSE(NodeTestAccess::dirty(*root));
        EXPECT_FALSE(NodeTestAccess::dirty(*root->getChild(0)));
        EXPECT_EQ(NodeTestAccess::writeStart(*root), 0);
        if (dtd != nullptr) {
            EXPECT_EQ(NodeTestAccess::dtd(*dtd), nullptr);
            EXPECT_FALSE(NodeTestAccess::dirty(*dtd));
        }
    }
}

TEST(LinksAndMarksTest, WritingCleansWhatIsWrittenByToStreamAndRecordsIt) {
    const LinkCase kCases[] = {
        {"a text", [](Links& l) { textOf(*l.two); }, "'two':@"},
        {"an element", [](Links& l) { textOf(*l.b); }, "b:@ 'two':@"},
        {"an element touched before: its ancestors stay marked",
         [](Links& l) {
             l.two->touch();
             textOf(*l.b);
         },
         "d:-* r:-* a:-* b:-@ 'two':-@"},
        {"the whole document touched before",
         [](Links& l) {
             l.two->touch();
             textOf(*l.document);
         },
         "d:- r:- a:- b:- 'two':-"},
        {"the document with new nodes in it",
         [](Links& l) {
             l.c->setAttribute("k", "1");
             l.c->addChild(new Element("n"));
             textOf(*l.document);
         },
         "d:-@ r:-@ c:-@ +c@k(D*^c) +n(-.^c@)"},
        {"a new Dtd declaration",
         [](Links& l) {
             l.d->addElementDecl("r");
             textOf(*l.document);
         },
         "d:-@ dtd:@ r:@ a:@ 'one':@ b:@ 'two':@ 'three':@ c:@"},
        {"an attribute by itself", [](Links& l) { textOf(*l.a->getAttribute(0)); }, "a@y:.@"},
    };
    for (const auto& c : kCases) check(c);
}

// --- Validation ---

struct ValidateCase {
    const char* name;
    std::function<void(Links&)> prepare;
    bool valid;
    const char* linked;
};

// r holds text, a and c; a holds what is given; b holds text; c nothing.
void declare(Dtd& dtd, const char* childOfA) {
    auto* modelOfR = new MixedSpec(&dtd);
    modelOfR->addName("a");
    modelOfR->addName("c");
    dtd.addElementDecl("r", modelOfR);
    auto* modelOfA = new MixedSpec(&dtd);
    modelOfA->addName(childOfA);
    dtd.addElementDecl("a", modelOfA);
    dtd.addElementDecl("b");
    dtd.addElementDecl("c", new EmptySpec(&dtd));
}

TEST(LinksAndMarksTest, ValidationLinksWhatItFindsValidAndMarksNothing) {
    const ValidateCase kCases[] = {
        {"an undeclared root", [](Links&) {}, false, ""},
        {"everything fits and all lists are there",
         [](Links& l) {
             declare(*l.d, "b");
             l.d->addAttDecl("a", "y", REQUIRED);
             l.d->addAttDecl("r", "x", IMPLIED);
         },
         true, "d r r@x a a@y 'one' b 'two' 'three' c"},
        {"a root with an attribute and without a list, below which all is linked by then",
         [](Links& l) {
             declare(*l.d, "b");
             l.d->addAttDecl("a", "y", REQUIRED);
         },
         false, "a a@y 'one' b 'two' 'three' c"},
        {"a root without attributes and without a list is not handed the Dtd",
         [](Links& l) {
             l.r->removeAttribute("x");
             declare(*l.d, "b");
             l.d->addAttDecl("a", "y", REQUIRED);
         },
         true, "d a a@y 'one' b 'two' 'three' c"},
        {"what was linked before the failure stays linked",
         [](Links& l) {
             declare(*l.d, "none");
             l.d->addAttDecl("r", "x", IMPLIED);
         },
         false, "'one'"},
        {"a missing attribute is noticed after the content",
         [](Links& l) {
             declare(*l.d, "b");
             l.d->addAttDecl("a", "y", IMPLIED);
             l.d->addAttDecl("a", "z", REQUIRED);
         },
         false, "'one' b 'two'"},
        {"below a model that looks at nothing only the list counts",
         [](Links& l) {
             l.d->addElementDecl("r", new AnySpec(l.d));
             l.d->addAttDecl("r", "x", IMPLIED);
         },
         true, "d r r@x a a@y 'one' b 'two' 'three' c"},
        {"below a model that looks at nothing, without a list, nothing is linked",
         [](Links& l) {
             l.r->removeAttribute("x");
             l.d->addElementDecl("r", new AnySpec(l.d));
         },
         true, "d"},
        {"children models link no element without a list, only the texts that mixed models below meet",
         [](Links& l) {
             l.r->removeAttribute("x");
             delete l.r->extractChild(l.three);
             delete l.a->extractChild(l.one);
             l.a->removeAttribute("y");
             auto* sequence = new SeqSpec(l.d);
             sequence->add("a", REP_ONCE);
             sequence->add("c", REP_OPTIONAL);
             l.d->addElementDecl("r", sequence, REP_ONCE);
             l.d->addElementDecl("a", "b", REP_ZERO_OR_MORE);
             l.d->addElementDecl("b");
             l.d->addElementDecl("c", new EmptySpec(l.d));
         },
         true, "d 'two'"},
        {"an attribute list without a declaration for each element",
         [](Links& l) {
             l.d->addElementDecl("r", new AnySpec(l.d));
             l.d->addAttDecl("a", "y", REQUIRED);
         },
         false, ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Links links;
        c.prepare(links);
        links.r->setDtd(nullptr);
        links.document->setDtd(nullptr);
        textOf(*links.document);
        const std::string marks = links.marks();
        MessageCollector collector;
        EXPECT_EQ(links.document->validate(), c.valid);
        EXPECT_EQ(links.linked(), c.linked);
        EXPECT_EQ(links.marks(), marks);
        EXPECT_TRUE(collector.texts().empty());

        // A second time it finds the same.
        EXPECT_EQ(links.document->validate(), c.valid);
        EXPECT_EQ(links.linked(), c.linked);
    }
}

}  // namespace
}  // namespace Xml::test
