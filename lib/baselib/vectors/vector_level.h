/// \file vector_level.h
/// The inner loops are compiled several times from one source, for the vector instructions of different machines, and
/// the level is chosen when the program runs (cmake/velmora_vectors.cmake compiles them). Results are the same byte for
/// byte at every level: each element goes through the same additions, multiplications, divisions and square roots,
/// which are exactly rounded everywhere, and no multiplication is fused with an addition (-ffp-contract=off). Levels:
/// of an x86-64 machine AVX-512 (with F, BW, CD, DQ, VL), AVX2 and plain; elsewhere plain alone, which is what every
/// machine of the kind has (on 64-bit ARM that includes its vectors). Threads: any thread may ask while nobody changes
/// the environment.

#pragma once

enum class VECTOR_LEVEL { PLAIN, AVX2, AVX512 };

/// The machine's best level, or the one that the environment variable VELMORA_VECTORS names: "avx512", "avx2", "plain".
/// Errors: another value, or one that this machine has no instructions for, is logged at ALARM with those that would
/// work, then ERROR_PARAMETER.
[[nodiscard]] VECTOR_LEVEL ChosenVectorLevel();

/// As VELMORA_VECTORS writes it.
[[nodiscard]] const char* TextOf(VECTOR_LEVEL level);

/// Whether this machine can run the code of a level.
[[nodiscard]] bool MachineHas(VECTOR_LEVEL level);

/// Declares a function of every level, each in the level's namespace; a source that is compiled once per level defines
/// VELMORA_VECTOR_LEVEL::Function.
#define VELMORA_AT_EVERY_LEVEL(...) \
    namespace avx512 {              \
    __VA_ARGS__;                    \
    }                               \
    namespace avx2 {                \
    __VA_ARGS__;                    \
    }                               \
    namespace plain {               \
    __VA_ARGS__;                    \
    }

/// The function of a level.
#if defined(__x86_64__)
#define VELMORA_AT_LEVEL(level, function)                \
    ((level) == VECTOR_LEVEL::AVX512 ? &avx512::function \
     : (level) == VECTOR_LEVEL::AVX2 ? &avx2::function   \
                                     : &plain::function)
#else
#define VELMORA_AT_LEVEL(level, function) (static_cast<void>(level), &plain::function)
#endif
