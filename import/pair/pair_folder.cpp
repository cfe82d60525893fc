#include "import/pair/pair_folder.h"

#include <filesystem>
#include <fstream>

#include "companions/companion_error.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "lib/baselib/pool/updated_content.h"

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

void WriteText(const std::string& temporary, const std::string& path, const std::string& text) {
    std::ofstream file(temporary, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw COMPANION_ERROR(path + ": can not be written (disk full?)");
}

class POOL_TEXT {
  public:
    template <class T>
    void Put(const std::string& key, const T& value, std::vector<std::string> comments = {}) {
        items_.Put({key, POOL_TYPE(kPoolType<T>), PoolValueText(value), std::move(comments)});
    }
    [[nodiscard]] std::string Text() const { return UpdatedContent("", items_); }

  private:
    PARAMETER_POOL_LIST items_;
};

/// Also of a folder that is still to be made.
fs::path WhereItWillBe(const std::string& folder) {
    return fs::weakly_canonical(fs::absolute(folder));
}

/// As seen from the folder, where the program is to be started.
std::string PathFromFolder(const std::string& folder, const std::string& path) {
    constexpr std::size_t kMostCharacters = 255;
    std::error_code ignored;
    std::string relative = fs::proximate(fs::weakly_canonical(path), WhereItWillBe(folder), ignored).string();
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

}  // namespace

/// The slave's first times are those of its whole image: the shift maps then count its own lines and samples.
std::string InsarPoolText(const PAIR_SETUP& setup) {
    const IMAGE_PART& part = setup.part;
    POOL_TEXT pool;
    pool.Put("observation_mode", std::string("dual_pass"),
             {" master lines " + std::to_string(part.lines.first) + " to " + std::to_string(part.lines.end - 1) +
              ", samples " + std::to_string(part.samples.first) + " to " + std::to_string(part.samples.end - 1)});
    pool.Put("n_samples", static_cast<int>(part.samples.Count()));
    pool.Put("n_lines", static_cast<int>(part.lines.Count()));
    pool.Put("master_first_az_time", setup.master.TimeOfLine(static_cast<double>(part.lines.first)));
    pool.Put("master_first_rg_time", setup.master.RangeTimeOfSample(static_cast<double>(part.samples.first)));
    pool.Put("slave_first_az_time", setup.slave.first_azimuth_time_s);
    pool.Put("slave_first_rg_time", setup.slave.first_range_time_s);
    pool.Put("shift_matrices_subsampling_rg", setup.shift_factors.range);
    pool.Put("shift_matrices_subsampling_az", setup.shift_factors.azimuth);
    pool.Put("earth_matrices_subsampling_x", setup.earth_factors.range);
    pool.Put("earth_matrices_subsampling_y", setup.earth_factors.azimuth);
    return pool.Text();
}

std::string ControlFileText(const std::string& folder, const std::string& dem_pool, const std::string& dem_raster) {
    return "MASTER_POOL master.pool\nSLAVE_POOL slave.pool\nINSAR_POOL insar.pool\nlog_pp log.pool\nDEM_POOL " +
           PathFromFolder(folder, dem_pool) + "\nDEM " + PathFromFolder(folder, dem_raster) + "\n" +
           ValidHeights(dem_pool) +
           "RANGE_TIME_SHIFT 0\nLOOKS_RG 1\nLOOKS_AZ 1\nSIMU_PHASE simu_phase.ras\nRG_COREG rg_coreg.ras\n"
           "AZ_COREG az_coreg.ras\nX_EARTH x_earth.ras\nY_EARTH y_earth.ras\nZ_EARTH z_earth.ras\n"
           "H_EARTH h_earth.ras\n";
}

void WritePairFolder(OUTPUT_SET& outputs, const std::string& folder, const PAIR_SETUP& setup) {
    outputs.AddFolder(folder);
    CopyPool(outputs.Add(folder + "/master.pool"), setup.master, setup.master_interpolation, setup.look_direction);
    CopyPool(outputs.Add(folder + "/slave.pool"), setup.slave, setup.slave_interpolation, setup.look_direction);
    const auto write = [&](const char* name, const std::string& text) {
        const std::string path = folder + "/" + name;
        WriteText(outputs.Add(path), path, text);
    };
    write("insar.pool", InsarPoolText(setup));
    write("log.pool", kEmptyLogPool);
    write("scene.pcf", ControlFileText(folder, setup.dem_pool, setup.dem_raster));
}
