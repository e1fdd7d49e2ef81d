#pragma once

namespace Xml {

class Element;

// Gives `copy`, a new element, the name and copies of all that `from` holds: what Element's copy constructor does.
// False where the copy may have links to a Dtd, or nodes of other classes than the library's own: taking its links away
// would change nothing otherwise.
bool copyInto(Element& copy, const Element& from);

}  // namespace Xml
