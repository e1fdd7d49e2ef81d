#include "xml/standard/ReadResult.h"

#include "xml/dom/Document.h"
#include "xml/standard/internal/OptionProblems.h"
#include <utility>

namespace Xml {

ReadResult::ReadResult(std::unique_ptr<Document> read) : document(std::move(read)) {}

ReadResult::ReadResult(std::vector<Problem> found) : all(std::move(found)) {}

ReadResult::ReadResult(ReadResult&& other) noexcept = default;

ReadResult& ReadResult::operator=(ReadResult&& other) noexcept = default;

ReadResult::~ReadResult() = default;

std::unique_ptr<Document> ReadResult::take() { return std::move(document); }

std::string ReadResult::message() const { return messageOf(all); }

}  // namespace Xml
