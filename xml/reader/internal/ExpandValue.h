#pragma once

#include <cstdint>

namespace Xml {

class DataHolder;
class Dtd;
class InStream;

// Replaces the references in a value that has just been read from `in`, by the entities of `dtd` where it is given. False, and
// the value is unchanged, when the text that references to these entities have made would pass the bound (see
// Dtd::setEntityGrowthLimit).
bool expandValue(const InStream& in, DataHolder& value, Dtd* dtd);

// What is made from references while this lives counts on its own, unless it is within another reader: of a Dtd that much is
// read with, each reading may make as much text as the first. It stands behind the session that it belongs to.
class OwnGrowth {
public:
    OwnGrowth(const InStream& in, Dtd* dtd);
    ~OwnGrowth();
    OwnGrowth(const OwnGrowth&) = delete;
    OwnGrowth& operator=(const OwnGrowth&) = delete;

private:
    Dtd* counted;  // null when it does not count on its own
    std::int64_t before = 0;
};

inline constexpr char kEntityTextTooLarge[] = "entity text too large";

}  // namespace Xml
