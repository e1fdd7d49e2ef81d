#pragma once

#include "xml/dtd/RepType.h"

namespace Xml {

class InStream;

// Reads the repetition mark that may follow a particle. Any other token is left unread, for REP_ONCE. False when no
// token can be read, for REP_ONCE too: the caller notes the stream's message and goes on.
bool readRepetition(InStream& in, RepType& repetition);

}  // namespace Xml
