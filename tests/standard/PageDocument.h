#pragma once

#include <string>

namespace Xml::test {

// A document in a table of a page: the cell that it stands in, and the bytes that the cell means. The notation is
// explained at the top of docs/standard-constraints.md.
struct PageDocument {
    std::string cell, bytes;
};

// Of a cell `document` or `document` as UTF-16LE. Throws std::runtime_error where the cell is of another form.
PageDocument pageDocumentOf(const std::string& cell);

}  // namespace Xml::test
