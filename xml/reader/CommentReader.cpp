#include "xml/reader/CommentReader.h"

#include "xml/reader/internal/Tokens.h"

namespace Xml {

bool CommentReader::parse(InStream& in) { return checkToken(in, kBeginComment) && skip(in, kEndComment); }

}  // namespace Xml
