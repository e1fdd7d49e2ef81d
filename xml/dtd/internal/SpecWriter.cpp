#include "xml/dtd/internal/SpecWriter.h"

#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/Message.h"
#include <string>

namespace Xml {

void SpecWriter::write(const ChoiceSpec& choice, OutStream& out) {
    SpecWriter writer(out);
    writer.beginChoice(choice, REP_ONCE);
    writer.run();
}

void SpecWriter::write(const SeqSpec& sequence, bool outermost, OutStream& out) {
    SpecWriter writer(out);
    writer.beginSequence(sequence, outermost, REP_ONCE);
    writer.run();
}

void SpecWriter::writeMark(RepType repetition, OutStream& out) {
    switch (repetition) {
    case REP_ONCE: break;
    case REP_OPTIONAL: out << '?'; break;
    case REP_ZERO_OR_MORE: out << '*'; break;
    case REP_ONE_OR_MORE: out << '+'; break;
    }
}

void SpecWriter::run() {
    while (!open.empty()) step();
}

void SpecWriter::begin(const CpSpec& particle, RepType mark) {
    const GroupSpec* const group = SpecAccess::asGroup(particle);
    if (group == nullptr) {
        particle.toStream(out, false);
        writeMark(mark, out);
    } else if (isExactlySpec<ChoiceSpec>(particle)) {
        beginChoice(static_cast<const ChoiceSpec&>(*group), mark);
    } else {
        beginSequence(*group, false, mark);
    }
}

void SpecWriter::beginChoice(const ChoiceSpec& choice, RepType mark) {
    if (SpecAccess::members(choice).size() >= 2) return beginGroup({&choice, &choice, true, mark, 0});
    Message(std::string("<ChoiceSpec::toStream> need at least 2 items"));
    writeMark(mark, out);
}

void SpecWriter::beginSequence(const GroupSpec& sequence, bool outermost, RepType mark) {
    const std::size_t count = SpecAccess::members(sequence).size();
    if (count >= 1) return beginGroup({&sequence, nullptr, outermost || count > 1, mark, 0});
    Message(std::string("<SeqSpec::toStream> need at least 1 element"));
    writeMark(mark, out);
}

void SpecWriter::beginGroup(const Open& group) {
    open.push_back(group);
    if (group.closed) OutStreamAccess::put(out, "(");
}

void SpecWriter::step() {
    Open& here = open.back();
    const SpecAccess::Members& members = SpecAccess::members(*here.group);
    if (here.member < members.size()) {
        if (here.member > 0) OutStreamAccess::put(out, here.choice != nullptr ? " | " : ", ");
        const ChildrenSpec& member = *members[here.member++];
        return begin(SpecAccess::particle(member), SpecAccess::repetition(member));
    }
    if (here.choice != nullptr && SpecAccess::charData(*here.choice)) OutStreamAccess::put(out, " | #PCDATA");
    if (here.closed) OutStreamAccess::put(out, ")");
    const RepType mark = here.mark;
    open.pop_back();
    writeMark(mark, out);
}

}  // namespace Xml
