#include "xml/standard/internal/OptionProblems.h"

#include "xml/standard/internal/Rules.h"

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

Problem tooLong(const ReadOptions& options, const std::string& source) {
    return problemOf(source, Problem::Kind::Limit,
                     "the source has more than " + std::to_string(options.maxBytes) + " bytes",
                     StandardRules::kMaxBytes);
}

}  // namespace Xml
