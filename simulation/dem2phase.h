/// \file dem2phase.h
/// The phase kernel: what one worker thread does with its share of DEM rows.

#pragma once

#include <functional>
#include <vector>

#include "simulation/prepared_scene.h"
#include "simulation/simulation_progress.h"
#include "simulation/thread_arg.h"

/// One block of DEM rows.
struct DEM2PHASE_ARG : THREAD_ARG {};

/// Work of one thread: simulates the rows of its argument. Rows start <= row < start + length, each with the cells
/// between it and the next row.
/// Errors: what the geometry throws ends the routine; the runner turns it into the thread's status.
void DEM2PHASE_Thread(PREPARED_SCENE& scene, const DEM2PHASE_ARG& arg, SIMULATION_PROGRESS& progress);

/// Simulates all rows of a scene on ThreadCount() threads. The grids come out the same, byte for byte, for every number
/// of threads and every vector level. How the solutions were found is logged at DEBUG.
/// Errors: as the runner's (threads.h) and ChosenVectorLevel.
SOLUTION_COUNTS SimulateScene(const SCENE& scene);

/// The same for the slabs of an image, one after the other; the log tells of them as of one scene.
/// @param complete  called with the index of each slab when it is complete, before the next begins
SOLUTION_COUNTS SimulateScenes(const std::vector<SCENE>& slabs, const std::function<void(std::size_t)>& complete);
