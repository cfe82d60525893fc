#include "simulation/prepared_scene.h"

#include <algorithm>
#include <cmath>

#include "geometry/zero_doppler.h"
#include "simulation/radar_pixel.h"
#include "simulation/scene_blocks.h"
#include "simulation/thread_count.h"

namespace {

/// The points of the accepted cells lie within 1000 lines of the image; beyond the margin single points are solved.
/// The echoes of a single-pass pair are looked at over the aperture as well.
std::optional<COMPILED_ORBIT> CompiledFor(const ACQUISITION_SCENE& acquisition, bool bistatic) {
    if (acquisition.orbit.orbit == nullptr) return std::nullopt;
    constexpr double kLongAperture_s = 5.0;
    constexpr double kOrbitMarginLines = 2000.0;
    constexpr double kShortestMargin_s = 1.0;
    const double length_s = acquisition.last_azimuth_time_s - acquisition.first_azimuth_time_s;
    const double margin_s =
        std::max({kOrbitMarginLines * acquisition.azimuth_sampling_interval_s, length_s, kShortestMargin_s}) +
        (bistatic ? kLongAperture_s : 0.0);
    const double offset_s = acquisition.orbit.offset_s;
    return std::optional<COMPILED_ORBIT>(std::in_place, *acquisition.orbit.orbit,
                                         acquisition.first_azimuth_time_s + offset_s - margin_s,
                                         acquisition.last_azimuth_time_s + offset_s + margin_s);
}

std::optional<ROW_ORBIT> RowOrbitOf(const ACQUISITION_SCENE& acquisition,
                                    const std::optional<COMPILED_ORBIT>& compiled) {
    if (!compiled) return std::nullopt;
    return ROW_ORBIT{acquisition.orbit, &*compiled, acquisition.first_azimuth_time_s};
}

bool HasPositions(const DEM_GRID& dem) {
    return GridKindOf(dem.kind) != GRID_KIND::REFUSED;
}

}  // namespace

PREPARED_SCENE::PREPARED_SCENE(const SCENE& scene)
    : scene_(scene),
      vector_level_(ChosenVectorLevel()),
      compiled_master_(CompiledFor(scene.master, scene.bistatic)),
      compiled_slave_(CompiledFor(scene.slave, scene.bistatic)),
      master_orbit_(RowOrbitOf(scene.master, compiled_master_)),
      slave_orbit_(RowOrbitOf(scene.slave, compiled_slave_)),
      layers_(scene),
      blocks_(BlocksOf(scene, ThreadCount())),
      contested_(std::max<std::size_t>(blocks_.size(), 1)),
      counts_(contested_.size()),
      ownership_(scene.image.mask.first_row, scene.image.mask.rows, scene.image.mask.columns, Borders()) {}

SOLUTION_COUNTS PREPARED_SCENE::TotalCounts() const {
    SOLUTION_COUNTS total;
    for (const SOLUTION_COUNTS& counts : counts_) total += counts;
    return total;
}

std::vector<BLOCK_BORDER> PREPARED_SCENE::Borders() const {
    std::vector<BLOCK_BORDER> borders;
    if (blocks_.size() < 2 || !master_orbit_ || !HasPositions(scene_.dem)) return borders;
    for (const ROW_BLOCK& block : blocks_) borders.push_back(BorderAt(static_cast<int>(block.start)));
    return borders;
}

/// A guess needs no more than some hundred points. It never asks the orbit outside its data.
BLOCK_BORDER PREPARED_SCENE::BorderAt(int row) const {
    constexpr int kPoints = 500;
    const ACQUISITION_SCENE& master = scene_.master;
    const double offset_s = master.orbit.offset_s;
    const TIME_WINDOW data = {master.orbit.orbit->FirstTime() - offset_s, master.orbit.orbit->LastTime() - offset_s};
    const int columns = scene_.simulated.last_column - scene_.simulated.first_column;
    double guess_s =
        std::clamp(0.5 * (master.first_azimuth_time_s + master.last_azimuth_time_s), data.first_s, data.last_s);
    BLOCK_BORDER border;
    for (int i = 0; i <= std::min(columns, kPoints); ++i) {
        const int column = scene_.simulated.first_column +
                           static_cast<int>(static_cast<long long>(i) * columns / std::min(columns, kPoints));
        VECTOR_3D<double> point_m;
        Get_Earth_Position_From_DEM(scene_.dem, column, row, point_m.x, point_m.y, point_m.z);
        const ZERO_DOPPLER solution = SolveZeroDoppler(*compiled_master_, offset_s, point_m, guess_s, data);
        guess_s = solution.time_s;
        border.push_back({PixelOf(master, solution.range_m), LineOf(master, solution.time_s)});
    }
    return border;
}
