#pragma once

#include "xml/dom/internal/FewFirst.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/EntityStack.h"
#include "xml/standard/internal/Tags.h"
#include "xml/standard/internal/XmlDeclaration.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// Reads a document of XML 1.0, an event at a time, and checks that it is well formed. Entities are read where they are
// referred to; nothing recurses.
//
// The document is valid UTF-8 and comes in windows. An event is complete or it is not there: More asks for a window
// that begins with what was not read and goes on further.
//
//     Lexer lexer(options);
//     lexer.setWindow(text, true);
//     while (lexer.next() != Lexer::Event::Finished) ...
class Lexer {
public:
    enum class Event : std::uint8_t {
        Start,
        End,  // also after the Start of an empty tag
        Text,
        CData,
        Comment,
        Instruction,
        Doctype,
        Finished,
        Failed,  // this and Finished stay
        More,
    };

    struct Options {
        bool namespaces = true;
        int maxDepth = 0;               // 0: no limit
        std::int64_t entityGrowth = 0;  // 0: no limit
    };

    explicit Lexer(const Options& itsOptions)
        : options(itsOptions), in(options.entityGrowth), tags(in, declared, options.namespaces) {}
    Lexer(const Lexer&) = delete;
    Lexer& operator=(const Lexer&) = delete;

    // The window: at first, and after More what release() left and more after it. It ends between characters. release()
    // says how many bytes of the window were read, and lets go of them.
    //
    // What is cut off is read again from its first byte on, a document type too. So that the work stays linear, a
    // window has to be twice as long as the one before it where nothing was read of that.
    void setWindow(std::string_view text, bool isLast) { in.setWindow(text, isLast); }
    std::size_t release();

    Event next();

    // Switches the faster way for ordinary pieces of content off, or on again; returns what it was. For tests.
    static bool setPlainEnabled(bool on);

    // --- The event at hand; all views are good until the next one ---

    // Of an element, the target of an instruction, the document type.
    std::string_view name() const { return itsName; }

    // Of a text, a section, a comment, an instruction: line ends are LF, references are resolved.
    std::string_view text() const { return itsText; }

    // Whether some of the text came by a reference.
    bool hasReference() const { return textHasReference; }

    // Whether a tag follows, and not what a reader may drop.
    bool isBeforeTag() const { return in.end - in.at > 1 && *in.at == '<' && in.at[1] != '!' && in.at[1] != '?'; }

    // What follows, as far as the window goes; in an entity what is left of that.
    std::string_view ahead() const { return {in.at, static_cast<std::size_t>(in.end - in.at)}; }

    // --- Ordinary pieces of content that are read without this, by what knows their rules (see PlainContent and
    // PlainEvents) ---

    // Whether the next piece may be read so; it stays so until the outermost element ends or an event is asked for.
    bool mayBePlain() const {
        const bool isAtEnd = hasEnded && open.size() == 1;
        return part == Part::Content && !isAtEnd && !isInText && isPlainEnabled && !in.isInEntity();
    }

    // Before that: no event is at hand any more.
    void forgetEnded() {
        if (!hasEnded) return;
        hasEnded = false;
        closeInnermost();
        if (open.empty()) part = Part::AfterRoot;
    }

    // The window from the next piece on; empty where that may not be read so. No event is at hand then.
    std::string_view plainAhead();
    std::int64_t nextOffset() const { return in.offsetOf(in.at); }
    void passTo(const char* to) { in.at = to; }

    // An element that declares no prefixes begins, with that name in the window; the innermost one ends.
    [[gnu::always_inline]] void beginPlain(std::string_view name) {
        open.add(name, tags.scopes().mark(), in.offsetOf(name.data() - 1));
    }
    void endPlain() { closeInnermost(); }

    // The same where the Start is at hand then, with the attributes that were put there.
    TagAttributeList& attributesToFill() { return tags.attributesToFill(); }
    [[gnu::always_inline]] void beginShown(std::string_view name, std::int64_t offset, bool isEmptyTag) {
        open.add(name, tags.scopes().mark(), offset);
        itsName = name;
        itsOffset = offset;
        tags.setEmpty(isEmptyTag);
        isEnding = isEmptyTag;
    }
    void endShown() { open.endAt(&open.back()); }

    // Whether the innermost element is an empty tag, the End of which is next; that is at hand.
    bool isInEmptyTag() const { return isEnding; }
    void leaveEmptyTag() { isEnding = false; }

    std::string_view innermostName() const { return open.back().name; }

    // As long as more elements are open than that the innermost one ends with its end tag, and nothing else does: it is
    // not the outermost one, declares no prefixes, and its start tag is in the window.
    std::size_t plainFloor() const;

    // Whether the document type says something of attributes.
    bool hasAttributeRules() const { return !declared.elements.empty(); }

    // Whether no more elements may be open.
    bool isFull() const { return options.maxDepth > 0 && open.size() >= static_cast<std::size_t>(options.maxDepth); }

    // The name in the start tag within which the window ends; empty where it ends elsewhere.
    std::string_view cutTag() const;

    // Of a Start: in the order of the tag, and then those that the document type supplies.
    const TagAttributeList& attributes() const { return tags.attributes(); }
    bool isEmptyTag() const { return tags.isEmpty(); }

    // Where the event began in the document; in an entity that is its outermost reference.
    std::int64_t offset() const { return itsOffset; }

    // The same of an attribute; of one that the document type supplies it is that of the tag.
    std::int64_t offsetOf(const TagAttribute& attribute) const {
        return attribute.isDefault ? itsOffset : in.offsetOf(attribute.name.data());
    }
    Place placeOf(std::int64_t offset) const { return in.placeOf(offset); }

    // What stands before an offset within the window; good until the next one.
    const TextPosition& positionOf(std::int64_t offset) const { return in.positionOf(offset); }

    // Open elements, the one whose Start or End is at hand included.
    std::size_t depth() const { return open.size(); }

    // Of the open elements, and then of one whose start tag is being read: /a/b. They are not counted among their
    // namesakes: that takes memory for each name that an open element has in it.
    std::string path(std::string_view last) const;

    const Namespaces& namespaces() const { return tags.scopes(); }

    // Of a Doctype. Line ends of the identifiers are LF; the subset is as it was written.
    struct Doctype {
        std::string publicId, systemId;
        std::string_view subset;
    };
    const Doctype& doctype() const { return itsDoctype; }

    // --- Of the document ---

    const XmlDeclaration& declaration() const { return itsDeclaration; }
    const Declarations& declarations() const { return declared; }
    Declarations takeDeclarations() { return std::move(declared); }

    // Of Failed.
    const Fault& fault() const { return in.fault(); }
    std::string_view window() const { return in.window(); }
    std::int64_t windowBegin() const { return in.windowBegin(); }

private:
    enum class Part : std::uint8_t { Beginning, BeforeDoctype, BeforeRoot, Content, AfterRoot, Finished, Failed };

    // An element that has begun. Its name stands where it was read, until the window moves on; what is kept of it then
    // is the name, and the place for messages.
    struct Open {
        Open() {}  // to be assigned

        // Made in its place: what is copied there waits for the stores.
        Open(std::string_view itsName, std::size_t itsScopes, std::int64_t itsOffset)
            : name(itsName), scopes(itsScopes), offset(itsOffset) {}

        std::string_view name;
        std::size_t scopes;
        std::int64_t offset;
    };
    struct Kept {
        std::string name;
        Place place;
    };

    bool read(Event& event);
    bool readMisc(Event& event);
    bool readContent(Event& event);
    bool readComment(Event& event);
    bool readInstruction(Event& event);
    bool readSection(Event& event);
    bool readStart(Event& event);
    bool readEnd(Event& event);

    // The tag that was read; the innermost element, whose name and prefixes stay as long as the event is at hand.
    void beginElement(std::string_view name, std::size_t scopes, std::int64_t offset) {
        open.add(name, scopes, offset);
        itsName = name;
        itsOffset = offset;
        isEnding = tags.isEmpty();
    }
    bool endElement(Event& event) {
        itsName = open.back().name;
        isEnding = false;
        hasEnded = true;
        event = Event::End;
        return true;
    }
    bool failAtEnd(const char* where);
    bool readDoctype(Event& event);
    bool readDoctypeParts();
    bool readText();
    bool readMoreText();
    bool readReference();
    bool leaveEntity();
    bool growByNode(const char* where);
    void takeText(std::string_view text, bool hasReturn);
    void closeInnermost() {
        const std::size_t scopes = open.back().scopes;
        if (tags.scopes().mark() != scopes) tags.scopes().goBack(scopes);
        open.endAt(&open.back());
        if (kept.size() > open.size()) kept.pop_back();
    }

    std::string beganAtInnermost() const;

    static bool isPlainEnabled;

    Options options;
    EntityStack in;
    Declarations declared;
    Tags tags;
    XmlDeclaration itsDeclaration;
    Part part = Part::Beginning;

    FewFirst<Open> open;
    std::vector<std::unique_ptr<const Kept>> kept;  // of the first of them
    bool hasEnded = false;                          // the innermost one, with the event at hand
    bool isEnding = false;                          // the innermost one, which was an empty tag

    bool isInText = false;  // some of a text is in the buffer
    bool textHasReference = false;
    std::string buffer;

    std::string_view itsName, itsText;
    std::int64_t itsOffset = 0;
    Doctype itsDoctype;
};

}  // namespace Xml
