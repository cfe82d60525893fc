/// \file image_benchmark.cpp
/// How fast images reach the disk, beside the plain writes of the same bytes in blocks of 1 MiB, as dd does them.
/// The folder is the current one; argument 0 is the number of columns, the size is always 256 MiB of 32-bit reals.
/// "Durable" cases and the product wait until the bytes are on the disk.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/product_set.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr const char* kPath = "image_benchmark.ras";
constexpr long long kBytes = 256LL << 20;
constexpr std::size_t kBlock = 1 << 20;

MEM_MGR FilledImage(long long columns) {
    MEM_MGR image;
    image.Allocate(0, 0, columns - 1, kBytes / 4 / columns - 1, PIXEL_TYPE::FLT_6);
    std::memset(image.Data(), 0x3f, static_cast<std::size_t>(4 * image.DataSize()));
    return image;
}

void Require(bool done) {
    if (!done) std::abort();
}

void FinishIteration(benchmark::State& state) {
    state.PauseTiming();
    unlink(kPath);
    state.ResumeTiming();
}

void PlainWrite(benchmark::State& state, bool durable) {
    const std::vector<char> block(kBlock, 0x3f);
    for (auto _ : state) {
        const int file = open(kPath, O_RDWR | O_CREAT | O_TRUNC, 0666);
        for (long long done = 0; done < kBytes; done += kBlock) Require(write(file, block.data(), kBlock) == kBlock);
        if (durable) Require(fdatasync(file) == 0);
        Require(close(file) == 0);
        FinishIteration(state);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void Save(benchmark::State& state) {
    Log().SetScreenThreshold(9);
    const MEM_MGR image = FilledImage(state.range(0));
    for (auto _ : state) {
        image.SaveSunRasterFile(kPath, 0666);
        FinishIteration(state);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

/// As a run does: room first, bands of rows, durable when it is put in place.
void WriteProduct(benchmark::State& state) {
    Log().SetScreenThreshold(9);
    const long long columns = state.range(0);
    const long long band_rows = kBlock / 4 / columns;
    const std::vector<char> band(kBlock, 0x3f);
    for (auto _ : state) {
        PRODUCT_SET products;
        PRODUCT_FILE& file = products.Add({"KEY", kPath, columns, kBytes / 4 / columns, PIXEL_TYPE::FLT_6});
        products.ReserveRoom();
        for (long long row = 0; row < kBytes / 4 / columns; row += band_rows)
            file.WriteRows(row, band_rows, band.data());
        products.Place();
        products.Accept();
        FinishIteration(state);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

BENCHMARK_CAPTURE(PlainWrite, cached, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Arg(16)->Arg(1024)->Arg(16384)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainWrite, durable, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(WriteProduct)->Arg(16384)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
