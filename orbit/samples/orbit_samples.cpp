#include "orbit/samples/orbit_samples.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

// No satellite of the Earth is beyond; a value that is has been misread or stands in another unit.
constexpr double kFarthestMetres = 1e9;
constexpr double kFastestMetresPerSecond = 1e6;
constexpr double kLongestSeconds = 1e10;  // 300 years between state vector and reference time

bool IsPlausible(double value, double largest) {
    return std::isfinite(value) && std::fabs(value) <= largest;
}

/// @param list  x y z of all state vectors in turn
void CheckTriple(const std::vector<double>& list, size_t entry, double largest, const char* unit,
                 const std::string& name) {
    for (size_t i = 3 * entry; i < 3 * entry + 3; ++i) {
        if (!IsPlausible(list[i], largest)) {
            RefuseStateVectors("%s: state vector %zu: %.9g is no coordinate of an Earth satellite (at most %g %s)",
                               name.c_str(), entry, list[i], largest, unit);
        }
    }
}

/// Nothing computed from the time may overflow.
void CheckTime(const ANY_TIME& reference, const ANY_TIME& time, const std::string& name, size_t entry) {
    const double* const number_s = std::get_if<double>(&time);
    if (number_s != nullptr && !IsPlausible(*number_s, kLongestSeconds)) {  // before the difference could overflow
        RefuseStateVectors("%s: state vector %zu: %.9g s is outside +-%g s", name.c_str(), entry, *number_s,
                           kLongestSeconds);
    }
    const double seconds = SecondsSince({reference}, time);
    if (!IsPlausible(seconds, kLongestSeconds)) {
        RefuseStateVectors("%s: state vector %zu: %.9g s from the reference time are more than %g s", name.c_str(),
                           entry, seconds, kLongestSeconds);
    }
}

AXIS_ZERO ZeroOf(const STATE_VECTOR_LISTS& lists, const ANY_TIME& reference, const std::string& time_name) {
    const size_t middle = lists.times.size() / 2;
    CheckTime(reference, lists.times[middle], time_name, middle);
    return ZeroNear(reference, lists.times[middle]);
}

void CheckCount(size_t count, const INTERPOLATION_REQUEST& request, const std::string& time_name) {
    const int fewest = FewestStateVectors(request);
    if (count < static_cast<size_t>(fewest)) {
        RefuseStateVectors("%s: %zu state vectors are too few, the interpolation %s needs %d", time_name.c_str(), count,
                           TextOf(request.id), fewest);
    }
}

}  // namespace

ORBIT_SAMPLES SamplesOf(const STATE_VECTOR_LISTS& lists, const ANY_TIME& reference, bool is_float,
                        const INTERPOLATION_REQUEST& request) {
    const std::string time_name = NameOfList(lists.file, lists.time_key);
    const std::string position_name = NameOfList(lists.file, lists.position_key);
    const std::string velocity_name = NameOfList(lists.file, lists.velocity_key);
    CheckCount(lists.times.size(), request, time_name);
    ORBIT_SAMPLES samples;
    samples.is_float = is_float;
    samples.zero = ZeroOf(lists, reference, time_name);
    for (size_t i = 0; i < lists.times.size(); ++i) {
        CheckTriple(lists.positions_m, i, kFarthestMetres, "m", position_name);
        CheckTriple(lists.velocities_m_s, i, kFastestMetresPerSecond, "m/s", velocity_name);
        CheckTime(reference, lists.times[i], time_name, i);
        const double seconds = SecondsSince(samples.zero, lists.times[i]);
        samples.t_s.push_back(is_float ? static_cast<float>(seconds) : seconds);
        for (size_t axis = 0; axis < 3; ++axis) {
            samples.position_m[axis].push_back(lists.positions_m[3 * i + axis]);
            samples.velocity_m_s[axis].push_back(lists.velocities_m_s[3 * i + axis]);
        }
        if (i > 0 && !(samples.t_s[i] > samples.t_s[i - 1])) {
            RefuseStateVectors("%s: state vector %zu (%s) is not later than the one before (%s)", time_name.c_str(), i,
                               TextOf(lists.times[i]).c_str(), TextOf(lists.times[i - 1]).c_str());
        }
    }
    return samples;
}

std::string NameOfList(const std::string& file, const std::string& key) {
    return file + ": key \"" + key + "\"";
}

void RefuseStateVectors(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    LogAndThrow<ERROR_DATA>("%s", text);
}
