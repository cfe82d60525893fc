/// \file area_rows.h
/// Which DEM samples of a row lie inside the simulated area: the answer of the test by areas of triangle.h for every
/// quadrilateral, without asking it for every sample.
/// A quadrilateral (q1, q2, q3, q4) is the triangles (q4, q2, q1) and (q4, q1, q3). What the test calls inside a
/// triangle is convex: the triangle itself and a seam around it. On a row it is one interval of columns. Threads:
/// constant after construction.

#pragma once

#include <vector>

#include "simulation/scene.h"
#include "simulation/triangle.h"

class AREA_ROWS {
  public:
    explicit AREA_ROWS(const SIMULATION_AREA& area);

    /// @param inside  receives 1 or 0 for the columns first_column .. first_column + inside.size() - 1
    void Mark(int row, int first_column, std::vector<unsigned char>& inside) const;

  private:
    struct BOUNDED_TRIANGLE {
        TRIANGLE corners;
        double area;
        double first_row;  ///< of the triangle and its seam
        double last_row;
        double first_column;
        double last_column;
    };
    static void MarkTriangle(const BOUNDED_TRIANGLE& triangle, int row, int first_column,
                             std::vector<unsigned char>& inside);
    void Add(const TRIANGLE& corners);

    std::vector<BOUNDED_TRIANGLE> triangles_;
};
