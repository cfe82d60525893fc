/// \file orbit_pools.h
/// A satellite whose motion is known in closed form, and the parameter pools that describe it.

#pragma once

#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/general_orbit.h"
#include "tests/kit/circular_orbit.h"
#include "tests/kit/pool_text.h"
#include "time/time_axis.h"

inline double Distance(const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

struct ORBIT_SAMPLING {
    std::string type = "orbit_pool_double_double";
    std::string interpolation = "hermite_0_8";
    std::string reference = "";  ///< empty: the usual one of the type
    int count = 24;
    double first_s = 3.5;  ///< seconds since the reference time
    double step_s = 10.0;
};

inline constexpr const char* kUsualUtc =
    "31-DEC-2016/23:58:00.000000";                                 // a leap second lies in the middle of the samples
inline constexpr const char* kUsualMet = "+0012/23:59:00.250000";  // a day ends among the samples

inline std::string Digits(double value, bool is_float) {
    char text[40];
    std::snprintf(text, sizeof text, is_float ? "%.9g" : "%.17g",
                  is_float ? static_cast<double>(static_cast<float>(value)) : value);
    return text;
}

/// State vector times as entries of the pool's list.
inline std::vector<std::string> TimeItems(const ORBIT_SAMPLING& s) {
    std::vector<std::string> items;
    for (int i = 0; i < s.count; ++i) {
        const double t = s.first_s + i * s.step_s;
        if (s.type.ends_with("utc")) {
            const UNIVERSAL_TIME utc = TIME_AXIS<UNIVERSAL_TIME>::Plus(
                UNIVERSAL_TIME::FromText(s.reference.empty() ? kUsualUtc : s.reference), t);
            items.push_back("\"" + (i % 2 == 0 ? utc.ToText() : utc.ToIsoText()) + "\"");
        } else if (s.type.ends_with("met")) {
            const auto reference = MISSION_ELAPSED_TIME::FromText(kUsualMet);
            items.push_back("\"" + TIME_AXIS<MISSION_ELAPSED_TIME>::Plus(reference, t).ToText() + "\"");
        } else {
            items.push_back(Digits(t + (s.reference.empty() ? 1000.0 : std::stod(s.reference)), false));
        }
    }
    return items;
}

using MOTION = std::function<ORBIT_STATE(double)>;  ///< state at so many seconds after the reference time

inline MOTION MotionOf(const CIRCULAR_ORBIT<double>& orbit) {
    return [orbit](double t) { return ORBIT_STATE{orbit.Position(t), orbit.Velocity(t), orbit.Acceleration(t)}; };
}

/// Circular orbit, inclined by 98 degrees, seen from the rotating Earth.
inline ORBIT_STATE CircularOrbit(double t) {
    return MotionOf({7.07e6, 1.7115, 0.0, 0.4})(t);
}

inline POOL_TEXT OrbitPool(const ORBIT_SAMPLING& s, const MOTION& motion = CircularOrbit) {
    const bool is_float = s.type.find("pool_float") != std::string::npos;
    const bool is_plain = s.type.ends_with("_double");
    std::vector<std::string> positions;
    std::vector<std::string> velocities;
    for (int i = 0; i < s.count; ++i) {
        const ORBIT_STATE state = motion(s.first_s + i * s.step_s);
        const auto &p = state.position_m, &v = state.velocity_m_s;
        for (const double c : {p.x, p.y, p.z}) positions.push_back(Digits(c, is_float));
        for (const double c : {v.x, v.y, v.z}) velocities.push_back(Digits(c, is_float));
    }
    POOL_TEXT pool;
    pool.SetText("orbit_representation", s.type);
    pool.SetText("orbit_interpolation", s.interpolation);
    pool.SetText("orbit_param_key", "times");
    pool.SetText("orbit_value_key", "positions");
    pool.SetText("orbit_velocity_key", "velocities");
    const std::string usual = is_plain ? "1000.0" : (s.type.ends_with("utc") ? kUsualUtc : kUsualMet);
    pool.SetText("orbit_reference_time", s.reference.empty() ? usual : s.reference);
    pool.SetList("times", is_plain ? "FLT_15_V" : "STR_V", TimeItems(s));
    pool.SetList("positions", is_float ? "FLT_6_V" : "FLT_15_V", positions);
    pool.SetList("velocities", is_float ? "FLT_6_V" : "FLT_15_V", velocities);
    return pool;
}

inline ORBIT_OF_POOL ReadOrbit(const POOL_TEXT& text) {
    PARAMETER_POOL pool(text.Save());
    ORBIT_OF_POOL orbit;
    orbit.ReadFromParameterPool(pool);
    return orbit;
}

/// An orbit of the program, through the pool that describes it: state vectors each 10 s from -80 s to 80 s.
/// @param times  texts of the 17 times for the calendar types; none: plain seconds
inline std::unique_ptr<ORBIT_OF_POOL> OrbitFrom(const MOTION& motion, const std::string& interpolation = "hermite_0_8",
                                                const std::string& type = "orbit_pool_double_double",
                                                const std::string& reference_time = "0",
                                                std::vector<std::string> times = {}) {
    POOL_TEXT text = OrbitPool({type, interpolation, reference_time, 17, -80.0, 10.0}, motion);
    for (std::string& time : times) time = "\"" + time + "\"";
    if (!times.empty()) text.SetList("times", "STR_V", times);
    return std::make_unique<ORBIT_OF_POOL>(ReadOrbit(text));
}
