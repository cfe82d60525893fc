// ground_point COLUMN ROW: longitude, latitude (degrees) and height (m, WGS84) of a pixel of a run's x, y, z files.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "geometry/geodetic.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/pool/parameter_pool.h"

int main(int, char** argv) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    PARAMETER_POOL pool("insar.pool");
    const auto coordinate = [&](const std::string& axis) {
        MEM_MGR file;
        file.MapFlt6(axis + "_earth.ras", ACCESS_MODE::READ_ONLY);
        return file.GetNumRecMatrix<float>()[std::atoi(argv[2])][std::atoi(argv[1])] +
               pool.Get<double>(axis + "_earth_offset");
    };
    const VECTOR_3D<double> point_m{coordinate("x"), coordinate("y"), coordinate("z")};
    const GEOGRAPHIC ground = CartesianToGeographic(point_m, 6378137.0, SquaredEccentricity(6378137.0, 6356752.314245));
    std::printf("%.7f %.7f %.2f\n", ground.longitude_rad * 57.29577951308232, ground.latitude_rad * 57.29577951308232,
                ground.height_m);
}
