/// \file layover_shadow.h
/// Where one pixel holds the ground of several places, and where the ground is not seen.
///
/// The terrain of a line of the master image is its profile: the points at which the line crosses the columns of the
/// DEM (or its rows, whichever it crosses more often), each between two neighbouring samples, joined by straight
/// segments in the order of their distance from the satellite's track. A point has its range (in pixels) and its look,
/// a measure of the angle between the way down and the way to it, towards either satellite. A sheet of a pixel is a
/// segment that reaches the pixel's centre. A segment faces a satellite where the look grows with the distance. A point
/// is hidden from a satellite when a nearer point of the profile has a greater look. docs/products.md has the bits.
///
/// Lines are looked at in pieces that begin at multiples of kLines, so that nothing depends on threads or slabs.
/// Memory: 40 bytes per sample of the DEM that a piece needs. Threads: constant after construction.

#pragma once

#include <algorithm>
#include <vector>

#include "simulation/dem_lines.h"
#include "simulation/dem_row.h"
#include "simulation/prepared_scene.h"

enum LAYOVER_SHADOW_BIT : unsigned char {
    kMasterLayover = 1,
    kMasterShadow = 2,
    kSlaveLayover = 4,
    kSlaveShadow = 8,
    kNoTerrain = 128
};

class LAYOVER_SHADOW {
  public:
    static constexpr int kLines = 128;

    /// @param scene     its orbits and its DEM count, its grids do not
    /// @param relief_m  between the lowest and the highest terrain: how far before the image a shadow may begin
    LAYOVER_SHADOW(const SCENE& scene, int samples, int lines, double relief_m);

    /// @param piece  lines piece * kLines .. and on, as far as the image goes
    /// @param flags  a byte for each of their pixels, row by row
    void Find(int piece, unsigned char* flags) const;

    [[nodiscard]] int Pieces() const { return (lines_ + kLines - 1) / kLines; }
    [[nodiscard]] int LinesOf(int piece) const { return std::min(kLines, lines_ - piece * kLines); }

  private:
    /// Distances of one satellite from the Earth's centre, line by line.
    struct RADII {
        int first_line = 0;
        std::vector<double> radius_m{};
        [[nodiscard]] double At(double line) const;
    };

    void Orient();
    [[nodiscard]] RADII RadiiOf(const ACQUISITION_SCENE& acquisition) const;

    const SCENE scene_;  ///< with a wider part of the DEM than is simulated
    int samples_;
    int lines_;
    PREPARED_SCENE prepared_;
    DEM_LINES dem_lines_;
    DEM_ROW dem_row_;
    RADII master_radii_;
    RADII slave_radii_;
    bool crosses_columns_ = true;    ///< a line crosses columns rather than rows
    bool rises_across_ = true;       ///< the line grows from row to row, or from column to column
    bool near_end_of_data_ = false;  ///< of an orbit: not all samples may be asked for
    bool is_reversed_ = false;       ///< these are counted against the distance from the track

    friend class TERRAIN_PROFILES;
};
