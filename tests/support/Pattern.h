#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Xml::test {

// A regular expression. <regex> takes seconds to compile wherever it is included; here it is in one source.
class Pattern {
public:
    enum class Case { Matters, DoesNotMatter };

    // What the groups took, the whole first; nothing where the text does not fit.
    using Groups = std::vector<std::string>;

    explicit Pattern(const std::string& expression, Case itsCase = Case::Matters);

    Groups match(const std::string& text) const;         // of all of it
    Groups matchBeginOf(const std::string& text) const;  // of as much as it begins with
    Groups find(const std::string& text) const;          // of the first part
    std::vector<Groups> findAll(const std::string& text) const;

    bool fits(const std::string& text) const { return !match(text).empty(); }
    bool isIn(const std::string& text) const { return !find(text).empty(); }

    // The text with each part that fits replaced.
    std::string replaceIn(const std::string& text, const std::string& with) const;

private:
    struct Compiled;
    std::shared_ptr<const Compiled> compiled;
};

}  // namespace Xml::test
