#include "xml/standard/Write.h"

#include "xml/standard/internal/NodeText.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/ResultAccess.h"
#include "xml/text/internal/IoGuard.h"
#include <ostream>
#include <string>
#include <utility>

namespace Xml {

WriteResult writeText(const Object& node, const WriteOptions& options) {
    std::string text;
    Problem problem;
    if (makeText(node, options, text, problem)) return ResultAccess::written(std::move(text));
    return ResultAccess::notWritten(std::move(problem));
}

WriteResult writeStream(const Object& node, std::ostream& out, const WriteOptions& options) {
    std::string text;
    Problem problem;
    if (!makeText(node, options, text, problem)) return ResultAccess::notWritten(std::move(problem));
    bool isWritten = false;
    withoutExceptions([&] {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.flush();
        isWritten = out.good();
    });
    if (isWritten) return ResultAccess::written();
    return ResultAccess::notWritten(problemOf({}, Problem::Kind::Unwritable, "the stream cannot be written"));
}

}  // namespace Xml
