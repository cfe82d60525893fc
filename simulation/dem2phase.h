/// \file dem2phase.h
/// The phase kernel: what one worker thread does with its share of DEM rows.

#pragma once

#include "simulation/scene.h"
#include "simulation/thread_arg.h"

/// One block of DEM rows; the scene reaches the kernel beside it (SCENE_IN_USE).
struct DEM2PHASE_ARG : THREAD_ARG {};

/// Start routine of a worker thread: simulates the rows of its DEM2PHASE_ARG in the scene in use.
/// Rows start <= row < start + length, each with the cells between it and the next row.
/// Errors: what the geometry throws ends the routine; the runner turns it into the thread's status.
/// @return nullptr
void* DEM2PHASE_Thread(void* dem2phase_arg);

/// Simulates all rows of a scene on ThreadCount() threads. The grids come out the same for every number of threads.
/// Errors: as the runner's (threads.h).
void SimulateScene(const SCENE& scene);
