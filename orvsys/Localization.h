#pragma once
#include "orvsys/Export.h"
#include "orvsys/Uni16.h"
#include <string>

namespace OrvSys {

// The texts that users read, found by a key within a domain, so that an application can put them in its own language.
//
//   OrvSys::Localization::SetString("xpat/xerr/NODE NOT FOUND", "XPath", u"Kein Knoten gefunden");
//
// There is one set of texts a process. At first it holds English texts for the domain "XPath", under the keys
// "xpat/xerr/" and the name of an error. They have no full stop, since the path in question may be appended to them.
// Both operations may be called from any thread at any time.
class ORVSYS_API Localization {
public:
    // The text installed for the key in the domain, else the fallback.
    static Uni16String GetString(const std::string& key, const std::string& domain, const Uni16String& fallback);

    // Installs a text, in place of the one that the key has in the domain. An empty text is a text too: it is found.
    static void SetString(const std::string& key, const std::string& domain, const Uni16String& text);
};

}  // namespace OrvSys
