#include "import/orbit_files/orbit_table.h"

#include <algorithm>
#include <cmath>

#include "companions/companion_error.h"
#include "geometry/vector_arithmetic.h"

namespace {

constexpr double kLeastRadius_m = 6.0e6;
constexpr double kMostRadius_m = 1.0e8;

/// The trapezoidal rule over a step of h seconds is wrong by h^2 / 12 times the acceleration's change, below 8e-6 m/s^3
/// x h^2 / 12 in a low orbit: 30 m/s hold up to 200 s. Inertial velocities differ by 400 m/s and more.
constexpr double kLargestVelocityDifference_m_s = 30.0;
constexpr double kLongestCheckedStep_s = 200.0;

[[noreturn]] void RefuseVector(const ORBIT_TABLE& table, const UTC_STATE_VECTOR& vector, const std::string& what) {
    throw COMPANION_ERROR(table.file + ": state vector of " + vector.time.ToIsoText() + ": " + what);
}

void CheckRadius(const ORBIT_TABLE& table, const UTC_STATE_VECTOR& vector) {
    const double radius_m = Length(vector.position_m);
    if (radius_m >= kLeastRadius_m && radius_m <= kMostRadius_m) return;
    RefuseVector(table, vector,
                 "is " + std::to_string(radius_m) + " m from the Earth's centre: expected 6e6 to 1e8 (metres)");
}

void CheckStep(const ORBIT_TABLE& table, const UTC_STATE_VECTOR& before, const UTC_STATE_VECTOR& vector) {
    const double step_s = (vector.time - before.time).Seconds();
    if (!(step_s > 0.0)) RefuseVector(table, vector, "does not follow that of " + before.time.ToIsoText());
    if (step_s > kLongestCheckedStep_s) return;
    const VECTOR_3D<double> path_m = vector.position_m - before.position_m;
    const VECTOR_3D<double> sum_m_s = vector.velocity_m_s + before.velocity_m_s;
    const VECTOR_3D<double> difference_m = {path_m.x - 0.5 * step_s * sum_m_s.x, path_m.y - 0.5 * step_s * sum_m_s.y,
                                            path_m.z - 0.5 * step_s * sum_m_s.z};
    const double difference_m_s = Length(difference_m) / step_s;
    if (difference_m_s <= kLargestVelocityDifference_m_s) return;
    RefuseVector(table, vector,
                 "its velocity and that of the positions differ by " + std::to_string(difference_m_s) +
                     " m/s: expected Earth-fixed velocities in metres per second");
}

}  // namespace

void CheckOrbitTable(const ORBIT_TABLE& table) {
    if (table.vectors.size() < 2)
        throw COMPANION_ERROR(table.file + ": holds " + std::to_string(table.vectors.size()) +
                              " state vectors: expected at least 2");
    for (const UTC_STATE_VECTOR& vector : table.vectors) CheckRadius(table, vector);
    for (std::size_t i = 1; i < table.vectors.size(); ++i) CheckStep(table, table.vectors[i - 1], table.vectors[i]);
}

std::string IntervalText(const UNIVERSAL_TIME& from, const UNIVERSAL_TIME& to) {
    return from.ToIsoText() + " to " + to.ToIsoText();
}

double VectorSpacing(const std::vector<UTC_STATE_VECTOR>& vectors) {
    std::vector<double> steps_s;
    for (std::size_t i = 1; i < vectors.size(); ++i)
        steps_s.push_back((vectors[i].time - vectors[i - 1].time).Seconds());
    const auto middle = steps_s.begin() + static_cast<std::ptrdiff_t>(steps_s.size() / 2);
    std::nth_element(steps_s.begin(), middle, steps_s.end());
    return *middle;
}
