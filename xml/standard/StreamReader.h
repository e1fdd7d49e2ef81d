#pragma once

#include "xml/Export.h"
#include "xml/dom/Place.h"
#include "xml/standard/EventAtHand.h"
#include "xml/standard/Problem.h"
#include "xml/standard/ReadOptions.h"
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Element;
struct Prolog;
class StreamEvents;

// Reads a document of XML 1.0 an event at a time: what is as large as one likes, with the memory of its largest part.
// Beside the document type that is the largest tag, text, comment, instruction or section, and the depth.
//
//     StreamReader reader(in);
//     for (;;) {
//         switch (reader.next()) {
//         case StreamReader::Event::Start:
//             if (reader.name() == "record") use(*reader.readElement());
//             break;
//         case StreamReader::Event::Failed: return reader.problems()[0].toString();
//         case StreamReader::Event::Finished: return "";
//         default: break;
//         }
//     }
//
// The document is checked as readText does, and the events are what that makes nodes of; there are no others for what
// the options drop. Options are copied. Space::Content is as Space::All but in readElement(), since what is dropped so
// is known at the end of an element only. keepPlaces is for the nodes of readElement().
//
// It reads ahead of the event at hand, of a pipe as far as bytes are there. Nothing throws but std::bad_alloc; where
// that comes from what goes on in the document, Failed is at hand, without a problem.
class ORVXML_API StreamReader {
public:
    enum class Event : std::uint8_t {
        Start,
        End,    // also after the Start of an empty tag
        Text,   // all of it up to what is kept beside it, with references resolved; never empty
        CData,  // only where keepCData is set; otherwise what is in a section is part of a text
        Comment,
        Instruction,
        Doctype,   // with the internal subset: see prolog()
        Finished,  // the document ends here, and nothing stands after it. Stays
        Failed,    // see problems(). Stays
    };

    // From where the stream stands, to its end. The stream must stay, and belongs to the reader meanwhile.
    explicit StreamReader(std::istream& in, const ReadOptions& options = {});

    // The text must stay. Of UTF-8 no copy is made.
    explicit StreamReader(std::string_view text, const ReadOptions& options = {});
    explicit StreamReader(const char* text, const ReadOptions& options = {})
        : StreamReader(std::string_view(text), options) {}
    StreamReader(std::string&& text, const ReadOptions& options = {}) = delete;

    // Of one that was moved from nothing may be asked.
    StreamReader(StreamReader&& other) noexcept;
    StreamReader& operator=(StreamReader&& other) noexcept;
    ~StreamReader();

    // Goes on to the next event. Nothing is read before the first one.
    Event next();

    // --- The event at hand. Views are good until next(), readElement() or skipElement(); of other events than those
    // that are named they are empty ---

    // Of a Start and an End the element's, of an Instruction its target, of a Doctype that of the root.
    std::string_view name() const { return shown->name; }

    // Of a Text, a CData, a Comment, an Instruction. Line ends are LF.
    std::string_view text() const { return shown->text; }

    // Of a Start and an End: what stands after the prefix, and the namespace. Without the option `namespaces` that is
    // the name, and none. O(log n) in the prefixes in scope.
    std::string_view localName() const;
    std::string_view namespaceUri() const;

    // Of a Start: in the order of the tag, after them those that the document type supplies; declarations of namespaces
    // too. `i` is less than the count.
    int attributeCount() const { return static_cast<int>(shown->attributeCount); }
    std::string_view attributeName(int i) const { return shown->attributes[i].name; }
    std::string_view attributeValue(int i) const { return shown->attributes[i].value; }

    // The value of that one. Of many attributes O(log n), once they were sorted.
    std::optional<std::string_view> attribute(std::string_view name) const;

    // How many elements are open, the one whose Start or End is at hand included.
    int depth() const { return static_cast<int>(shown->depth); }

    // Where it begins; what comes from an entity has the place of the outermost reference. Asked at each event, it
    // costs a look at all bytes in all.
    Place place() const;

    // --- More than an event ---

    // After a Start: the whole element, as a tree. The End of the element is at hand then. Null after any other event,
    // and where the element does not end well: then Failed is at hand.
    std::unique_ptr<Element> readElement();

    // After a Start: goes on to its End, or to Failed. Otherwise nothing happens.
    void skipElement();

    // --- The document ---

    // What is known so far: the declaration and the mark after the first event, the line end once it was read, the
    // document type after its Doctype. Comments and instructions are not in it: they are events.
    const Prolog& prolog() const;

    // None before Failed; then one, more where several options are not supported.
    const std::vector<Problem>& problems() const;

private:
    friend struct StreamReaderAccess;

    std::unique_ptr<StreamEvents> events;
    const internal::EventAtHand* shown;  // of those
};

}  // namespace Xml
