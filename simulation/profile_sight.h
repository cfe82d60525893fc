/// \file profile_sight.h
/// How master and slave see the samples of a DEM: what the profiles of all lines share (layover_shadow.h).
/// Threads: constant after construction.

#pragma once

#include <vector>

#include "simulation/dem_row.h"
#include "simulation/gentle_terrain.h"
#include "simulation/prepared_scene.h"

/// Where the master and the slave see a sample or a point of a profile. Lines and pixels are fractional. A look is
/// minus the cosine of the angle at the satellite between the Earth's centre and the sample: it grows with the angle.
struct SEEN {
    double line = 0.0;
    double pixel = 0.0;
    double look = 0.0;
    double slave_pixel = 0.0;
    double slave_look = 0.0;
    bool is_terrain = true;  ///< the sample is no void
};

class PROFILE_SIGHT {
  public:
    /// @param scene  must outlive the object
    /// @param lines  of the image
    PROFILE_SIGHT(const SCENE& scene, const TERRAIN_BOUNDS& bounds, int lines);

    /// Sees columns first .. end - 1 of a row, as far as the orbits' data go, and appends them.
    /// @param samples  of the row; overwritten
    void See(int row, int& first, int& end, RADAR_ROW& samples, std::vector<SEEN>& seen) const;

    bool crosses_columns = true;  ///< a line crosses columns rather than rows
    bool rises_across = true;     ///< the line grows from row to row, or from column to column
    bool is_reversed = false;     ///< these are counted against the distance from the track

  private:
    /// Distances of one satellite from the Earth's centre, line by line.
    struct RADII {
        int first_line = 0;
        std::vector<double> radius_m{};
        [[nodiscard]] double At(double line) const;
    };

    void Orient();
    [[nodiscard]] bool NearEndOfData() const;
    [[nodiscard]] bool IsInsideData(const VECTOR_3D<double>& point_m) const;
    [[nodiscard]] static RADII RadiiOf(const ACQUISITION_SCENE& acquisition, int lines);
    void Shrink(int& first, int& end, const RADAR_ROW& samples) const;
    void Append(const RADAR_ROW& samples, int first, int end, std::vector<SEEN>& seen) const;

    const SCENE& scene_;
    TERRAIN_BOUNDS bounds_;
    PREPARED_SCENE prepared_;
    DEM_ROW dem_row_;
    RADII master_radii_;
    RADII slave_radii_;
    bool near_end_of_data_;  ///< of an orbit: not all samples may be asked for
};
