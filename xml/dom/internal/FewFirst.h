#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace Xml {

// What is given for one tag after the other: mostly it is little, and needs no memory of its own. Nothing in it is
// destroyed.
template <class Given>
class FewFirst {
public:
    FewFirst() = default;
    FewFirst(const FewFirst&) = delete;
    FewFirst& operator=(const FewFirst&) = delete;

    void clear() { past = first; }
    bool empty() const { return past == first; }
    std::size_t size() const { return static_cast<std::size_t>(past - first); }
    Given* begin() { return first; }
    Given* end() { return past; }
    const Given* begin() const { return first; }
    const Given* end() const { return past; }
    Given& operator[](std::size_t place) { return first[place]; }
    const Given& operator[](std::size_t place) const { return first[place]; }
    Given& back() { return past[-1]; }
    const Given& back() const { return past[-1]; }

    // Leaves those before there.
    void endAt(Given* given) { past = given; }

    // Made in its place: what is copied there waits for the stores.
    template <class... Arguments>
    void add(const Arguments&... arguments) {
        if (past == limit) makeRoom();
        ::new (static_cast<void*>(past)) Given(arguments...);
        ++past;
    }

private:
    [[gnu::noinline]] void makeRoom() {
        const std::size_t count = size();
        std::vector<Given> larger(2 * count);
        std::copy(first, past, larger.begin());
        many = std::move(larger);
        first = many.data();
        past = first + count;
        limit = first + many.size();
    }

    static constexpr std::size_t kFew = 8;  // most tags have no more

    Given few[kFew];
    std::vector<Given> many;
    Given* first = few;
    Given* past = few;
    Given* limit = few + kFew;
};

}  // namespace Xml
