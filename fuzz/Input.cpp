#include "fuzz/Input.h"

#include "fuzz/Property.h"
#include <sys/mman.h>
#include <unistd.h>

namespace Xml::fuzz {

std::string pathOfFileWith(const std::string& bytes) {
    static const int file = ::memfd_create("fuzz", 0);
    const auto size = static_cast<::off_t>(bytes.size());
    const bool written = ::ftruncate(file, size) == 0 && ::pwrite(file, bytes.data(), bytes.size(), 0) == size;
    expectTrue("the input can be had as a file", written, "");
    return "/proc/self/fd/" + std::to_string(file);
}

}  // namespace Xml::fuzz
