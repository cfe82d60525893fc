#include "orbit/compiled_orbit.h"

#include <gtest/gtest.h>

#include "lib/baselib/pool/parameter_pool.h"
#include "tests/kit/orbit_pools.h"

namespace {

constexpr double kHalfUlp_m = 4.7e-10;  // of coordinates between 2^22 and 2^23 m

struct CASE {
    const char* interpolation;
    bool compiles;
    const char* type = "orbit_pool_double_double";
    double first_s = 3.5;
};

class CompiledOrbits : public testing::TestWithParam<CASE> {};

ORBIT_OF_POOL OrbitOf(const CASE& c) {
    ORBIT_SAMPLING sampling;
    sampling.interpolation = c.interpolation;
    sampling.type = c.type;
    sampling.first_s = c.first_s;
    PARAMETER_POOL pool(OrbitPool(sampling).Save());
    ORBIT_OF_POOL orbit;
    orbit.ReadFromParameterPool(pool);
    return orbit;
}

TEST_P(CompiledOrbits, AnswersAsTheInterpolationItself) {
    const CASE& c = GetParam();
    const ORBIT_OF_POOL orbit = OrbitOf(c);
    const double first_s = orbit.FirstTime() + 51.0;
    const COMPILED_ORBIT compiled(orbit, first_s, first_s + 33.0);
    EXPECT_EQ(!compiled.Pieces().empty(), c.compiles);
    for (int i = 0; i <= 5000; ++i) {
        const double t_s = first_s - 1.0 + 0.007 * i;  // a little outside, too
        const ORBIT_STATE expected = orbit.State(t_s);
        const ORBIT_STATE state = compiled.State(t_s);
        ASSERT_LE(Distance(state.position_m, expected.position_m), 1e-9 + 8 * kHalfUlp_m) << t_s;
        ASSERT_LE(Distance(state.velocity_m_s, expected.velocity_m_s), 3e-9) << t_s;
        ASSERT_LE(Distance(state.acceleration_m_s2, expected.acceleration_m_s2), 3e-8) << t_s;
    }
}

INSTANTIATE_TEST_SUITE_P(Interpolations, CompiledOrbits,
                         testing::Values(CASE{"polynom", true}, CASE{"polyfit_7", true}, CASE{"spline", true},
                                         CASE{"localpolynom_0_8", true}, CASE{"localpolyfit_5_9", true},
                                         CASE{"chebyshev_7", true}, CASE{"localchebyshev_5_8", true},
                                         CASE{"hermite_0_8", true}, CASE{"hermite_0_3", true},
                                         CASE{"localhermite_0_5", true}, CASE{"everett_8", true},
                                         CASE{"everett_2", true}, CASE{"hermite_0_8", true, "orbit_pool_double_utc"},
                                         CASE{"localpolynom_0_8", true, "orbit_pool_double_double", 50000.0},
                                         CASE{"hermite_0_8", false, "orbit_pool_float_double"}),
                         [](const testing::TestParamInfo<CASE>& c) {
                             return std::string(c.param.interpolation) + "_" + std::to_string(c.index);
                         });

TEST(CompiledOrbit, KeepsToTheDataOfTheOrbit) {
    const ORBIT_OF_POOL orbit = OrbitOf({"hermite_0_8", true});
    const COMPILED_ORBIT compiled(orbit, orbit.FirstTime() - 100.0, orbit.FirstTime() + 12.0);
    ASSERT_FALSE(compiled.Pieces().empty());
    EXPECT_EQ(compiled.Pieces().front().first_s, orbit.FirstTime());
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() - 1e-9), nullptr);
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime()), &compiled.Pieces().front());
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() + 5.0), &compiled.Pieces()[1]);  // where two meet: the later
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() + 15.1), nullptr);
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() + 15.0), nullptr);  // the next piece's, which was not asked for
    const COMPILED_ORBIT whole(orbit, orbit.FirstTime(), orbit.LastTime());
    EXPECT_EQ(whole.PieceAt(orbit.LastTime()), &whole.Pieces().back());
    // The hard stop outside the data stays.
    EXPECT_EXIT((void)compiled.State(orbit.FirstTime() - 1.0), testing::ExitedWithCode(1), "");
    EXPECT_TRUE(COMPILED_ORBIT(orbit, -500.0, -400.0).Pieces().empty());
}

}  // namespace
