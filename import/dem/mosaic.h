/// \file mosaic.h
/// Several DEM files as one grid of heights. Files whose samples stand on one grid (geographic degrees or UTM, on the
/// WGS 84 ellipsoid) are copied sample for sample; everything else is warped (cubic) to geographic degrees first.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "import/dem/dem_source.h"

/// Positions at most this far from a grid belong to it, in degrees and metres.
inline constexpr double kGridTolerance_deg = 1e-9;
inline constexpr double kGridTolerance_m = 1e-6;

class DEM_MOSAIC {
  public:
    /// @param box  what is needed, in degrees; nothing for all
    /// @throws COMPANION_ERROR when a file cannot be warped, or when nothing of the box is covered
    DEM_MOSAIC(std::vector<std::unique_ptr<DEM_SOURCE>> sources, const std::optional<DEGREE_BOX>& box);

    [[nodiscard]] const SAMPLE_GRID& Grid() const { return grid_; }
    [[nodiscard]] const MAP_REFERENCE& Map() const { return map_; }
    /// Names of the files that were warped.
    [[nodiscard]] const std::vector<std::string>& Warped() const { return warped_; }
    /// Whether the files reach over the whole box.
    [[nodiscard]] bool CoversBox() const { return covers_box_; }
    [[nodiscard]] bool IsWholeMetres() const;

    /// Heights in metres, NaN where no file has one; of overlapping files the first that has one counts.
    void ReadRow(long long row, std::vector<double>& heights_m);

  private:
    /// A source at its place in the grid: its first sample is the grid's (column, row), which may lie outside.
    struct PLACED {
        DEM_SOURCE* source;
        long long column;
        long long row;
    };

    /// Columns and rows of the base grid, both ends included.
    struct SAMPLE_BOX {
        double first_column, last_column, first_row, last_row;
    };

    void BringOntoOneGrid();
    [[nodiscard]] bool AllOnGridOf(const DEM_SOURCE& first) const;
    void Unwrap(std::vector<double>& turns_deg) const;
    void PlaceAll(const std::vector<double>& turns_deg);
    void PlaceForBox(const DEGREE_BOX& box);
    void Place(DEM_SOURCE& source, double turn_deg);
    [[nodiscard]] SAMPLE_BOX PlacedSamples() const;
    /// Cuts to these columns and rows of the base grid, as far as there are files.
    void CutTo(const SAMPLE_BOX& wanted);
    void RequireSamples() const;

    std::vector<std::unique_ptr<DEM_SOURCE>> originals_;  ///< of the warped ones, which read from them
    std::vector<std::unique_ptr<DEM_SOURCE>> sources_;
    std::vector<PLACED> placed_;
    SAMPLE_GRID base_;  ///< origin of the rows and columns while the sources are placed
    SAMPLE_GRID grid_;
    MAP_REFERENCE map_;
    std::vector<std::string> warped_;
    bool covers_box_ = true;
    std::vector<double> piece_m_;
};
