#include "import/dem/dem_raster.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>

#include "companions/companion_error.h"
#include "import/dem/gdal_errors.h"
#include "lib/baselib/image/raster_output.h"

namespace {

class DEM_RASTER_WRITER {
  public:
    DEM_RASTER_WRITER(const std::string& temporary, const std::string& path, const SAMPLE_GRID& grid)
        : path_(path), grid_(grid), file_(temporary, std::ios::binary) {
        RequireGood();
    }

    void WriteHeader(bool as_float) {
        const PIXEL_TYPE_RECORD& type = KnownPixelType(as_float ? PIXEL_TYPE::FLT_6 : PIXEL_TYPE::INT_16);
        const RASTER_HEADER_BYTES header = EncodeRasterHeader(RasterHeaderFor(path_, grid_.columns, grid_.rows, type));
        file_.write(reinterpret_cast<const char*>(header.data()), header.size());
        RequireGood();
    }

    template <class T>
    void WriteRow(long long row, const std::vector<double>& heights_m) {
        std::vector<T> samples(heights_m.size());
        for (std::size_t column = 0; column < samples.size(); ++column) {
            if (std::isnan(heights_m[column])) {
                samples[column] = kVoidSample_m;
                ++statistics_.voids;
            } else {
                samples[column] = Sample<T>(heights_m[column], static_cast<long long>(column), row);
            }
        }
        file_.write(reinterpret_cast<const char*>(samples.data()),
                    static_cast<std::streamsize>(samples.size() * sizeof(T)));
        RequireGood();
    }

    HEIGHT_STATISTICS Finish() {
        file_.close();
        RequireGood();
        return statistics_;
    }

  private:
    void RequireGood() const {
        if (!file_) throw COMPANION_ERROR(path_ + ": can not be written (disk full?)");
    }

    template <class T>
    T Sample(double height_m, long long column, long long row) {
        constexpr bool kWhole = std::numeric_limits<T>::is_integer;
        const double kept_m = kWhole ? std::round(height_m) : height_m;
        constexpr double kMost_m = std::numeric_limits<short>::max();  // no height on Earth needs more in either type
        if (!(std::abs(kept_m) <= kMost_m)) RefuseHeight(height_m, column, row);
        const bool first = statistics_.lowest_m > statistics_.highest_m;
        statistics_.lowest_m = first ? kept_m : std::min(statistics_.lowest_m, kept_m);
        statistics_.highest_m = first ? kept_m : std::max(statistics_.highest_m, kept_m);
        statistics_.largest_rounding_error_m =
            std::max(statistics_.largest_rounding_error_m, std::abs(kept_m - height_m));
        return static_cast<T>(kept_m);
    }

    [[noreturn]] void RefuseHeight(double height_m, long long column, long long row) const {
        char text[240];
        std::snprintf(text, sizeof text,
                      ": the height at column %lld, row %lld (%.9g, %.9g) is %g m: expected -32767 to 32767; a value "
                      "that means no height has to be declared (gdal_translate -a_nodata)",
                      column, row, grid_.X(static_cast<double>(column)), grid_.Y(static_cast<double>(row)), height_m);
        throw COMPANION_ERROR(path_ + text);
    }

    std::string path_;
    const SAMPLE_GRID& grid_;
    std::ofstream file_;
    HEIGHT_STATISTICS statistics_{0, 1.0, -1.0, 0.0};  ///< lowest above highest: no height yet
};

}  // namespace

HEIGHT_STATISTICS WriteDemRaster(const std::string& temporary, const std::string& path, const SAMPLE_GRID& grid,
                                 bool as_float, const HEIGHT_ROW_READER& read_row) {
    DEM_RASTER_WRITER writer(temporary, path, grid);
    writer.WriteHeader(as_float);
    std::vector<double> heights_m;
    const auto progress = ProgressBar();
    for (long long row = 0; row < grid.rows; ++row) {
        read_row(row, heights_m);
        if (as_float) {
            writer.WriteRow<float>(row, heights_m);
        } else {
            writer.WriteRow<short>(row, heights_m);
        }
        progress(static_cast<double>(row + 1) / static_cast<double>(grid.rows), "", nullptr);
    }
    HEIGHT_STATISTICS statistics = writer.Finish();
    if (statistics.lowest_m > statistics.highest_m) statistics.lowest_m = statistics.highest_m = 0.0;
    return statistics;
}
