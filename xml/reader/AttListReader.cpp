#include "xml/reader/AttListReader.h"

#include "xml/dtd/AttStringType.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/InStream.h"
#include "xml/text/Names.h"
#include <memory>

namespace Xml {

AttListReader::AttListReader(Dtd* itsDtd) : dtd(itsDtd) {}

bool AttListReader::parse(InStream& in) {
    std::string element;
    std::string attribute;
    if (!checkToken(in, "<!ATTLIST") || !getName(in, element) || !getToken(in, attribute)) return false;
    std::string token;
    DtdAccess::AttributeList* list = nullptr;  // looked for once: the element's name may be long
    while (attribute != kGreaterThen) {
        if (!isName(attribute)) return false;
        if (!checkToken(in, "CDATA") || !getToken(in, token)) return false;

        AttType rule = DEFAULT;
        if (token == "#REQUIRED") {
            rule = REQUIRED;
        } else if (token == "#IMPLIED") {
            rule = IMPLIED;
        } else if (token == "#FIXED") {
            rule = FIXED;
            if (!getToken(in, token)) return false;
        }
        DataHolder value;
        if (rule == DEFAULT || rule == FIXED) {
            if (token[0] != '"' && token[0] != '\'') {
                Report::diagnose(in, "<AttListReader::parse> string   " + token);
                return false;
            }
            value.assign(token, 1, token.size() - 2);
        }

        auto definition = std::make_unique<AttStringType>(rule, value);
        if (list == nullptr) list = DtdAccess::findList(*dtd, element);
        if (list == nullptr) {
            Report::during(in, [&] { dtd->addAttDecl(element, attribute, definition.get()); });
            definition.release();
        } else if (DtdAccess::define(*list, attribute, definition.get())) {
            definition.release();
            dtd->touch();
        } else {
            // Refused and reported: a duplicate.
            Report::during(in, [&] { dtd->addAttDecl(element, attribute, definition.get()); });
        }
        if (!getToken(in, attribute)) return false;
    }
    return true;
}

}  // namespace Xml
