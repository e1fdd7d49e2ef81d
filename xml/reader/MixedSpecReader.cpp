#include "xml/reader/MixedSpecReader.h"

#include "xml/dtd/MixedSpec.h"
#include "xml/reader/internal/Repetition.h"
#include "xml/reader/internal/Report.h"
#include "xml/stream/InStream.h"

namespace Xml {

MixedSpecReader::MixedSpecReader(Dtd* itsDtd) : dtd(itsDtd) {}

MixedSpecReader::~MixedSpecReader() = default;

bool MixedSpecReader::parse(InStream& in) {
    if (!checkToken(in, "(") || !checkToken(in, "#PCDATA")) return false;
    model.reset();
    model = std::make_unique<MixedSpec>(dtd);

    std::string token;
    if (!getToken(in, token)) return false;
    if (token == ")") {
        RepType repetition = REP_ONCE;
        if (!readRepetition(in, repetition)) fail(in);
        const bool allowed = repetition == REP_ONCE || repetition == REP_ZERO_OR_MORE;
        return allowed || fail(in, "unexpected repetition type");
    }
    while (token != ")") {
        if (token != "|") return fail(in, "\"|\" expected");
        std::string name;
        if (!getName(in, name)) return false;
        Report::during(in, [&] { model->addName(name); });
        if (!getToken(in, token)) return false;
    }
    return checkToken(in, "*");
}

MixedSpec* MixedSpecReader::extractMixedSpec() { return model.release(); }

}  // namespace Xml
