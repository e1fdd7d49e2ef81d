#include "xml/standard/internal/OutputForm.h"

#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Encodings.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/OptionProblems.h"

namespace Xml {

namespace {

bool isUnicode(Encoding encoding) {
    return encoding != Encoding::Ascii && encoding != Encoding::Latin1 && encoding != Encoding::Other;
}

bool hasOrder(Encoding encoding) {
    return encoding == Encoding::Utf16Le || encoding == Encoding::Utf16Be || encoding == Encoding::Utf32Le ||
           encoding == Encoding::Utf32Be;
}

}  // namespace

bool OutputForm::set(const WriteOptions& options, Problem& problem) {
    const auto refuse = [&](const std::string& text, const char* option) {
        problem = problemOf({}, Problem::Kind::Unsupported, text, option);
        return false;
    };
    if (options.newline != "\n" && options.newline != "\r\n" && options.newline != "\r")
        return refuse("the option newline is no line end", "newline");
    if (options.indent.find_first_not_of(" \t") != std::string::npos)
        return refuse("the option indent has other characters than blanks and tabs", "indent");
    name = options.encoding.empty() ? "UTF-8" : options.encoding;
    const Encoding encoding = encodingNamed(name);
    if (encoding != Encoding::Utf8) {
        if (isEncodingName(name)) encoder = Encoder::make(name);
        if (encoder == nullptr) return refuse("the encoding " + messageLine(name) + " cannot be written", "encoding");
    }
    if (options.mark && !isUnicode(encoding)) return refuse("the encoding " + name + " has no byte order mark", "mark");
    hasMark = options.mark || encoding == Encoding::Utf16 || encoding == Encoding::Utf32;
    return true;
}

std::string declaredEncoding(const WriteOptions& options, const Prolog* prolog) {
    const Encoding encoding = encodingNamed(options.encoding);
    if (prolog == nullptr || !hasOrder(encoding) || encodingNamed(prolog->readAs) != encoding) return options.encoding;
    if (prolog->encoding.empty()) return options.mark && prolog->hasDeclaration ? "" : options.encoding;
    return isSameEncoding(encodingNamed(prolog->encoding), encoding) ? prolog->encoding : options.encoding;
}

}  // namespace Xml
