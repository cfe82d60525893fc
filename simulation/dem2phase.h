/// \file dem2phase.h
/// The phase kernel: what one worker thread does with its share of DEM rows.

#pragma once

#include "lib/baselib/logging/progress_line.h"
#include "simulation/prepared_scene.h"
#include "simulation/thread_arg.h"

/// One block of DEM rows.
struct DEM2PHASE_ARG : THREAD_ARG {};

/// Work of one thread: simulates the rows of its argument. Rows start <= row < start + length, each with the cells
/// between it and the next row.
/// @param line  counts the rows of all threads
/// Errors: what the geometry throws ends the routine; the runner turns it into the thread's status.
void DEM2PHASE_Thread(PREPARED_SCENE& scene, const DEM2PHASE_ARG& arg, PROGRESS_LINE& line);

/// Simulates all rows of a scene on ThreadCount() threads. The grids come out the same, byte for byte, for every number
/// of threads and every vector level. How the solutions were found is logged at DEBUG.
/// Errors: as the runner's (threads.h) and ChosenVectorLevel.
SOLUTION_COUNTS SimulateScene(const SCENE& scene);
