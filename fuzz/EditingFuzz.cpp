// Editing: a program of operations on some trees, which are written in between, so that marks of change fall. Results,
// order, links to parents and to the Dtd, marks, written text, diagnostics and all searches must be those of the naive
// tree.
//
// Input: two bytes an operation. They are the seed of all that is random in it, so an operation does the same wherever
// it stands in a program and whatever stands around it.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "models/EditingWorld.h"
#include "models/NaiveSink.h"
#include "xml/stream/FileOutStream.h"
#include <sstream>
#include <string>

namespace Xml::fuzz {
namespace {

void write(test::EditingWorld& world) {
    const test::EditingWorld::Top& top = world.dice.pick(world.tops);
    std::ostringstream text;
    std::ostringstream naiveText;
    FileOutStream out(&text);
    test::NaiveStreamSink naiveOut(naiveText);
    top.real->toStream(out);
    top.model->toStream(naiveOut);
    expectSame("a tree is written as the naive tree", naiveText.str(), text.str());
    expectSame("the marks of a written tree are those of the naive tree", "", world.difference());
}

}  // namespace

const std::size_t kLongestInput = 120;

void check(const std::string& input) {
    Decisions program(input);
    const auto seed = [&program] {
        const unsigned high = program.byte();
        return high * 256 + program.byte();
    };
    test::EditingWorld world(seed());
    expectSame("fresh trees are those of the naive tree", "", world.difference());
    while (!program.empty()) {
        world.dice = test::Dice(seed());
        const std::string edited = world.edit();
        if (!edited.empty()) expectSame("trees after " + world.lastOperation(), "", edited);
        if (world.dice.chance(30)) write(world);
        const std::string searched = world.dice.chance(30) ? world.search() : "";
        if (!searched.empty()) expectSame("answers of " + world.lastOperation(), "", searched);
    }
    expectSame("no search changes anything", "", world.difference());
}

}  // namespace Xml::fuzz
