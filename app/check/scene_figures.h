/// \file scene_figures.h
/// What a person wants to know of a scene before a long run.

#pragma once

#include "app/simulation_state.h"

/// At the centre of the master image, on terrain of the middle height of what the DEM holds there.
struct CENTRE_FIGURES {
    double longitude_deg = 0.0;  ///< -180..180
    double latitude_deg = 0.0;
    double height_m = 0.0;
    double perpendicular_baseline_m = 0.0;  ///< across the line of sight, in the plane of zero Doppler; not negative
    double height_of_ambiguity_m = 0.0;     ///< height that turns the phase once; infinite without a baseline
};

/// @throws ERROR_DATA where the range does not reach the ground
[[nodiscard]] CENTRE_FIGURES FiguresAtCentre(const SIMULATION_STATE& state);

/// Bytes in memory of the grids and the DEM.
[[nodiscard]] long long MemoryNeeded_bytes(const SIMULATION_STATE& state);
/// Bytes of all products.
[[nodiscard]] long long DiskNeeded_bytes(const SIMULATION_STATE& state);

/// Simulates rows in the middle of the DEM's part until a third of a second is over, and counts on for all rows. The
/// result images are of no use afterwards.
[[nodiscard]] double ExpectedSimulationTime_s(const SIMULATION_STATE& state);
