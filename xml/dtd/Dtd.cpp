#include "xml/dtd/Dtd.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/CpSpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/FastValidation.h"
#include "xml/dtd/internal/Matcher.h"
#include "xml/stream/OutStream.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"
#include "xml/text/internal/EmptyData.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <memory>
#include <utility>

namespace Xml {

namespace {

std::int64_t growthLimit = std::int64_t{64} << 20;

void reportDuplicateElement(const std::string& name) { Message("<Dtd::addElementDecl> already added " + name); }

void reportDuplicateAttribute(const std::string& element, const std::string& attribute) {
    Message("<Dtd::addAttlistDecl> alraedy added " + element + " " + attribute);
}

// Puts an owned object into a map, over the one that is there or where there is none.
template <class Owned>
void put(std::map<std::string, std::unique_ptr<Owned>>& map, const std::string& name, std::unique_ptr<Owned> made) {
    map[name] = std::move(made);
}

void put(DtdAccess::AttributeList& list, const std::string& attribute, std::unique_ptr<AttDef> made) {
    const auto before = list.definitions.find(attribute);
    const bool wasRequired = before != list.definitions.end() && before->second->isRequired();
    const bool isRequired = made->isRequired();
    put(list.definitions, attribute, std::move(made));
    if (wasRequired) --list.required;
    if (isRequired) ++list.required;
}

template <class Declaration>
using ByName = std::map<std::string, Declaration>;

template <class Declaration>
void mergeByName(ByName<Declaration>& own, const ByName<Declaration>& others, bool replace) {
    for (const auto& [name, declaration] : others) {
        Declaration copy = declaration;  // first: what could not be copied must not stay in part
        if (const auto made = own.try_emplace(name); made.second || replace) made.first->second = std::move(copy);
    }
}

}  // namespace

std::int64_t DtdAccess::entityGrowthLimit() { return growthLimit; }

std::int64_t Dtd::setEntityGrowthLimit(std::int64_t bytes) {
    const std::int64_t before = growthLimit;
    growthLimit = bytes;
    return before;
}

Dtd::Dtd(const std::string& itsName) : name(itsName) {}

Dtd::Dtd(const Dtd& other) : Dtd(other.name) {
    NodeAccess::setOwnDtd(*this, NodeAccess::dtd(other));
    merge(other, true);
}

// In the order of names, which a map does not keep.
Dtd::~Dtd() {
    for (auto& [element, model] : elements) model.reset();
    for (auto& [element, list] : attributeLists) {
        for (auto& [attribute, definition] : list.definitions) definition.reset();
    }
}

// --- Declarations ---

void Dtd::addElementDecl(const std::string& element, ContentSpec* model) {
    if (elements.try_emplace(element, model).second) {  // owned only where there was none
        touch();
    } else {
        reportDuplicateElement(element);
    }
}

void Dtd::addElementDecl(const std::string& element, CpSpec* particle, RepType repetition) {
    if (elements.find(element) != elements.end()) {
        reportDuplicateElement(element);
        return;
    }
    std::unique_ptr<ContentSpec>& place = elements[element];
    try {
        place.reset(new ChildrenSpec(this, particle, repetition));
    } catch (...) {
        elements.erase(element);
        throw;
    }
    touch();
}

void Dtd::addElementDecl(const std::string& element, const std::string& child, RepType repetition) {
    declareOwn(element, std::make_unique<ChildrenSpec>(this, child, repetition));
}

void Dtd::addElementDecl(const std::string& element) { declareOwn(element, std::make_unique<MixedSpec>(this)); }

void Dtd::declareOwn(const std::string& element, std::unique_ptr<ContentSpec> model) {
    if (elements.find(element) != elements.end()) {
        reportDuplicateElement(element);
        return;
    }
    addElementDecl(element, model.get());
    model.release();
}

void Dtd::addAttDecl(const std::string& element, const std::string& attribute, AttDef* definition) {
    const auto list = attributeLists.find(element);
    if (list == attributeLists.end()) {
        addAttributeList(element, attribute, definition);
    } else if (!DtdAccess::define(list->second, attribute, definition)) {
        reportDuplicateAttribute(element, attribute);
        return;
    }
    touch();
}

// A list that could not take its first definition must not stay: it would say something about the element.
void Dtd::addAttributeList(const std::string& element, const std::string& attribute, AttDef* definition) {
    const auto made = attributeLists.try_emplace(element).first;
    try {
        DtdAccess::define(made->second, attribute, definition);
    } catch (...) {
        attributeLists.erase(made);
        throw;
    }
}

void Dtd::addAttDecl(const std::string& element, const std::string& attribute, AttType rule) {
    if (findDefinition(element, attribute) != nullptr) {
        reportDuplicateAttribute(element, attribute);
        return;
    }
    auto definition = std::make_unique<AttStringType>(rule);
    addAttDecl(element, attribute, definition.get());
    definition.release();
}

void Dtd::merge(const Dtd& other, bool replace) {
    if (&other == this) return;
    for (const auto& [element, model] : other.elements) {
        if (!replace && elements.find(element) != elements.end()) continue;
        put(elements, element, std::unique_ptr<ContentSpec>(model->clone(this)));
    }
    for (const auto& [element, list] : other.attributeLists) {
        for (const auto& [attribute, definition] : list.definitions) {
            if (!replace && findDefinition(element, attribute) != nullptr) continue;
            std::unique_ptr<AttDef> copy(definition->clone());
            if (const auto own = attributeLists.find(element); own != attributeLists.end()) {
                put(own->second, attribute, std::move(copy));
            } else {
                addAttributeList(element, attribute, copy.get());
                copy.release();
            }
        }
    }
    mergeEntities(other, replace);
}

// What is declared of an internal entity goes with its value. Copies are made first, so that nothing stays in part.
void Dtd::mergeEntities(const Dtd& other, bool replace) {
    for (const auto& [entity, declaration] : other.entityDecls) {
        if (!replace && isEntityKnown(entity)) continue;
        EntityDecl copy = declaration;
        const auto value = other.entities.find(entity);
        if (value != other.entities.end()) setEntity(entity, value->second);
        entityDecls[entity] = std::move(copy);
        if (value == other.entities.end()) entities.erase(entity);
    }
    for (const auto& [entity, value] : other.entities) {
        const bool isMerged = other.entityDecls.find(entity) != other.entityDecls.end();
        if (!isMerged && (replace || !isEntityKnown(entity))) setEntity(entity, value);
    }
    mergeByName(parameterEntities, other.parameterEntities, replace);
    mergeByName(notations, other.notations, replace);
}

// --- Queries ---

bool Dtd::validate(Element* element) const {
    if (element == nullptr) return false;
    const bool isWorthStates = !NodeAccess::children(*element).empty();  // a model costs its whole size
    if (isWorthStates && FastValidation::accepts(*this, *element)) return true;
    return Matcher().validateElement(*this, *element);
}

const AttDef* Dtd::findDefinition(const std::string& element, const std::string& attribute) const {
    const auto list = attributeLists.find(element);
    if (list == attributeLists.end()) return nullptr;
    const auto definition = list->second.definitions.find(attribute);
    return definition != list->second.definitions.end() ? definition->second.get() : nullptr;
}

bool Dtd::hasDefaultValue(const std::string& element, const std::string& attribute) const {
    const AttDef* const definition = findDefinition(element, attribute);
    return definition != nullptr && definition->hasDefault();
}

const DataHolder& Dtd::getDefaultValue(const std::string& element, const std::string& attribute) const {
    const AttDef* const definition = findDefinition(element, attribute);
    return definition != nullptr ? definition->getDefault() : emptyData();
}

// --- Entities ---

void Dtd::setEntity(const std::string& entity, const DataHolder& value) {
    DataHolder copy = value;  // first: an entity whose value could not be copied must not stay empty
    entities[entity] = std::move(copy);
    entityDecls.erase(entity);
}

bool Dtd::isEntityName(const std::string& entity) const { return entities.find(entity) != entities.end(); }

bool Dtd::isEntityKnown(const std::string& entity) const {
    return isEntityName(entity) || entityDecls.find(entity) != entityDecls.end();
}

const std::string* Dtd::findEntityByValue(const DataHolder& value) const {
    for (const auto& [entity, itsValue] : entities) {
        if (itsValue == value) return &entity;
    }
    return nullptr;
}

bool Dtd::isEntityValue(const DataHolder& value) const { return findEntityByValue(value) != nullptr; }

const DataHolder& Dtd::getEntityValue(const std::string& entity) const {
    const auto found = entities.find(entity);
    if (found != entities.end()) return found->second;
    Message("<Xml::Dtd::getEntityValue> unkown entity name: " + entity);
    unknownEntityValue = "&" + entity + ";";
    return unknownEntityValue;
}

const std::string& Dtd::getEntityName(const DataHolder& value) const {
    if (const std::string* entity = findEntityByValue(value)) return *entity;
    // The text names the other look-up; it is the same for both.
    Message("<Xml::Dtd::getEntityValue> unkown entity value: " + value);
    unknownEntityName = value;
    return unknownEntityName;
}

// --- What XML 1.0 declares of entities and notations ---

bool Dtd::addNotationDecl(const std::string& notation, const NotationDecl& declaration) {
    if (!notations.try_emplace(notation, declaration).second) return false;
    touch();
    return true;
}

bool Dtd::addParameterEntityDecl(const std::string& entity, const EntityDecl& declaration) {
    if (!parameterEntities.try_emplace(entity, declaration).second) return false;
    touch();
    return true;
}

bool Dtd::addEntityDecl(const std::string& entity, const EntityDecl& declaration) {
    const bool isInternal = declaration.kind == EntityDecl::Kind::Internal;
    if (!isInternal && isEntityName(entity)) return false;
    const auto [place, isNew] = entityDecls.try_emplace(entity, declaration);
    if (!isNew) return false;
    try {
        if (isInternal) entities.try_emplace(entity, declaration.text);
    } catch (...) {
        entityDecls.erase(place);
        throw;
    }
    touch();
    return true;
}

// --- As a node ---

Object* Dtd::clone() const { return new Dtd(*this); }

const std::string& Dtd::toString() const {
    static NeverDestroyed<std::string> text("<Document Type Description>");
    return text.get();
}

bool Dtd::isDtd() const { return true; }

void Dtd::write(OutStream& out) const {
    const OutStreamAccess::Writing writing(out);
    out << "<!DOCTYPE " << name << " [" << '\n';
    for (const auto& [element, model] : elements) {
        out << "<!ELEMENT " << element << ' ';
        model->toStream(out);
        out << '>' << '\n';
        const auto list = attributeLists.find(element);
        if (list == attributeLists.end() || list->second.definitions.empty()) continue;
        out << "<!ATTLIST " << element << '\n';
        out.incTab();
        for (const auto& [attribute, definition] : list->second.definitions) {
            out << attribute << ' ';
            definition->toStream(out);
            out << '\n';
        }
        out.decTab();
        out << '>' << '\n';
    }
    for (const auto& [entity, value] : entities) {
        out << "<!ENTITY " << entity << ' ' << toXmlString(value) << '>' << '\n';
    }
    out << "]>" << '\n';
}

}  // namespace Xml
