/// \file triangle_normals.h
/// Normals of the terrain's triangles between two rows of DEM samples, compiled once per vector level.

#pragma once

#include "lib/baselib/vectors/vector_level.h"

/// Coordinates of one row of samples, Earth-fixed, metres.
struct SAMPLE_RUN {
    const double* x_m;
    const double* y_m;
    const double* z_m;
};

/// Of the cells between the rows, cut as in triangle_filler.h: element i belongs to the cell right of sample i. Not of
/// unit length. Away from the Earth's centre where row and column grow to the south and the east.
/// @param normals  x, y, z of the first triangles, then of the second ones; count elements each
VELMORA_AT_EVERY_LEVEL(void TriangleNormals(const SAMPLE_RUN& upper, const SAMPLE_RUN& lower, int count,
                                            double* const (&normals)[2][3]))
