#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Xml::test {

// A content particle with its repetition: a name, a sequence or a choice.
struct ContentParticle {
    enum Kind { Name, Sequence, Choice };

    Kind kind = Name;
    std::string mark;  // "?", "*", "+" or nothing
    std::string name;
    std::vector<ContentParticle> members;
};

using Names = std::vector<std::string>;

// What a particle means as a regular expression over names: an automaton with one state for each place where a name
// stands in it. At most 64 such places.
class ExactMatcher {
public:
    explicit ExactMatcher(const ContentParticle& particle);

    bool fits(const Names& names) const;

    // Whether the next name alone shows which place of the particle it belongs to.
    bool isDeterministic() const;

private:
    using Places = std::uint64_t;  // a bit each

    struct Part {
        bool canBeEmpty = true;
        Places first = 0;
        Places last = 0;
    };

    Part add(const ContentParticle& particle);
    Part addOnce(const ContentParticle& particle);
    void connect(Places from, Places to);
    bool namesDiffer(Places places) const;

    std::vector<std::string> nameAt;
    std::vector<Places> following;
    std::map<std::string, Places> placesOf;
    Part whole;
};

// Matching that takes all it can and never goes back: what a repetition has taken stays taken, and the first
// alternative that matches is the one.
bool fitsGreedily(const ContentParticle& particle, const Names& names);

// Whether some alternative that can be empty stands before another one, which is then never reached: (a? | b).
bool hidesAlternatives(const ContentParticle& particle);

}  // namespace Xml::test
