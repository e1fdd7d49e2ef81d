#include "xml/reader/DoctypeReader.h"

#include "orvsys/Files.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <fstream>
#include <utility>

namespace Xml {

namespace {

bool externalSubsetsRefused = false;

}  // namespace

DoctypeReader::DoctypeReader() = default;

DoctypeReader::~DoctypeReader() = default;

bool DoctypeReader::refuseExternalSubsets(bool refuse) { return std::exchange(externalSubsetsRefused, refuse); }

bool DoctypeReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    std::string name;
    std::string token;
    if (!checkToken(in, "<!DOCTYPE") || !getName(in, name) || !getToken(in, token)) return false;

    DTDReader reader(name);
    EntityBudget::passOn(*this, reader);
    if (token == "SYSTEM") {
        if (!readExternalSubset(in, reader)) return false;
    } else if (token == "[") {
        reader.setInternal(true);
        if (!reader.parse(in)) return failAs(reader);
    } else {
        return fail(in, "Unexpected token \"" + token + "\"");
    }
    dtd.reset(reader.extractDtd());
    return checkToken(in, kGreaterThen);
}

bool DoctypeReader::readExternalSubset(InStream& in, DTDReader& reader) {
    std::string literal;
    if (!getString(in, literal)) return false;
    const std::string path = literal.substr(1, literal.size() - 2);
    if (externalSubsetsRefused) return fail(in, "external subset refused: " + path);

    // The platform layer opens regular files only: a device might never end, a pipe never begin.
    OrvSys::FileIO probe{OrvSys::FileSpec(path)};
    std::ifstream file;
    if (probe.OpenForReading()) file.open(path, std::ios_base::in | std::ios_base::binary);
    if (!file.is_open()) return fail(in, "Could not open file: " + path);
    FileInStream subset(&file);
    if (!Report::during(in, [&] { return reader.parse(subset); })) return failAs(reader);
    DtdAccess::addBytesRead(*reader.getDtd(), probe.GetLength());
    return true;
}

Dtd* DoctypeReader::extractDtd() { return dtd.release(); }

}  // namespace Xml
