#include "xml/standard/internal/OptionProblems.h"

#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/Places.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/SourceText.h"

namespace Xml {

Problem problemOf(const std::string& source, Problem::Kind kind, const std::string& text, const char* rule) {
    Problem problem;
    problem.kind = kind;
    problem.source = source;
    problem.text = text;
    problem.rule = rule;
    return problem;
}

std::vector<Problem> unsupported(const ReadOptions& options, const std::string& source) {
    std::vector<Problem> problems;
    const auto refuseIf = [&](bool isAsked, const char* option) {
        if (!isAsked || (!problems.empty() && problems.size() >= options.maxProblems)) return;
        problems.push_back(problemOf(source, Problem::Kind::Unsupported,
                                     "the option " + std::string(option) + " is not supported", option));
    };
    refuseIf(options.validate, "validate");
    refuseIf(options.dtd != nullptr, "dtd");
    refuseIf(static_cast<bool>(options.resolver), "resolver");
    return problems;
}

std::string messageOf(const std::vector<Problem>& problems) {
    std::string result;
    for (const Problem& problem : problems) {
        if (!result.empty()) result += '\n';
        result += problem.toString();
    }
    return result;
}

Problem unreadable(const std::string& source, const char* reason) {
    return problemOf(source, Problem::Kind::Unreadable, "the stream cannot be read: " + std::string(reason));
}

Problem tooLong(const ReadOptions& options, const std::string& source) {
    Problem problem =
        problemOf(source, Problem::Kind::Limit,
                  "the source has more than " + std::to_string(options.maxBytes) + " bytes", StandardRules::kMaxBytes);
    problem.place.offset = options.maxBytes;
    return problem;
}

// Of bytes that are no text only the offset is known.
Problem tooLong(const ReadOptions& options, const std::string& name, std::string_view bytes) {
    Problem problem = tooLong(options, name);
    const SourceText source(bytes, options.encoding, SourceText::Extent::Part);
    if (source.decoder().failure()) return problem;
    const std::string_view text = source.text();
    Places places;
    problem.place = placeAt(options.maxBytes, places.at(static_cast<std::int64_t>(text.size()), text));
    problem.excerpt = excerptOf(text, text.size());
    return problem;
}

Problem undecodable(const DecodingFailure& failure, const std::string& source) {
    const bool isUnknown = failure.kind == DecodingFailure::Kind::UnknownEncoding;
    Problem problem = problemOf(source, isUnknown ? Problem::Kind::Unsupported : Problem::Kind::Malformed,
                                messageLine(failure.text), StandardRules::kCharacterEncodingInEntities);
    problem.place.offset = failure.offset;
    return problem;
}

}  // namespace Xml
