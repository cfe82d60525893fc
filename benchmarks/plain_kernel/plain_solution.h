/// \file plain_solution.h
/// One DEM cell in radar geometry: its four corners solved towards both orbits, and its two triangles filled into the
/// master image's grids.
/// Slots of the corners: 0 (row r, column c), 1 (r, c+1), 2 (r+1, c), 3 (r+1, c+1); the cell is cut along the diagonal
/// from slot 1 to slot 2, into the triangles (0, 1, 2) and (1, 2, 3). A pixel on the diagonal belongs to the first.
/// Threads: one object per thread. A cell may write a pixel, in every grid, only after its atomic exchange of the
/// pixel's mask byte from 0 to 1 has succeeded: all layers of a pixel come from one cell, and no two threads write one
/// element.

#pragma once

#include <array>
#include <optional>

#include "benchmarks/plain_kernel/plain_bistatic.h"
#include "lib/baselib/containers/records.h"
#include "simulation/scene.h"
#include "simulation/triangle.h"

/// A corner of a DEM cell. Pixels are fractional, azimuth = line, range = column.
struct PLAIN_POINT {
    VECTOR_3D<double> position_m{};  ///< frame of the orbits
    double master_range_pixel = 0.0;
    double master_azimuth_pixel = 0.0;
    double phase_rad = 0.0;  ///< absolute, not wrapped
    double slave_range_pixel = 0.0;
    double slave_azimuth_pixel = 0.0;
    double master_range_time_s = 0.0;  ///< two-way
    double master_range_m = 0.0;
    double master_time_s = 0.0;  ///< zero Doppler, on the master handle's axis
    float height_m = 0.0F;
};

class PLAIN_SOLUTION {
  public:
    using CORNERS = std::array<int, 3>;
    static constexpr std::array<CORNERS, 2> kTriangles = {{{0, 1, 2}, {1, 2, 3}}};

    /// @param scene  must outlive the object
    explicit PLAIN_SOLUTION(const SCENE& scene);
    PLAIN_SOLUTION(const PLAIN_SOLUTION&) = delete;
    PLAIN_SOLUTION& operator=(const PLAIN_SOLUTION&) = delete;

    /// Earth position and master solution of one DEM sample into a slot.
    void SolveMaster(int slot, int column, int row);
    /// Phase, master pixel and slave pixel of a slot whose master solution is there.
    void SolvePoint(int slot);
    /// Fills the pixels of the cell that nobody has claimed yet. All four slots must be solved.
    void FillTriangles();
    /// Point-in-triangle test in master pixels. A triangle below 1e-5 square pixels is logged at WARNING and holds
    /// nothing.
    [[nodiscard]] bool IsInside(int column, int row, const CORNERS& triangle) const;

    [[nodiscard]] const PLAIN_POINT& Point(int slot) const { return points_[slot]; }
    /// For points that come from elsewhere.
    [[nodiscard]] PLAIN_POINT& EditPoint(int slot) { return points_[slot]; }
    /// Whether the pixel filled last went into the shift grids, and into the x/y/z or radar DEM grids.
    [[nodiscard]] bool ShiftWritten() const { return shift_written_; }
    [[nodiscard]] bool EarthWritten() const { return earth_written_; }

  private:
    struct PIXEL_BOX {
        int first_column = 0;
        int last_column = -1;
        int first_row = 0;
        int last_row = -1;
    };
    /// Barycentric weights of a pixel in a triangle.
    struct WEIGHTS;

    [[nodiscard]] PIXEL_BOX BoundingBox() const;
    [[nodiscard]] TRIANGLE InPixels(const CORNERS& triangle) const;
    [[nodiscard]] const CORNERS* TriangleAround(int column, int row) const;
    void FillPixel(int column, int row, const CORNERS& triangle);
    void FillShifts(int column, int row, const WEIGHTS& weights);
    void FillEarth(int column, int row, const WEIGHTS& weights);

    const SCENE& scene_;
    double master_wavelength_m_;
    double slave_wavelength_m_;
    std::array<PLAIN_POINT, 4> points_{};
    PIXEL_BOX box_{};
    bool shift_written_ = false;
    bool earth_written_ = false;
    std::optional<PLAIN_BISTATIC> bistatic_;  ///< of a single-pass pair
};
