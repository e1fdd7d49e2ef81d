// The paths that documents are asked.
#pragma once
#include <string>
#include <vector>

namespace bench {

// A question by paths of equal meaning. `theirs` is XPath 1.0: it counts positions for each context node where this
// library counts them over all that a step has found, and its * leaves out character data and the document.
struct Question {
    std::string name;
    std::string ours;
    std::string theirs;
    bool mustAgree = true;  // whether it is an error that libraries find another number of nodes than this one

    const std::string& by(const std::string& library) const { return library == "orvxml" ? ours : theirs; }
};

// For three of the shipped documents those that were chosen; for any other one some about its most frequent element.
std::vector<Question> questionsAbout(const std::string& path, const std::string& text);

// Over a document of one of the shapes `wide` and `deep`, and how many nodes there are to be found.
struct ShapeQuestion {
    std::string name;
    Question question;
    std::string (*shape)(std::size_t count);
    std::size_t (*expected)(std::size_t count);
};

const std::vector<ShapeQuestion>& shapeQuestions();

}  // namespace bench
