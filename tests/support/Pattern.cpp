#include "support/Pattern.h"

#include <regex>

namespace Xml::test {

struct Pattern::Compiled {
    std::regex regex;
};

namespace {

Pattern::Groups groupsOf(const std::smatch& match) { return {match.begin(), match.end()}; }

}  // namespace

Pattern::Pattern(const std::string& expression, Case itsCase) {
    const auto flags =
        std::regex::ECMAScript | (itsCase == Case::Matters ? std::regex::flag_type() : std::regex::icase);
    compiled = std::make_shared<const Compiled>(Compiled{std::regex(expression, flags)});
}

Pattern::Groups Pattern::match(const std::string& text) const {
    std::smatch match;
    std::regex_match(text, match, compiled->regex);
    return groupsOf(match);
}

Pattern::Groups Pattern::matchBeginOf(const std::string& text) const {
    std::smatch match;
    std::regex_search(text, match, compiled->regex, std::regex_constants::match_continuous);
    return groupsOf(match);
}

Pattern::Groups Pattern::find(const std::string& text) const {
    std::smatch match;
    std::regex_search(text, match, compiled->regex);
    return groupsOf(match);
}

std::vector<Pattern::Groups> Pattern::findAll(const std::string& text) const {
    std::vector<Groups> all;
    for (std::sregex_iterator each(text.begin(), text.end(), compiled->regex), end; each != end; ++each)
        all.push_back(groupsOf(*each));
    return all;
}

std::string Pattern::replaceIn(const std::string& text, const std::string& with) const {
    return std::regex_replace(text, compiled->regex, with);
}

}  // namespace Xml::test
