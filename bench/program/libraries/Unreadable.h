// What an adapter throws when its library cannot read a document: the library's own reason.
#pragma once
#include <stdexcept>

namespace bench {

struct Unreadable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace bench
