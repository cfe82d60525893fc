#include "import/dem/dem_source.h"

#include <cpl_vsi.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "companions/companion_error.h"
#include "import/dem/gdal_errors.h"

namespace {

constexpr double kVoid_m = -32768.0;

bool EndsWithZip(const std::string& file) {
    return file.size() > 4 && EQUAL(file.c_str() + file.size() - 4, ".zip");
}

GDALDatasetUniquePtr OpenQuietly(const std::string& file) {
    return GDALDatasetUniquePtr(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
}

/// A DEM in a zip archive: the one member that is a raster.
GDALDatasetUniquePtr OpenMember(const std::string& file) {
    const std::string archive = "/vsizip/" + file;
    const CPLStringList members(VSIReadDirRecursive(archive.c_str()));
    std::vector<std::string> rasters;
    for (int i = 0; i < members.size(); ++i) {
        const std::string member = archive + "/" + members[i];
        if (OpenQuietly(member) != nullptr) rasters.push_back(member);
    }
    if (rasters.empty())
        throw COMPANION_ERROR(file + ": holds no raster file that GDAL reads (" + std::to_string(members.size()) +
                              " members)");
    if (rasters.size() > 1)
        throw COMPANION_ERROR(file + ": holds " + std::to_string(rasters.size()) +
                              " raster files; name the one: " + rasters.front());
    return OpenQuietly(rasters.front());
}

GDALDatasetUniquePtr OpenDem(const std::string& file) {
    GDALDatasetUniquePtr dataset = OpenQuietly(file);
    const std::string reason = dataset == nullptr ? LastGdalError() : "";
    if (dataset == nullptr && EndsWithZip(file)) dataset = OpenMember(file);
    if (dataset == nullptr) throw COMPANION_ERROR(file + ": GDAL can not read it: " + reason);
    return dataset;
}

/// GDAL's transforms are those of pixel corners, for pixel-is-point files, too: the sample lies half a pixel inside.
std::optional<SAMPLE_GRID> GridOf(GDALDataset& dataset, bool& south_up) {
    double t[6];
    if (dataset.GetGeoTransform(t) != CE_None) return std::nullopt;
    const bool finite = std::all_of(std::begin(t), std::end(t), [](double value) { return std::isfinite(value); });
    if (!finite || t[2] != 0.0 || t[4] != 0.0 || t[1] <= 0.0 || t[5] == 0.0) return std::nullopt;
    SAMPLE_GRID grid{t[0] + 0.5 * t[1],        t[3] + 0.5 * t[5],       t[1], -t[5],
                     dataset.GetRasterXSize(), dataset.GetRasterYSize()};
    south_up = t[5] > 0.0;
    if (south_up) {
        grid.y0 = t[3] + (static_cast<double>(grid.rows) - 0.5) * t[5];
        grid.dy = t[5];
    }
    return grid;
}

double MetresPerUnit(const std::string& unit, const std::string& file) {
    constexpr double kFoot_m = 0.3048;
    constexpr double kSurveyFoot_m = 1200.0 / 3937.0;
    for (const char* const metre : {"", "m", "metre", "meter", "metres", "meters"}) {
        if (EQUAL(unit.c_str(), metre)) return 1.0;
    }
    for (const char* const foot : {"ft", "foot", "feet", "international foot"}) {
        if (EQUAL(unit.c_str(), foot)) return kFoot_m;
    }
    for (const char* const foot : {"us-ft", "ftUS", "US survey foot", "sfoot"}) {
        if (EQUAL(unit.c_str(), foot)) return kSurveyFoot_m;
    }
    RefuseValue({file, "unit of the band"}, unit, "metres or feet");
}

}  // namespace

DEM_SOURCE::DEM_SOURCE(const std::string& file) : name_(file), dataset_(OpenDem(file)) {
    Describe();
    if (dataset_->GetSpatialRef() == nullptr)
        throw COMPANION_ERROR(file + ": has no reference system: give it one, for example by gdal_translate -a_srs");
    const std::string driver = dataset_->GetDriver()->GetDescription();
    // This format holds no reference at all; GDAL would name the one of the mission that it was made for.
    if (driver == "SRTMHGT") heights_ = {};
    std::string unit = band_->GetUnitType();
    const bool unit_of_system = unit.empty() && heights_.metres_per_unit > 0.0;
    const double metres = unit_of_system ? heights_.metres_per_unit : MetresPerUnit(unit, file);
    scale_ = band_->GetScale() * metres;
    offset_m_ = band_->GetOffset() * metres;
    if (!std::isfinite(scale_) || !std::isfinite(offset_m_) || scale_ == 0.0)
        throw COMPANION_ERROR(file + ": scale and offset of the band are no numbers");
}

DEM_SOURCE::DEM_SOURCE(const std::string& name, GDALDatasetUniquePtr dataset)
    : name_(name), dataset_(std::move(dataset)) {
    Describe();
}

void DEM_SOURCE::Describe() {
    if (dataset_->GetRasterCount() < 1) throw COMPANION_ERROR(name_ + ": has no raster band");
    band_ = dataset_->GetRasterBand(1);
    const GDALDataType type = band_->GetRasterDataType();
    if (GDALDataTypeIsComplex(type) != 0) throw COMPANION_ERROR(name_ + ": has complex pixels, which are no heights");
    if (const OGRSpatialReference* const system = dataset_->GetSpatialRef()) {
        system_ = *system;
        map_ = MapReferenceOf(system_);
        heights_ = HeightsOf(system_);
    }
    grid_ = GridOf(*dataset_, south_up_);
    const char* const meaning = dataset_->GetMetadataItem(GDALMD_AREA_OR_POINT);
    const char* const pixel = meaning == nullptr        ? ""
                              : EQUAL(meaning, "Point") ? ", pixel is point"
                                                        : ", pixel is area";
    description_ = std::string(dataset_->GetDriver()->GetDescription()) + ", " + GDALGetDataTypeName(type) + pixel;
}

void DEM_SOURCE::TakeConversionFrom(const DEM_SOURCE& other) {
    scale_ = other.scale_;
    offset_m_ = other.offset_m_;
}

bool DEM_SOURCE::IsWholeMetres() const {
    return GDALDataTypeIsInteger(band_->GetRasterDataType()) != 0 && scale_ == 1.0 && offset_m_ == 0.0;
}

void DEM_SOURCE::ReadRow(long long row, long long first_column, long long count, double* heights_m) {
    const int file_row = static_cast<int>(south_up_ ? dataset_->GetRasterYSize() - 1 - row : row);
    const int first = static_cast<int>(first_column);
    const int width = static_cast<int>(count);
    mask_.assign(static_cast<std::size_t>(count), 255);
    CPLErr error = band_->RasterIO(GF_Read, first, file_row, width, 1, heights_m, width, 1, GDT_Float64, 0, 0, nullptr);
    if (error == CE_None && band_->GetMaskFlags() != GMF_ALL_VALID)
        error = band_->GetMaskBand()->RasterIO(GF_Read, first, file_row, width, 1, mask_.data(), width, 1, GDT_Byte, 0,
                                               0, nullptr);
    if (error != CE_None)
        throw COMPANION_ERROR(name_ + ": row " + std::to_string(file_row) +
                              ": GDAL can not read it: " + LastGdalError());
    for (std::size_t i = 0; i < mask_.size(); ++i) {
        double& height_m = heights_m[i];
        const bool is_void = mask_[i] == 0 || std::isnan(height_m) || height_m == kVoid_m;
        height_m = is_void ? std::numeric_limits<double>::quiet_NaN() : height_m * scale_ + offset_m_;
    }
}
