/// \file run_request.h
/// What is asked of the folder of a run, or of all folders of a stack, beside its images.

#pragma once

#include <string>
#include <vector>

struct RUN_REQUEST {
    std::string dem_pool;
    std::string folder;
    std::string lines;                     ///< A:B, empty for all
    std::string samples;                   ///< C:D, empty for all
    std::vector<int> shift_factors{1, 1};  ///< range, azimuth
    std::vector<int> earth_factors{1, 1};  ///< range, azimuth
    std::string interpolation;             ///< empty for what suits the state vectors
};
