#include "app/scene/geographic_box.h"

#include <cmath>
#include <cstdio>

#include "geometry/constants.h"
#include "geometry/geodetic.h"

namespace {

constexpr double kWholeTurn_deg = 360.0;

/// Moved by whole turns to the value nearest another one.
double Near(double longitude_deg, double other_deg) {
    return longitude_deg - std::round((longitude_deg - other_deg) / kWholeTurn_deg) * kWholeTurn_deg;
}

}  // namespace

GEOGRAPHIC_BOX BoxAround(const SCENE_CORNERS& corners) {
    GEOGRAPHIC_BOX box;
    for (const DEM_POSITION& corner : corners) {
        box.longitude_deg.Add(Near(corner.longitude_deg, corners[0].longitude_deg));
        box.latitude_deg.Add(corner.latitude_deg);
    }
    return box;
}

GEOGRAPHIC_BOX BoxAround(const DEM_GRID& dem) {
    GEOGRAPHIC_BOX box;
    for (const int column : {0, dem.columns - 1}) {
        for (const int row : {0, dem.rows - 1}) {
            const GEOGRAPHIC place = GeographicOfDemSample(dem, column, row);
            box.longitude_deg.Add(place.longitude_rad * kDegreesPerRadian);
            box.latitude_deg.Add(place.latitude_rad * kDegreesPerRadian);
        }
    }
    return box;
}

void AddInDem(GEOGRAPHIC_BOX& box, const VECTOR_3D<double>& point_m, const DEM_GRID& dem,
              const GEOGRAPHIC_BOX& dem_box) {
    const GEOGRAPHIC place =
        CartesianToGeographic(DatumInverse(dem.geodetic.datum, point_m), dem.geodetic.a_m, dem.geodetic.e2);
    const double middle_deg = 0.5 * (dem_box.longitude_deg.least + dem_box.longitude_deg.most);
    box.longitude_deg.Add(Near(place.longitude_rad * kDegreesPerRadian, middle_deg));
    box.latitude_deg.Add(place.latitude_rad * kDegreesPerRadian);
}

std::string InDegrees(const GEOGRAPHIC_BOX& box) {
    char text[128];
    std::snprintf(text, sizeof text, "longitude %.4f .. %.4f, latitude %.4f .. %.4f degrees", box.longitude_deg.least,
                  box.longitude_deg.most, box.latitude_deg.least, box.latitude_deg.most);
    return text;
}
