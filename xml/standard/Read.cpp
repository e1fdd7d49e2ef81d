#include "xml/standard/Read.h"

#include "xml/standard/internal/FileBytes.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/ResultAccess.h"
#include "xml/standard/internal/SourceText.h"
#include "xml/standard/internal/StreamBytes.h"
#include "xml/standard/internal/TreeReader.h"
#include <optional>
#include <utility>

namespace Xml {

namespace {

std::optional<ReadResult> refuse(const ReadOptions& options, const std::string& source) {
    std::vector<Problem> problems = unsupported(options, source);
    if (problems.empty()) return std::nullopt;
    return ResultAccess::notRead(std::move(problems));
}

ReadResult readBytes(std::string_view bytes, const ReadOptions& options, const std::string& source) {
    SourceText text(bytes, options.encoding);
    Problem problem;
    if (std::unique_ptr<Document> document = readTree(text, options, problem))
        return ResultAccess::read(std::move(document));
    problem.source = source;
    return ResultAccess::notRead(std::move(problem));
}

bool isTooLong(std::string_view bytes, const ReadOptions& options) {
    return options.maxBytes > 0 && bytes.size() > static_cast<std::uint64_t>(options.maxBytes);
}

std::string_view withinLimit(std::string_view bytes, const ReadOptions& options) {
    return bytes.substr(0, static_cast<std::size_t>(options.maxBytes));
}

}  // namespace

ReadResult readFile(const std::filesystem::path& path, const ReadOptions& options) {
    const std::string source = path.string();
    if (auto refused = refuse(options, source)) return std::move(*refused);
    FileBytes file;
    const auto problem = [&](Problem::Kind kind) {
        return ResultAccess::notRead(problemOf(source, kind, "the file cannot be read: " + file.reason()));
    };
    switch (file.read(source, options.maxBytes)) {
    case FileBytes::Ending::NotFound: return problem(Problem::Kind::NotFound);
    case FileBytes::Ending::Unreadable: return problem(Problem::Kind::Unreadable);
    case FileBytes::Ending::TooLong: return ResultAccess::notRead(tooLong(options, source, file.bytes()));
    case FileBytes::Ending::Whole: break;
    }
    return readBytes(file.bytes(), options, source);
}

ReadResult readText(std::string_view text, const ReadOptions& options) {
    if (auto refused = refuse(options, options.source)) return std::move(*refused);
    if (isTooLong(text, options))
        return ResultAccess::notRead(tooLong(options, options.source, withinLimit(text, options)));
    return readBytes(text, options, options.source);
}

ReadResult readStream(std::istream& in, const ReadOptions& options) {
    if (auto refused = refuse(options, options.source)) return std::move(*refused);
    StreamBytes stream(in);
    std::string bytes;
    std::string piece;
    for (;;) {
        const StreamBytes::Ending ending = stream.read(piece);
        if (ending == StreamBytes::Ending::Unreadable) {
            return ResultAccess::notRead(unreadable(options.source, stream.reason()));
        }
        if (ending == StreamBytes::Ending::End) break;
        bytes += piece;
        if (isTooLong(bytes, options))
            return ResultAccess::notRead(tooLong(options, options.source, withinLimit(bytes, options)));
    }
    return readBytes(bytes, options, options.source);
}

}  // namespace Xml
