#include "xml/standard/StreamReader.h"

#include "xml/dom/Element.h"
#include "xml/standard/internal/StreamEvents.h"

namespace Xml {

StreamReader::StreamReader(std::istream& in, const ReadOptions& options)
    : events(std::make_unique<StreamEvents>(in, options)), shown(&events->atHand()) {}

StreamReader::StreamReader(std::string_view text, const ReadOptions& options)
    : events(std::make_unique<StreamEvents>(text, options)), shown(&events->atHand()) {}

StreamReader::StreamReader(StreamReader&& other) noexcept = default;

StreamReader& StreamReader::operator=(StreamReader&& other) noexcept = default;

StreamReader::~StreamReader() = default;

StreamReader::Event StreamReader::next() { return events->next(); }

std::string_view StreamReader::localName() const { return events->localName(); }

std::string_view StreamReader::namespaceUri() const { return events->namespaceUri(); }

std::optional<std::string_view> StreamReader::attribute(std::string_view name) const { return events->attribute(name); }

Place StreamReader::place() const { return events->place(); }

std::unique_ptr<Element> StreamReader::readElement() { return events->readElement(); }

void StreamReader::skipElement() { events->skipElement(); }

const Prolog& StreamReader::prolog() const { return events->prolog(); }

const std::vector<Problem>& StreamReader::problems() const { return events->problems(); }

}  // namespace Xml
