#include "lib/baselib/vectors/vector_level.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

constexpr VECTOR_LEVEL kBestFirst[] = {VECTOR_LEVEL::AVX512, VECTOR_LEVEL::AVX2, VECTOR_LEVEL::PLAIN};

}  // namespace

const char* TextOf(VECTOR_LEVEL level) {
    switch (level) {
        case VECTOR_LEVEL::AVX512:
            return "avx512";
        case VECTOR_LEVEL::AVX2:
            return "avx2";
        default:
            return "plain";
    }
}

bool MachineHas(VECTOR_LEVEL level) {
#if defined(__x86_64__)
    // What x86-64-v3 and x86-64-v4 add, as far as every compiler knows the names; machines have these only together
    // with the rest.
    const bool v3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi") &&
                    __builtin_cpu_supports("bmi2");
    if (level == VECTOR_LEVEL::AVX2) return v3;
    if (level == VECTOR_LEVEL::AVX512)
        return v3 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
               __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
               __builtin_cpu_supports("avx512vl");
#endif
    return level == VECTOR_LEVEL::PLAIN;
}

VECTOR_LEVEL ChosenVectorLevel() {
    const char* const text = std::getenv("VELMORA_VECTORS");
    std::string possible;
    for (const VECTOR_LEVEL level : kBestFirst) {
        if (!MachineHas(level)) continue;
        if (text == nullptr || std::strcmp(text, TextOf(level)) == 0) return level;
        possible += (possible.empty() ? "" : ", ") + std::string(TextOf(level));
    }
    LogAndThrow<ERROR_PARAMETER>("VELMORA_VECTORS: \"%s\" is none of the values that this machine takes: %s", text,
                                 possible.c_str());
}
