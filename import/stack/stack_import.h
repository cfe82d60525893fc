/// \file stack_import.h
/// All of one call to `velmora-import stack`: from the tables to the folders of the pairs.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "import/pair/run_request.h"
#include "import/stack/pair_table.h"

struct STACK_REQUEST : RUN_REQUEST {
    std::string images;  ///< table, see image_table.h
    std::string pairs;   ///< table, see pair_table.h
};

struct STACK_OUTCOME {
    std::size_t images = 0;
    std::vector<STACK_PAIR> pairs;
    std::size_t new_images = 0;
    std::size_t new_pairs = 0;
    std::size_t not_shown = 0;    ///< new pairs whose slave's image does not show the master's ground
    std::string first_not_shown;  ///< one of them
};

/// Makes what is new; what the stack has stays as it is.
/// @throws COMPANION_ERROR, the errors of pools, times and orbits: nothing is then left of the call
[[nodiscard]] STACK_OUTCOME ImportStack(const STACK_REQUEST& request);
