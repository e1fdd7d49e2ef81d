#include "xpath/Queries.h"

#include "orvsys/Localization.h"
#include "support/PathErrorKeys.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace Xml::test {

using OrvSys::Uni16String;

namespace {

// Leaves the query where the path `before` leads; that must lead somewhere.
void ask(XPath& query, const Uni16String& before) {
    if (!before.empty()) {
        EXPECT_GT(query.GetValues(before), 0u) << narrow(before);
    }
}

std::string outcome(XPath& query, bool found) {
    const std::string results = resultsOf(query);
    const std::string error = errorIn(query);
    if (found && error.empty()) return results;
    return results + (results.empty() ? "" : " ") + "|" + (found ? "" : " failed") + " " +
           (error.empty() ? "0" : error);
}

}  // namespace

Tree::Tree(const std::string& text) {
    Outcome read = readDocument(text);
    if (!read.ok) throw std::runtime_error("cannot read " + text + ": " + read.error);
    document_ = std::move(read.document);
}

Tree::~Tree() = default;

Element* Tree::root() const { return document_->getRoot(); }

Element* Tree::operator[](const std::string& i) const {
    if (root()->getAttributeValue("i") == i) return root();
    Element* found = root()->findElementByAttribute("i", i);
    if (found == nullptr) throw std::runtime_error("no element " + i);
    return found;
}

std::string shortOf(const Object* node) {
    if (node == nullptr) return "null";
    if (node->isDocument()) return "/";
    if (node->isDtd()) return "dtd";
    if (node->isCharData()) return "'" + node->toCharData()->data() + "'";
    if (node->isAttribute()) return "@" + node->toAttribute()->getName() + "=" + node->toAttribute()->getValue();
    const Attribute* i = node->toElement()->getAttribute("i");
    return i != nullptr ? i->getValue() : node->toElement()->getName();
}

std::string resultsOf(const XPath& query) {
    std::ostringstream text;
    for (unsigned i = 0; i < query.GetNrOfResults(); ++i) {
        const XPath::ResultItem& item = query.GetResult(i);
        if (i > 0) text << ' ';
        if (item.kind == 0) {
            text << shortOf(item.node);
            if (item.contextTag != -1) text << '#' << item.contextTag;
        } else if (item.kind == 1) {
            text << "str(" << narrow(item.string) << ")#" << item.contextTag;
        } else if (item.kind == 2) {
            text << item.number << '#' << item.contextTag;
        } else {
            text << (item.boolean ? "true#" : "false#") << item.contextTag;
        }
    }
    return text.str();
}

std::string errorIn(XPath& query) {
    const auto code = static_cast<std::size_t>(query.GetErrorCode());
    if (code >= std::size(kPathErrorKeys)) return "unknown code " + std::to_string(code);
    const std::string whole = narrow(query.GetErrorString());
    const std::string text =
        narrow(OrvSys::Localization::GetString(std::string("xpat/xerr/") + kPathErrorKeys[code], "XPath", {}));
    EXPECT_FALSE(text.empty());
    if (code == 0) {
        EXPECT_EQ(whole, text);
        return "";
    }
    std::string shown = std::to_string(code);
    if (whole == text) return shown;
    const std::string arrow = " --> ";
    if (whole.compare(0, text.size(), text) != 0 || whole.compare(text.size(), arrow.size(), arrow) != 0)
        return shown + " with another text: " + whole;
    const std::string path = whole.substr(text.size() + arrow.size());
    return shown + ":" + (path.empty() ? "" : " " + path);
}

std::string answer(Object* context, const Uni16String& path, const Uni16String& before) {
    XPath query(context);
    ask(query, before);
    const bool found = query.FindNodes(path);
    const std::string byFindNodes = outcome(query, found);

    XPath counted(context);
    ask(counted, before);
    const unsigned count = counted.GetValues(path);
    EXPECT_EQ(count, counted.GetNrOfResults());
    if (!found) {
        EXPECT_EQ(count, 0u);
    }
    // Behind a path that left an error FindNodes goes on from that error, GetValues from none.
    const std::string byGetValues = outcome(counted, found);
    if (before.empty()) {
        EXPECT_EQ(byFindNodes, byGetValues);
    }

    XPath valued(context);
    ask(valued, before);
    const Uni16String value = valued.GetValue(path, -1);
    EXPECT_EQ(resultsOf(valued), resultsOf(counted));
    if (count > 0) {
        EXPECT_EQ(narrow(value), narrow(counted.GetValue(0u, -1)));
    } else {
        EXPECT_EQ(narrow(value), "");
        EXPECT_EQ(valued.GetErrorCode(), counted.GetErrorCode());
    }
    return byGetValues;
}

std::string syntax(Object* context, const Uni16String& path, const Uni16String& before) {
    XPath query(context);
    ask(query, before);
    const std::string results = resultsOf(query);
    const bool ok = query.SyntaxOK(path);
    EXPECT_EQ(resultsOf(query), results);
    const std::string error = errorIn(query);
    if (ok && error.empty()) return "ok";
    return (ok ? "ok, but " : "failed ") + (error.empty() ? "0" : error);
}

void expectAnswer(Object* context, const PathCase& c) {
    SCOPED_TRACE(std::string(c.name) + ": " + narrow(c.before) + " " + narrow(c.path));
    EXPECT_EQ(answer(context, c.path, c.before), c.answer);
}

}  // namespace Xml::test
