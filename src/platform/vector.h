#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#if !defined(VREL_PLAIN_VECTORS) && defined(__SSE2__)
#define VREL_SSE2_VECTORS
#include <emmintrin.h>
#elif !defined(VREL_PLAIN_VECTORS) && defined(__aarch64__)
#define VREL_NEON_VECTORS
#include <arm_neon.h>
#endif

// Sixteen bytes at once, in the words of each processor. Every form gives the same bytes; the plain one, for processors
// without such words, shows what they are. A byte of a mask is all ones or zero.
namespace vrel {

#if defined(VREL_SSE2_VECTORS)

using Vector = __m128i;

#if defined(__wasm__) || defined(__AVX2__)
inline Vector FillVector(int byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
#else
// Without a word that spreads a byte it takes four; to load sixteen equal ones takes one.
alignas(16) inline constexpr std::array<std::array<uint8_t, 16>, 128> filled_rows = [] {
    std::array<std::array<uint8_t, 16>, 128> rows{};
    for (size_t byte = 0; byte < rows.size(); ++byte)
        rows[byte].fill(static_cast<uint8_t>(byte));
    return rows;
}();
inline Vector FillVector(int byte) {
    assert(byte >= 0 && byte < 128);
    return _mm_load_si128(reinterpret_cast<const __m128i*>(filled_rows[static_cast<size_t>(byte)].data()));
}
#endif

inline Vector LoadVector(const uint8_t* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }
inline void StoreVector(uint8_t* bytes, Vector a) { _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), a); }
inline Vector CommonBits(Vector a, Vector b) { return _mm_and_si128(a, b); }
inline Vector DifferingBits(Vector a, Vector b) { return _mm_xor_si128(a, b); }
inline Vector HigherBytes(Vector a, Vector b) { return _mm_max_epu8(a, b); }
inline Vector EqualBytes(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
inline Vector DropFirst(Vector a) { return _mm_srli_si128(a, 1); }
inline Vector Select(Vector mask, Vector a, Vector b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

// Each half takes the higher of itself and the other, ever smaller.
inline Vector HighestByte(Vector a) {
    a = _mm_max_epu8(a, _mm_shuffle_epi32(a, 0x4e));
    a = _mm_max_epu8(a, _mm_shuffle_epi32(a, 0xb1));
    a = _mm_max_epu8(a, _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, 0xb1), 0xb1));
    return _mm_max_epu8(a, _mm_or_si128(_mm_slli_epi16(a, 8), _mm_srli_epi16(a, 8)));
}

inline unsigned PlacesOf(Vector mask) { return static_cast<unsigned>(_mm_movemask_epi8(mask)); }
inline bool AnyPlace(Vector mask) { return PlacesOf(mask) != 0; }
inline int FirstPlace(Vector mask) { return __builtin_ctz(PlacesOf(mask)); }
inline int FirstPlace(Vector low, Vector high) { return __builtin_ctz(PlacesOf(low) | PlacesOf(high) << 16); }

#elif defined(VREL_NEON_VECTORS)

using Vector = uint8x16_t;

inline Vector LoadVector(const uint8_t* bytes) { return vld1q_u8(bytes); }
inline void StoreVector(uint8_t* bytes, Vector a) { vst1q_u8(bytes, a); }
inline Vector FillVector(int byte) { return vdupq_n_u8(static_cast<uint8_t>(byte)); }
inline Vector CommonBits(Vector a, Vector b) { return vandq_u8(a, b); }
inline Vector DifferingBits(Vector a, Vector b) { return veorq_u8(a, b); }
inline Vector HigherBytes(Vector a, Vector b) { return vmaxq_u8(a, b); }
inline Vector EqualBytes(Vector a, Vector b) { return vceqq_u8(a, b); }
inline Vector DropFirst(Vector a) { return vextq_u8(a, vdupq_n_u8(0), 1); }
inline Vector Select(Vector mask, Vector a, Vector b) { return vbslq_u8(mask, a, b); }
inline Vector HighestByte(Vector a) { return vdupq_n_u8(vmaxvq_u8(a)); }

// Four bits a byte.
inline uint64_t PlacesOf(Vector mask) {
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(mask), 4)), 0);
}
inline bool AnyPlace(Vector mask) { return PlacesOf(mask) != 0; }
inline int FirstPlace(Vector mask) { return __builtin_ctzll(PlacesOf(mask)) >> 2; }
inline int FirstPlace(Vector low, Vector high) { return AnyPlace(low) ? FirstPlace(low) : 16 + FirstPlace(high); }

#else

using Vector = std::array<uint8_t, 16>;

// The same operation in every place.
template <typename Operation>
Vector InEachPlace(Operation operation) {
    Vector result;
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<uint8_t>(operation(i));
    return result;
}

inline Vector LoadVector(const uint8_t* bytes) {
    return InEachPlace([bytes](size_t i) { return bytes[i]; });
}
inline void StoreVector(uint8_t* bytes, const Vector& a) {
    for (const uint8_t byte : a)
        *bytes++ = byte;
}
// The same byte, 0 to 127, in all places.
inline Vector FillVector(int byte) {
    return InEachPlace([byte](size_t) { return byte; });
}
inline Vector CommonBits(const Vector& a, const Vector& b) {
    return InEachPlace([&](size_t i) { return a[i] & b[i]; });
}
inline Vector DifferingBits(const Vector& a, const Vector& b) {
    return InEachPlace([&](size_t i) { return a[i] ^ b[i]; });
}
inline Vector HigherBytes(const Vector& a, const Vector& b) {
    return InEachPlace([&](size_t i) { return a[i] > b[i] ? a[i] : b[i]; });
}
// A mask.
inline Vector EqualBytes(const Vector& a, const Vector& b) {
    return InEachPlace([&](size_t i) { return a[i] == b[i] ? 0xff : 0; });
}
// Each byte one place lower; the last one becomes zero.
inline Vector DropFirst(const Vector& a) {
    return InEachPlace([&](size_t i) { return i < 15 ? a[i + 1] : 0; });
}
// `a` where the mask is set, else `b`.
inline Vector Select(const Vector& mask, const Vector& a, const Vector& b) {
    return InEachPlace([&](size_t i) { return mask[i] ? a[i] : b[i]; });
}
// The highest byte, in all places.
inline Vector HighestByte(const Vector& a) {
    uint8_t highest = 0;
    for (const uint8_t byte : a)
        highest = byte > highest ? byte : highest;
    return FillVector(highest);
}
// True if the mask is set anywhere.
inline bool AnyPlace(const Vector& mask) { return HighestByte(mask)[0] != 0; }
// The lowest place where the mask is set. It has to be set somewhere.
inline int FirstPlace(const Vector& mask) {
    int place = 0;
    while (mask[place] == 0)
        ++place;
    return place;
}
// The same for 32 places.
inline int FirstPlace(const Vector& low, const Vector& high) {
    return AnyPlace(low) ? FirstPlace(low) : 16 + FirstPlace(high);
}

#endif

// A mask of the first `count` places: none for -16 to 0, all for 16 to 32.
inline Vector FirstPlaces(ptrdiff_t count) {
    alignas(16) static constexpr std::array<uint8_t, 64> ones_then_zeros = [] {
        std::array<uint8_t, 64> bytes{};
        for (size_t i = 0; i < 32; ++i)
            bytes[i] = 0xff;
        return bytes;
    }();
    return LoadVector(ones_then_zeros.data() + 32 - count);
}

}  // namespace vrel
