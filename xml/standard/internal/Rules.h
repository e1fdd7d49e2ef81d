#pragma once

// The name of every rule that reading can find broken: the symbol of a production, the title of a constraint, or the
// title of the section that requires something in prose. docs/standard-constraints.md has documents for each.

// One list, from which the constants and the array of all of them are made.
#define ORVXML_STANDARD_RULES(RULE)                                                   \
    RULE(kDocument, "document")                                                       \
    RULE(kChar, "Char")                                                               \
    RULE(kName, "Name")                                                               \
    RULE(kNmtoken, "Nmtoken")                                                         \
    RULE(kEntityValue, "EntityValue")                                                 \
    RULE(kAttValue, "AttValue")                                                       \
    RULE(kSystemLiteral, "SystemLiteral")                                             \
    RULE(kPubidLiteral, "PubidLiteral")                                               \
    RULE(kPubidChar, "PubidChar")                                                     \
    RULE(kCharData, "CharData")                                                       \
    RULE(kComment, "Comment")                                                         \
    RULE(kPI, "PI")                                                                   \
    RULE(kPITarget, "PITarget")                                                       \
    RULE(kCDSect, "CDSect")                                                           \
    RULE(kCDStart, "CDStart")                                                         \
    RULE(kProlog, "prolog")                                                           \
    RULE(kXMLDecl, "XMLDecl")                                                         \
    RULE(kVersionInfo, "VersionInfo")                                                 \
    RULE(kEq, "Eq")                                                                   \
    RULE(kVersionNum, "VersionNum")                                                   \
    RULE(kDoctypedecl, "doctypedecl")                                                 \
    RULE(kIntSubset, "intSubset")                                                     \
    RULE(kMarkupdecl, "markupdecl")                                                   \
    RULE(kSDDecl, "SDDecl")                                                           \
    RULE(kElement, "element")                                                         \
    RULE(kSTag, "STag")                                                               \
    RULE(kETag, "ETag")                                                               \
    RULE(kContent, "content")                                                         \
    RULE(kEmptyElemTag, "EmptyElemTag")                                               \
    RULE(kElementdecl, "elementdecl")                                                 \
    RULE(kContentspec, "contentspec")                                                 \
    RULE(kChildren, "children")                                                       \
    RULE(kCp, "cp")                                                                   \
    RULE(kChoice, "choice")                                                           \
    RULE(kSeq, "seq")                                                                 \
    RULE(kMixed, "Mixed")                                                             \
    RULE(kAttlistDecl, "AttlistDecl")                                                 \
    RULE(kAttDef, "AttDef")                                                           \
    RULE(kAttType, "AttType")                                                         \
    RULE(kNotationType, "NotationType")                                               \
    RULE(kEnumeration, "Enumeration")                                                 \
    RULE(kDefaultDecl, "DefaultDecl")                                                 \
    RULE(kCharRef, "CharRef")                                                         \
    RULE(kReference, "Reference")                                                     \
    RULE(kEntityRef, "EntityRef")                                                     \
    RULE(kPEReference, "PEReference")                                                 \
    RULE(kEntityDecl, "EntityDecl")                                                   \
    RULE(kGEDecl, "GEDecl")                                                           \
    RULE(kPEDecl, "PEDecl")                                                           \
    RULE(kEntityDef, "EntityDef")                                                     \
    RULE(kPEDef, "PEDef")                                                             \
    RULE(kExternalID, "ExternalID")                                                   \
    RULE(kNDataDecl, "NDataDecl")                                                     \
    RULE(kEncodingDecl, "EncodingDecl")                                               \
    RULE(kEncName, "EncName")                                                         \
    RULE(kNotationDecl, "NotationDecl")                                               \
    RULE(kPEsInInternalSubset, "PEs in Internal Subset")                              \
    RULE(kPEBetweenDeclarations, "PE Between Declarations")                           \
    RULE(kElementTypeMatch, "Element Type Match")                                     \
    RULE(kUniqueAttSpec, "Unique Att Spec")                                           \
    RULE(kNoExternalEntityReferences, "No External Entity References")                \
    RULE(kNoLessThanInAttributeValues, "No < in Attribute Values")                    \
    RULE(kLegalCharacter, "Legal Character")                                          \
    RULE(kEntityDeclared, "Entity Declared")                                          \
    RULE(kParsedEntity, "Parsed Entity")                                              \
    RULE(kNoRecursion, "No Recursion")                                                \
    RULE(kConditionalSections, "Conditional Sections")                                \
    RULE(kWellFormedParsedEntities, "Well-Formed Parsed Entities")                    \
    RULE(kCharacterEncodingInEntities, "Character Encoding in Entities")              \
    RULE(kNCName, "NCName")                                                           \
    RULE(kQName, "QName")                                                             \
    RULE(kReservedPrefixesAndNamespaceNames, "Reserved Prefixes and Namespace Names") \
    RULE(kPrefixDeclared, "Prefix Declared")                                          \
    RULE(kNoPrefixUndeclaring, "No Prefix Undeclaring")                               \
    RULE(kAttributesUnique, "Attributes Unique")

// Why a document is not read that may be well formed: the options that set limits, and what is not read.
#define ORVXML_STANDARD_REFUSALS(RULE)  \
    RULE(kMaxBytes, "maxBytes")         \
    RULE(kMaxDepth, "maxDepth")         \
    RULE(kEntityGrowth, "entityGrowth") \
    RULE(kIncludedIfValidating, "Included If Validating")

namespace Xml::StandardRules {

#define ORVXML_RULE_CONSTANT(name, text) inline constexpr const char* name = text;
ORVXML_STANDARD_RULES(ORVXML_RULE_CONSTANT)
ORVXML_STANDARD_REFUSALS(ORVXML_RULE_CONSTANT)
#undef ORVXML_RULE_CONSTANT

#define ORVXML_RULE_ELEMENT(name, text) name,
inline constexpr const char* kAll[] = {ORVXML_STANDARD_RULES(ORVXML_RULE_ELEMENT)};
inline constexpr const char* kRefusals[] = {ORVXML_STANDARD_REFUSALS(ORVXML_RULE_ELEMENT) kEntityDeclared};
#undef ORVXML_RULE_ELEMENT

}  // namespace Xml::StandardRules

#undef ORVXML_STANDARD_RULES
#undef ORVXML_STANDARD_REFUSALS
