/// \file state_vector_lists.h
/// State vectors as they stand in their source: the times in the source's own kind, the coordinates x y z in turn.
/// Frame: Earth-fixed, metres, metres per second.

#pragma once

#include <string>
#include <vector>

#include "orbit/samples/reference_time.h"

struct STATE_VECTOR_LISTS {
    // Out of line: 78 concrete orbits hand one on.
    STATE_VECTOR_LISTS();
    STATE_VECTOR_LISTS(STATE_VECTOR_LISTS&&) noexcept;
    ~STATE_VECTOR_LISTS();

    std::vector<ANY_TIME> times;
    std::vector<double> positions_m;     ///< three per time
    std::vector<double> velocities_m_s;  ///< likewise

    /// For messages: a file and the key or item of each list.
    std::string file;
    std::string time_key;
    std::string position_key;
    std::string velocity_key;
};

/// What an orbit's type says of its numbers.
struct ORBIT_NUMBERS {
    TIME_KIND times;
    bool is_float;  ///< coordinates, and times on the interpolation's axis
};
