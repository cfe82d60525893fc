#include "import/dem/void_filling.h"

#include <gdal_alg.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cmath>

#include "companions/companion_error.h"
#include "import/dem/gdal_errors.h"

namespace {

constexpr float kMissing_m = -32768.0F;

/// The samples as a dataset, without a copy.
GDALDatasetUniquePtr InMemory(void* samples, int columns, int rows, GDALDataType type) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("MEM");
    GDALDatasetUniquePtr dataset(driver->Create("", columns, rows, 0, type, nullptr));
    char pointer[64] = {};
    CPLPrintPointer(pointer, samples, sizeof pointer - 1);
    CPLStringList options;
    options.SetNameValue("DATAPOINTER", pointer);
    if (dataset == nullptr || dataset->AddBand(type, options.List()) != CE_None)
        throw COMPANION_ERROR("the voids can not be filled: " + LastGdalError());
    return dataset;
}

long long CountMissing(const std::vector<float>& heights_m) {
    return std::count_if(heights_m.begin(), heights_m.end(), [](float h) { return std::isnan(h); });
}

/// GDAL leaves what it does not reach as it was.
void FillWithin(std::vector<float>& heights_m, int columns, int rows, double distance) {
    std::vector<unsigned char> is_height(heights_m.size());
    for (std::size_t i = 0; i < heights_m.size(); ++i) {
        is_height[i] = std::isnan(heights_m[i]) ? 0 : 255;
        if (is_height[i] == 0) heights_m[i] = kMissing_m;
    }
    const GDALDatasetUniquePtr heights = InMemory(heights_m.data(), columns, rows, GDT_Float32);
    const GDALDatasetUniquePtr mask = InMemory(is_height.data(), columns, rows, GDT_Byte);
    const CPLErr error = GDALFillNodata(heights->GetRasterBand(1), mask->GetRasterBand(1), distance, 0, 0, nullptr,
                                        ProgressBar(), nullptr);
    if (error != CE_None) throw COMPANION_ERROR("the voids can not be filled: " + LastGdalError());
    heights->FlushCache();
    for (float& height_m : heights_m) {
        if (height_m == kMissing_m) height_m = NAN;
    }
}

}  // namespace

long long FillVoids(std::vector<float>& heights_m, int columns, int rows) {
    const long long missing = CountMissing(heights_m);
    constexpr double kNear = 100.0;
    long long left = missing;
    // Far voids, of which there may be none, cost time in proportion to the distance.
    for (const double distance : {kNear, static_cast<double>(std::max(columns, rows))}) {
        if (left == 0 || left == static_cast<long long>(heights_m.size())) break;
        FillWithin(heights_m, columns, rows, distance);
        left = CountMissing(heights_m);
    }
    return missing - left;
}
