/// \file terrain_profiles.h
/// The samples of the DEM that a piece of the image needs, and the profiles of its lines (layover_shadow.h).
/// Memory: 48 bytes per sample. Threads: belongs to one.

#pragma once

#include <optional>
#include <vector>

#include "simulation/profile_sight.h"

/// The points of a line's profile, outwards; empty where the line does not cross, or crosses a void.
using TERRAIN_PROFILE = std::vector<std::optional<SEEN>>;

class TERRAIN_PROFILES {
  public:
    /// @param sight  must outlive the object
    /// @param cells  the part of the sight's scene that the piece needs
    TERRAIN_PROFILES(const PROFILE_SIGHT& sight, const SCENE& cells, const DEM_RANGE& all);

    [[nodiscard]] const TERRAIN_PROFILE& Trace(double line);

  private:
    struct ROW {
        int first = 0;  ///< column
        int end = 0;
        std::size_t place = 0;
    };

    void SetBounds();
    [[nodiscard]] const SEEN* At(int along, int across) const;
    [[nodiscard]] const SEEN* Nearest(int along, int& across, int step) const;
    [[nodiscard]] std::optional<SEEN> Crossing(int along, double line);

    const PROFILE_SIGHT& sight_;
    int first_row_;
    std::vector<ROW> rows_;
    std::vector<SEEN> samples_;
    int first_along_ = 0;
    int end_along_ = 0;
    int first_across_ = 0;
    int end_across_ = 0;
    int hint_ = 0;  ///< where the neighbour crossed
    TERRAIN_PROFILE profile_;
};
