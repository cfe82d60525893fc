#include "lib/baselib/vectors/vector_level.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/environment_setting.h"
#include "tests/kit/log_capture.h"

namespace {

constexpr VECTOR_LEVEL kLevels[] = {VECTOR_LEVEL::AVX512, VECTOR_LEVEL::AVX2, VECTOR_LEVEL::PLAIN};

TEST(VectorLevel, IsTheOneAskedForOrRefusedWithThoseThatWork) {
    std::string possible;
    for (const VECTOR_LEVEL level : kLevels) {
        if (MachineHas(level)) possible += (possible.empty() ? "" : ", ") + std::string(TextOf(level));
    }
    for (const VECTOR_LEVEL level : kLevels) {
        const ENVIRONMENT_SETTING vectors("VELMORA_VECTORS", TextOf(level));
        if (MachineHas(level)) {
            EXPECT_EQ(ChosenVectorLevel(), level);
        } else {
            EXPECT_THROW((void)ChosenVectorLevel(), ERROR_PARAMETER);
        }
    }
    for (const char* const text : {"", "AVX2", "avx", "avx512 ", "sse"}) {
        const ENVIRONMENT_SETTING vectors("VELMORA_VECTORS", text);
        EXPECT_THAT(LoggedBy([] { EXPECT_THROW((void)ChosenVectorLevel(), ERROR_PARAMETER); }),
                    testing::HasSubstr("ALARM : global : VELMORA_VECTORS: \"" + std::string(text) +
                                       "\" is none of the values that this machine takes: " + possible + "\n"));
    }
}

TEST(VectorLevel, TheMachineHasWhatItsKernelTells) {
    std::ifstream file("/proc/cpuinfo");
    std::string line;
    while (line.rfind("flags", 0) != 0 && std::getline(file, line)) continue;
    if (line.rfind("flags", 0) != 0) GTEST_SKIP() << "no flags of an x86 processor";
    const auto has = [&](std::initializer_list<const char*> names) {
        return std::all_of(names.begin(), names.end(), [&](const char* name) {
            return (line + " ").find(" " + std::string(name) + " ") != std::string::npos;
        });
    };
    const bool avx2 = has({"avx2", "fma", "bmi1", "bmi2"});
    EXPECT_EQ(MachineHas(VECTOR_LEVEL::AVX2), avx2);
    EXPECT_EQ(MachineHas(VECTOR_LEVEL::AVX512),
              avx2 && has({"avx512f", "avx512bw", "avx512cd", "avx512dq", "avx512vl"}));
}

TEST(VectorLevel, IsTheBestOfTheMachineWhenNobodyAsks) {
    EXPECT_TRUE(MachineHas(VECTOR_LEVEL::PLAIN));
    for (const VECTOR_LEVEL level : kLevels) {
        if (!MachineHas(level)) continue;
        EXPECT_EQ(ChosenVectorLevel(), level);
        break;
    }
}

}  // namespace
