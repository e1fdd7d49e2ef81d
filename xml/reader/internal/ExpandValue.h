#pragma once

namespace Xml {

class DataHolder;
class Dtd;
class InStream;

// Replaces the references in a value that has just been read from `in`, by the entities of `dtd` where it is given. False, and
// the value is unchanged, when the text that references to these entities have made would pass the bound (see
// Dtd::setEntityGrowthLimit).
bool expandValue(const InStream& in, DataHolder& value, Dtd* dtd);

inline constexpr char kEntityTextTooLarge[] = "entity text too large";

}  // namespace Xml
