#pragma once

#include "xml/text/internal/Escape.h"
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Copies of runs of bytes, most of which are short: names, values, marks. A run of a few bytes is copied by its first
// and its last ones, which may overlap. Nothing outside the runs is looked at, nor changed.
namespace Xml::ShortRuns {

template <class Unit>
inline Unit unitAt(const char* from) {
    Unit unit;
    std::memcpy(&unit, from, sizeof unit);
    return unit;
}

template <class Unit>
inline void copyEnds(char* to, const char* from, std::size_t size) {
    const auto first = unitAt<Unit>(from);
    const auto last = unitAt<Unit>(from + size - sizeof(Unit));
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + size - sizeof last, &last, sizeof last);
}

// Returns the end of the copy.
inline char* copy(char* to, std::string_view run) {
    const char* const from = run.data();
    const std::size_t size = run.size();
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        copyEnds<std::uint64_t>(to, from, size);
    } else if (size >= 4) {
        copyEnds<std::uint32_t>(to, from, size);
    } else if (size >= 2) {
        copyEnds<std::uint16_t>(to, from, size);
    } else if (size == 1) {
        *to = *from;
    }
    return to + size;
}

// So many bytes of a padded run may be read from its beginning on, and written from where the copy of it begins,
// however short it is. A std::string of fewer bytes is one, as it has room for that many: its own or more.
inline constexpr std::size_t kPadded = 16;

inline char* copyPadded(char* to, std::string_view run) {
    if (run.size() > kPadded) {
        std::memcpy(to, run.data(), run.size());
    } else {
        std::memcpy(to, run.data(), kPadded);
    }
    return to + run.size();
}

// The same for a run that has no byte that findSpecial looks for. Null where it has one; what has been copied is of no
// use then.
inline char* copyOrdinary(char* to, std::string_view run) {
    const char* const from = run.data();
    const std::size_t size = run.size();
#ifdef __SSE2__
    if (size >= 4) {
        if (size >= 16) {
            const char* at = from;
            const char* const last = from + size - 16;
            for (;;) {
                const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
                if (specialsAmong(bytes) != 0) return nullptr;
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to + (at - from)), bytes);
                if (at == last) break;
                at = last - at > 16 ? at + 16 : last;
            }
        } else {
            const bool isLong = size >= 8;
            const __m128i bytes =
                isLong ? _mm_set_epi64x(unitAt<std::int64_t>(from + size - 8), unitAt<std::int64_t>(from))
                       : _mm_set_epi32(0, 0, unitAt<std::int32_t>(from + size - 4), unitAt<std::int32_t>(from));
            if (specialsAmong(bytes) != 0) return nullptr;
            if (isLong) {
                copyEnds<std::uint64_t>(to, from, size);
            } else {
                copyEnds<std::uint32_t>(to, from, size);
            }
        }
        return to + size;
    }
#endif
    if (findSpecial(from, from + size) != from + size) return nullptr;
    return copy(to, run);
}

}  // namespace Xml::ShortRuns
