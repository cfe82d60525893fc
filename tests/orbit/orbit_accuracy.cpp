/// \file orbit_accuracy.cpp
/// Tells how well each interpolation suits an orbit: leaves out state vectors, interpolates them from the rest and
/// prints the errors as the rows of a table. Not a test: its figures stand in docs/orbits.md as advice.
///
///     orbit_accuracy STEP POOL...        keeps every STEP-th vector of the pools' orbits (double precision)

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/orbit.h"
#include "time/time_axis.h"

namespace {

using VECTORS = STATE_VECTORS<double, double>;

template <class I, class P>
class LIST_ORBIT final : public ORBIT<double, double, I, P> {
  public:
    explicit LIST_ORBIT(const VECTORS& vectors) { vectors_ = vectors; }
    using ORBIT<double, double, I, P>::operator=;
    void ReadFromParameterPool(PARAMETER_POOL&) override {}
    void Create() { this->TakeOver(vectors_, {"list", "t", "p", "v"}); }

  private:
    VECTORS vectors_;
};

template <class I, class P>
std::unique_ptr<ORBIT_BASE> Create(const VECTORS& vectors, const INTERPOLATION_REQUEST& request) {
    auto orbit = std::make_unique<LIST_ORBIT<I, P>>(vectors);
    orbit->SetInterpolation(request);
    orbit->Create();
    return orbit;
}

std::unique_ptr<ORBIT_BASE> CreateOrbit(const VECTORS& vectors, const INTERPOLATION_REQUEST& request) {
    using P = POINT<double>;
    using D = DPOINT<double>;
    switch (request.id) {
        case INTERPOLATION_ID::POLYNOM:
            return Create<POLYNOM<double>, P>(vectors, request);
        case INTERPOLATION_ID::POLYFIT:
            return Create<POLYNOM_FIT<double>, P>(vectors, request);
        case INTERPOLATION_ID::SPLINE:
            return Create<SPLINE<double>, P>(vectors, request);
        case INTERPOLATION_ID::LOCALPOLYNOM:
            return Create<LOCAL<double, POLYNOM<double>>, P>(vectors, request);
        case INTERPOLATION_ID::LOCALPOLYFIT:
            return Create<LOCAL<double, POLYNOM_FIT<double>>, P>(vectors, request);
        case INTERPOLATION_ID::CHEBYSHEV:
            return Create<CHEBY_POLY<double>, P>(vectors, request);
        case INTERPOLATION_ID::LOCALCHEBYSHEV:
            return Create<LOCAL<double, CHEBY_POLY<double>>, P>(vectors, request);
        case INTERPOLATION_ID::HERMITE:
            return Create<HERMITE_POLY<double>, D>(vectors, request);
        case INTERPOLATION_ID::LOCALHERMITE:
            return Create<LOCAL_HERMITE<double>, D>(vectors, request);
        case INTERPOLATION_ID::EVERETT:
            return Create<EVERETT<double>, P>(vectors, request);
    }
    return nullptr;
}

template <class S>
VECTORS PlainVectors(PARAMETER_POOL& pool, const ORBIT_CONFIGURATION& configuration) {
    const auto list = ReadStateVectorsFromPool<double, S>(pool, configuration);
    VECTORS vectors;
    for (const auto& v : list) {
        vectors.push_back({TIME_AXIS<S>::SecondsSince(list[0].time, v.time), v.position_m, v.velocity_m_s});
    }
    return vectors;
}

VECTORS ReadVectors(const char* path) {
    PARAMETER_POOL pool(path);
    const ORBIT_CONFIGURATION configuration = ReadOrbitConfiguration(pool);
    if (configuration.representation == "orbit_pool_double_utc")
        return PlainVectors<UNIVERSAL_TIME>(pool, configuration);
    if (configuration.representation == "orbit_pool_double_met") {
        return PlainVectors<MISSION_ELAPSED_TIME>(pool, configuration);
    }
    return PlainVectors<double>(pool, configuration);
}

double Distance(const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

struct WORST {
    double position_m = 0.0;
    double velocity_m_s = 0.0;

    void Add(const ORBIT_STATE& state, const STATE_VECTOR<double, double>& truth) {
        position_m = std::max(position_m, Distance(state.position_m, truth.position_m));
        velocity_m_s = std::max(velocity_m_s, Distance(state.velocity_m_s, truth.velocity_m_s));
    }
};

void PrintRow(const char* interpolation, const VECTORS& all, size_t step) {
    constexpr size_t kMargin = 4;  // kept vectors on either side of the middle
    VECTORS kept;
    for (size_t i = 0; i < all.size(); i += step) kept.push_back(all[i]);
    const size_t last = (kept.size() - 1) * step;
    const std::unique_ptr<ORBIT_BASE> orbit = CreateOrbit(kept, ParseInterpolationText(interpolation));
    WORST middle;
    WORST anywhere;
    for (size_t i = 0; i < last; ++i) {
        if (i % step == 0) continue;
        const ORBIT_STATE state = orbit->State(all[i].time);
        anywhere.Add(state, all[i]);
        if (i > kMargin * step && i + kMargin * step < last) middle.Add(state, all[i]);
    }
    std::printf("| %-18s | %9.2g | %9.2g | %9.2g | %9.2g |\n", interpolation, 1e3 * middle.position_m,
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
            const VECTORS all = ReadVectors(argv[i]);
            std::printf("%s: %zu vectors, every %zu. kept; worst error in the middle, anywhere [mm, mm/s]\n", argv[i],
                        all.size(), step);
            for (const char* interpolation : {"polynom",
                                              "polyfit_5",
                                              "polyfit_7",
                                              "polyfit_9",
                                              "polyfit_11",
                                              "spline",
                                              "localpolynom_0_4",
                                              "localpolynom_0_6",
                                              "localpolynom_0_8",
                                              "localpolynom_0_10",
                                              "localpolyfit_5_7",
                                              "localpolyfit_7_9",
                                              "localpolyfit_7_11",
                                              "chebyshev_5",
                                              "chebyshev_7",
                                              "chebyshev_9",
                                              "chebyshev_11",
                                              "localchebyshev_5_7",
                                              "localchebyshev_7_9",
                                              "hermite_0_2",
                                              "hermite_0_4",
                                              "hermite_0_6",
                                              "hermite_0_8",
                                              "localhermite_0_4",
                                              "localhermite_0_8",
                                              "everett_4",
                                              "everett_6",
                                              "everett_8"}) {
                try {
                    PrintRow(interpolation, all, step);
                } catch (const ERROR_EXCEPTION& error) {
                    std::printf("| %-18s | %s\n", interpolation, error.Message().c_str());
                }
            }
        }
    } catch (const ERROR_EXCEPTION& error) {
        std::fprintf(stderr, "%s\n", error.Message().c_str());
        return 1;
    }
    return 0;
}
