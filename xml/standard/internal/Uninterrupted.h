#pragma once

#include <cerrno>

namespace Xml {

// The result of a system call, which is made again where a signal has interrupted it.
template <class Call>
auto uninterrupted(Call call) {
    decltype(call()) result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

}  // namespace Xml
