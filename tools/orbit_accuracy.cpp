/// \file orbit_accuracy.cpp
/// Tells how well each interpolation suits an orbit: leaves out state vectors, interpolates them from the rest and
/// prints the errors as the rows of a table. Not a test: its figures stand in docs/orbits.md as advice.
///
///     orbit_accuracy STEP POOL...        keeps every STEP-th vector of the pools' orbits (double precision)

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/general_orbit.h"
#include "orbit/samples/orbit_samples.h"
#include "orbit/source/pool_state_vectors.h"

namespace {

constexpr const char* kNames =
    "polynom polyfit_5 polyfit_7 polyfit_9 polyfit_11 spline "
    "localpolynom_0_4 localpolynom_0_6 localpolynom_0_8 localpolynom_0_10 "
    "localpolyfit_5_7 localpolyfit_7_9 localpolyfit_7_11 "
    "chebyshev_5 chebyshev_7 chebyshev_9 chebyshev_11 localchebyshev_5_7 localchebyshev_7_9 "
    "hermite_0_2 hermite_0_4 hermite_0_6 hermite_0_8 localhermite_0_4 localhermite_0_8 everett_4 everett_6 everett_8";

/// Every step-th vector as a pool, so that the program's own reading chooses the interpolation.
ORBIT_OF_POOL OrbitOf(const ORBIT_SAMPLES& all, size_t step, const std::string& interpolation) {
    const std::string path = "/tmp/orbit_accuracy." + std::to_string(getpid()) + ".pool";
    std::ofstream file(path);
    file << std::setprecision(17) << "orbit_representation STR \"orbit_pool_double_double\"\n"
         << "orbit_interpolation STR \"" << interpolation << "\"\norbit_reference_time STR \"0\"\n"
         << "orbit_param_key STR \"t\"\norbit_value_key STR \"p\"\norbit_velocity_key STR \"v\"\n";
    const size_t kept = (all.Count() - 1) / step + 1;
    file << "t FLT_15_V 0 " << kept << "\n{\n";
    for (size_t i = 0; i < all.Count(); i += step) file << all.t_s[i] << "\n";
    for (const auto* list : {&all.position_m, &all.velocity_m_s}) {
        file << "}\n" << (list == &all.position_m ? "p" : "v") << " FLT_15_V 0 " << 3 * kept << "\n{\n";
        for (size_t i = 0; i < all.Count(); i += step) {
            for (const std::vector<double>& axis : *list) file << axis[i] << "\n";
        }
    }
    file << "}\n";
    file.close();
    ORBIT_OF_POOL orbit;
    PARAMETER_POOL pool(path);
    std::remove(path.c_str());
    orbit.ReadFromParameterPool(pool);
    return orbit;
}

/// The pool's state vectors, counted from the first one.
ORBIT_SAMPLES ReadVectors(const char* path) {
    PARAMETER_POOL pool(path);
    const ORBIT_CONFIGURATION configuration = ReadOrbitConfiguration(pool);
    const std::string& type = configuration.representation;
    const TIME_KIND times = type.ends_with("utc")   ? TIME_KIND::UTC
                            : type.ends_with("met") ? TIME_KIND::MET
                                                    : TIME_KIND::SECONDS;
    const STATE_VECTOR_LISTS lists = ReadStateVectors(pool, configuration, {times, false});
    return SamplesOf(lists, lists.times.at(0), false, {});
}

double Distance(const VECTOR_3D<double>& a, const std::array<std::vector<double>, 3>& list, size_t i) {
    return std::hypot(a.x - list[0][i], a.y - list[1][i], a.z - list[2][i]);
}

struct WORST {
    double position_m = 0.0, velocity_m_s = 0.0;

    void Add(const ORBIT_STATE& state, const ORBIT_SAMPLES& truth, size_t i) {
        position_m = std::max(position_m, Distance(state.position_m, truth.position_m, i));
        velocity_m_s = std::max(velocity_m_s, Distance(state.velocity_m_s, truth.velocity_m_s, i));
    }
};

void PrintRow(const std::string& interpolation, const ORBIT_SAMPLES& all, size_t step) {
    constexpr size_t kMargin = 4;  // kept vectors on either side of the middle
    const size_t last = (all.Count() - 1) / step * step;
    const ORBIT_OF_POOL orbit = OrbitOf(all, step, interpolation);
    WORST middle;
    WORST anywhere;
    for (size_t i = 0; i < last; ++i) {
        if (i % step == 0) continue;
        const ORBIT_STATE state = orbit.State(all.t_s[i]);
        anywhere.Add(state, all, i);
        if (i > kMargin * step && i + kMargin * step < last) middle.Add(state, all, i);
    }
    std::printf("| %-18s | %9.2g | %9.2g | %9.2g | %9.2g |\n", interpolation.c_str(), 1e3 * middle.position_m,
                1e3 * middle.velocity_m_s, 1e3 * anywhere.position_m, 1e3 * anywhere.velocity_m_s);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s STEP POOL...\n", argv[0]);
        return 1;
    }
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    const size_t step = std::strtoul(argv[1], nullptr, 10);
    try {
        for (int i = 2; i < argc; ++i) {
            const ORBIT_SAMPLES all = ReadVectors(argv[i]);
            std::printf("%s: %zu vectors, every %zu. kept; worst error in the middle, anywhere [mm, mm/s]\n", argv[i],
                        all.Count(), step);
            std::istringstream interpolations(kNames);
            for (std::string interpolation; interpolations >> interpolation;) {
                try {
                    PrintRow(interpolation, all, step);
                } catch (const ERROR_EXCEPTION& error) {
                    std::printf("| %-18s | %s\n", interpolation.c_str(), error.Message().c_str());
                }
            }
        }
    } catch (const ERROR_EXCEPTION& error) {
        std::fprintf(stderr, "%s\n", error.Message().c_str());
        return 1;
    }
    return 0;
}
