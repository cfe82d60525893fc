/// \file orbit_samples.h
/// The state vectors of an orbit as its interpolation sees them: one time axis in seconds, three coordinates, in
/// double. Frame: Earth-fixed, metres, metres per second.

#pragma once

#include <array>
#include <string>
#include <vector>

#include "lib/baselib/containers/records.h"
#include "orbit/interpolation/interpolation_request.h"
#include "orbit/interpolation/support_points.h"
#include "orbit/samples/axis_zero.h"
#include "orbit/source/state_vector_lists.h"

struct ORBIT_SAMPLES {
    AXIS_ZERO zero;           ///< near the samples
    std::vector<double> t_s;  ///< since the zero; strictly increasing
    std::array<std::vector<double>, 3> position_m;
    std::array<std::vector<double>, 3> velocity_m_s;
    bool is_float = false;  ///< every number is a float's

    [[nodiscard]] size_t Count() const { return t_s.size(); }
    /// The support points of one axis, 0 to 2: x, y, z. Valid as long as the samples are.
    [[nodiscard]] SUPPORT_POINTS Axis(size_t axis) const {
        return {t_s, position_m[axis], velocity_m_s[axis], is_float};
    }
    [[nodiscard]] VECTOR_3D<double> Position_m(size_t i) const {
        return {position_m[0][i], position_m[1][i], position_m[2][i]};
    }
};

/// The lists on the axis of the interpolation, times rounded to float where the orbit's numbers are floats.
/// @throws ERROR_DATA, after a line that names file, key and entry: too few vectors for the interpolation, times that
/// do not increase from vector to vector (after the rounding), times more than 1e10 s from the reference, coordinates
/// that are not finite or beyond 1e9 m or 1e6 m/s
[[nodiscard]] ORBIT_SAMPLES SamplesOf(const STATE_VECTOR_LISTS& lists, const ANY_TIME& reference, bool is_float,
                                      const INTERPOLATION_REQUEST& request);

/// "file: key "times"", for messages.
[[nodiscard]] std::string NameOfList(const std::string& file, const std::string& key);

/// Logs the text at ALARM and throws ERROR_DATA.
[[noreturn]] void RefuseStateVectors(const char* format, ...) __attribute__((format(printf, 1, 2)));
