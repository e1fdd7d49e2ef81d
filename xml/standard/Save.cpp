#include "xml/standard/Save.h"

#include "xml/standard/internal/FileCalls.h"
#include "xml/standard/internal/FileReplacement.h"
#include "xml/standard/internal/NodeText.h"
#include "xml/standard/internal/ResultAccess.h"
#include <string>
#include <utility>

namespace Xml {

WriteResult saveFile(const Object& node, const std::filesystem::path& path, const WriteOptions& options) {
    std::string text;
    Problem problem;
    if (makeText(node, options, text, problem)) {
        FileCalls calls;
        if (FileReplacement(calls).replace(path.string(), text, problem)) return ResultAccess::written();
    }
    problem.source = path.string();
    return ResultAccess::notWritten(std::move(problem));
}

}  // namespace Xml
