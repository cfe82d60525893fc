#include "import/dem/warp.h"

#include <gdal_alg.h>
#include <gdal_utils.h>

#include <cmath>

#include "companions/companion_error.h"
#include "import/dem/gdal_errors.h"

namespace {

constexpr const char* kWgs84 = "EPSG:4326";

struct CORNERS {
    double west, south, east, north;  ///< of the pixels' outer edges, degrees
};

struct SUGGESTED {
    CORNERS corners;
    double spacing_deg;
};

std::string SystemText(const OGRSpatialReference& system) {
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    HorizontalPart(system).exportToWkt(&text, options);
    std::string copy = text == nullptr ? "" : text;
    CPLFree(text);
    return copy;
}

[[noreturn]] void RefuseWarp(const DEM_SOURCE& source) {
    throw COMPANION_ERROR(source.Name() + ": can not be warped from " + source.Map().name +
                          " to WGS 84: " + LastGdalError());
}

SUGGESTED Suggest(const DEM_SOURCE& source) {
    CPLStringList options;
    options.SetNameValue("SRC_SRS", SystemText(source.System()).c_str());
    options.SetNameValue("DST_SRS", kWgs84);
    // A guess that ignores the datum's shift would be wrong by up to a kilometre without a word.
    options.SetNameValue("ALLOW_BALLPARK", "NO");
    void* const transformer = GDALCreateGenImgProjTransformer2(&source.Dataset(), nullptr, options.List());
    if (transformer == nullptr) RefuseWarp(source);
    double t[6];
    double extent[4];
    int columns = 0;
    int rows = 0;
    const CPLErr error = GDALSuggestedWarpOutput2(&source.Dataset(), GDALGenImgProjTransform, transformer, t, &columns,
                                                  &rows, extent, 0);
    GDALDestroyGenImgProjTransformer(transformer);
    if (error != CE_None || !(t[1] > 0.0) || !std::isfinite(t[1])) RefuseWarp(source);
    return {{extent[0], extent[1], extent[2], extent[3]}, t[1]};
}

}  // namespace

SAMPLE_GRID GeographicGridFor(const DEM_SOURCE& source) {
    const SUGGESTED suggested = Suggest(source);
    SAMPLE_GRID grid;
    grid.dx = suggested.spacing_deg;
    grid.dy = suggested.spacing_deg;
    grid.x0 = std::ceil(suggested.corners.west / grid.dx) * grid.dx;
    grid.y0 = std::floor(suggested.corners.north / grid.dy) * grid.dy;
    grid.columns = 1;
    grid.rows = 1;
    return grid;
}

std::unique_ptr<DEM_SOURCE> WarpedOnto(const SAMPLE_GRID& grid, const DEM_SOURCE& source) {
    const CORNERS corners = Suggest(source).corners;
    const double first_column = std::floor(grid.Column(corners.west)) - 0.5;
    const double last_column = std::ceil(grid.Column(corners.east)) + 0.5;
    const double first_row = std::floor(grid.Row(corners.north)) - 0.5;
    const double last_row = std::ceil(grid.Row(corners.south)) + 0.5;
    const auto number = [](double value) { return std::string(CPLSPrintf("%.17g", value)); };
    CPLStringList arguments;
    const auto add = [&arguments](std::initializer_list<std::string> words) {
        for (const std::string& word : words) arguments.AddString(word.c_str());
    };
    add({"-of", "VRT", "-r", "cubic", "-et", "0", "-novshift", "-ot", "Float64", "-dstnodata", "nan", "-to",
         "ALLOW_BALLPARK=NO"});
    add({"-s_srs", SystemText(source.System()), "-t_srs", kWgs84});
    add({"-te", number(grid.X(first_column)), number(grid.Y(last_row)), number(grid.X(last_column)),
         number(grid.Y(first_row))});
    add({"-ts", std::to_string(std::llround(last_column - first_column)),
         std::to_string(std::llround(last_row - first_row))});
    GDALWarpAppOptions* const options = GDALWarpAppOptionsNew(arguments.List(), nullptr);
    GDALDatasetH handle = &source.Dataset();
    GDALDatasetUniquePtr warped(
        GDALDataset::FromHandle(options == nullptr ? nullptr : GDALWarp("", nullptr, 1, &handle, options, nullptr)));
    GDALWarpAppOptionsFree(options);
    if (warped == nullptr) RefuseWarp(source);
    auto result = std::make_unique<DEM_SOURCE>(source.Name(), std::move(warped));
    result->TakeConversionFrom(source);
    return result;
}
