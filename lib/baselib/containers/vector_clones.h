/// \file vector_clones.h
/// VELMORA_VECTOR_CLONES before a function: the compiler makes it several times, for AVX-512, for AVX2 with FMA and for
/// every x86-64 machine, and the program takes the best one for the machine it runs on. Where the compiler or a
/// sanitizer can not do this, there is one plain version. It serves loops that the compiler vectorises by itself: no
/// branch in the body, arrays that do not overlap. Traps stay on: what such a loop computes, it computes for every
/// element.

#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__) && \
    !defined(__SANITIZE_ADDRESS__)
#define VELMORA_VECTOR_CLONES __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define VELMORA_VECTOR_CLONES
#endif
