#pragma once

#include "xml/reader/Reader.h"
#include <memory>
#include <string>

namespace Xml {

class Document;
class Dtd;
class EntityBudget;

// Reads a whole document and validates it when it brings a document type description.
//
//     Xml::StringInStream in("<greeting>Hello</greeting>");
//     Xml::DocumentReader reader;
//     if (!reader.parse(in)) std::cerr << reader.getErrorMessage() << '\n';
//     std::unique_ptr<Xml::Document> document(reader.extractDocument());
//
// A document that is not valid is reported as "Doc could not be validated" and can be taken all the same. A DOCTYPE
// with a PUBLIC identifier is skipped. After a success the error message may still hold a note: an encoding that is not
// supported, or the end of the data after the root element.
class ORVXML_API DocumentReader : public Reader {
public:
    DocumentReader();
    ~DocumentReader() override;

    // The three steps below, up to the first that fails.
    bool parse(InStream& in);

    // XML declaration, comments, processing instructions, document type declaration.
    bool parseProlog(InStream& in);

    // The root element; validates the document.
    bool parseElement(InStream& in);

    // Comments and processing instructions, up to the end of the data or anything else.
    bool parseMisc(InStream& in);

    // The document read, owned by the reader until it is extracted; null when the root element could not be read.
    Document* getDocument();
    const Document* getDocument() const;
    Document* extractDocument();

private:
    // What comments and processing instructions are followed by.
    enum class Following { Failure, Element, Other };

    ORVXML_LOCAL Following readMisc(InStream& in);
    ORVXML_LOCAL bool peekToken(InStream& in, std::string& token);
    ORVXML_LOCAL bool parseDeclaration(InStream& in);

    std::unique_ptr<Document> document;

    // Of a document whose root element has not been read. Its steps are one reading.
    std::unique_ptr<Dtd> dtd;
    std::unique_ptr<EntityBudget> ownBudget;  // for text from the entities of the last Dtd
};

}  // namespace Xml
