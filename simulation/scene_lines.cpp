#include "simulation/scene_lines.h"

#include <algorithm>

namespace {

int FirstRowOf(int line, int factor) {
    return (line + factor - 1) / factor;
}

/// Calls change(grid, azimuth factor) for every grid that is there.
template <class CHANGE>
void ForEachGrid(SCENE& scene, CHANGE change) {
    const auto change_if_there = [&](auto& grid, int factor) {
        if (grid) change(grid, factor);
    };
    change_if_there(scene.image.mask, 1);
    change_if_there(scene.image.phase_rad, 1);
    for (GRID_VIEW<double>* grid : {&scene.shifts.range, &scene.shifts.azimuth})
        change_if_there(*grid, scene.shifts.azimuth_factor);
    for (GRID_VIEW<double>* grid : {&scene.earth.x, &scene.earth.y, &scene.earth.z})
        change_if_there(*grid, scene.earth.azimuth_factor);
    change_if_there(scene.earth.radar_dem, scene.earth.azimuth_factor);
    for (GRID_VIEW<float>& grid : scene.earth.normal) change_if_there(grid, scene.earth.azimuth_factor);
}

}  // namespace

SCENE MovedToLines(SCENE scene, int first_line, int end_line) {
    ForEachGrid(scene, [=](auto& grid, int factor) {
        grid.first_row = FirstRowOf(first_line, factor);
        grid.rows = FirstRowOf(end_line, factor) - grid.first_row;
    });
    return scene;
}

SCENE LinesOf(SCENE scene, int first_line, int end_line) {
    ForEachGrid(scene, [=](auto& grid, int factor) {
        const int end = std::min(FirstRowOf(end_line, factor), grid.EndRow());
        grid = grid.Rows(std::min(FirstRowOf(first_line, factor), end), end);
    });
    return scene;
}
