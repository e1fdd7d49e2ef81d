#pragma once

#include "xml/dom/Document.h"
#include "xml/standard/ReadResult.h"
#include "xml/standard/WriteResult.h"
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

// Makes the results that callers only look at.
struct ResultAccess {
    static ReadResult read(std::unique_ptr<Document> document) { return ReadResult(std::move(document)); }

    // At least one.
    static ReadResult notRead(std::vector<Problem> problems) { return ReadResult(std::move(problems)); }
    static ReadResult notRead(Problem problem) {
        std::vector<Problem> problems;
        problems.push_back(std::move(problem));
        return notRead(std::move(problems));
    }

    static WriteResult written(std::string text = {}) { return WriteResult(std::move(text)); }
    static WriteResult notWritten(Problem problem) { return WriteResult(std::move(problem)); }
};

}  // namespace Xml
