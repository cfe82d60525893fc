#include "import/pools/acquisition.h"

#include <cmath>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "lib/baselib/pool/parameter_pool.h"

namespace {

constexpr double kLargest = 1e30;

double Number(PARAMETER_POOL& pool, const char* key) {
    if (!pool.FindKey(key))
        throw COMPANION_ERROR(pool.FileName() + ": key " + key + " is missing: expected a pool as sentinel1 makes it");
    const double value = pool.Get<double>(key);
    if (!std::isfinite(value) || std::abs(value) > kLargest)
        RefuseValue({pool.FileName(), std::string("key ") + key}, std::to_string(value), "a finite number");
    return value;
}

double Positive(PARAMETER_POOL& pool, const char* key) {
    const double value = Number(pool, key);
    if (!(value >= 1.0 / kLargest))
        RefuseValue({pool.FileName(), std::string("key ") + key}, std::to_string(value), "a number above 0");
    return value;
}

int Count(PARAMETER_POOL& pool, const char* key) {
    if (!pool.FindKey(key))
        throw COMPANION_ERROR(pool.FileName() + ": key " + key + " is missing: expected a pool as sentinel1 makes it");
    const int value = pool.Get<int>(key);
    if (value < 1) RefuseValue({pool.FileName(), std::string("key ") + key}, std::to_string(value), "at least 1");
    return value;
}

void ReadEllipsoid(PARAMETER_POOL& pool, ACQUISITION_OF_POOL& acquisition) {
    constexpr const char* kKey = "ellipsoid_parameters";
    const auto list = pool.Get<ARRAY<double>>(kKey);
    const bool has_radii = list.First() <= 7 && list.First() + list.Count() > 8;
    acquisition.equatorial_radius_m = has_radii ? list[7] : 0.0;
    acquisition.polar_radius_m = has_radii ? list[8] : 0.0;
    const bool plausible = 6e6 < acquisition.polar_radius_m &&
                           acquisition.polar_radius_m <= acquisition.equatorial_radius_m &&
                           acquisition.equatorial_radius_m < 7e6;
    if (!has_radii || !plausible)
        throw COMPANION_ERROR(pool.FileName() + ": key " + kKey + ": expected the radii in metres at indices 7 and 8");
}

std::optional<double> ReadLookDirection(PARAMETER_POOL& pool) {
    constexpr const char* kKey = "antenna_look_direction";
    if (!pool.FindKey(kKey)) return std::nullopt;
    const std::string text = pool.Get<STRING>(kKey).ToStd();
    if (text == "right") return 1.0;
    if (text == "left") return -1.0;
    RefuseValue({pool.FileName(), std::string("key ") + kKey}, text, "\"right\" or \"left\"");
}

}  // namespace

ACQUISITION_OF_POOL ReadAcquisition(const std::string& path) {
    RequireRegularFile(path);
    PARAMETER_POOL pool(path);
    ACQUISITION_OF_POOL acquisition;
    acquisition.pool = path;
    acquisition.lines = Count(pool, "n_lines");
    acquisition.samples = Count(pool, "n_samples");
    acquisition.first_azimuth_time_s = Number(pool, "first_az_time");
    acquisition.first_range_time_s = Positive(pool, "first_rg_time");
    const double oversampling = pool.FindKey("oversampling") ? Positive(pool, "oversampling") : 1.0;
    acquisition.line_rate_hz = Positive(pool, "prf") * oversampling;
    acquisition.range_sampling_rate_hz = Positive(pool, "range_sampling_frequency") * oversampling;
    acquisition.radar_frequency_hz = Positive(pool, "radar_frequency");
    ReadEllipsoid(pool, acquisition);
    acquisition.look_direction = ReadLookDirection(pool);
    acquisition.orbit.ReadFromParameterPool(pool);
    return acquisition;
}

double LookDirection(const ACQUISITION_OF_POOL& acquisition, const std::string& other_pool) {
    if (acquisition.look_direction) return *acquisition.look_direction;
    if (!other_pool.empty()) {
        RequireRegularFile(other_pool);
        PARAMETER_POOL pool(other_pool);
        if (const auto direction = ReadLookDirection(pool)) return *direction;
    }
    throw COMPANION_ERROR(acquisition.pool + ": key antenna_look_direction is missing, in the other pool as well");
}

void RequireOrbitCovers(const ACQUISITION_OF_POOL& acquisition) {
    const double first_s = acquisition.TimeOfLine(0.0);
    const double last_s = acquisition.TimeOfLine(static_cast<double>(acquisition.lines - 1));
    if (acquisition.orbit.FirstTime() <= first_s && last_s <= acquisition.orbit.LastTime()) return;
    char text[200];
    std::snprintf(text, sizeof text,
                  ": the state vectors from %.6f s to %.6f s do not cover the image from %.6f s to %.6f s",
                  acquisition.orbit.FirstTime(), acquisition.orbit.LastTime(), first_s, last_s);
    throw COMPANION_ERROR(acquisition.pool + text);
}
