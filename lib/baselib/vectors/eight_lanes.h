/// \file eight_lanes.h
/// Eight numbers at a time, as one, two or four vectors of the level for which the file is compiled. Only for sources
/// that are compiled once per level (velmora_vector_sources): everything is inlined there. The arithmetic is the
/// compiler's own on vectors; intrinsics stand where it has no words: lanes to bits, and stores of some lanes only.
/// Lane i of a group is bit i of a set of lanes.

#pragma once

#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#include "lib/baselib/vectors/lane_count.h"

#define VELMORA_INLINE [[gnu::always_inline]] inline

#if defined(__AVX512F__)
inline constexpr int kVectorBytes = 64;
#elif defined(__AVX2__)
inline constexpr int kVectorBytes = 32;
#else
inline constexpr int kVectorBytes = 16;
#endif
inline constexpr int kPerVector = kVectorBytes / 8;
inline constexpr int kVectors = kLanes / kPerVector;

typedef double DOUBLE_VECTOR __attribute__((vector_size(kVectorBytes)));
typedef float FLOAT_VECTOR __attribute__((vector_size(kVectorBytes / 2)));
typedef long long TRUTH_VECTOR __attribute__((vector_size(kVectorBytes)));  ///< per lane all bits or none

struct EIGHT_DOUBLES {
    DOUBLE_VECTOR part[kVectors];
};

struct EIGHT_FLOATS {
    FLOAT_VECTOR part[kVectors];
};

#define VELMORA_EACH_VECTOR _Pragma("GCC unroll 4") for (int i = 0; i < kVectors; ++i)

VELMORA_INLINE EIGHT_DOUBLES operator+(const EIGHT_DOUBLES& a, const EIGHT_DOUBLES& b) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] + b.part[i];
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES Load(const double* from) {
    EIGHT_DOUBLES r;
    std::memcpy(&r, from, sizeof r);
    return r;
}

VELMORA_INLINE EIGHT_FLOATS Load(const float* from) {
    EIGHT_FLOATS r;
    std::memcpy(&r, from, sizeof r);
    return r;
}

/// Lane by lane a, where it is less than b, else b.
VELMORA_INLINE EIGHT_FLOATS Smaller(const EIGHT_FLOATS& a, const EIGHT_FLOATS& b) {
    EIGHT_FLOATS r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] < b.part[i] ? a.part[i] : b.part[i];
    return r;
}

/// Lane by lane a, where it is more than b, else b.
VELMORA_INLINE EIGHT_FLOATS Larger(const EIGHT_FLOATS& a, const EIGHT_FLOATS& b) {
    EIGHT_FLOATS r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] > b.part[i] ? a.part[i] : b.part[i];
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES operator+(const EIGHT_DOUBLES& a, double b) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] + b;
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES operator*(const EIGHT_DOUBLES& a, double b) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] * b;
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES operator-(double a, const EIGHT_DOUBLES& b) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = a - b.part[i];
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES Magnitude(const EIGHT_DOUBLES& a) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = (DOUBLE_VECTOR)((TRUTH_VECTOR)a.part[i] & 0x7fffffffffffffffLL);
    return r;
}

constexpr double kLaneNumbers[kLanes] = {0, 1, 2, 3, 4, 5, 6, 7};

VELMORA_INLINE EIGHT_DOUBLES LaneNumbers() {
    return Load(kLaneNumbers);
}

#if defined(__AVX512F__)

struct EIGHT_TRUTHS {
    __mmask8 bits;
};

VELMORA_INLINE EIGHT_TRUTHS IsAtMost(const EIGHT_DOUBLES& a, double limit) {
    return {_mm512_cmp_pd_mask(a.part[0], _mm512_set1_pd(limit), _CMP_LE_OS)};
}

VELMORA_INLINE EIGHT_TRUTHS ButNot(const EIGHT_TRUTHS& a, const EIGHT_TRUTHS& b) {
    return {static_cast<__mmask8>(a.bits & ~b.bits)};
}

VELMORA_INLINE unsigned BitsOf(const EIGHT_TRUTHS& a) {
    return a.bits;
}

/// a where the one holds, b where the other holds, else 0.
VELMORA_INLINE EIGHT_DOUBLES Pick(const EIGHT_TRUTHS& one, const EIGHT_DOUBLES& a, const EIGHT_TRUTHS& other,
                                  const EIGHT_DOUBLES& b) {
    return {{_mm512_mask_mov_pd(_mm512_maskz_mov_pd(one.bits, a.part[0]), other.bits, b.part[0])}};
}

#else

struct EIGHT_TRUTHS {
    TRUTH_VECTOR part[kVectors];
};

/// Intrinsics: the compiler's own comparison, once combined with others, is undone lane by lane where there is SSE2
/// only.
VELMORA_INLINE TRUTH_VECTOR IsAtMost(const DOUBLE_VECTOR& a, double limit) {
#if defined(__AVX2__)
    return (TRUTH_VECTOR)_mm256_cmp_pd(a, _mm256_set1_pd(limit), _CMP_LE_OS);
#elif defined(__SSE2__)
    return (TRUTH_VECTOR)_mm_cmple_pd(a, _mm_set1_pd(limit));
#else
    return a <= limit;
#endif
}

VELMORA_INLINE EIGHT_TRUTHS IsAtMost(const EIGHT_DOUBLES& a, double limit) {
    EIGHT_TRUTHS r;
    VELMORA_EACH_VECTOR r.part[i] = IsAtMost(a.part[i], limit);
    return r;
}

VELMORA_INLINE EIGHT_TRUTHS ButNot(const EIGHT_TRUTHS& a, const EIGHT_TRUTHS& b) {
    EIGHT_TRUTHS r;
    VELMORA_EACH_VECTOR r.part[i] = a.part[i] & ~b.part[i];
    return r;
}

VELMORA_INLINE unsigned BitsOf(const TRUTH_VECTOR& a) {
#if defined(__AVX2__)
    return static_cast<unsigned>(_mm256_movemask_pd((__m256d)a));
#elif defined(__SSE2__)
    return static_cast<unsigned>(_mm_movemask_pd((__m128d)a));
#else
    return static_cast<unsigned>((a[0] & 1) | (a[1] & 2));
#endif
}

VELMORA_INLINE unsigned BitsOf(const EIGHT_TRUTHS& a) {
    unsigned bits = 0;
    VELMORA_EACH_VECTOR bits |= BitsOf(a.part[i]) << (i * kPerVector);
    return bits;
}

/// a where the one holds, b where the other holds, else 0.
VELMORA_INLINE EIGHT_DOUBLES Pick(const EIGHT_TRUTHS& one, const EIGHT_DOUBLES& a, const EIGHT_TRUTHS& other,
                                  const EIGHT_DOUBLES& b) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR {
        r.part[i] =
            (DOUBLE_VECTOR)(((TRUTH_VECTOR)a.part[i] & one.part[i]) | ((TRUTH_VECTOR)b.part[i] & other.part[i]));
    }
    return r;
}

#endif

VELMORA_INLINE EIGHT_FLOATS Rounded(const EIGHT_DOUBLES& a) {
    EIGHT_FLOATS r;
    VELMORA_EACH_VECTOR r.part[i] = __builtin_convertvector(a.part[i], FLOAT_VECTOR);
    return r;
}

VELMORA_INLINE EIGHT_DOUBLES Widened(const EIGHT_FLOATS& a) {
    EIGHT_DOUBLES r;
    VELMORA_EACH_VECTOR r.part[i] = __builtin_convertvector(a.part[i], DOUBLE_VECTOR);
    return r;
}

VELMORA_INLINE void Store(float (&to)[kLanes], const EIGHT_FLOATS& a) {
    VELMORA_EACH_VECTOR std::memcpy(to + i * kPerVector, &a.part[i], sizeof a.part[i]);
}

/// Stores those lanes of a group whose bit is set. Nothing else is touched, for the neighbours may be another thread's.
#if defined(__AVX512VL__)

VELMORA_INLINE void StoreLanes(float* to, unsigned lanes, const EIGHT_FLOATS& a) {
    _mm256_mask_storeu_ps(to, static_cast<__mmask8>(lanes), a.part[0]);
}

VELMORA_INLINE void StoreLanes(double* to, unsigned lanes, const EIGHT_FLOATS& a) {
    _mm512_mask_storeu_pd(to, static_cast<__mmask8>(lanes), Widened(a).part[0]);
}

#elif defined(__AVX2__)

VELMORA_INLINE __m256i MaskOf(unsigned lanes) {
    const __m256i own_bit = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
    return _mm256_cmpeq_epi32(_mm256_and_si256(_mm256_set1_epi32(static_cast<int>(lanes)), own_bit), own_bit);
}

VELMORA_INLINE void StoreLanes(float* to, unsigned lanes, const EIGHT_FLOATS& a) {
    _mm256_maskstore_ps(to, MaskOf(lanes), _mm256_set_m128(a.part[1], a.part[0]));
}

VELMORA_INLINE void StoreLanes(double* to, unsigned lanes, const EIGHT_FLOATS& a) {
    const EIGHT_DOUBLES wide = Widened(a);
    const __m256i mask = MaskOf(lanes);
    _mm256_maskstore_pd(to, _mm256_cvtepi32_epi64(_mm256_castsi256_si128(mask)), wide.part[0]);
    _mm256_maskstore_pd(to + 4, _mm256_cvtepi32_epi64(_mm256_extracti128_si256(mask, 1)), wide.part[1]);
}

#else

template <class T>
VELMORA_INLINE void StoreLanes(T* to, unsigned lanes, const EIGHT_FLOATS& a) {
    float values[kLanes];
    Store(values, a);
    for (; lanes != 0; lanes &= lanes - 1) to[__builtin_ctz(lanes)] = values[__builtin_ctz(lanes)];
}

#endif
