#pragma once

#include "xml/dtd/RepType.h"
#include <cstddef>
#include <vector>

namespace Xml {

class ChoiceSpec;
class CpSpec;
class GroupSpec;
class OutStream;
class SeqSpec;

// Writes groups as they stand in a declaration, with a stack of its own: groups may be nested as deep as a text is
// long.
class SpecWriter {
public:
    static void write(const ChoiceSpec& choice, OutStream& out);
    static void write(const SeqSpec& sequence, bool outermost, OutStream& out);
    static void writeMark(RepType repetition, OutStream& out);

private:
    struct Open {
        const GroupSpec* group;
        const ChoiceSpec* choice;  // the same, null for a sequence
        bool closed;               // in parentheses
        RepType mark;              // of the member that the group is
        std::size_t member;        // the next to be written
    };

    explicit SpecWriter(OutStream& stream) : out(stream) {}

    void run();

    // These write something and its mark, or begin to.
    void begin(const CpSpec& particle, RepType mark);
    void beginChoice(const ChoiceSpec& choice, RepType mark);
    void beginSequence(const GroupSpec& sequence, bool outermost, RepType mark);
    void beginGroup(const Open& group);
    void step();

    OutStream& out;
    std::vector<Open> open;
};

}  // namespace Xml
