// The rows of the table: which cases each kind of work has.
#pragma once
#include "Documents.h"
#include "Measure.h"
#include <string>
#include <vector>

namespace bench {

// The cases of a row; none where there is no row of that name.
std::vector<Case> casesOf(const std::string& row, const std::vector<Document>& documents, const Plan& plan);

}  // namespace bench
