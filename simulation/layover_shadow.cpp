#include "simulation/layover_shadow.h"

#include "geometry/vector_arithmetic.h"
#include "simulation/sheets.h"
#include "simulation/terrain_profiles.h"
#include "simulation/thread_count.h"

namespace {

/// The scene with as much more of the DEM as a shadow that falls into the image may begin in.
SCENE Widened(const SCENE& scene, double relief_m) {
    SCENE wide = scene;
    const DEM_GRID& dem = scene.dem;
    const int column = std::clamp(dem.columns / 2, 0, std::max(dem.columns - 2, 0));
    const int row = std::clamp(dem.rows / 2, 0, std::max(dem.rows - 2, 0));
    const auto point = [&](int c, int r) {
        VECTOR_3D<double> point_m;
        Get_Earth_Position_From_DEM(dem, c, r, point_m.x, point_m.y, point_m.z);
        return point_m;
    };
    // Twice the relief: the shadow at an incidence of 63 degrees. Heights differ, too: cells count as if level.
    const auto cells = [&](const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
        return static_cast<int>(std::min(2.0 * relief_m / std::max(Length(b - a), 1.0), 1e6)) + 1;
    };
    const int wider = cells(point(column, row), point(column + 1, row));
    const int higher = cells(point(column, row), point(column, row + 1));
    DEM_RANGE& range = wide.simulated;
    range.first_column = std::max(range.first_column - wider, 0);
    range.last_column = std::min(range.last_column + wider, dem.columns - 1);
    range.first_row = std::max(range.first_row - higher, 0);
    range.last_row = std::min(range.last_row + higher, dem.rows - 1);
    return wide;
}

}  // namespace

LAYOVER_SHADOW::LAYOVER_SHADOW(const SCENE& scene, int samples, int lines, const TERRAIN_BOUNDS& bounds,
                               double relief_m)
    : scene_(Widened(scene, relief_m)), samples_(samples), lines_(lines), dem_reach_(scene_) {
    const GENTLE_TERRAIN gentle(scene_, bounds, samples);
    for (int piece = 0; piece < Pieces(); ++piece) {
        const int first_line = piece * kLines;
        gentle_.push_back(gentle.Holds(CellsOf(piece), first_line, first_line + LinesOf(piece)) ? 1 : 0);
    }
    if (std::find(gentle_.begin(), gentle_.end(), 0) != gentle_.end()) sight_.emplace(scene_, bounds, lines_);
}

/// The lines' share of the samples, and a block more to all sides.
double LAYOVER_SHADOW::WorkingBytes(const DEM_RANGE& simulated, int lines) {
    const double rows = simulated.last_row - simulated.first_row + 1.0;
    const double columns = simulated.last_column - simulated.first_column + 1.0;
    const double share = std::min(1.0, static_cast<double>(kLines) / std::max(lines, 1));
    const double samples =
        std::min(rows * columns, share * rows * columns + 3.0 * DEM_BLOCKS::kSize * (rows + columns));
    return samples * sizeof(SEEN) * ThreadCount();
}

SCENE LAYOVER_SHADOW::CellsOf(int piece) const {
    SCENE cells = scene_;
    dem_reach_.LimitTo(piece * kLines, piece * kLines + LinesOf(piece), cells);
    return cells;
}

void LAYOVER_SHADOW::Find(int piece, unsigned char* flags) const {
    const auto samples = static_cast<std::size_t>(samples_);
    const int lines = LinesOf(piece);
    if (gentle_[piece] != 0) {
        std::fill_n(flags, samples * static_cast<std::size_t>(lines), static_cast<unsigned char>(0));
        return;
    }
    TERRAIN_PROFILES profiles(*sight_, CellsOf(piece), scene_.simulated);
    LINE_SHEETS sheets(samples_);
    for (int i = 0; i < lines; ++i)
        sheets.Find(profiles.Trace(piece * kLines + i), flags + static_cast<std::size_t>(i) * samples);
}
