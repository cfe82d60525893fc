/// \file initialize_mem_mgr.h
/// Fills an image with one value, on several threads.

#pragma once

#include <cstdint>

#include "lib/baselib/image/mem_mgr.h"
#include "simulation/thread_arg.h"

struct INITIALIZE_MEM_MGR_ARG : THREAD_ARG {
    MEM_MGR* image = nullptr;
    std::uint32_t pattern = 0;  ///< the bits of one 4-byte pixel
};

/// Kernel: writes the pattern into all columns of the rows start .. start + length - 1, counted from the image's first
/// row. Pixels of 8 and 16 bytes take it two and four times.
/// @throws ERROR_NOT_SUPPORTED_PIXEL_TYPE for pixels that are no multiple of 4 bytes, ERROR_ARGUMENT for rows outside
void InitializeMemMgrThread(INITIALIZE_MEM_MGR_ARG* argument);

/// Runs the kernel over the whole image.
/// @throws const char* "error in thread execution", "can not create thread"; ERROR_ARGUMENT for more than 2^32 - 1 rows
void InitializeMemMgr(MEM_MGR& image, std::uint32_t pattern);

/// The same with the bits of this value, for images of 32-bit reals.
void InitializeMemMgr(MEM_MGR& image, float value);
