/// \file pair_folder.h
/// The folder of a run: control file, InSAR and log pool, and copies of the acquisitions' pools with the interpolation
/// that was chosen.

#pragma once

#include <string>
#include <vector>

#include "companions/output_set.h"
#include "import/pair/pair_orbits.h"

struct RUN_FACTORS {
    int range = 1;
    int azimuth = 1;
};

struct PAIR_SETUP {
    ACQUISITION_OF_POOL master;
    ACQUISITION_OF_POOL slave;
    std::string master_interpolation;  ///< empty: the pool's own stays
    std::string slave_interpolation;
    std::string look_direction;  ///< "right" or "left"
    IMAGE_PART part;
    RUN_FACTORS shift_factors;
    RUN_FACTORS earth_factors;
    std::string dem_pool;
    std::string dem_raster;
};

inline constexpr const char* kEmptyLogPool = "# software history\n";

[[nodiscard]] std::string InsarPoolText(const PAIR_SETUP& setup);

/// All products are asked for, under their usual names. The DEM's paths are as seen from the folder, where the program
/// is to be started. @throws as WritePairFolder
[[nodiscard]] std::string ControlFileText(const std::string& folder, const std::string& dem_pool,
                                          const std::string& dem_raster);

/// Writes all files of the folder as outputs of the set. Values of a control file hold no blanks and at most 255
/// characters: @throws COMPANION_ERROR for such a path of the DEM
void WritePairFolder(OUTPUT_SET& outputs, const std::string& folder, const PAIR_SETUP& setup);
