/// \file dem2phase.h
/// The phase kernel: what one worker thread does with its share of DEM rows.

#pragma once

#include <cstdint>

/// One block of DEM rows; the common fields of every thread argument and nothing else.
struct DEM2PHASE_ARG {
    std::uint64_t status = 0;  ///< 0: ended well
    std::uint32_t start = 0;   ///< first DEM row
    std::uint32_t length = 0;  ///< number of DEM rows
    std::uint32_t thread_number = 0;
};

/// Start routine of a worker thread: simulates the rows of its DEM2PHASE_ARG of the scene in use (SCENE_IN_USE).
/// A failure of any kind leaves a non-zero status, after its reason was logged. Returns nullptr.
void* DEM2PHASE_Thread(void* dem2phase_arg);
