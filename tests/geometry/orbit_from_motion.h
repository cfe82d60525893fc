/// \file orbit_from_motion.h
/// Orbits of the program, made from a motion in closed form through the pool that describes them.

#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/general_orbit.h"
#include "tests/geometry/circular_orbit.h"

using MOTION = std::function<CIRCULAR_STATE<double>(double)>;

/// An orbit of the program, through the pool that describes it: state vectors each 10 s from -80 s to 80 s.
/// @param times  texts of the 17 times for the calendar types; none: plain seconds
inline std::unique_ptr<ORBIT_OF_POOL> OrbitFrom(const MOTION& motion, const std::string& interpolation = "hermite_0_8",
                                                const std::string& type = "orbit_pool_double_double",
                                                const std::string& reference_time = "0",
                                                const std::vector<std::string>& times = {}) {
    const std::string path = std::filesystem::temp_directory_path() / ("orbit_" + std::to_string(getpid()) + ".pool");
    std::ofstream pool(path);
    pool.precision(17);
    constexpr int kCount = 17;
    pool << "orbit_representation STR \"" << type << "\"\norbit_interpolation STR \"" << interpolation
         << "\"\norbit_param_key STR \"times\"\norbit_value_key STR \"positions\"\norbit_velocity_key STR "
            "\"velocities\"\n"
         << "orbit_reference_time STR \"" << reference_time << "\"\n";
    pool << "times " << (times.empty() ? "FLT_15_V" : "STR_V") << " 0 " << kCount << "\n{\n";
    for (int i = 0; i < kCount; ++i) {
        if (times.empty())
            pool << -80.0 + 10.0 * i << "\n";
        else
            pool << "\"" << times[i] << "\"\n";
    }
    const std::string tag = type.find("float_") == std::string::npos ? "FLT_15_V" : "FLT_6_V";
    pool << "}\npositions " << tag << " 0 " << 3 * kCount << "\n{\n";
    for (int i = 0; i < kCount; ++i) {
        const VECTOR_3D<double> p = motion(-80.0 + 10.0 * i).position_m;
        pool << p.x << "\n" << p.y << "\n" << p.z << "\n";
    }
    pool << "}\nvelocities " << tag << " 0 " << 3 * kCount << "\n{\n";
    for (int i = 0; i < kCount; ++i) {
        const VECTOR_3D<double> v = motion(-80.0 + 10.0 * i).velocity_m_s;
        pool << v.x << "\n" << v.y << "\n" << v.z << "\n";
    }
    pool << "}\n";
    pool.close();
    auto orbit = std::make_unique<ORBIT_OF_POOL>();
    {
        PARAMETER_POOL reader(path);
        orbit->ReadFromParameterPool(reader);
    }
    std::remove(path.c_str());
    return orbit;
}

inline MOTION MotionOf(const CIRCULAR_ORBIT<double>& orbit) {
    return [orbit](double t) { return orbit.State(t); };
}
