#pragma once

#include <string>
#include <string_view>

namespace Xml {

class CharData;
class Dtd;

// Appends the text that character data holds as XML 1.0 means it: the references to the five characters, to characters
// that XML has, as UTF-8, and to entities of the Dtd, where there is one, replaced in one pass. All else stands for
// itself.
void appendPlain(std::string& to, std::string_view held, const Dtd* dtd);

// The same of a node, by the Dtd that it links to.
void appendPlain(std::string& to, const CharData& node);

}  // namespace Xml
