#include "xml/reader/DTDReader.h"

#include "xml/dtd/Dtd.h"
#include "xml/reader/AttListReader.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"

namespace Xml {

DTDReader::DTDReader(const std::string& name) : dtd(std::make_unique<Dtd>(name)) {}

DTDReader::~DTDReader() = default;

void DTDReader::setInternal(bool isInternal) { internal = isInternal; }

bool DTDReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    EntityBudget own;
    EntityBudget& budget = EntityBudget::of(*this, own);
    std::string token;
    int position = StreamAccess::tell(in);
    if (!getToken(in, token)) return false;
    // The first token is never taken for the end: an empty internal subset is refused.
    for (;;) {
        StreamAccess::seek(in, position);
        if (!readDeclaration(in, token, budget)) return false;
        in.eatWhite();
        if (StreamAccess::atEnd(in)) return endOfData(in);
        position = StreamAccess::tell(in);
        if (!getToken(in, token)) return false;
        if (internal && token == "]") return true;
        if (StreamAccess::atEnd(in)) return endOfData(in);
    }
}

// External subsets end with the data, internal ones must not.
bool DTDReader::endOfData(InStream& in) { return !internal || fail(in); }

bool DTDReader::readDeclaration(InStream& in, const std::string& token, EntityBudget& budget) {
    const auto run = [&](auto&& reader) {
        EntityBudget::give(reader, budget);
        return reader.parse(in) || failAs(reader);
    };
    if (token == kBeginComment) return run(CommentReader());
    if (token == "<!ELEMENT") return run(ElementDeclReader(dtd.get()));
    if (token == "<!ATTLIST") return run(AttListReader(dtd.get()));
    if (token == "<!ENTITY") return run(EntityReader(dtd.get()));
    return fail(in, "unexpected token \"" + token + "\"");
}

Dtd* DTDReader::getDtd() { return dtd.get(); }

const Dtd* DTDReader::getDtd() const { return dtd.get(); }

Dtd* DTDReader::extractDtd() { return dtd.release(); }

}  // namespace Xml
