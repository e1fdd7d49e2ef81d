#pragma once

#include "xml/Export.h"
#include "xml/standard/Problem.h"
#include "xml/standard/WriteOptions.h"
#include <iosfwd>
#include <memory>
#include <string_view>
#include <vector>

namespace Xml {

class Object;
struct Prolog;
class StreamOutput;
class StreamReader;

// Writes a document of XML 1.0 piece by piece, with memory for its largest piece and the depth.
//
//     StreamWriter writer(out);
//     writer.start("log").start("entry").attribute("id", "1").text("a < b").end().end();
//     if (!writer.finish()) return writer.problems()[0].toString();
//
// A filter is a loop; it loses nothing where the reader keeps everything and the indentation is empty:
//
//     while (reader.next() != StreamReader::Event::Finished && ...) writer.copy(reader);
//
// What XML cannot say is a problem, and not written; from then on nothing is. Nothing throws but std::bad_alloc; where
// that comes from a call, nothing more is written either.
//
// Indentation is added before child elements as long as the element has no text: where text follows them the option
// `indent` should be empty.
class ORVXML_API StreamWriter {
public:
    // The stream must stay. Options are copied; where they are of no use, that is a problem at once.
    explicit StreamWriter(std::ostream& out, const WriteOptions& options = {});

    // Of one that was moved from nothing may be asked.
    StreamWriter(StreamWriter&& other) noexcept;
    StreamWriter& operator=(StreamWriter&& other) noexcept;

    // Gives the stream what it has not been given, as finish() does.
    ~StreamWriter();

    // Before anything else: the declaration, the document type, and the comments and instructions around the root;
    // those after it are written by finish(). Without it the options alone say the declaration.
    StreamWriter& prolog(const Prolog& prolog);

    // Attributes follow the start of their element, or each other.
    StreamWriter& start(std::string_view name);
    StreamWriter& attribute(std::string_view name, std::string_view value);

    // In an element; the texts as they are meant. Comments and instructions may stand around the root too.
    StreamWriter& text(std::string_view text);
    StreamWriter& cdata(std::string_view text);
    StreamWriter& comment(std::string_view text);
    StreamWriter& instruction(std::string_view target, std::string_view content);

    // A node with all below it: an element, or what may stand in one.
    StreamWriter& node(const Object& subtree);

    // The event at hand. The first one brings the declaration and the mark of the document as the options say, and a
    // Doctype the document type; what that supplies is left out then, unless the option `defaults` is set. After Failed
    // the problems of the reader are those of the writer too.
    StreamWriter& copy(const StreamReader& at);

    // Ends the innermost element.
    StreamWriter& end();

    // Ends the document and gives the stream all of it. False: see problems(). What comes after it is a problem too.
    bool finish();

    // One at most, or those of a reader.
    const std::vector<Problem>& problems() const;

private:
    std::unique_ptr<StreamOutput> output;
};

}  // namespace Xml
