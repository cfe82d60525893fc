#include "import/pair/pair_inputs.h"

#include <cmath>

#include "companions/companion_error.h"
#include "companions/input_file.h"

std::string DemRasterBeside(const std::string& dem_pool) {
    constexpr const char* kSuffix = ".pool";
    if (!dem_pool.ends_with(kSuffix))
        throw COMPANION_ERROR(dem_pool + ": expected the NAME.pool of a DEM, with NAME.ras beside it");
    std::string raster = dem_pool.substr(0, dem_pool.size() - 5) + ".ras";
    RequireRegularFile(raster);
    return raster;
}

void RequireOneKind(const ACQUISITION_OF_POOL& master, const ACQUISITION_OF_POOL& slave) {
    const double ratio = slave.radar_frequency_hz / master.radar_frequency_hz;
    if (std::abs(ratio - 1.0) > 0.01)
        throw COMPANION_ERROR(slave.pool + ": key radar_frequency: value " + std::to_string(slave.radar_frequency_hz) +
                              ": expected that of the master, " + std::to_string(master.radar_frequency_hz));
    if (master.look_direction && slave.look_direction && *master.look_direction != *slave.look_direction)
        throw COMPANION_ERROR(slave.pool + ": key antenna_look_direction: the master looks to the other side");
}
