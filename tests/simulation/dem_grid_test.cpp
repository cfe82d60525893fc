#include "simulation/dem_grid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"
#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/log_capture.h"
#include "tests/simulation/test_scene.h"

namespace {

constexpr double kA = 6378137.0;
constexpr double kB = 6356752.315;

/// 3 rows of 4 samples: 100, 101, ... row by row.
struct SMALL_DEM {
    std::vector<short> samples;
    DEM_GRID grid;

    explicit SMALL_DEM(const char* kind) {
        for (short i = 0; i < 12; ++i) samples.push_back(static_cast<short>(100 + i));
        grid.kind = kind;
        grid.rows = 3;
        grid.columns = 4;
        grid.heights = {samples.data(), 4, 3, 4};
        grid.height_offset_m = -20.0;
        grid.geodetic = {kA, SquaredEccentricity(kA, kB), {}};
    }
};

TEST(DemGrid, TakesTheNearestHeightBesideAUtmGrid) {
    SMALL_DEM dem("UTM");
    dem.grid.utm.emplace(kA, dem.grid.geodetic.e2, 32, false);
    dem.grid.x0 = 600000.0;
    dem.grid.y0 = 5300000.0;
    dem.grid.dx = dem.grid.dy = 30.0;
    const struct {
        int column;
        int row;
        float height_m;
    } cases[] = {{-5, 1, 84.0F}, {9, 9, 91.0F}, {2, -1, 82.0F}};
    for (const auto& c : cases) {
        VECTOR_3D<double> p;
        float height_m = 0.0F;
        Get_Earth_Position_From_DEM(dem.grid, c.column, c.row, p.x, p.y, p.z, &height_m);
        EXPECT_EQ(height_m, c.height_m);
        // The place itself is not clamped.
        const POINT<double> back = LocateInDem(dem.grid, p);
        EXPECT_NEAR(back.x, c.column, 1e-6);
        EXPECT_NEAR(back.y, c.row, 1e-6);
    }
}

TEST(DemGrid, RefusesKindsItDoesNotKnow) {
    double p[3];
    const auto position = [&](SMALL_DEM dem) { Get_Earth_Position_From_DEM(dem.grid, 0, 0, p[0], p[1], p[2]); };
    const auto local = [&](SMALL_DEM dem) { Get_Local_DEM_From_GEO(dem.grid, p[0], p[1], 1.0, 1.0); };
    const std::string log = LoggedBy([&] {
        EXPECT_THROW(position(SMALL_DEM("LAMBERT")), ERROR_DATA);
        EXPECT_THROW(local(SMALL_DEM("MERCATOR")), ERROR_DATA);
        EXPECT_THROW(local(SMALL_DEM("Utm")), ERROR_NOT_IMPLEMENTED);
    });
    for (const char* text : {"UTM or GEO : LAMBERT\n", "DEM grid must be UTM or GEO : MERCATOR\n",
                             "Get_Local_DEM_From_GEO not yet implemented for UTM\n"}) {
        EXPECT_THAT(log, testing::HasSubstr(text));
    }
}

TEST(DemGrid, TakesOffOneTurnAtMost) {
    SMALL_DEM dem("GEO");
    dem.grid.dx = dem.grid.dy = 0.25;
    dem.grid.y0 = 40.0;
    const struct {
        double x0;
        double longitude_deg;
        double column;
    } cases[] = {
        {10.0, 12.0, 8.0},
        {-118.0, 242.0, 1440.0},  // exactly one turn off stays: only beyond it is one taken off
        {-118.0, 242.5, 2.0},
        {-118.0, 241.5, 1438.0},  // just west of the edge: a turn too far, which LocateInDem mends
        {200.0, -161.0, -4.0},    // below minus one turn: one is added
    };
    for (const auto& c : cases) {
        dem.grid.x0 = c.x0;
        double column = 0.0;
        double row = 0.0;
        Get_Local_DEM_From_GEO(dem.grid, column, row, c.longitude_deg, 39.0);
        EXPECT_NEAR(column, c.column, 1e-9) << c.longitude_deg;
        EXPECT_NEAR(row, 4.0, 1e-9);
    }
}

TEST(DemGrid, FindsAPointInWhateverTurnTheDemIsWritten) {
    const struct {
        const char* name;
        double x0;
        double column;
    } cases[] = {
        {"118 west, above 180", 241.7, 1.5},
        {"just outside the west", -118.3, -0.2},
        {"across 180, negative", -180.4, 3.0},
        {"across Greenwich, 359.9", 359.9, 2.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SMALL_DEM dem("GEO");
        dem.grid.x0 = c.x0;
        dem.grid.y0 = -33.0;
        dem.grid.dx = 0.2;
        dem.grid.dy = 0.1;
        dem.grid.geodetic.datum = kBesselDatum;
        const GEOGRAPHIC place = {(c.x0 + c.column * 0.2) * kRadiansPerDegree, -33.15 * kRadiansPerDegree, 2000.0};
        const POINT<double> found = LocateInDem(
            dem.grid, DatumForward(dem.grid.geodetic.datum, GeographicToCartesian(place, kA, dem.grid.geodetic.e2)));
        EXPECT_NEAR(found.x, c.column, 1e-9);
        EXPECT_NEAR(found.y, 1.5, 1e-9);
    }
}

}  // namespace
