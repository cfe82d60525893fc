#include "view/product_info.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <vector>

#include "companions/input_file.h"
#include "lib/baselib/pool/parameter_pool.h"

namespace {

std::string Text(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Text(const char* format, ...) {
    char text[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

/// Mean and deviation one value after the other (Welford 1962): sums of squares would lose millimetres in megametres.
void Add(double value, double& squares, STATISTICS& statistics) {
    statistics.minimum = statistics.count == 0 ? value : std::min(statistics.minimum, value);
    statistics.maximum = statistics.count == 0 ? value : std::max(statistics.maximum, value);
    ++statistics.count;
    const double difference = value - statistics.mean;
    statistics.mean += difference / static_cast<double>(statistics.count);
    squares += difference * (value - statistics.mean);
}

}  // namespace

STATISTICS StatisticsOf(const RASTER_FILE& raster, std::optional<double> invalid) {
    STATISTICS statistics;
    double squares = 0.0;
    std::vector<double> values(static_cast<std::size_t>(raster.Columns()));
    for (long long row = 0; row < raster.Rows(); ++row) {
        raster.ReadRow(row, values);
        for (const double value : values) {
            if (std::isnan(value) || value == invalid)
                ++statistics.without;
            else
                Add(value, squares, statistics);
        }
    }
    if (statistics.count > 0) statistics.deviation = std::sqrt(squares / static_cast<double>(statistics.count));
    return statistics;
}

std::optional<double> OffsetOf(const PRODUCT_KIND* kind, const std::string& pool_path) {
    const bool is_coordinate =
        kind != nullptr &&
        (kind->product == PRODUCT::X_EARTH || kind->product == PRODUCT::Y_EARTH || kind->product == PRODUCT::Z_EARTH);
    if (!is_coordinate || pool_path.empty()) return std::nullopt;
    std::string key = std::string(kind->key) + "_OFFSET";
    std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::tolower(c); });
    RequireRegularFile(pool_path);
    PARAMETER_POOL pool(pool_path);
    if (!pool.FindKey(key)) return std::nullopt;
    return pool.Get<double>(key);
}

std::string InfoText(const RASTER_FILE& raster, const PRODUCT_KIND* kind, const std::string& pool_path,
                     std::optional<double> invalid) {
    const STATISTICS statistics = StatisticsOf(raster, invalid);
    const char* const unit = kind == nullptr ? "" : kind->unit;
    std::string text = raster.Path() + "\n";
    text += kind == nullptr ? "  content    not known\n" : Text("  content    %s (%s)\n", kind->description, kind->key);
    text += Text("  size       %lld columns x %lld rows\n", raster.Columns(), raster.Rows());
    text +=
        Text("  type       %s (%s)\n", PixelTypeText(raster.PixelType()), KnownPixelType(raster.PixelType()).data_type);
    text += Text("  pixels     %lld with a value, %lld without\n", statistics.count, statistics.without);
    if (statistics.count > 0) {
        text +=
            Text("  minimum    %.9g %s\n  maximum    %.9g %s\n", statistics.minimum, unit, statistics.maximum, unit);
        text += Text("  mean       %.9g %s\n  deviation  %.9g %s\n", statistics.mean, unit, statistics.deviation, unit);
    }
    if (const std::optional<double> offset = OffsetOf(kind, pool_path))
        text += Text("  offset     %.17g %s, to be added to every pixel\n", *offset, unit);
    return text;
}
