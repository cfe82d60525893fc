/// \file geoid.h
/// Heights above EGM96 as heights above the WGS 84 ellipsoid, by PROJ's own grid and interpolation.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "import/dem/reference_system.h"

struct pj_ctx;
struct PJconsts;

class EGM96_GEOID {
  public:
    /// @param map  positions are given on this map, degrees or metres
    /// @throws COMPANION_ERROR when PROJ's grid us_nga_egm96_15.tif is not installed
    explicit EGM96_GEOID(const MAP_REFERENCE& map);

    /// Adds the geoid's height to a row of heights; NaN stays. All samples have the same y.
    /// @throws COMPANION_ERROR for a position that PROJ does not transform
    void AddTo(const std::vector<double>& x, double y, std::vector<double>& heights_m);

    /// Of all samples so far, in metres.
    [[nodiscard]] double Lowest_m() const { return lowest_m_; }
    [[nodiscard]] double Highest_m() const { return highest_m_; }

  private:
    struct DESTROY {
        void operator()(pj_ctx* context) const;
        void operator()(PJconsts* transformation) const;
    };
    std::unique_ptr<pj_ctx, DESTROY> context_;
    std::unique_ptr<PJconsts, DESTROY> transformation_;
    double lowest_m_ = 1e30;
    double highest_m_ = -1e30;
    std::vector<double> x_;
    std::vector<double> y_;
    std::vector<double> geoid_m_;
};
