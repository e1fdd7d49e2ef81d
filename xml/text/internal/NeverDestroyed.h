#pragma once

#include <new>

namespace Xml {

// For a static object that must outlive every other one: a destructor of a caller's static object may still ask for it.
// It is made in place, which allocates nothing, and is never destroyed; what it owns stays reachable for leak checkers.
//
//     static NeverDestroyed<std::string> text;
//     return text.get();
template <class T>
class NeverDestroyed {
public:
    template <class... Arguments>
    explicit NeverDestroyed(const Arguments&... arguments) {
        ::new (static_cast<void*>(storage)) T(arguments...);
    }
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T& get() { return *std::launder(reinterpret_cast<T*>(storage)); }

private:
    alignas(T) unsigned char storage[sizeof(T)];
};

}  // namespace Xml
