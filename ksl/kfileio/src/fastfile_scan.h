// The byte scan under line reading and line-ending conversion: the first of two
// byte values in a range, a word or a vector register at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define KORV_SCAN_SSE2 1
#endif

namespace korv::detail {

// The first byte in [begin, end) equal to `a` or `b`, or `end`.
inline const char* find_first_of2(const char* begin, const char* end, char a, char b) {
    const char* at = begin;
#ifdef KORV_SCAN_SSE2
    const __m128i va = _mm_set1_epi8(a);
    const __m128i vb = _mm_set1_epi8(b);
    while (end - at >= 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const unsigned hits = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(block, va), _mm_cmpeq_epi8(block, vb))));
        if (hits)
            return at + std::countr_zero(hits);
        at += 16;
    }
#endif
    // Eight bytes at a time: a byte equal to the pattern becomes zero, and each
    // zero byte gets its high bit set, exactly, so either byte order works.
    constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7FULL;
    constexpr std::uint64_t ones = 0x0101010101010101ULL;
    const auto zero_bytes = [](std::uint64_t x) { return ~(((x & low7) + low7) | x | low7); };
    const std::uint64_t pa = ones * static_cast<unsigned char>(a);
    const std::uint64_t pb = ones * static_cast<unsigned char>(b);
    while (end - at >= 8) {
        std::uint64_t word;
        std::memcpy(&word, at, sizeof word);
        const std::uint64_t hits = zero_bytes(word ^ pa) | zero_bytes(word ^ pb);
        if (hits) {
            if constexpr (std::endian::native == std::endian::little)
                return at + (std::countr_zero(hits) >> 3);
            else
                return at + (std::countl_zero(hits) >> 3);
        }
        at += 8;
    }
    while (at < end && *at != a && *at != b)
        ++at;
    return at;
}

inline char* find_first_of2(char* begin, char* end, char a, char b) {
    return const_cast<char*>(find_first_of2(static_cast<const char*>(begin), end, a, b));
}

} // namespace korv::detail
