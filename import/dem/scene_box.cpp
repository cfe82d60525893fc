#include "import/dem/scene_box.h"

#include <algorithm>
#include <cmath>

#include "companions/companion_error.h"
#include "geometry/geolocation_fast.h"
#include "import/pools/acquisition.h"

namespace {

constexpr double kLowestTerrain_m = -1000.0;
constexpr double kHighestTerrain_m = 9000.0;
constexpr double kMargin_deg = 0.02;
constexpr int kSteps = 16;

class GROWING_BOX {
  public:
    /// The place and a margin around it, as wide in the east as in the north.
    void Add(double longitude_deg, double latitude_deg) {
        constexpr double kRadiansPerDegree = 0.017453292519943295;
        if (empty_) box_ = {longitude_deg, latitude_deg, longitude_deg, latitude_deg};
        empty_ = false;
        const double near_deg =
            longitude_deg - std::round((longitude_deg - box_.west) / kTurn_deg) * kTurn_deg;  // the turn of the others
        const double margin_x_deg = kMargin_deg / std::max(0.05, std::cos(latitude_deg * kRadiansPerDegree));
        box_.west = std::min(box_.west, near_deg - margin_x_deg);
        box_.east = std::max(box_.east, near_deg + margin_x_deg);
        box_.south = std::min(box_.south, std::max(latitude_deg - kMargin_deg, -90.0));
        box_.north = std::max(box_.north, std::min(latitude_deg + kMargin_deg, 90.0));
    }

    /// Longitudes -180..180, west above east across the 180 degree meridian.
    [[nodiscard]] DEGREE_BOX Box() const {
        const auto normal = [](double deg) { return deg - std::floor((deg + 180.0) / kTurn_deg) * kTurn_deg; };
        return {normal(box_.west), box_.south, normal(box_.east), box_.north};
    }

  private:
    bool empty_ = true;
    DEGREE_BOX box_;
};

}  // namespace

DEGREE_BOX SceneBox(const std::string& master_pool, const std::string& slave_pool) {
    const ACQUISITION_OF_POOL master = ReadAcquisition(master_pool);
    const double side = LookDirection(master, slave_pool);
    RequireOrbitCovers(master);
    GROWING_BOX box;
    for (int step = 0; step <= kSteps; ++step) {
        const double line = static_cast<double>(master.lines - 1) * step / kSteps;
        const ORBIT_STATE state = master.orbit.State(master.TimeOfLine(line));
        for (const double sample : {0.0, static_cast<double>(master.samples - 1)}) {
            for (const double height_m : {kLowestTerrain_m, kHighestTerrain_m}) {
                const GEOLOCATION place =
                    geolocation_fast(state.position_m, state.velocity_m_s, side, height_m, master.polar_radius_m,
                                     master.equatorial_radius_m, master.RangeTimeOfSample(sample), 0.0);
                box.Add(place.longitude_deg, place.latitude_deg);
            }
        }
    }
    return box.Box();
}
