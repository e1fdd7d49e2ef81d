#include "xml/reader/internal/Report.h"

#include "xml/reader/Reader.h"
#include "xml/text/Message.h"

namespace Xml {

void Report::message(Reader& reader, InStream& in, const std::string& text) {
    during(in, [&] { reader.message(in, text); });
}

void Report::nestedMessage(Reader& outer, Reader&& nested, InStream& in, const std::string& text) {
    message(nested, in, text);
    outer.setMessage(nested.getErrorMessage());
}

void Report::diagnose(const InStream& in, const std::string& text) {
    during(in, [&] { Message{text}; });
}

}  // namespace Xml
