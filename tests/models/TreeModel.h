#pragma once

#include "models/NaiveSink.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Object.h"
#include "xml/dtd/Dtd.h"
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

// What a Dtd says of default values and entities, for the model to look up by itself.
struct DtdFacts {
    std::map<std::pair<std::string, std::string>, std::string> defaults;  // element, attribute
    std::map<std::string, std::string> entities;
};
using FactsByDtd = std::map<const Dtd*, DtdFacts>;

// A node tree by the rules, without any thought for cost: maps, recursion, everything walked anew. Each node knows the
// library's node that it stands for, so that identities are compared and not only contents.
//
// Operations carry the names of the library's. Diagnostics that the library should issue are appended to `messages`.
class ModelNode {
public:
    enum class Kind { Text, Comment, Element, Document };

    struct Attribute {
        std::string value;
        const Dtd* link = nullptr;
        bool hasParent = true;
        const Xml::Attribute* real = nullptr;
    };

    // The Dtd that a document owns.
    struct OwnedDtd {
        Dtd* real = nullptr;
        const Dtd* link = nullptr;
        bool dirty = true;
        int start = -1;
        int end = -1;
    };

    using Wanted = std::function<bool(const ModelNode&)>;

    explicit ModelNode(Kind itsKind) : kind(itsKind) {}

    static std::unique_ptr<ModelNode> element(const std::string& name);
    static std::unique_ptr<ModelNode> element(const std::string& name, const std::string& text);
    static std::unique_ptr<ModelNode> text(const std::string& text);
    static std::unique_ptr<ModelNode> comment(const std::string& text);

    bool isElement() const { return kind == Kind::Element; }
    bool isText() const { return kind == Kind::Text; }
    bool isComment() const { return kind == Kind::Comment; }

    void touch();
    void setDtd(const Dtd* dtd);
    std::unique_ptr<ModelNode> clone() const;

    void setName(const std::string& newName);
    void addChild(std::unique_ptr<ModelNode> child);
    void insertChild(const ModelNode* before, std::unique_ptr<ModelNode> child);
    std::unique_ptr<ModelNode> extractChild(int i);
    std::unique_ptr<ModelNode> extractChild(const ModelNode* child);
    void killChildren();
    void setAttribute(const std::string& attribute, const std::string& value);
    void removeAttribute(const std::string& attribute);
    void removeAttribute(int i);
    void touchAttribute(const std::string& attribute);
    void setCharData(const std::string& newText);
    void setData(const std::string& newText);
    void setComment(const std::string& newText);

    const ModelNode* getElement(int n) const;
    const ModelNode* getElement(const Wanted& wanted, int n) const;
    const ModelNode* find(const Wanted& wanted, int& n) const;
    void findAll(const Wanted& wanted, std::vector<const ModelNode*>& found) const;

    std::string attributeValue(const std::string& attribute, const FactsByDtd& facts) const;
    std::string decoded(const FactsByDtd& facts) const;
    std::string charData(const FactsByDtd& facts) const;
    std::string startTag() const;

    // The position is asked for at every node.
    void toStream(NaiveSink& out);

    // What differs between this tree and the library's, "" when nothing does. Nodes and attributes that are new to the
    // model get to know the library's here.
    std::string difference(const Object& node);

    int nodeCount() const;

    Kind kind;
    std::string name;
    std::map<std::string, Attribute> attributes;
    std::vector<std::unique_ptr<ModelNode>> children;  // a document's root is its only child
    std::string data;                                  // of a text: as it is held; of a comment
    OwnedDtd dtd;                                      // of a document
    const Dtd* link = nullptr;
    bool dirty = true;
    int start = -1;
    int end = -1;
    ModelNode* parent = nullptr;
    Object* real = nullptr;

    static std::vector<std::string> messages;

private:
    void write(NaiveSink& out);
    std::string differenceOfAttributes(const Element& element);
};

std::string naiveEscaped(const std::string& text);
bool naiveIsName(const std::string& text);

}  // namespace Xml::test
