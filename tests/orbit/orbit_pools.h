/// \file orbit_pools.h
/// A satellite whose motion is known in closed form, and the parameter pools that describe it.

#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "orbit/general_orbit.h"
#include "time/time_axis.h"

/// Circular orbit, inclined by 98 degrees, seen from the rotating Earth. t in seconds.
inline ORBIT_STATE CircularOrbit(double t) {
    constexpr double kRadius_m = 7.07e6;
    constexpr double kRate = 1.0620e-3;  // rad/s
    constexpr double kEarthRate = 7.2921159e-5;
    constexpr double kInclination = 1.7115;
    const double u = 0.4 + kRate * t;
    const double c = std::cos(kInclination);
    // Inertial plane coordinates and their derivatives, then a rotation about z by -kEarthRate t.
    const double p[3][3] = {
        {kRadius_m * std::cos(u), kRadius_m * std::sin(u) * c, kRadius_m * std::sin(u) * std::sin(kInclination)},
        {-kRadius_m * kRate * std::sin(u), kRadius_m * kRate * std::cos(u) * c,
         kRadius_m * kRate * std::cos(u) * std::sin(kInclination)},
        {-kRadius_m * kRate * kRate * std::cos(u), -kRadius_m * kRate * kRate * std::sin(u) * c,
         -kRadius_m * kRate * kRate * std::sin(u) * std::sin(kInclination)}};
    const double cg = std::cos(kEarthRate * t);
    const double sg = std::sin(kEarthRate * t);
    const auto rotated = [&](double x, double y) { return std::pair{cg * x + sg * y, -sg * x + cg * y}; };
    const auto [x, y] = rotated(p[0][0], p[0][1]);
    const auto [ix, iy] = rotated(p[1][0], p[1][1]);
    const auto [jx, jy] = rotated(p[2][0], p[2][1]);
    const double w = kEarthRate;  // d/dt (R p) = R p' + w J R p with J (x, y) = (y, -x)
    return {{x, y, p[0][2]},
            {ix + w * y, iy - w * x, p[1][2]},
            {jx + 2 * w * iy - w * w * x, jy - 2 * w * ix - w * w * y, p[2][2]}};
}

inline double Distance(const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

/// The text of a pool: its entries by key, so that a test can spoil one of them.
class POOL_TEXT {
  public:
    void Set(const std::string& key, const std::string& entry) { entries_[key] = entry; }
    void SetText(const std::string& key, const std::string& text) { Set(key, "STR \"" + text + "\""); }
    void SetList(const std::string& key, const std::string& tag, const std::vector<std::string>& items) {
        std::string entry = tag + " 0 " + std::to_string(items.size()) + "\n{\n";
        for (const std::string& item : items) entry += item + "\n";
        Set(key, entry + "}");
    }
    void Remove(const std::string& key) { entries_.erase(key); }
    const std::string& Entry(const std::string& key) const { return entries_.at(key); }

    /// Writes the pool into the one file of this program. @return its path
    std::string Save() const {
        static const struct REMOVED_AT_EXIT {
            std::string path = testing::TempDir() + "/" + std::to_string(getpid()) + "_orbit.pool";
            ~REMOVED_AT_EXIT() { std::remove(path.c_str()); }
        } file_of_program;
        std::ofstream file(file_of_program.path);
        for (const auto& [key, entry] : entries_) file << key << " " << entry << "\n";
        return file_of_program.path;
    }

  private:
    std::map<std::string, std::string> entries_;
};

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

inline POOL_TEXT OrbitPool(const ORBIT_SAMPLING& s) {
    const bool is_float = s.type.find("pool_float") != std::string::npos;
    const bool is_plain = s.type.ends_with("_double");
    std::vector<std::string> positions;
    std::vector<std::string> velocities;
    for (int i = 0; i < s.count; ++i) {
        const ORBIT_STATE state = CircularOrbit(s.first_s + i * s.step_s);
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
