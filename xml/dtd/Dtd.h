#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include "xml/dtd/AttDef.h"
#include "xml/dtd/EntityDecl.h"
#include "xml/dtd/RepType.h"
#include "xml/text/DataHolder.h"
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Xml {

class ContentSpec;
class CpSpec;
class Element;

// A document type description: element declarations, attribute lists and general entities; besides, what XML 1.0
// declares of entities and notations. It owns the content models and attribute definitions in it, and outlives every
// node that links to it.
//
// Validation is const but sets links in what it validates, and look-ups of unknown entities report them and keep a
// scratch text: those are for one thread at a time. The other queries may be made by several.
class ORVXML_API Dtd : public Object {
public:
    // `name` is the document type name: the one after <!DOCTYPE.
    explicit Dtd(const std::string& name);

    // Deep copies of all declarations, which belong to the copy.
    Dtd(const Dtd& other);
    ~Dtd() override;

    // --- Declarations ---

    // Declares an element and takes ownership of the model. An element that is declared already keeps its declaration:
    // "<Dtd::addElementDecl> already added " and the name are reported, and what was offered stays the caller's.
    void addElementDecl(const std::string& name, ContentSpec* model);

    // With a new children model around the particle.
    void addElementDecl(const std::string& name, CpSpec* particle, RepType repetition);

    // With a new children model around the name of a child.
    void addElementDecl(const std::string& name, const std::string& child, RepType repetition);

    // With character data only.
    void addElementDecl(const std::string& name);

    // Defines an attribute and takes ownership of the definition. One that is defined already keeps its definition:
    // "<Dtd::addAttlistDecl> alraedy added ", the element's and the attribute's name are reported, and what was offered
    // stays the caller's. The element need not be declared.
    void addAttDecl(const std::string& element, const std::string& attribute, AttDef* definition);

    // With a new definition of string type without default value.
    void addAttDecl(const std::string& element, const std::string& attribute, AttType rule);

    // Copies the declarations of the other. Where both have one, `replace` decides whether the other's wins. Reports
    // nothing, and marks nothing as changed.
    void merge(const Dtd& other, bool replace);

    // --- Queries ---

    // Whether the element is declared, its content fits its model, its attributes fit its attribute list, and so all
    // elements in it that the models look at. Elements that fit get links to this Dtd: those with an attribute list
    // together with their whole subtree, as do element children of mixed models, and character data in them. Stops at
    // the first thing that does not fit, without a message; links set before stay. Null is invalid.
    bool validate(Element* element) const;

    // Whether the attribute is defined with a default or fixed value.
    bool hasDefaultValue(const std::string& element, const std::string& attribute) const;

    // The default value in the definition; empty without one.
    const DataHolder& getDefaultValue(const std::string& element, const std::string& attribute) const;

    // --- Entities: of this Dtd alone; the standard ones are not known here ---

    // Adds the entity or replaces its value; what was declared of it (see below) goes.
    void setEntity(const std::string& name, const DataHolder& value);
    bool isEntityName(const std::string& name) const;
    bool isEntityValue(const DataHolder& value) const;

    // The value of the entity. An unknown name is reported ("<Xml::Dtd::getEntityValue> unkown entity name: ", the
    // name) and gives the reference "&name;", good until the next unknown name.
    const DataHolder& getEntityValue(const std::string& name) const;

    // The first name, in name order, of an entity with this value. An unknown value is reported
    // ("<Xml::Dtd::getEntityValue> unkown entity value: ", the value) and gives the value itself, good until the next
    // unknown value.
    const std::string& getEntityName(const DataHolder& value) const;

    // --- What XML 1.0 declares of entities and notations, by name in byte order; copied and merged with the rest, and
    // not written ---

    // The first declaration of a name counts: false where there is one.
    bool addNotationDecl(const std::string& notation, const NotationDecl& declaration);
    bool addParameterEntityDecl(const std::string& entity, const EntityDecl& declaration);

    // The same of a general entity. An internal one has a value (see above) as well: the one that was set, or else its
    // replacement text. One with a value can be declared as internal only.
    bool addEntityDecl(const std::string& entity, const EntityDecl& declaration);

    const std::map<std::string, NotationDecl>& getNotationDecls() const { return notations; }
    const std::map<std::string, EntityDecl>& getParameterEntityDecls() const { return parameterEntities; }
    const std::map<std::string, EntityDecl>& getEntityDecls() const { return entityDecls; }

    // Readers bound the text that they make from references to entities: past this many bytes, and more than a hundred
    // times what they have read, they fail. 64 MiB at first, 0 lifts the bound; for the whole process. Returns what was
    // set before.
    static std::int64_t setEntityGrowthLimit(std::int64_t bytes);

    // --- As a node ---

    Object* clone() const override;
    const std::string& toString() const override;
    bool isDtd() const override;

    // Writes the document type declaration: elements with their attribute lists, and entities with their values.
    // Attribute lists of elements without declaration are not written.
    void write(OutStream& out) const override;

private:
    friend struct DtdAccess;

    struct AttributeList {
        std::map<std::string, std::unique_ptr<AttDef>> definitions;
        std::size_t required = 0;  // how many of them are, so that not all of them are looked at for each element
    };

    ORVXML_LOCAL void addAttributeList(const std::string& element, const std::string& attribute, AttDef* definition);
    ORVXML_LOCAL void declareOwn(const std::string& element, std::unique_ptr<ContentSpec> model);
    ORVXML_LOCAL const AttDef* findDefinition(const std::string& element, const std::string& attribute) const;
    ORVXML_LOCAL const std::string* findEntityByValue(const DataHolder& value) const;
    ORVXML_LOCAL bool isEntityKnown(const std::string& entity) const;
    ORVXML_LOCAL void mergeEntities(const Dtd& other, bool replace);

    std::map<std::string, std::unique_ptr<ContentSpec>> elements;
    std::map<std::string, AttributeList> attributeLists;
    std::string name;
    std::map<std::string, DataHolder> entities;
    std::map<std::string, EntityDecl> entityDecls;  // internal ones are among `entities` too, others are not
    std::map<std::string, EntityDecl> parameterEntities;
    std::map<std::string, NotationDecl> notations;
    mutable DataHolder unknownEntityValue;
    mutable std::string unknownEntityName;

    mutable std::uint64_t validationRun = 0;  // while a validation is under way: its number
    std::int64_t bytesRead = 0;               // for this Dtd in streams of their own: an external subset, a prolog
};

}  // namespace Xml
