#include "orbit/source/pool_state_vectors.h"

#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/samples/orbit_samples.h"
#include "time/met_scanner.h"
#include "time/time_axis.h"

namespace {

/// @return nothing for a text that is no MET: logged, so that the rest of the list can be looked at, too
bool ScanMet(const std::string& text, MISSION_ELAPSED_TIME& time) {
    try {
        MET_SCANNER().ScanFields(text, time);
        return true;
    } catch (const char* message) {
        Log().Message(LOGGING_LEVEL::EXCEPTION, "MET_SCANNER: %s", message);
    } catch (const ERROR_ARGUMENT&) {  // letters; logged by the scanner
    }
    return false;
}

bool ScanUtc(const std::string& text, UNIVERSAL_TIME& time) {
    try {
        time = UNIVERSAL_TIME::FromText(text);
        return true;
    } catch (const ERROR_EXCEPTION&) {  // logged
    }
    return false;
}

/// The times of a list of texts. One that is no MET is logged and the next one read; one that is no UTC ends the list.
/// @throws ERROR_DATA for either
std::vector<ANY_TIME> TimesOfTexts(const ARRAY<STRING>& list, TIME_KIND kind, const std::string& name) {
    std::vector<ANY_TIME> times;
    bool all_read = true;
    for (const STRING& item : list) {
        const std::string text = item.ToStd();
        MISSION_ELAPSED_TIME met;
        UNIVERSAL_TIME utc;
        const bool is_met = kind == TIME_KIND::MET;
        const bool is_time = is_met ? ScanMet(text, met) : ScanUtc(text, utc);
        if (!is_time) {
            Log().Message(LOGGING_LEVEL::ALARM, "%s: entry %zu \"%s\" is no %s time", name.c_str(), times.size(),
                          text.c_str(), TextOf(kind));
            if (!is_met) throw ERROR_DATA();
            all_read = false;
        }
        times.push_back(is_met ? ANY_TIME(met) : ANY_TIME(utc));
    }
    if (!all_read) throw ERROR_DATA();
    return times;
}

std::vector<ANY_TIME> ReadTimes(PARAMETER_POOL& pool, const std::string& key, TIME_KIND kind) {
    if (kind != TIME_KIND::SECONDS) {
        return TimesOfTexts(pool.Get<ARRAY<STRING>>(key), kind, NameOfList(pool.FileName(), key));
    }
    const ARRAY<double> list = pool.Get<ARRAY<double>>(key);
    return {list.begin(), list.end()};
}

template <class T>
std::vector<double> ReadNumbersOfType(PARAMETER_POOL& pool, const std::string& key) {
    const ARRAY<T> list = pool.Get<ARRAY<T>>(key);
    return {list.begin(), list.end()};
}

std::vector<double> ReadNumbers(PARAMETER_POOL& pool, const std::string& key, bool is_float) {
    return is_float ? ReadNumbersOfType<float>(pool, key) : ReadNumbersOfType<double>(pool, key);
}

void CheckLengths(const STATE_VECTOR_LISTS& lists) {
    const size_t positions = lists.positions_m.size();
    const std::string position_list = NameOfList(lists.file, lists.position_key);
    if (positions != lists.velocities_m_s.size()) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree.");
        RefuseStateVectors("%s: %zu numbers, but %s: %zu", position_list.c_str(), positions,
                           NameOfList(lists.file, lists.velocity_key).c_str(), lists.velocities_m_s.size());
    }
    if (positions % 3 != 0) {
        RefuseStateVectors("%s: %zu numbers are no multiple of the three coordinates of a state vector",
                           position_list.c_str(), positions);
    }
    if (positions / 3 != lists.times.size()) {
        RefuseStateVectors("%s: %zu times, but %s: %zu positions", NameOfList(lists.file, lists.time_key).c_str(),
                           lists.times.size(), position_list.c_str(), positions / 3);
    }
}

}  // namespace

STATE_VECTOR_LISTS ReadStateVectors(PARAMETER_POOL& pool, const ORBIT_CONFIGURATION& configuration,
                                    const ORBIT_NUMBERS& numbers) {
    STATE_VECTOR_LISTS lists;
    lists.file = pool.FileName();
    lists.time_key = configuration.param_key;
    lists.position_key = configuration.value_key;
    lists.velocity_key = configuration.velocity_key;
    lists.times = ReadTimes(pool, lists.time_key, numbers.times);
    lists.positions_m = ReadNumbers(pool, lists.position_key, numbers.is_float);
    lists.velocities_m_s = ReadNumbers(pool, lists.velocity_key, numbers.is_float);
    CheckLengths(lists);
    return lists;
}
