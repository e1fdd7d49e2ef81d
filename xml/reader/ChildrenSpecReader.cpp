#include "xml/reader/ChildrenSpecReader.h"

#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/reader/internal/Repetition.h"
#include "xml/reader/internal/Report.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Names.h"
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// By the rules a reader runs another one for each group within its own. Groups may be nested as deep as a text is long,
// so these readers are levels on a stack here. As in the element reader a nested one reports under the name of the
// plain class.
class Groups {
public:
    Groups(ChildrenSpecReader& outermost, InStream& stream, Dtd* itsDtd) : reader(outermost), in(stream), dtd(itsDtd) {}

    Groups(const Groups&) = delete;
    Groups& operator=(const Groups&) = delete;

    // Reads the outermost group, with all within it, and the repetition after it.
    bool read(std::unique_ptr<ChildrenSpec>& model) {
        if (!beginGroup()) return false;
        while (!levels.empty()) {
            if (!readItem()) return false;
        }
        model = std::move(complete);
        return true;
    }

private:
    // A group being read. At most one of the lists is open, and is the current particle then.
    struct Level {
        std::unique_ptr<CpSpec> current;
        std::unique_ptr<ChildrenSpec> pending;  // an item with a repetition, or a group, that no list has taken yet
        SeqSpec* sequence = nullptr;
        ChoiceSpec* choice = nullptr;
    };

    bool failWith(const std::string& text) {
        if (levels.size() == 1) {
            Report::message(reader, in, text);
        } else {
            Report::nestedMessage(reader, ChildrenSpecReader(dtd), in, text);
        }
        return false;
    }

    bool fail() { return failWith(in.getErrorMessage()); }

    bool failUnexpected() { return failWith("unexpected \"" + token + "\""); }

    bool nextToken() {
        position = StreamAccess::tell(in);
        return in.getToken(token) || fail();
    }

    RepType readMark() {
        RepType repetition = REP_ONCE;
        // Only the outermost reader's note is ever seen: that of a nested one goes with it when it succeeds.
        if (!readRepetition(in, repetition) && levels.size() == 1) fail();
        return repetition;
    }

    bool beginGroup() {
        levels.emplace_back();
        if (!in.checkToken("(")) return fail();
        return nextToken();
    }

    // One item, whose first token has been read, and the token after it.
    bool readItem() {
        Level& level = levels.back();
        if (token == "(") {
            StreamAccess::seek(in, position);
            return beginGroup();
        }
        if (isName(token)) {
            const std::string name = token;
            addName(level, name, readMark());
        } else if (token == "#PCDATA" && level.choice != nullptr) {
            level.choice->addCharDataAsChoice(true);
        } else {
            return failUnexpected();
        }
        return goOn();
    }

    void addName(Level& level, const std::string& name, RepType repetition) {
        if (level.sequence != nullptr) {
            level.sequence->add(name, repetition);
        } else if (level.choice != nullptr) {
            level.choice->addChoice(name, repetition);
        } else if (repetition != REP_ONCE) {
            level.pending = std::make_unique<ChildrenSpec>(dtd, name, repetition);
        } else {
            level.current = std::make_unique<NameSpec>(dtd, name);
        }
    }

    // What follows an item: a separator, the end of the group (and perhaps of those around it), or, without a
    // separator, the next item.
    bool goOn() {
        for (;;) {
            if (!nextToken()) return false;
            Level& level = levels.back();
            if (token == ")") {
                endGroup();
                if (levels.empty()) return true;
                continue;
            }
            if (token == ",") {
                if (level.choice != nullptr) return failUnexpected();
                if (level.sequence == nullptr) openSequence(level);
                return nextToken();
            }
            if (token == "|") {
                if (level.sequence != nullptr) return failUnexpected();
                if (level.choice == nullptr) openChoice(level);
                return nextToken();
            }
            return true;
        }
    }

    void openSequence(Level& level) {
        auto sequence = std::make_unique<SeqSpec>(dtd);
        level.sequence = sequence.get();
        fill(level, *sequence, &SeqSpec::add, &SeqSpec::add);
        level.current = std::move(sequence);
    }

    void openChoice(Level& level) {
        auto choice = std::make_unique<ChoiceSpec>(dtd);
        level.choice = choice.get();
        fill(level, *choice, &ChoiceSpec::addChoice, &ChoiceSpec::addChoice);
        level.current = std::move(choice);
    }

    // Moves what stands before the first separator into the list.
    template <class List>
    static void fill(Level& level, List& list, void (List::*addParticle)(CpSpec*, RepType),
                     void (List::*addMember)(ChildrenSpec*)) {
        if (level.current) {
            (list.*addParticle)(level.current.get(), REP_ONCE);
            level.current.release();
        }
        if (level.pending) {
            (list.*addMember)(level.pending.get());
            level.pending.release();
        }
    }

    // The innermost group is complete: an item of the one around it, or the model.
    void endGroup() {
        Level& level = levels.back();
        if (level.pending) {
            if (level.current) Report::diagnose(in, "<ChildrenSpecReader::parse> cur not 0");
            auto sequence = std::make_unique<SeqSpec>(dtd);
            sequence->add(level.pending.get());
            level.pending.release();
            level.current = std::move(sequence);
        }
        const RepType repetition = readMark();
        auto group = std::make_unique<ChildrenSpec>(dtd, level.current.get(), repetition);
        level.current.release();
        levels.pop_back();
        if (levels.empty()) {
            complete = std::move(group);
            return;
        }
        Level& outer = levels.back();
        if (outer.sequence != nullptr) {
            outer.sequence->add(group.get());
            group.release();
        } else if (outer.choice != nullptr) {
            outer.choice->addChoice(group.get());
            group.release();
        } else {
            outer.pending = std::move(group);
        }
    }

    ChildrenSpecReader& reader;
    InStream& in;
    Dtd* dtd;
    std::vector<Level> levels;  // outermost first
    std::unique_ptr<ChildrenSpec> complete;
    std::string token;
    int position = 0;  // where the token was read, for a nested group to read it again
};

}  // namespace

ChildrenSpecReader::ChildrenSpecReader(Dtd* itsDtd) : dtd(itsDtd) {}

ChildrenSpecReader::~ChildrenSpecReader() = default;

bool ChildrenSpecReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    return Groups(*this, in, dtd).read(model);
}

ChildrenSpec* ChildrenSpecReader::extractChildrenSpec() { return model.release(); }

}  // namespace Xml
