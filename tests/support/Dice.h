#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace Xml::test {

// What makers of random inputs stand on; the same seed makes the same inputs.
class Dice {
public:
    explicit Dice(unsigned seed) : random(seed) {}

    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); }
    bool chance(std::size_t percent) { return below(100) < percent; }

    template <std::size_t N>
    std::string any(const char* const (&texts)[N]) {
        return texts[below(N)];
    }

private:
    std::mt19937 random;
};

}  // namespace Xml::test
