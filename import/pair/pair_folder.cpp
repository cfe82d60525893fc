#include "import/pair/pair_folder.h"

#include <filesystem>
#include <fstream>

#include "companions/companion_error.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

namespace fs = std::filesystem;

namespace {

void CopyPool(const std::string& temporary, const ACQUISITION_OF_POOL& acquisition, const std::string& interpolation,
              const std::string& look_direction) {
    fs::copy_file(acquisition.pool, temporary, fs::copy_options::overwrite_existing);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(temporary);
    if (!interpolation.empty()) pool.Change("orbit_interpolation", interpolation);
    pool.Change("antenna_look_direction", look_direction);
    pool.Update();
}

/// The slave's first times are those of its whole image: the shift maps then count its own lines and samples.
void WriteInsarPool(const std::string& temporary, const PAIR_SETUP& setup) {
    const IMAGE_PART& part = setup.part;
    PARAMETER_POOL_READ_WRITE_CHANGE pool(temporary);
    pool.Change("observation_mode", std::string("dual_pass"),
                {" master lines " + std::to_string(part.lines.first) + " to " + std::to_string(part.lines.end - 1) +
                 ", samples " + std::to_string(part.samples.first) + " to " + std::to_string(part.samples.end - 1)});
    pool.Change("n_samples", static_cast<int>(part.samples.Count()));
    pool.Change("n_lines", static_cast<int>(part.lines.Count()));
    pool.Change("master_first_az_time", setup.master.TimeOfLine(static_cast<double>(part.lines.first)));
    pool.Change("master_first_rg_time", setup.master.RangeTimeOfSample(static_cast<double>(part.samples.first)));
    pool.Change("slave_first_az_time", setup.slave.first_azimuth_time_s);
    pool.Change("slave_first_rg_time", setup.slave.first_range_time_s);
    pool.Change("shift_matrices_subsampling_rg", setup.shift_factors.range);
    pool.Change("shift_matrices_subsampling_az", setup.shift_factors.azimuth);
    pool.Change("earth_matrices_subsampling_x", setup.earth_factors.range);
    pool.Change("earth_matrices_subsampling_y", setup.earth_factors.azimuth);
    pool.Update();
}

/// As seen from the folder, where the program is to be started.
std::string PathFromFolder(const std::string& folder, const std::string& path) {
    constexpr std::size_t kMostCharacters = 255;
    std::error_code ignored;
    std::string relative = fs::proximate(fs::weakly_canonical(path), fs::weakly_canonical(folder), ignored).string();
    if (relative.find_first_of(" \t") != std::string::npos)
        throw COMPANION_ERROR(path + ": as seen from " + folder + " its path is " + Quoted(relative) +
                              ": expected one without blanks, which a control file can hold");
    if (relative.size() > kMostCharacters)
        throw COMPANION_ERROR(path + ": its path has more than 255 characters, which a control file can not hold");
    return relative;
}

/// The heights that the import found; a pool from elsewhere does not tell.
std::string ValidHeights(const std::string& dem_pool) {
    PARAMETER_POOL pool(dem_pool);
    if (!pool.FindKey("dem_valid")) return "";
    return "DEM_VALID " + pool.Get<STRING>("dem_valid").ToStd() + "\n";
}

void WriteControlFile(const std::string& temporary, const std::string& folder, const PAIR_SETUP& setup) {
    std::ofstream file(temporary);
    file << "MASTER_POOL master.pool\nSLAVE_POOL slave.pool\nINSAR_POOL insar.pool\nlog_pp log.pool\n"
         << "DEM_POOL " << PathFromFolder(folder, setup.dem_pool) << "\nDEM "
         << PathFromFolder(folder, setup.dem_raster) << "\n"
         << ValidHeights(setup.dem_pool) << "RANGE_TIME_SHIFT 0\nLOOKS_RG 1\nLOOKS_AZ 1\nSIMU_PHASE simu_phase.ras\n"
         << "RG_COREG rg_coreg.ras\nAZ_COREG az_coreg.ras\nX_EARTH x_earth.ras\nY_EARTH y_earth.ras\n"
         << "Z_EARTH z_earth.ras\nH_EARTH h_earth.ras\n";
    file.close();
    if (!file) throw COMPANION_ERROR(folder + "/scene.pcf: can not be written (disk full?)");
}

void WriteLogPool(const std::string& temporary, const std::string& folder) {
    std::ofstream file(temporary);
    file << "# software history\n";
    file.close();
    if (!file) throw COMPANION_ERROR(folder + "/log.pool: can not be written (disk full?)");
}

}  // namespace

void WritePairFolder(OUTPUT_SET& outputs, const std::string& folder, const PAIR_SETUP& setup) {
    outputs.AddFolder(folder);
    CopyPool(outputs.Add(folder + "/master.pool"), setup.master, setup.master_interpolation, setup.look_direction);
    CopyPool(outputs.Add(folder + "/slave.pool"), setup.slave, setup.slave_interpolation, setup.look_direction);
    WriteInsarPool(outputs.Add(folder + "/insar.pool"), setup);
    WriteLogPool(outputs.Add(folder + "/log.pool"), folder);
    WriteControlFile(outputs.Add(folder + "/scene.pcf"), folder, setup);
}
