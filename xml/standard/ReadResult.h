#pragma once

#include "xml/Export.h"
#include "xml/standard/Problem.h"
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

class Document;
struct ResultAccess;

// What was read: a document, or what is wrong with the source. Of one that was moved from nothing may be asked.
class [[nodiscard, gnu::visibility("default")]] ReadResult {
public:
    ReadResult(ReadResult && other) noexcept;
    ReadResult& operator=(ReadResult&& other) noexcept;
    ~ReadResult();

    explicit operator bool() const { return isWellFormed(); }

    // False also where the source was not read, or not to its end, whatever the reason. Stays true when the document is
    // taken.
    bool isWellFormed() const { return all.empty(); }

    // Null when not well formed, and once the document was taken. The operators need a document.
    Document* get() { return document.get(); }
    const Document* get() const { return document.get(); }
    Document& operator*()& { return *document; }
    const Document& operator*() const& { return *document; }
    Document& operator*()&& = delete;
    Document* operator->()& { return document.get(); }
    const Document* operator->() const& { return document.get(); }
    Document* operator->()&& = delete;

    std::unique_ptr<Document> take();

    const std::vector<Problem>& problems() const& { return all; }
    std::vector<Problem> problems()&& { return std::move(all); }  // so that a loop may go over them

    // Every problem's toString, a line each; never empty when false.
    std::string message() const;

private:
    friend struct ResultAccess;

    ORVXML_LOCAL explicit ReadResult(std::unique_ptr<Document> read);
    ORVXML_LOCAL explicit ReadResult(std::vector<Problem> found);

    std::unique_ptr<Document> document;
    std::vector<Problem> all;
};

}  // namespace Xml
