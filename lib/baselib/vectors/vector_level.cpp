#include "lib/baselib/vectors/vector_level.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

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
    if (level == VECTOR_LEVEL::AVX512) return __builtin_cpu_supports("x86-64-v4") != 0;
    if (level == VECTOR_LEVEL::AVX2) return __builtin_cpu_supports("x86-64-v3") != 0;
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
    Log().Message(LOGGING_LEVEL::ALARM, "VELMORA_VECTORS: \"%s\" is none of the values that this machine takes: %s",
                  text, possible.c_str());
    throw ERROR_PARAMETER();
}
