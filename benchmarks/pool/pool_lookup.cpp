/// Lookups in a pool of 100 000 lines: the first one builds the index, the others use it; and reading long vectors.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "lib/baselib/pool/parameter_pool.h"

namespace {

constexpr int kLines = 100'000;

/// A pool file that lives as long as the program.
class POOL_FILE {
  public:
    explicit POOL_FILE(const std::string& name)
        : path_((std::filesystem::temp_directory_path() / (name + std::to_string(getpid()))).string()) {
        Log().SetScreenThreshold(9);
        Log().SetFileThreshold(9);
    }
    ~POOL_FILE() { std::remove(path_.c_str()); }
    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

const std::string& PoolOfManyKeys() {
    static const POOL_FILE file("benchmark_keys_");
    static const bool written = [] {
        std::ofstream pool(file.Path());
        for (int i = 0; i < kLines; ++i) pool << "key_" << i << " FLT_15 " << i / 7.0 << "\n";
        return true;
    }();
    benchmark::DoNotOptimize(written);
    return file.Path();
}

void OpenAndLookUp(benchmark::State& state) {
    for (auto _ : state) {
        PARAMETER_POOL pool(PoolOfManyKeys());
        for (int i = 0; i < state.range(0); ++i) {
            benchmark::DoNotOptimize(pool.Get<double>("key_" + std::to_string(kLines - 1 - i * 499)));
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(OpenAndLookUp)->Arg(1)->Arg(200)->Unit(benchmark::kMillisecond);

void ReadVector(benchmark::State& state) {
    static const POOL_FILE file("benchmark_vector_");
    std::ofstream(file.Path()) << "v FLT_15_V 0 " << kLines << "\n{\n"
                               <<
        [] {
            std::string text;
            for (int i = 0; i < kLines; ++i) text += std::to_string(i / 7.0) + "\n";
            return text;
        }() << "}\n";
    PARAMETER_POOL pool(file.Path());
    for (auto _ : state) benchmark::DoNotOptimize(pool.Get<ARRAY<double>>("v"));
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(ReadVector)->Unit(benchmark::kMillisecond);

}  // namespace
