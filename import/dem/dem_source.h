/// \file dem_source.h
/// A DEM file of any format that GDAL reads, seen as rows of heights in metres on a grid of samples.

#pragma once

#include <gdal_priv.h>

#include <optional>
#include <string>
#include <vector>

#include "import/dem/reference_system.h"
#include "import/dem/sample_grid.h"

class DEM_SOURCE {
  public:
    /// @param file  a path, also of a zip archive with one raster in it, or any name that GDAL takes
    /// @throws COMPANION_ERROR for what GDAL does not read, complex pixels, and a file without a reference system
    explicit DEM_SOURCE(const std::string& file);
    /// A dataset made by GDAL (warped) in place of a file.
    DEM_SOURCE(const std::string& name, GDALDatasetUniquePtr dataset);

    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] GDALDataset& Dataset() const { return *dataset_; }
    [[nodiscard]] const OGRSpatialReference& System() const { return system_; }
    [[nodiscard]] const MAP_REFERENCE& Map() const { return map_; }
    [[nodiscard]] const HEIGHTS_OF_FILE& Heights() const { return heights_; }
    /// Empty for a grid that is turned or sheared.
    [[nodiscard]] const std::optional<SAMPLE_GRID>& Grid() const { return grid_; }
    /// "GTiff, Int16, pixel is area"
    [[nodiscard]] const std::string& Description() const { return description_; }
    /// Scale, offset and units that turn stored numbers into metres; a warped dataset takes those of its source.
    void TakeConversionFrom(const DEM_SOURCE& other);
    [[nodiscard]] bool IsWholeMetres() const;

    /// Heights in metres, NaN where there is none. @throws COMPANION_ERROR when GDAL cannot read
    void ReadRow(long long row, long long first_column, long long count, double* heights_m);

  private:
    void Describe();

    std::string name_;
    GDALDatasetUniquePtr dataset_;
    GDALRasterBand* band_ = nullptr;
    OGRSpatialReference system_;
    MAP_REFERENCE map_;
    HEIGHTS_OF_FILE heights_;
    std::optional<SAMPLE_GRID> grid_;
    bool south_up_ = false;  ///< the file's first row is the southernmost
    double scale_ = 1.0;
    double offset_m_ = 0.0;
    std::string description_;
    std::vector<unsigned char> mask_;
};
