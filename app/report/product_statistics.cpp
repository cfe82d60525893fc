#include "app/report/product_statistics.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/mem_mgr.h"

namespace {

PRODUCT_STATISTICS StatisticsOf(const MEM_MGR& image) {
    PRODUCT_STATISTICS statistics{image.Columns(), image.Rows(), image.HeaderSize() + image.DataSize()};
    const auto* const pixels = reinterpret_cast<const float*>(image.Data());
    const long long count = image.Columns() * image.Rows();
    double sum = 0.0;
    long long finite = 0;
    for (long long i = 0; i < count; ++i) {
        if (!std::isfinite(pixels[i])) continue;
        const double value = pixels[i];
        statistics.minimum = finite == 0 ? value : std::min(statistics.minimum, value);
        statistics.maximum = finite == 0 ? value : std::max(statistics.maximum, value);
        sum += value;
        ++finite;
    }
    if (finite > 0) statistics.mean = sum / static_cast<double>(finite);
    return statistics;
}

}  // namespace

std::optional<PRODUCT_STATISTICS> StatisticsOfProduct(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) return std::nullopt;
    try {
        MEM_MGR image;
        image.MapFile(path, ACCESS_MODE::READ_ONLY, PIXEL_TYPE::FLT_6);
        return StatisticsOf(image);
    } catch (const ERROR_EXCEPTION&) {
        return std::nullopt;
    }
}
