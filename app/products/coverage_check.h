/// \file coverage_check.h
/// Every pixel of the simulated area must have been simulated before a product appears.

#pragma once

#include "lib/baselib/image/grid_view.h"

struct SIMULATION_STATE;

/// The points without a mark and the box around them, in samples and lines; bounds are inclusive.
struct COVERAGE_GAP {
    long long count = 0;
    int first_sample = 0;
    int last_sample = 0;
    int first_line = 0;
    int last_line = 0;
    int sample_in_first_line = 0;  ///< a missing point for certain; the corners of the box may be none

    /// Looks through a mask, line by line. Masks come in the order of their lines.
    void Add(const GRID_VIEW<const unsigned char>& mask);
    [[nodiscard]] bool IsEmpty() const { return count == 0; }

  private:
    void Add(int sample, int line);
};

/// @throws ERROR_PARAMETER at a gap, after a WARNING that explains it: number of missing points, the box around them,
///         and why: the DEM ends there, a void lies there, cells exceed 1000 samples or the terrain lies outside the
///         heights that are simulated
void RequireCoverage(const SIMULATION_STATE& state, const COVERAGE_GAP& gap);
