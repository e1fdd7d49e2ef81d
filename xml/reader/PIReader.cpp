#include "xml/reader/PIReader.h"

#include "xml/reader/internal/Tokens.h"

namespace Xml {

bool PIReader::parse(InStream& in) { return checkToken(in, kBeginPI) && skip(in, kEndPI); }

}  // namespace Xml
