#pragma once

#include <cwchar>
#include <cxxabi.h>
#include <ios>
#include <locale>
#include <streambuf>

// Operations of standard streams set the stream's state first and throw afterwards, where the stream's exceptions are switched
// on: a failure of their own, or what their buffer threw. The state is all that is needed.
namespace Xml {

template <class Operation>
void withoutExceptions(Operation operation) {
    try {
        operation();
    } catch (const abi::__forced_unwind&) {
        throw;  // the end of a cancelled thread is no exception and must go on
    } catch (...) {}
}

// For opening, where memory that runs out is no affair of the stream's exceptions and reaches the caller.
template <class Operation>
void withoutFailures(Operation operation) {
    try {
        operation();
    } catch (const std::ios_base::failure&) {}
}

// Whether the buffer's locale leaves bytes as they are on their way from or to a file.
inline bool leavesBytes(const std::streambuf& buffer) {
    return std::use_facet<std::codecvt<char, char, std::mbstate_t>>(buffer.getloc()).always_noconv();
}

}  // namespace Xml
