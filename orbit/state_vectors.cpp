#include "orbit/state_vectors.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "time/met_scanner.h"
#include "time/time_axis.h"

namespace {

// No satellite of the Earth is beyond; a value that is has been misread or stands in another unit.
constexpr double kFarthestMetres = 1e9;
constexpr double kFastestMetresPerSecond = 1e6;
constexpr double kLongestSeconds = 1e10;  // 300 years between state vector and reference time

std::string NameOf(const std::string& file, const std::string& key) {
    return file + ": key \"" + key + "\"";
}

[[noreturn]] void Refuse(const char* format, ...) __attribute__((format(printf, 1, 2)));

void Refuse(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    Log().Message(LOGGING_LEVEL::ALARM, "%s", text);
    throw ERROR_DATA();
}

bool ScanMetEntry(const std::string& text, MISSION_ELAPSED_TIME& time) {
    try {
        MET_SCANNER().ScanFields(text, time);
        return true;
    } catch (const char* message) {
        Log().Message(LOGGING_LEVEL::EXCEPTION, "MET_SCANNER: %s", message);
    } catch (const ERROR_ARGUMENT&) {  // letters; logged by the scanner
    }
    return false;
}

template <class S>
std::vector<S> ReadTimes(PARAMETER_POOL& pool, const std::string& key) {
    if constexpr (std::is_same_v<S, double>) {
        const ARRAY<double> list = pool.Get<ARRAY<double>>(key);
        return {list.begin(), list.end()};
    } else {
        std::vector<std::string> texts;
        for (const STRING& text : pool.Get<ARRAY<STRING>>(key)) texts.push_back(text.ToStd());
        return TimesFromTexts<S>(texts, NameOf(pool.FileName(), key));
    }
}

void CheckListLengths(const ORBIT_CONFIGURATION& names, const std::string& file, int times, int positions,
                      int velocities) {
    if (positions != velocities) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree.");
        Refuse("%s: %d numbers, but %s: %d", NameOf(file, names.value_key).c_str(), positions,
               NameOf(file, names.velocity_key).c_str(), velocities);
    }
    if (positions % 3 != 0) {
        Refuse("%s: %d numbers are no multiple of the three coordinates of a state vector",
               NameOf(file, names.value_key).c_str(), positions);
    }
    if (positions / 3 != times) {
        Refuse("%s: %d times, but %s: %d positions", NameOf(file, names.param_key).c_str(), times,
               NameOf(file, names.value_key).c_str(), positions / 3);
    }
}

template <class T>
VECTOR_3D<T> TripleAt(const ARRAY<T>& list, size_t index) {
    const T* const triple = list.Data() + 3 * index;
    return {triple[0], triple[1], triple[2]};
}

bool IsPlausible(double value, double largest) {
    return std::isfinite(value) && std::fabs(value) <= largest;
}

template <class T>
void CheckTriple(const VECTOR_3D<T>& triple, double largest, const char* unit, const std::string& name, size_t entry) {
    for (const double value : {triple.x, triple.y, triple.z}) {
        if (!IsPlausible(value, largest)) {
            Refuse("%s: state vector %zu: %.9g is no coordinate of an Earth satellite (at most %g %s)", name.c_str(),
                   entry, value, largest, unit);
        }
    }
}

template <class S>
double PlausibleSeconds(const S& reference, const S& time, const std::string& name, size_t entry) {
    if constexpr (std::is_same_v<S, double>) {  // before the difference: it could overflow
        if (!IsPlausible(time, kLongestSeconds)) {
            Refuse("%s: state vector %zu: %.9g s is outside +-%g s", name.c_str(), entry, time, kLongestSeconds);
        }
    }
    const double seconds = TIME_AXIS<S>::SecondsSince(reference, time);
    if (!IsPlausible(seconds, kLongestSeconds)) {
        Refuse("%s: state vector %zu: %.9g s from the reference time are more than %g s", name.c_str(), entry, seconds,
               kLongestSeconds);
    }
    return seconds;
}

}  // namespace

STATE_VECTOR_SOURCE PoolSource(const ORBIT_CONFIGURATION& configuration) {
    return {configuration.pool_file, configuration.param_key, configuration.value_key, configuration.velocity_key};
}

template <class S>
std::vector<S> TimesFromTexts(const std::vector<std::string>& texts, const std::string& name) {
    std::vector<S> times(texts.size());
    size_t failures = 0;
    for (size_t i = 0; i < texts.size(); ++i) {
        if constexpr (std::is_same_v<S, MISSION_ELAPSED_TIME>) {
            if (ScanMetEntry(texts[i], times[i])) continue;
            ++failures;
            Log().Message(LOGGING_LEVEL::ALARM, "%s: entry %zu \"%s\" is no MET time", name.c_str(), i,
                          texts[i].c_str());
        } else {
            try {
                times[i] = TIME_AXIS<S>::FromText(texts[i]);
            } catch (const ERROR_EXCEPTION&) {
                Log().Message(LOGGING_LEVEL::ALARM, "%s: entry %zu \"%s\" is no %s time", name.c_str(), i,
                              texts[i].c_str(), TIME_AXIS<S>::kName);
                throw ERROR_DATA();
            }
        }
    }
    if (failures > 0) throw ERROR_DATA();
    return times;
}

template <class T, class S>
STATE_VECTORS<T, S> ReadStateVectorsFromPool(PARAMETER_POOL& pool, const ORBIT_CONFIGURATION& configuration) {
    const std::vector<S> times = ReadTimes<S>(pool, configuration.param_key);
    const ARRAY<T> positions = pool.Get<ARRAY<T>>(configuration.value_key);
    const ARRAY<T> velocities = pool.Get<ARRAY<T>>(configuration.velocity_key);
    CheckListLengths(configuration, pool.FileName(), static_cast<int>(times.size()), positions.Count(),
                     velocities.Count());
    STATE_VECTORS<T, S> vectors(times.size());
    for (size_t i = 0; i < vectors.size(); ++i) {
        vectors[i] = {times[i], TripleAt(positions, i), TripleAt(velocities, i)};
    }
    return vectors;
}

template <class T, class S>
std::vector<ORBIT_SAMPLE<T>> CheckedSamples(const STATE_VECTORS<T, S>& vectors, const S& reference,
                                            const INTERPOLATION_REQUEST& request, const STATE_VECTOR_SOURCE& source) {
    const std::string time_name = NameOf(source.file, source.time_key);
    const int fewest = FewestStateVectors(request);
    if (vectors.size() < static_cast<size_t>(fewest)) {
        Refuse("%s: %zu state vectors are too few, the interpolation %s needs %d", time_name.c_str(), vectors.size(),
               TextOf(request.id), fewest);
    }
    std::vector<ORBIT_SAMPLE<T>> samples(vectors.size());
    for (size_t i = 0; i < vectors.size(); ++i) {
        const STATE_VECTOR<T, S>& vector = vectors[i];
        CheckTriple(vector.position_m, kFarthestMetres, "m", NameOf(source.file, source.position_key), i);
        CheckTriple(vector.velocity_m_s, kFastestMetresPerSecond, "m/s", NameOf(source.file, source.velocity_key), i);
        const T t_s = static_cast<T>(PlausibleSeconds(reference, vector.time, time_name, i));
        samples[i] = {t_s, vector.position_m, vector.velocity_m_s};
        if (i > 0 && !(samples[i].t_s > samples[i - 1].t_s)) {
            Refuse("%s: state vector %zu (%s) is not later than the one before (%s)", time_name.c_str(), i,
                   TIME_AXIS<S>::ToText(vector.time).c_str(), TIME_AXIS<S>::ToText(vectors[i - 1].time).c_str());
        }
    }
    return samples;
}

template STATE_VECTORS<float, double> ReadStateVectorsFromPool(PARAMETER_POOL&, const ORBIT_CONFIGURATION&);
template STATE_VECTORS<float, UNIVERSAL_TIME> ReadStateVectorsFromPool(PARAMETER_POOL&, const ORBIT_CONFIGURATION&);
template STATE_VECTORS<float, MISSION_ELAPSED_TIME> ReadStateVectorsFromPool(PARAMETER_POOL&,
                                                                             const ORBIT_CONFIGURATION&);
template STATE_VECTORS<double, double> ReadStateVectorsFromPool(PARAMETER_POOL&, const ORBIT_CONFIGURATION&);
template STATE_VECTORS<double, UNIVERSAL_TIME> ReadStateVectorsFromPool(PARAMETER_POOL&, const ORBIT_CONFIGURATION&);
template STATE_VECTORS<double, MISSION_ELAPSED_TIME> ReadStateVectorsFromPool(PARAMETER_POOL&,
                                                                              const ORBIT_CONFIGURATION&);
template std::vector<ORBIT_SAMPLE<float>> CheckedSamples(const STATE_VECTORS<float, double>&, const double&,
                                                         const INTERPOLATION_REQUEST&, const STATE_VECTOR_SOURCE&);
template std::vector<ORBIT_SAMPLE<float>> CheckedSamples(const STATE_VECTORS<float, UNIVERSAL_TIME>&,
                                                         const UNIVERSAL_TIME&, const INTERPOLATION_REQUEST&,
                                                         const STATE_VECTOR_SOURCE&);
template std::vector<ORBIT_SAMPLE<float>> CheckedSamples(const STATE_VECTORS<float, MISSION_ELAPSED_TIME>&,
                                                         const MISSION_ELAPSED_TIME&, const INTERPOLATION_REQUEST&,
                                                         const STATE_VECTOR_SOURCE&);
template std::vector<ORBIT_SAMPLE<double>> CheckedSamples(const STATE_VECTORS<double, double>&, const double&,
                                                          const INTERPOLATION_REQUEST&, const STATE_VECTOR_SOURCE&);
template std::vector<ORBIT_SAMPLE<double>> CheckedSamples(const STATE_VECTORS<double, UNIVERSAL_TIME>&,
                                                          const UNIVERSAL_TIME&, const INTERPOLATION_REQUEST&,
                                                          const STATE_VECTOR_SOURCE&);
template std::vector<ORBIT_SAMPLE<double>> CheckedSamples(const STATE_VECTORS<double, MISSION_ELAPSED_TIME>&,
                                                          const MISSION_ELAPSED_TIME&, const INTERPOLATION_REQUEST&,
                                                          const STATE_VECTOR_SOURCE&);
template std::vector<UNIVERSAL_TIME> TimesFromTexts(const std::vector<std::string>&, const std::string&);
template std::vector<MISSION_ELAPSED_TIME> TimesFromTexts(const std::vector<std::string>&, const std::string&);
