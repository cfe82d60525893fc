#include "import/pools/orbit_entries.h"

#include "import/orbit_files/interpolation_choice.h"

namespace {

using VECTOR_PART = VECTOR_3D<double> UTC_STATE_VECTOR::*;

constexpr const char* kTimes = "state_vector_times";
constexpr const char* kPositions = "state_vector_positions";
constexpr const char* kVelocities = "state_vector_velocities";

ARRAY<STRING> Times(const std::vector<UTC_STATE_VECTOR>& vectors) {
    ARRAY<STRING> times(0, static_cast<int>(vectors.size()));
    for (int i = 0; i < times.Count(); ++i) times[i] = vectors[static_cast<std::size_t>(i)].time.ToIsoText();
    return times;
}

ARRAY<double> Coordinates(const std::vector<UTC_STATE_VECTOR>& vectors, VECTOR_PART part) {
    ARRAY<double> list(0, static_cast<int>(3 * vectors.size()));
    int i = 0;
    for (const UTC_STATE_VECTOR& vector : vectors) {
        const VECTOR_3D<double>& triple = vector.*part;
        for (const double coordinate : {triple.x, triple.y, triple.z}) list[i++] = coordinate;
    }
    return list;
}

INTERPOLATION_CHOICE ChoiceFor(const std::vector<UTC_STATE_VECTOR>& vectors) {
    std::vector<double> times_s;
    for (const UTC_STATE_VECTOR& vector : vectors) times_s.push_back((vector.time - vectors.front().time).Seconds());
    return ChooseInterpolation(times_s);
}

}  // namespace

void ChangeOrbitEntries(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const std::vector<UTC_STATE_VECTOR>& vectors,
                        const UNIVERSAL_TIME& reference_time, const std::string& comment) {
    pool.Change("orbit_representation", std::string("orbit_pool_double_utc"), {comment});
    pool.Change("orbit_interpolation", ChoiceFor(vectors).text);
    pool.Change("orbit_param_key", std::string(kTimes));
    pool.Change("orbit_value_key", std::string(kPositions));
    pool.Change("orbit_velocity_key", std::string(kVelocities));
    pool.Change("orbit_reference_time", reference_time.ToIsoText());
    pool.Change(kTimes, Times(vectors));
    pool.Change(kPositions, Coordinates(vectors, &UTC_STATE_VECTOR::position_m));
    pool.Change(kVelocities, Coordinates(vectors, &UTC_STATE_VECTOR::velocity_m_s));
}

UNIVERSAL_TIME ReferenceTimeFor(const std::vector<UTC_STATE_VECTOR>& vectors) {
    UNIVERSAL_TIME reference = vectors.front().time;
    reference.millisecond = 0;
    reference.microsecond = 0;
    return reference;
}

std::string InterpolationText(const std::vector<UTC_STATE_VECTOR>& vectors) {
    const INTERPOLATION_CHOICE choice = ChoiceFor(vectors);
    return choice.text + " (" + choice.reason + ")";
}
