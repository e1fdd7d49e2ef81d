// Texts, and the entities that they lead into.
#include "xml/standard/internal/Lexer.h"

#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"

namespace Xml {

using Syntax::viewOf;

// Up to the next markup, which may be in an entity, or the end of the document. Mostly a text stands there as it is.
bool Lexer::readText() {
    if (!isInText) {
        while (in.at == in.end && in.isInEntity()) {
            if (!leaveEntity()) return false;
        }
        itsOffset = in.offsetOf(in.at);
        const Runs::Run run = Runs::of<'<', '&', ']'>(in.at, in.end);
        if (run.end != in.end && *run.end == '<' && (!run.hasReturn || in.isInEntity())) {
            itsText = viewOf(in.at, run.end);
            textHasReference = in.isInEntity();
            in.at = run.end;
            return true;
        }
        isInText = true;
        textHasReference = false;
        buffer.clear();
    }
    if (!readMoreText()) return false;
    isInText = false;
    itsText = buffer;
    return true;
}

// What was appended to the buffer has been read, so that nothing is read again when there is more. The text begins with
// the first of that: what stands before it may be references to entities without a text.
bool Lexer::readMoreText() {
    for (;;) {
        if (buffer.empty()) itsOffset = in.offsetOf(in.at);
        const Runs::Run run = Runs::of<'<', '&', ']'>(in.at, in.end);
        const char* to = run.end;
        if (to == in.end && to != in.at && in.isGrowing() && to[-1] == '\r') --to;  // a LF may follow
        const std::string_view piece = viewOf(in.at, to);
        if (run.hasReturn && !in.isInEntity()) {
            Syntax::appendLines(buffer, piece);
        } else {
            buffer += piece;
        }
        textHasReference |= in.isInEntity() && !piece.empty();
        in.at = to;
        if (run.end == in.end) {
            if (!in.isInEntity()) return !in.isGrowing() || in.endsEarly(to, StandardRules::kContent, {});
            if (!leaveEntity()) return false;
            continue;
        }
        switch (*to) {
        case '<': return true;
        case '&':
            if (!readReference()) return false;
            break;
        case ']':
            if (in.end - to < 3 && in.isGrowing()) return in.endsEarly(to, StandardRules::kContent, {});
            if (Syntax::startsWith(in, "]]>")) return in.fail(to, StandardRules::kCharData, "\"]]>\" in a text");
            buffer += ']';
            textHasReference |= in.isInEntity();
            ++in.at;
            break;
        default: return Syntax::failAtCharacter(in, to);
        }
    }
}

bool Lexer::readReference() {
    const char* const from = in.at;
    if (in.end - from >= 2 && from[1] == '#') {
        if (!Syntax::readCharacterReference(in, buffer)) return false;
        textHasReference = true;
        return true;
    }
    std::string_view name;
    if (!Syntax::readReferenceName(in, name, options.namespaces)) return false;
    if (const char c = Syntax::predefined(name)) {
        buffer += c;
        textHasReference = true;
        return true;
    }
    DeclaredEntity* const entity = tags.findEntity(name, from);
    if (entity != nullptr && entity->kind == DeclaredEntity::Kind::Internal)
        return in.enter(name, *entity, from, open.size());
    if (entity != nullptr) {
        in.fail(from, StandardRules::kIncludedIfValidating, "&" + std::string(name) + "; is external, and is not read",
                Problem::Kind::Refused);
    }
    return false;
}

bool Lexer::leaveEntity() {
    if (open.size() != in.openBefore()) return failAtEnd(in.at);
    in.leave();
    return true;
}

}  // namespace Xml
