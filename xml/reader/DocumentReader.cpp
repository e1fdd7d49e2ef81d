#include "xml/reader/DocumentReader.h"

#include "xml/dom/Document.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/PIReader.h"
#include "xml/reader/VersionInfoReader.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/FastProlog.h"
#include "xml/reader/internal/Tokens.h"
#include "xml/stream/internal/StreamAccess.h"
#include <memory>
#include <string>
#include <utility>

namespace Xml {

DocumentReader::DocumentReader() = default;

DocumentReader::~DocumentReader() = default;

bool DocumentReader::parse(InStream& in) {
    const StreamAccess::Session session(in);
    return parseProlog(in) && parseElement(in) && parseMisc(in);
}

// Reads a token and comes back to where it began.
bool DocumentReader::peekToken(InStream& in, std::string& token) {
    const int position = StreamAccess::tell(in);
    if (!getToken(in, token)) return false;
    StreamAccess::seek(in, position);
    return true;
}

bool DocumentReader::parseProlog(InStream& in) {
    const StreamAccess::Session session(in);
    dtd.reset();
    if (!FastProlog::takeDeclaration(in) && !parseDeclaration(in)) return false;
    const Following following = readMisc(in);
    if (following != Following::Other) return following == Following::Element;

    std::string token;
    const int position = StreamAccess::tell(in);
    if (!peekToken(in, token)) return false;
    if (token != "<!DOCTYPE") return true;
    for (int i = 0; i < 3; ++i) {
        if (!getToken(in, token)) return false;
    }
    if (token == "PUBLIC") {
        while (token != kGreaterThen) {
            if (!getToken(in, token)) return false;
        }
        return true;
    }
    StreamAccess::seek(in, position);
    DoctypeReader reader;
    auto itsBudget = std::make_unique<EntityBudget>();
    EntityBudget::give(reader, *itsBudget);
    if (!reader.parse(in)) return failAs(reader);
    dtd.reset(reader.extractDtd());
    ownBudget = std::move(itsBudget);
    if (!parseMisc(in)) return false;
    // Called by itself, the step with the root element counts its bytes from its own beginning.
    if (StreamAccess::isOutermost(in)) DtdAccess::addBytesRead(*dtd, StreamAccess::bytesRead(in));
    return true;
}

// The XML declaration, where there is one.
bool DocumentReader::parseDeclaration(InStream& in) {
    std::string token;
    if (!peekToken(in, token)) return false;
    if (token != "<?xml") return true;
    VersionInfoReader reader;
    if (!reader.parse(in)) return failAs(reader);
    if (!reader.getErrorMessage().empty()) setMessage(reader.getErrorMessage());  // a note, no failure
    return true;
}

bool DocumentReader::parseElement(InStream& in) {
    const StreamAccess::Session session(in);
    ElementReader reader(dtd.get());
    if (ownBudget) EntityBudget::give(reader, *ownBudget);
    if (!reader.parse(in)) return failAs(reader);
    document.reset();
    if (dtd == nullptr) {
        document = NodeAccess::makeDocument(std::unique_ptr<Element>(reader.extractRoot()));
        return true;
    }
    document = std::make_unique<Document>(reader.getRoot(), dtd.get());
    reader.extractRoot();  // the document's now, as the Dtd
    dtd.release();
    return document->validate() || fail(in, "Doc could not be validated");
}

bool DocumentReader::parseMisc(InStream& in) { return readMisc(in) != Following::Failure; }

DocumentReader::Following DocumentReader::readMisc(InStream& in) {
    const StreamAccess::Session session(in);
    in.eatWhite();
    if (StreamAccess::atEnd(in)) return Following::Other;
    for (;;) {
        if (FastProlog::isBeforeElement(in)) return Following::Element;
        std::string token;
        // Running out of data is no failure here, although it leaves its message.
        if (!peekToken(in, token)) return in.eof() ? Following::Other : Following::Failure;
        const auto run = [this, &in](auto&& reader) { return reader.parse(in) || failAs(reader); };
        if (token == kBeginComment) {
            if (!run(CommentReader())) return Following::Failure;
        } else if (token == kBeginPI) {
            if (!run(PIReader())) return Following::Failure;
        } else {
            return Following::Other;
        }
    }
}

Document* DocumentReader::getDocument() { return document.get(); }

const Document* DocumentReader::getDocument() const { return document.get(); }

Document* DocumentReader::extractDocument() { return document.release(); }

}  // namespace Xml
