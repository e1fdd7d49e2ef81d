#pragma once

#include "xml/Export.h"
#include "xml/text/DataHolder.h"
#include <string>

namespace Xml {

class Dtd;

// Characters to references and back. Known are the five standard entities (amp, lt, gt, quot, apos), character
// references such as #65 and #x41 (as one byte: the number modulo 256), and, after them, the general entities of a Dtd
// where one is given. An entity name is the text between '&' and ';'.

// Whether the name is known. Every name of two or more bytes that begins with '#' counts, whatever follows.
ORVXML_API bool isEntityName(const std::string& name, const Dtd* dtd = nullptr);

// Whether the value is one of the five characters, or the value of an entity of the Dtd.
ORVXML_API bool isEntityValue(const DataHolder& value, const Dtd* dtd = nullptr);

// The name of the entity with this value; the value itself when there is none.
ORVXML_API std::string getEntityName(const DataHolder& value, const Dtd* dtd = nullptr);

// The value of the entity; the reference itself ("&name;") when there is none.
ORVXML_API std::string getEntityValue(const std::string& name, const Dtd* dtd = nullptr);

// Replaces the references in `text` by their values in one pass (values are not looked through again) and returns
// `text`. Unknown references stay; one without its ';' at the end of the text gets it. A text that would become empty
// is left as it is.
ORVXML_API DataHolder& replaceEntities(DataHolder& text, const Dtd* dtd = nullptr);

// Replaces each of & < > " ' by its standard reference and returns `text`; references that are there already are
// escaped again.
ORVXML_API DataHolder& insertStdEntities(DataHolder& text);

// A copy of `text`, escaped as by insertStdEntities, in double quotes.
ORVXML_API std::string toXmlString(const DataHolder& text);

}  // namespace Xml
