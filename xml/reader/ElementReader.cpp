#include "xml/reader/ElementReader.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Names.h"
#include <memory>
#include <utility>

// What is told as a reader that runs another reader for each child element is one loop here, with the open elements on a
// stack. Two things still show the readers it stands for: a nested element that fails reports under the name of the plain
// element reader, whoever reads the outer one, and an element becomes a child when it is complete.
//
// Elements are made by this reader alone and are linked here, not by addChild: nothing links to a Dtd yet and everything is
// marked as changed already, so that neither the subtree nor the ancestors need to be walked for each child.

namespace Xml {

class ElementReader::Run {
public:
    Run(ElementReader& outerReader, InStream& stream)
        : reader(outerReader), in(stream), session(stream), budget(EntityBudget::of(outerReader, ownBudget)) {}

    ~Run() {
        // What was not finished belongs to nobody but the outermost element, which is the reader's.
        for (std::size_t i = 1; i < open.size(); ++i) delete open[i];
    }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool run() {
        if (!beginElement()) return false;
        while (!complete) {
            if (!readContent()) return false;
        }
        return true;
    }

private:
    // --- Failures, as the reader of the innermost element would report them ---

    bool failWith(const std::string& text) {
        if (depth == 1) return reader.fail(in, text);
        ElementReader nested(reader.dtd);
        Report::message(nested, in, text);
        return reader.failAs(nested);
    }

    bool fail() { return failWith(in.getErrorMessage()); }

    bool failSilently() {
        if (depth > 1) reader.setMessage(std::string());  // the message of a nested reader that has none
        return false;
    }

    // --- Tags ---

    // The start tag of an element, with its end when it has no content.
    bool beginElement() {
        ++depth;
        if (!in.checkToken(kLessThen)) return fail();
        StreamAccess::clear(in);
        if (!in.getNameInParseBuffer()) return fail();
        addElement();
        if (!readAttributes(*open.back())) return false;
        if (StreamAccess::token(in) == kSlashGreaterThen) {
            endElement();
            return true;
        }
        return StreamAccess::token(in) == kGreaterThen || failSilently();
    }

    void addElement() {
        std::unique_ptr<Element> element = NodeAccess::makeElement(StreamAccess::token(in));
        open.push_back(nullptr);  // so that nothing can fail once the element has its owner
        open.back() = element.release();
        if (open.size() == 1) reader.root.reset(open.back());
    }

    // Up to the token behind the attributes, which stays in the parse buffer.
    bool readAttributes(Element& element) {
        const Sorting sorting{element};
        std::string name;
        while (true) {
            if (!StreamAccess::getToken(in)) return fail();
            if (!isName(StreamAccess::token(in))) return true;
            name = StreamAccess::token(in);
            if (!in.checkToken(kEqual)) return fail();
            StreamAccess::clear(in);
            if (!in.getStringInParseBuffer()) return fail();
            const std::string& literal = StreamAccess::token(in);
            DataHolder value(literal, 1, literal.size() - 2);
            if (!budget.expand(in, value, reader.dtd)) return failWith(kEntityTextTooLarge);
            NodeAccess::appendAttribute(element, name, std::move(value));
        }
    }

    // Puts the attributes in order however reading them ends.
    struct Sorting {
        Element& element;
        ~Sorting() { NodeAccess::sortAttributes(element); }
    };

    bool readEndTag() {
        if (!in.checkToken(open.back()->getName()) || !in.checkToken(kGreaterThen)) return fail();
        endElement();
        return true;
    }

    // The innermost element is complete and becomes a child of the one around it.
    void endElement() {
        if (open.size() == 1) {
            complete = true;
            return;
        }
        std::unique_ptr<Element> element(std::exchange(open.back(), nullptr));
        open.pop_back();
        NodeAccess::appendChild(*open.back(), std::move(element));
        --depth;
    }

    // --- Content ---

    // The next piece of the innermost element's content, or its end tag.
    bool readContent() {
        const int position = StreamAccess::tell(in);
        if (!StreamAccess::getContentToken(in, referenceEnd)) return fail();
        const std::string& token = StreamAccess::token(in);
        if (token[0] == '<') {
            if (token == kLessThenSlash) return readEndTag();
            const bool isElement = token == kLessThen;
            if (!isElement && token != kBeginComment) return failWith("unexpected markup \"" + token + "\"");
            StreamAccess::seek(in, position);
            if (isElement) return beginElement();
            return in.skip(kEndComment) || failSilently();
        }
        StreamAccess::seek(in, position);
        std::unique_ptr<CharData> text = NodeAccess::makeCharData();
        if (!in.getCharData(text->data())) return fail();
        NodeAccess::appendChild(*open.back(), std::move(text));
        return true;
    }

    ElementReader& reader;
    InStream& in;
    StreamAccess::Session session;
    EntityBudget ownBudget;
    EntityBudget& budget;
    std::vector<Element*> open;  // begun and not complete, outermost first
    std::size_t depth = 0;       // of the element whose reader would be at work
    int referenceEnd = 0;        // behind the last reference that was read
    bool complete = false;
};

ElementReader::ElementReader(Dtd* itsDtd) : dtd(itsDtd) {}

ElementReader::~ElementReader() = default;

bool ElementReader::parse(InStream& in) { return Run(*this, in).run(); }

Element* ElementReader::getRoot() { return root.get(); }

const Element* ElementReader::getRoot() const { return root.get(); }

Element* ElementReader::extractRoot() { return root.release(); }

}  // namespace Xml
