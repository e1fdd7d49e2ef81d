#include "xml/standard/WriteResult.h"

#include "xml/standard/internal/OptionProblems.h"
#include <utility>

namespace Xml {

WriteResult::WriteResult(std::string written) : bytes(std::move(written)) {}

WriteResult::WriteResult(Problem found) { all.push_back(std::move(found)); }

std::string WriteResult::message() const { return messageOf(all); }

}  // namespace Xml
