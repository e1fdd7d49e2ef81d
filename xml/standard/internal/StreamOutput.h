#pragma once

#include "xml/dom/Prolog.h"
#include "xml/standard/Problem.h"
#include "xml/standard/WriteOptions.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/GivenNames.h"
#include "xml/standard/internal/Markup.h"
#include "xml/standard/internal/OutputForm.h"
#include "xml/standard/internal/StreamSink.h"
#include "xml/standard/internal/WriteBuffer.h"
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Object;
class StreamReader;

// What a StreamWriter does. Each piece is put wholly or not at all: what fails is taken back.
class StreamOutput {
public:
    StreamOutput(std::ostream& out, const WriteOptions& itsOptions);
    ~StreamOutput();
    StreamOutput(const StreamOutput&) = delete;
    StreamOutput& operator=(const StreamOutput&) = delete;

    // Puts a piece, by one of the operations below. Once something has failed nothing is put.
    template <class Operation>
    void attempt(Operation operation) {
        if (isOver) return noteLatePiece();
        isOver = true;  // unless it ends well
        const std::size_t before = buffer.size();
        try {
            if (operation()) {
                sink.pass();
                isOver = false;
            } else {
                takeBack(before);
                report();
            }
        } catch (...) {
            takeBack(before);
            throw;
        }
    }

    // False where it cannot be written, and the markup has the fault, or there are problems.
    bool prolog(const Prolog& prolog);
    bool start(std::string_view name);
    bool attribute(std::string_view name, std::string_view value);
    bool text(std::string_view text);
    bool section(std::string_view text);
    bool comment(std::string_view text);
    bool instruction(std::string_view target, std::string_view content);
    bool node(const Object& subtree);
    bool copy(const StreamReader& at);
    bool end();

    bool finish();
    const std::vector<Problem>& problems() const { return found; }

private:
    enum class Stage : std::uint8_t { Beginning, BeforeDoctype, BeforeRoot, Content, AfterRoot, Finished };
    using Nodes = std::vector<std::unique_ptr<Object>>;

    // An element that is open. Its name is the last of the names of those around it, from there on.
    struct Open {
        std::size_t nameBegin;
        bool isIndented;  // as long as it has no text
        bool hasElement;
    };

    void beginDocument(const Prolog* prolog);
    bool beginPiece();
    bool beginElement();
    bool beginText(const char* what);
    void endPiece();
    void endTag();
    void startLine(std::size_t level);

    bool putDoctype(const Prolog& prolog);
    bool putAround(const Nodes& nodes);
    bool copyStart(const StreamReader& at);
    bool finishDocument();

    std::string_view innermost() const { return std::string_view(names).substr(open.back().nameBegin); }
    std::string path() const;
    void noteLatePiece();
    void takeBack(std::size_t before);
    void report();

    const WriteOptions options;
    OutputForm form;
    std::vector<Problem> found;
    StreamSink sink;
    WriteBuffer buffer;
    Markup markup;
    Stage stage = Stage::Beginning;
    bool isOver = false;  // it has failed, or is finished
    bool isTagOpen = false;
    Declarations written;  // of the document type
    std::string names;
    std::vector<Open> open;
    GivenNames given;  // of the attributes in the tag that is open
    Nodes afterRoot;   // what the prolog has there
};

}  // namespace Xml
