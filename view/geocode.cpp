#include "view/geocode.h"

#include <cpl_vsi.h>
#include <gdal_utils.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "companions/companion_error.h"
#include "view/colouring.h"
#include "view/map_spacing.h"
#include "view/picture.h"

namespace {

constexpr const char* kPositionsFile = "/vsimem/positions.tif";

struct MEMORY_FILE {
    explicit MEMORY_FILE(const char* name) : name_(name) {}
    ~MEMORY_FILE() { VSIUnlink(name_); }
    MEMORY_FILE(const MEMORY_FILE&) = delete;
    MEMORY_FILE& operator=(const MEMORY_FILE&) = delete;
    const char* name_;
};

std::string Wgs84Text() {
    OGRSpatialReference reference;
    reference.SetFromUserInput("EPSG:4326");
    char* text = nullptr;
    reference.exportToWkt(&text);
    std::string wkt = text;
    CPLFree(text);
    return wkt;
}

void WriteBand(GDALDataset& dataset, int band, const std::vector<double>& values) {
    const int columns = dataset.GetRasterXSize();
    const int rows = dataset.GetRasterYSize();
    if (dataset.GetRasterBand(band)->RasterIO(GF_Write, 0, 0, columns, rows, const_cast<double*>(values.data()),
                                              columns, rows, GDT_Float64, 0, 0, nullptr) != CE_None)
        RefuseGdal("positions", "be kept in memory");
}

/// GDAL takes geolocation arrays by file name only.
void SavePositions(const EARTH_POSITIONS& positions) {
    const DATASET dataset = NewDatasetInMemory(positions.columns, positions.rows, 2, GDT_Float64);
    WriteBand(*dataset, 1, positions.longitudes_deg);
    WriteBand(*dataset, 2, positions.latitudes_deg);
    SaveDataset(*dataset, kPositionsFile, "GTiff");
}

void RefuseUncovered(const RASTER_FILE& raster, const EARTH_POSITIONS& positions, const GRIDS& grids) {
    const double columns = static_cast<double>(positions.columns) * grids.earth.columns / grids.product.columns;
    const double rows = static_cast<double>(positions.rows) * grids.earth.rows / grids.product.rows;
    if (columns + 1 >= static_cast<double>(raster.Columns()) && rows + 1 >= static_cast<double>(raster.Rows())) return;
    throw COMPANION_ERROR(raster.Path() + ": has " + std::to_string(raster.Columns()) + " x " +
                          std::to_string(raster.Rows()) + " pixels; by the pool's factors the x, y, z files cover " +
                          std::to_string(std::lround(columns)) + " x " + std::to_string(std::lround(rows)) +
                          ": are pool and files of one run?");
}

MAP_SPACING SpacingFor(const RASTER_FILE& raster, const EARTH_POSITIONS& positions, const GRIDS& grids) {
    const double across = static_cast<double>(grids.product.columns) / grids.earth.columns;
    const double along = static_cast<double>(grids.product.rows) / grids.earth.rows;
    return MapSpacing(positions, {across, along},
                      static_cast<double>(raster.Columns()) * static_cast<double>(raster.Rows()));
}

/// Pixel centres: index j of the positions is the centre of the product's pixel j x step, which GDAL counts as
/// j x step + 0.5.
void AttachPositions(GDALDataset& product, const GRIDS& grids) {
    CPLStringList items;
    items.SetNameValue("SRS", Wgs84Text().c_str());
    items.SetNameValue("X_DATASET", kPositionsFile);
    items.SetNameValue("X_BAND", "1");
    items.SetNameValue("Y_DATASET", kPositionsFile);
    items.SetNameValue("Y_BAND", "2");
    items.SetNameValue("PIXEL_OFFSET", "0.5");
    items.SetNameValue("LINE_OFFSET", "0.5");
    items.SetNameValue("PIXEL_STEP",
                       CPLSPrintf("%.17g", static_cast<double>(grids.earth.columns) / grids.product.columns));
    items.SetNameValue("LINE_STEP", CPLSPrintf("%.17g", static_cast<double>(grids.earth.rows) / grids.product.rows));
    product.SetMetadata(items.List(), "GEOLOCATION");
}

DATASET ProductInMemory(const RASTER_FILE& raster, std::optional<double> invalid) {
    if (std::max(raster.Columns(), raster.Rows()) > std::numeric_limits<int>::max())
        throw COMPANION_ERROR(raster.Path() + ": has " + std::to_string(raster.Columns()) + " x " +
                              std::to_string(raster.Rows()) + " pixels: more than GDAL takes");
    const int columns = static_cast<int>(raster.Columns());
    DATASET dataset = NewDatasetInMemory(columns, static_cast<int>(raster.Rows()), 1, GDT_Float32);
    std::vector<double> values(static_cast<std::size_t>(columns));
    for (int row = 0; row < dataset->GetRasterYSize(); ++row) {
        raster.ReadRow(row, values);
        if (invalid) std::ranges::replace(values, *invalid, std::numeric_limits<double>::quiet_NaN());
        if (dataset->GetRasterBand(1)->RasterIO(GF_Write, 0, row, columns, 1, values.data(), columns, 1, GDT_Float64, 0,
                                                0, nullptr) != CE_None)
            RefuseGdal(raster.Path(), "be kept in memory");
    }
    dataset->GetRasterBand(1)->SetNoDataValue(std::numeric_limits<double>::quiet_NaN());
    return dataset;
}

void AddNumbers(CPLStringList& arguments, const char* option, std::initializer_list<double> numbers) {
    arguments.AddString(option);
    for (const double number : numbers) arguments.AddString(CPLSPrintf("%.17g", number));
}

/// The map reaches a pixel beyond the positions: the rims of the radar pixels at the edges lie there.
void AddExtent(CPLStringList& arguments, const EARTH_POSITIONS& positions, const MAP_SPACING& spacing) {
    const auto [west, east] = std::ranges::minmax(positions.longitudes_deg);
    const auto [south, north] = std::ranges::minmax(positions.latitudes_deg);
    AddNumbers(arguments, "-tr", {spacing.longitude_deg, spacing.latitude_deg});
    AddNumbers(arguments, "-te",
               {west - spacing.longitude_deg, south - spacing.latitude_deg, east + spacing.longitude_deg,
                north + spacing.latitude_deg});
}

DATASET Warped(GDALDataset& product, const EARTH_POSITIONS& positions, const MAP_SPACING& spacing,
               const std::string& path) {
    CPLStringList arguments;
    for (const char* word :
         {"-of", "MEM", "-geoloc", "-t_srs", "EPSG:4326", "-r", "near", "-et", "0", "-dstnodata", "nan", "-multi"})
        arguments.AddString(word);
    AddExtent(arguments, positions, spacing);
    GDALWarpAppOptions* const options = GDALWarpAppOptionsNew(arguments.List(), nullptr);
    GDALDatasetH source = &product;
    int usage_error = FALSE;
    DATASET map(GDALDataset::FromHandle(GDALWarp("", nullptr, 1, &source, options, &usage_error)));
    GDALWarpAppOptionsFree(options);
    if (map == nullptr) RefuseGdal(path, "put on the map");
    return map;
}

VALUE_GRID GridOf(GDALDataset& map, bool wrap) {
    VALUE_GRID grid{map.GetRasterXSize(), map.GetRasterYSize(), {}};
    grid.values.resize(static_cast<std::size_t>(grid.columns) * grid.rows);
    if (map.GetRasterBand(1)->RasterIO(GF_Read, 0, 0, grid.columns, grid.rows, grid.values.data(), grid.columns,
                                       grid.rows, GDT_Float32, 0, 0, nullptr) != CE_None)
        RefuseGdal("map", "be read");
    constexpr double kTurn = 2.0 * std::numbers::pi;
    for (float& value : grid.values) {
        if (wrap && !std::isnan(value)) value = static_cast<float>(value - kTurn * std::floor(value / kTurn));
    }
    return grid;
}

DATASET ColouredMap(GDALDataset& map, const VALUE_GRID& grid, const std::vector<COLOUR>& colours) {
    constexpr int kBands = 4;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(kBands * colours.size());
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const std::uint8_t alpha = std::isnan(grid.values[i]) ? 0 : 255;
        pixels.insert(pixels.end(), {colours[i].red, colours[i].green, colours[i].blue, alpha});
    }
    DATASET dataset = NewDatasetInMemory(grid.columns, grid.rows, kBands, GDT_Byte);
    if (dataset->RasterIO(GF_Write, 0, 0, grid.columns, grid.rows, pixels.data(), grid.columns, grid.rows, GDT_Byte,
                          kBands, nullptr, kBands, static_cast<GSpacing>(kBands) * grid.columns, 1, nullptr) != CE_None)
        RefuseGdal("map", "be coloured");
    double transform[6] = {};
    map.GetGeoTransform(transform);
    dataset->SetGeoTransform(transform);
    dataset->SetProjection(map.GetProjectionRef());
    dataset->GetRasterBand(kBands)->SetColorInterpretation(GCI_AlphaBand);
    return dataset;
}

/// The driver insists on its own ending.
void MoveIntoPlace(const char* from, const std::string& path) {
    CPLErrorReset();
    if (CPLCopyFile(path.c_str(), from) != 0) RefuseGdal(path, "write");
}

}  // namespace

DATASET MapOfProduct(const RASTER_FILE& raster, const PRODUCT_KIND& kind, const EARTH_POSITIONS& positions,
                     const GRIDS& grids, std::optional<double> invalid) {
    RefuseUncovered(raster, positions, grids);
    const MEMORY_FILE until_done(kPositionsFile);
    SavePositions(positions);
    const DATASET product = ProductInMemory(raster, invalid);
    AttachPositions(*product, grids);
    DATASET map = Warped(*product, positions, SpacingFor(raster, positions, grids), raster.Path());
    map->GetRasterBand(1)->SetDescription(kind.description);
    map->GetRasterBand(1)->SetUnitType(kind.unit);
    return map;
}

void SaveGeoTiff(GDALDataset& map, const std::string& path) {
    CPLStringList options;
    options.SetNameValue("COMPRESS", "DEFLATE");
    options.SetNameValue("PREDICTOR", "3");
    options.SetNameValue("TILED", "YES");
    options.SetNameValue("BIGTIFF", "IF_SAFER");
    SaveDataset(map, path, "GTiff", options);
}

void SaveKmz(GDALDataset& map, const PRODUCT_KIND& kind, const std::string& path) {
    const VALUE_GRID grid = GridOf(map, AverageFor(&kind) == AVERAGE::PHASE);
    const std::vector<COLOUR> colours = Colours(grid, ColouringFor(&kind, PIXEL_TYPE::FLT_6, grid));
    const DATASET coloured = ColouredMap(map, grid, colours);
    const MEMORY_FILE archive("/vsimem/map.kmz");
    CPLStringList options;
    options.SetNameValue("FORMAT", "PNG");
    options.SetNameValue("NAME", kind.description);
    SaveDataset(*coloured, archive.name_, "KMLSUPEROVERLAY", options);
    MoveIntoPlace(archive.name_, path);
}
