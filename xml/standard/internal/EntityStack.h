#pragma once

#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/Fault.h"
#include "xml/standard/internal/Positions.h"
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// What is being read: the document, of which a window is there, and on top of it the replacement texts of entities that
// are open. `at` and `end` are what is left of the innermost one.
//
// A construct is read from `at` on and may turn out to be cut off by the end of the window. Then the state is Cut, and
// the construct is read again from its first byte when there is more. So everything that finds an end asks endsEarly(),
// and everything that finds something else than it expects asks expected(), failUnlessKeyword(), or fail() where
// nothing that may follow would change that. All return false.
class EntityStack {
public:
    enum class State : std::uint8_t { Reading, Cut, Failed };

    explicit EntityStack(std::int64_t growthLimit) : limit(growthLimit) {}
    EntityStack(const EntityStack&) = delete;
    EntityStack& operator=(const EntityStack&) = delete;

    const char* at = nullptr;
    const char* end = nullptr;

    // --- The window ---

    // Lets go of what was read; how many bytes that were. The window has to be given anew then, from there on.
    std::size_t release();
    void setWindow(std::string_view text, bool isLast);

    // Whether there may be more after `end`.
    bool isGrowing() const { return frames.empty() && !isWindowLast; }

    // --- Entities ---

    bool isInEntity() const { return !frames.empty(); }
    std::size_t height() const { return frames.size(); }

    // What was open when the innermost entity was entered, as the one that entered it counts.
    std::size_t openBefore() const { return frames.empty() ? 0 : frames.back().open; }

    // Goes on in the replacement text; `reference` is where the reference begins, and `at` after it.
    bool enter(std::string_view name, DeclaredEntity& entity, const char* reference, std::size_t open);

    // Goes on after the reference. All of the innermost entity was read.
    void leave();

    // Whether the innermost entities belong to the document type.
    bool isInParameterEntity() const { return !frames.empty() && frames.front().entity->isParameter; }

    // The document type makes so much text, or a node that takes memory also where it has few bytes. What is refused is
    // what entities make of few bytes: 400 bytes make 16 million elements of four bytes each.
    bool grow(std::size_t byteCount, const char* where);
    static constexpr std::size_t kElementCost = 96;  // about what they take in a tree
    static constexpr std::size_t kNodeCost = 32;
    std::int64_t growth() const { return grown; }
    void setGrowth(std::int64_t byteCount) { grown = byteCount; }

    // --- What is wrong ---

    State state() const { return now; }
    const Fault& fault() const { return found; }
    void goOn() { now = State::Reading; }

    bool fail(const char* where, const char* rule, std::string text, Problem::Kind kind = Problem::Kind::Malformed);

    // The same, where something is looked for as a whole: what is left there may be the beginning of it.
    bool failUnlessKeyword(const char* where, const char* rule, std::string text);
    bool endsEarly(const char* where, const char* rule, std::string text);

    // endsEarly, but for the name of the rule: in a parameter entity that is not that of what such an entity contains.
    bool isCutOff(const char* where, const char* rule, std::string text);

    // The element in whose start tag the fault is.
    void setElement(std::string_view name) { found.element = name; }

    // failUnlessKeyword; the rule is Char where the character there is one that no document may have.
    bool unexpected(const char* where, const char* rule, std::string text);

    // Fails where something else was expected, and says what is there.
    bool expected(const char* where, const char* rule, const std::string& what);

    // --- Places ---

    // Of a pointer into the innermost entity: where that is in the document.
    std::int64_t offsetOf(const char* where) const {
        return frames.empty() ? positions.begin() + (where - positions.text().data()) : frames.front().offset;
    }
    Place placeOf(std::int64_t offset) const { return positions.of(offset); }
    const TextPosition& positionOf(std::int64_t offset) const { return positions.before(offset); }
    std::string_view window() const { return positions.text(); }
    std::int64_t windowBegin() const { return positions.begin(); }

    // "the end of the document", or the character there in quotes.
    std::string describe(const char* where) const;

private:
    struct Frame {
        const char* at;
        const char* end;  // of what refers to the entity
        std::string_view name;
        DeclaredEntity* entity;
        std::int64_t offset;  // of the outermost reference
        std::size_t open;
    };

    Positions positions;
    std::vector<Frame> frames;
    bool isWindowLast = false;
    std::int64_t limit;
    std::int64_t grown = 0;
    State now = State::Reading;
    Fault found;
};

}  // namespace Xml
