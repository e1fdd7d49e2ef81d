#pragma once

#include "peers/ContentMatchers.h"
#include <random>
#include <string>
#include <utility>
#include <vector>

// Document types and documents as plain values, made at random, and as text for both libraries.
namespace Xml::test {

struct ContentModel {
    enum Kind { Empty, Any, Mixed, Children };

    Kind kind = Empty;
    Names names;                // of mixed models, perhaps some of them twice
    bool charDataLast = false;  // of mixed models: where #PCDATA stands in our dialect
    ContentParticle particle;   // of children models
};

struct ElementDeclaration {
    std::string element;
    ContentModel model;
};

struct AttributeDeclaration {
    enum Rule { Required, Implied, Default, Fixed };

    std::string element;
    std::string attribute;
    Rule rule = Implied;
    std::string value;
};

// Declarations in their order: the first of an element, and the first of an attribute, is the one that counts.
struct DocumentType {
    std::string name;
    std::vector<ElementDeclaration> elements;
    std::vector<AttributeDeclaration> attributes;

    // Null without one.
    const ContentModel* modelOf(const std::string& element) const;

    // Those that count, of an element; and of one of its attributes, null without one.
    std::vector<const AttributeDeclaration*> attributesOf(const std::string& element) const;
    const AttributeDeclaration* attributeOf(const std::string& element, const std::string& attribute) const;
};

struct DocumentNode {
    enum Kind {
        Element,
        Text,            // something that is not white space
        Blank,           // white space as it is
        BlankReference,  // white space as a character reference
        Comment,
        Instruction,
        CData
    };

    Kind kind = Element;
    std::string name;
    std::string text;  // as it stands in the document
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<DocumentNode> children;
};

// Names of the child elements, in order.
Names childNames(const DocumentNode& node);

// Ours has (a | b | #PCDATA)*, which stands for (#PCDATA | a | b)* elsewhere.
enum class Dialect { Ours, Common };

// A whole document with the document type as its internal subset. The seed chooses between ways of writing that mean
// the same: blanks, quotes, references, empty tags, the order of declarations.
std::string documentText(const DocumentType& type, const DocumentNode& root, unsigned seed, Dialect dialect);

// Makes document types at random, and documents that are mostly close to valid: grown from the models, then changed in
// a few places or none.
class PairMaker {
public:
    explicit PairMaker(unsigned seed) : random(seed) {}

    DocumentType makeType();
    DocumentNode makeDocument(const DocumentType& type);
    unsigned number() { return static_cast<unsigned>(random()); }

private:
    std::size_t below(std::size_t n) { return random() % n; }
    bool percent(unsigned share) { return random() % 100 < share; }
    template <class T>
    const T& oneOf(const std::vector<T>& all) {
        return all[below(all.size())];
    }

    ContentModel makeModel();
    ContentParticle makeParticle(int depth, Names* unused);
    void makeAttributes(DocumentType& type);

    DocumentNode grow(const DocumentType& type, const std::string& name, int depth);
    void growParticle(const DocumentType& type, const ContentParticle& particle, int depth, DocumentNode& parent);
    void growAttributes(const DocumentType& type, DocumentNode& node);
    DocumentNode makeText();
    void indent(const DocumentType& type, DocumentNode& node);

    void change(const DocumentType& type, DocumentNode& root);
    void changeChildren(const DocumentType& type, DocumentNode& node);
    void changeAttributes(const DocumentType& type, DocumentNode& node);

    std::mt19937 random;
    Names alphabet;
    int elementsLeft = 0;
};

}  // namespace Xml::test
