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
/// Lines are looked at in pieces that begin at multiples of kLines, so that nothing depends on threads or slabs. Where
/// all the terrain of a piece is gentle, its flags are zero and no line is traced. Memory: that of the terrain's
/// profiles of a piece. Threads: constant after construction.

#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "simulation/dem_reach.h"
#include "simulation/gentle_terrain.h"
#include "simulation/profile_sight.h"

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
    /// @param bounds    samples outside are voids
    /// @param relief_m  between the lowest and the highest terrain: how far before the image a shadow may begin
    LAYOVER_SHADOW(const SCENE& scene, int samples, int lines, const TERRAIN_BOUNDS& bounds, double relief_m);

    /// @param piece  lines piece * kLines .. and on, as far as the image goes
    /// @param flags  a byte for each of their pixels, row by row
    void Find(int piece, unsigned char* flags) const;

    /// About what the profiles of all threads need, bytes. @param lines  of the image
    [[nodiscard]] static double WorkingBytes(const DEM_RANGE& simulated, int lines);

    [[nodiscard]] int Pieces() const { return (lines_ + kLines - 1) / kLines; }
    [[nodiscard]] int LinesOf(int piece) const { return std::min(kLines, lines_ - piece * kLines); }

  private:
    [[nodiscard]] SCENE CellsOf(int piece) const;

    const SCENE scene_;  ///< with a wider part of the DEM than is simulated
    int samples_;
    int lines_;
    DEM_REACH dem_reach_;
    std::vector<unsigned char> gentle_;   ///< of the pieces
    std::optional<PROFILE_SIGHT> sight_;  ///< there if some piece is not gentle
};
