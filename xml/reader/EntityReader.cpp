#include "xml/reader/EntityReader.h"

#include "xml/dtd/Dtd.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"

namespace Xml {

EntityReader::EntityReader(Dtd* itsDtd) : dtd(itsDtd) {}

bool EntityReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    EntityBudget own;
    std::string name;
    std::string literal;
    if (!checkToken(in, "<!ENTITY") || !getName(in, name) || !getString(in, literal) || !checkToken(in, kGreaterThen))
        return false;
    DataHolder value(literal, 1, literal.size() - 2);
    if (!EntityBudget::of(*this, own).expand(in, value, dtd)) return fail(in, kEntityTextTooLarge);
    dtd->setEntity(name, value);
    return true;
}

}  // namespace Xml
