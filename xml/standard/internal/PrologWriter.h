#pragma once

#include "xml/standard/WriteOptions.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/Markup.h"

namespace Xml {

class Dtd;
struct Prolog;

// What stands before the root of a document, but for comments and instructions. Each is a line, and false where it
// cannot be written.
namespace PrologWriter {

// Whether the declaration says that the document stands alone.
bool saysStandalone(const WriteOptions& options, const Prolog& prolog);

// The declaration; without a prolog with what the options say alone.
void putDeclaration(Markup& markup, const WriteOptions& options, const Prolog* prolog);

// The document type declaration of a prolog that has one, in a document that stands alone or does not. What it declares
// there is added to `written`, which is empty before.
bool putDoctype(Markup& markup, const Prolog& prolog, bool isStandalone, Declarations& written);

// The same with the declarations of a Dtd; those declarations alone.
bool putDoctype(Markup& markup, const Dtd& dtd, bool isStandalone, Declarations& written);
bool putDeclarations(Markup& markup, const Dtd& dtd);

}  // namespace PrologWriter

}  // namespace Xml
