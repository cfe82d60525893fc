/// \file geolocation_grid_check.cpp
/// geolocation_grid_check POOL GRID.csv: solves the zero-Doppler time and the slant range of every point of an
/// annotation's geolocation grid with the processor's own solver and orbit, and prints the number of points and the
/// largest differences from the grid: "210 4.9e-07 s 2.1e-05 m".
/// Columns of the grid: t_utc, two_way_time_s, lon, lat (degrees), height (metres above the pool's ellipsoid).

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <numbers>

#include "geometry/calc_slave_time.h"
#include "geometry/geodetic.h"
#include "import/orbit_files/text_lines.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/general_orbit.h"

namespace {

constexpr double kSpeedOfLight_m_s = 299792458.0;
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

struct WORST {
    int points = 0;
    double time_s = 0.0;
    double range_m = 0.0;
};

using ROW = std::map<std::string, std::string>;

void Compare(const ROW& row, const ORBIT_OF_POOL& orbit, const ARRAY<double>& ellipsoid, double guess_s, WORST& worst) {
    const auto number = [&row](const char* name) { return std::strtod(row.at(name).c_str(), nullptr); };
    const double a_m = ellipsoid[7];
    const VECTOR_3D<double> point_m =
        GeographicToCartesian({number("lon") * kRadiansPerDegree, number("lat") * kRadiansPerDegree, number("height")},
                              a_m, SquaredEccentricity(a_m, ellipsoid[8]));
    double range_m = 0.0;
    const double time_s = CalcSlaveTime({&orbit, 0.0}, point_m, &range_m, guess_s);
    const double grid_time_s = orbit.SecondsSinceReference(UNIVERSAL_TIME::FromText(row.at("t_utc")));
    const double grid_range_m = 0.5 * kSpeedOfLight_m_s * number("two_way_time_s");
    worst.time_s = std::fmax(worst.time_s, std::abs(time_s - grid_time_s));
    worst.range_m = std::fmax(worst.range_m, std::abs(range_m - grid_range_m));
    ++worst.points;
}

WORST CompareAll(const char* pool_path, const char* grid_path) {
    PARAMETER_POOL pool(pool_path);
    ORBIT_OF_POOL orbit;
    orbit.ReadFromParameterPool(pool);
    const auto ellipsoid = pool.Get<ARRAY<double>>("ellipsoid_parameters");
    std::ifstream grid(grid_path);
    std::string line;
    std::getline(grid, line);
    const std::vector<std::string> names = FieldsOf(line, ',');
    WORST worst;
    while (std::getline(grid, line)) {
        const std::vector<std::string> fields = FieldsOf(line, ',');
        ROW row;
        for (std::size_t i = 0; i < names.size(); ++i) row[names[i]] = fields.at(i);
        Compare(row, orbit, ellipsoid, pool.Get<double>("first_az_time"), worst);
    }
    return worst;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::WARNING));
    Log().SetLogFile("/dev/null");
    try {
        const WORST worst = CompareAll(argv[1], argv[2]);
        std::printf("%d %.3e s %.3e m\n", worst.points, worst.time_s, worst.range_m);
        return 0;
    } catch (const ERROR_EXCEPTION& error) {
        std::printf("%s\n", error.Message().c_str());
        return 1;
    }
}
