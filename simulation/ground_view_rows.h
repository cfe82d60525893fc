/// \file ground_view_rows.h
/// Rows of what the ground sees of both satellites, from a grid of heights. A row's values depend on nothing but the
/// row's heights: not on threads, slabs or the level of the vector code.
/// Threads: constant after construction.

#pragma once

#include <array>

#include "simulation/ground_view.h"
#include "simulation/scene.h"

/// What a scene does not tell.
struct VIEW_GEOMETRY {
    double look_sign = 1.0;  ///< +1 right, -1 left
    double a_m = 0.0;        ///< semi-axes of the ellipsoid in the orbits' frame
    double b_m = 0.0;
};

class GROUND_VIEW_ROWS {
  public:
    /// @param scene  must outlive the object; its grid of heights is the one that is looked at
    GROUND_VIEW_ROWS(const SCENE& scene, const VIEW_GEOMETRY& geometry);

    /// Where the views of a row go: one place per column, or nullptr for a view that is not wanted.
    using ROW = std::array<float*, kViews>;

    /// @param grid_row  of the grid of heights
    /// @param columns   the first ones of the grid
    void View(int grid_row, int columns, const ROW& row) const;

  private:
    [[nodiscard]] GROUND_FRAME FrameOf(int grid_row, int columns) const;

    const SCENE& scene_;
    VIEW_GEOMETRY geometry_;
    decltype(&plain::ViewGround) view_ground_;
};
