#include "xml/reader/ElementDeclReader.h"

#include "xml/dtd/AnySpec.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/MixedSpecReader.h"
#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"
#include <memory>

namespace Xml {

namespace {

void declare(const InStream& in, Dtd& dtd, const std::string& name, std::unique_ptr<ContentSpec> model) {
    const bool refused = DtdAccess::isDeclared(dtd, name);
    Report::during(in, [&] { dtd.addElementDecl(name, model.get()); });
    if (!refused) model.release();
}

}  // namespace

ElementDeclReader::ElementDeclReader(Dtd* itsDtd) : dtd(itsDtd) {}

bool ElementDeclReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    std::string name;
    std::string token;
    if (!checkToken(in, "<!ELEMENT") || !getName(in, name)) return false;
    const int position = StreamAccess::tell(in);
    if (!getToken(in, token)) return false;

    if (token == "EMPTY") {
        declare(in, *dtd, name, std::make_unique<EmptySpec>(dtd));
    } else if (token == "ANY") {
        declare(in, *dtd, name, std::make_unique<AnySpec>(dtd));
    } else if (token == "(") {
        if (!getToken(in, token)) return false;
        StreamAccess::seek(in, position);
        if (token == "#PCDATA") {
            MixedSpecReader reader(dtd);
            if (!reader.parse(in)) return failAs(reader);
            declare(in, *dtd, name, std::unique_ptr<ContentSpec>(reader.extractMixedSpec()));
        } else {
            ChildrenSpecReader reader(dtd);
            if (!reader.parse(in)) return failAs(reader);
            declare(in, *dtd, name, std::unique_ptr<ContentSpec>(reader.extractChildrenSpec()));
        }
    } else {
        Report::diagnose(in, "<ElementDeclReader::parse> don't know what to do " + token);
        return false;
    }
    return checkToken(in, kGreaterThen);
}

}  // namespace Xml
