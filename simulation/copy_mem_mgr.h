/// \file copy_mem_mgr.h
/// Copies rows of one image into another, on several threads; where the images' corners differ, this crops.

#pragma once

#include "lib/baselib/image/mem_mgr.h"
#include "simulation/thread_arg.h"

struct COPY_MEM_MGR_ARG : THREAD_ARG {
    const MEM_MGR* source = nullptr;
    MEM_MGR* destination = nullptr;
};

/// Kernel, for pixels of 4 bytes: for each row index start .. start + length - 1, copies the pixels of the columns
/// 0 .. destination's columns - 1 from that row of the source to that row of the destination. Rows and columns are each
/// image's own coordinates: a source whose corners are below 0 loses its border on all sides.
/// @throws ERROR_NOT_SUPPORTED_PIXEL_TYPE for other pixels, ERROR_ARGUMENT when these pixels are not in both images
void CopyMemMgrThread(COPY_MEM_MGR_ARG* argument);

/// Runs the kernel over all rows of the destination, whose first corner must be (0, 0).
/// @throws const char* "error in thread execution", "can not create thread"; ERROR_ARGUMENT for more than 2^32 - 1 rows
void CopyMemMgr(const MEM_MGR& source, MEM_MGR& destination);
