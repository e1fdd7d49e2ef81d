#pragma once

#include <cwchar>
#include <cxxabi.h>
#include <ios>
#include <locale>
#include <new>
#include <streambuf>

// Calls of standard streams whose failures show in the stream's state and nowhere else. Where the exceptions of a
// stream are switched on its operations set the state first and throw then: a failure of their own, or what their
// buffer threw.
namespace Xml {

template <class Operation>
void withoutExceptions(Operation operation) {
    try {
        operation();
    } catch (const abi::__forced_unwind&) {
        throw;  // the end of a cancelled thread is no exception and must go on
    } catch (...) {}
}

// The same where memory that runs out reaches the caller; whether nothing was thrown.
template <class Operation>
bool withoutOtherExceptions(Operation operation) {
    try {
        operation();
        return true;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        return false;
    }
}

// For opening a file: only the stream's own failures stay inside, memory that runs out reaches the caller.
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
