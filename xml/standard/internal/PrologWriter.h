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

// The declaration; without a prolog with what the options say alone.
void putDeclaration(Markup& markup, const WriteOptions& options, const Prolog* prolog);

// The document type declaration: that of the prolog, or where that has none, one with the declarations of the Dtd. One
// of both is there. What a reader of the document finds declared in it goes to `written`.
bool putDoctype(Markup& markup, const WriteOptions& options, const Prolog& prolog, const Dtd* dtd,
                Declarations& written);

// The declarations of a Dtd alone.
bool putDeclarations(Markup& markup, const Dtd& dtd);

}  // namespace PrologWriter

}  // namespace Xml
