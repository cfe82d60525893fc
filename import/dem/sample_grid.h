/// \file sample_grid.h
/// Where the samples of a DEM lie: sample (column, row) at x0 + column dx, y0 - row dy, rows from north to south.
/// Units: degrees for a geographic grid, metres for a UTM grid. Positions are those of the samples, never pixel
/// corners.

#pragma once

inline constexpr double kTurn_deg = 360.0;  ///< the longitude of a geographic grid comes again after a turn

struct SAMPLE_GRID {
    double x0 = 0.0;
    double y0 = 0.0;
    double dx = 0.0;
    double dy = 0.0;
    long long columns = 0;
    long long rows = 0;

    [[nodiscard]] double X(double column) const { return x0 + column * dx; }
    [[nodiscard]] double Y(double row) const { return y0 - row * dy; }
    [[nodiscard]] double Column(double x) const { return (x - x0) / dx; }
    [[nodiscard]] double Row(double y) const { return (y0 - y) / dy; }
    [[nodiscard]] double LastX() const { return X(static_cast<double>(columns - 1)); }
    [[nodiscard]] double LastY() const { return Y(static_cast<double>(rows - 1)); }
};

/// West may be larger than east: the box then crosses the 180 degree meridian. Degrees.
struct DEGREE_BOX {
    double west = 0.0;
    double south = 0.0;
    double east = 0.0;
    double north = 0.0;
};
