/// \file request.h
/// What was asked of the run: which files to read and write, which products, and how far apart their pixels lie. Made
/// once at the start of stage A and not changed after.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/keys/control_values.h"
#include "app/request/area_extension.h"
#include "app/request/line_of_sight_files.h"
#include "app/run_pools.h"

struct INPUT_FILES {
    SOURCED_TEXT master_pool;
    SOURCED_TEXT slave_pool;
    SOURCED_TEXT insar_pool;
    SOURCED_TEXT log_pool;
};

struct TERRAIN_REQUEST {
    SOURCED_TEXT dem_pool;
    SOURCED_TEXT dem_file;
    SOURCED_TEXT valid_heights;  ///< may be empty
    SOURCED_TEXT range_time_shift;
};

struct PHASE_REQUEST {
    SOURCED_TEXT file;
    SOURCED_TEXT initial_value;
};

struct SHIFT_REQUEST {
    bool asked = false;  ///< by the presence of a key
    SOURCED_TEXT range_file{};
    SOURCED_TEXT azimuth_file{};
    bool relative = false;
};

struct EARTH_REQUEST {
    SOURCED_TEXT x_file{};
    SOURCED_TEXT y_file{};
    SOURCED_TEXT z_file{};
    SOURCED_TEXT height_file{};
};

/// What the ground sees of the satellites; any of them may be empty.
struct VIEW_REQUEST {
    SOURCED_TEXT incidence_file{};
    SOURCED_TEXT local_incidence_file{};
    LINE_OF_SIGHT_FILES line_of_sight{};
    SOURCED_TEXT baseline_file{};
    SOURCED_TEXT ambiguity_file{};
};

struct REQUEST {
    CONTROLLER_FILES controller_files;
    PHASE_REQUEST phase;
    INPUT_FILES pools;
    TERRAIN_REQUEST terrain;
    SOURCED_TEXT observation_mode;
    SOURCED_TEXT looks_range;
    SOURCED_TEXT looks_azimuth;
    bool permanent_scatterer = false;
    SHIFT_REQUEST shifts;
    EARTH_REQUEST earth;
    VIEW_REQUEST views;
    SOURCED_TEXT layover_shadow_file;
    bool sidecars = false;
    SOURCED_TEXT report;      ///< may be empty
    bool only_looks = false;  ///< no product is opened
    SUBSAMPLING_FACTORS factors;
    AREA_EXTENSION extension;
    std::optional<int> memory_limit_mib;  ///< for the grids

    [[nodiscard]] bool WantsPhase() const { return phase.file.Given(); }
    [[nodiscard]] bool WantsShifts() const { return shifts.range_file.Given(); }
    [[nodiscard]] bool WantsEarth() const { return earth.x_file.Given(); }
    [[nodiscard]] bool WantsHeight() const { return earth.height_file.Given(); }
    [[nodiscard]] bool WantsViews() const { return !ViewFiles().empty(); }
    [[nodiscard]] bool NeedsNormals() const { return views.local_incidence_file.Given(); }
    [[nodiscard]] bool WantsLayoverShadow() const { return layover_shadow_file.Given(); }
    /// The grid of heights is there, for its own product or for the views that are made from it.
    [[nodiscard]] bool NeedsHeights() const { return WantsHeight() || WantsViews(); }

    [[nodiscard]] std::vector<SOURCED_TEXT> ViewFiles() const;
    /// The files that stage C writes, in its order.
    [[nodiscard]] std::vector<SOURCED_TEXT> ProductFiles() const;
    /// Every other file that a key of the request names.
    [[nodiscard]] std::vector<SOURCED_TEXT> OtherFiles() const;
};

/// Looks every key up, opens the pools and logs the summary. An upper-case key that also lives in the InSAR pool forces
/// the value and is written into that pool.
/// @throws the pool errors for a pool that cannot be opened or a key that must be read and is missing;
///         std::out_of_range for an empty observation mode; ERROR_PARAMETER for a factor below 0 or beyond 32 bits
[[nodiscard]] REQUEST ReadRequest(CONTROLLER_IFC& controller, RUN_POOLS& pools);
