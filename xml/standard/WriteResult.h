#pragma once

#include "xml/Export.h"
#include "xml/standard/Problem.h"
#include <string>
#include <utility>
#include <vector>

namespace Xml {

struct ResultAccess;

// Whether something was written, whole; else why nothing was.
class [[nodiscard, gnu::visibility("default")]] WriteResult {
public:
    explicit operator bool() const { return all.empty(); }

    // What writeText wrote; empty of others, and after a problem.
    const std::string& text() const& { return bytes; }
    std::string text()&& { return std::move(bytes); }

    const std::vector<Problem>& problems() const& { return all; }
    std::vector<Problem> problems()&& { return std::move(all); }  // so that a loop may go over them

    // Every problem's toString, a line each; never empty when false.
    std::string message() const;

private:
    friend struct ResultAccess;

    ORVXML_LOCAL explicit WriteResult(std::string written);
    ORVXML_LOCAL explicit WriteResult(Problem found);

    std::string bytes;
    std::vector<Problem> all;
};

}  // namespace Xml
