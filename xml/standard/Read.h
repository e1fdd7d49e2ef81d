#pragma once

#include "xml/Export.h"
#include "xml/standard/Problem.h"
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Document;

// Which text of white space alone is kept. White space that came by a reference always is.
enum class Space : std::uint8_t {
    All,
    Content,  // all but what holds a line end, beside child elements of an element without other text, where xml:space
              // does not say preserve
    Dropped,  // none
};

struct ReadOptions {
    std::string source;      // a name for problems
    std::string encoding;    // known from outside; empty: byte order mark, then declaration, then UTF-8
    bool namespaces = true;  // check Namespaces in XML 1.0
    Space space = Space::Content;
    int maxDepth = 0;                      // 0: no limit, and none is needed for safety
    std::int64_t entityGrowth = 64 << 20;  // bytes that the document type makes, by references, nested ones too, and by
        // defaults, once they are also more than 100 times the bytes read; 0: no limit
};

// What was read: a document, or what is wrong with the text.
class ORVXML_API ReadResult {
public:
    explicit ReadResult(std::unique_ptr<Document> read);
    explicit ReadResult(Problem problem);
    ReadResult(ReadResult&& other) noexcept;
    ReadResult& operator=(ReadResult&& other) noexcept;
    ~ReadResult();

    explicit operator bool() const { return isWellFormed(); }
    bool isWellFormed() const { return document != nullptr; }

    // Null when not well formed. The operators need a document.
    Document* get() { return document.get(); }
    const Document* get() const { return document.get(); }
    Document& operator*() & { return *document; }
    const Document& operator*() const& { return *document; }
    Document& operator*() && = delete;
    Document* operator->() & { return document.get(); }
    const Document* operator->() const& { return document.get(); }
    Document* operator->() && = delete;

    std::unique_ptr<Document> take();

    const std::vector<Problem>& problems() const { return all; }

    // Every problem's toString, a line each; never empty without a document.
    std::string message() const;

private:
    std::unique_ptr<Document> document;
    std::vector<Problem> all;
};

// Reads a document of XML 1.0.
[[nodiscard]] ORVXML_API ReadResult readText(std::string_view text, const ReadOptions& options = {});

}  // namespace Xml
