#include "xml/standard/Read.h"

#include "xml/dom/Document.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/Places.h"
#include "xml/standard/internal/Positions.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/SourceText.h"
#include "xml/standard/internal/TreeReader.h"
#include <algorithm>
#include <utility>

namespace Xml {

ReadResult::ReadResult(std::unique_ptr<Document> read) : document(std::move(read)) {}

ReadResult::ReadResult(Problem problem) { all.push_back(std::move(problem)); }

ReadResult::ReadResult(ReadResult&& other) noexcept = default;

ReadResult& ReadResult::operator=(ReadResult&& other) noexcept = default;

ReadResult::~ReadResult() = default;

std::unique_ptr<Document> ReadResult::take() { return std::move(document); }

std::string ReadResult::message() const {
    std::string result;
    for (const Problem& problem : all) {
        if (!result.empty()) result += '\n';
        result += problem.toString();
    }
    if (result.empty() && document == nullptr) result = "the document was taken";
    return result;
}

namespace {

// The bytes are no text from some place on. The place is in the text.
void report(const DecodingFailure& failure, std::string_view text, Problem& problem) {
    const bool isUnknown = failure.kind == DecodingFailure::Kind::UnknownEncoding;
    problem.kind = isUnknown ? Problem::Kind::Unsupported : Problem::Kind::Malformed;
    problem.text = failure.text;
    problem.rule = StandardRules::kCharacterEncodingInEntities;
    const auto offset = std::min(static_cast<std::size_t>(failure.textOffset), text.size());
    problem.place.offset = static_cast<std::int64_t>(offset);
    problem.excerpt = excerptOf(text, offset);
}

}  // namespace

// What is wrong before the bytes stop being text comes first.
ReadResult readText(std::string_view text, const ReadOptions& options) {
    SourceText source(text, options.encoding);
    const auto& failure = source.decoder().failure();
    Problem problem;
    std::unique_ptr<Document> document = readTree(source.text(), !failure, options, problem);
    if (document != nullptr) return ReadResult(std::move(document));

    const bool isDecodingFailure = problem.text.empty();
    if (isDecodingFailure) report(*failure, source.text(), problem);
    Places places;
    const TextPosition& place = places.at(problem.place.offset, source.text());
    problem.source = options.source;
    problem.place = {isDecodingFailure ? failure->offset : source.decoder().sourceOffset(place),
                     static_cast<int>(place.line), static_cast<int>(place.column)};
    return ReadResult(std::move(problem));
}

}  // namespace Xml
