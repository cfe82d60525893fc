/// \file copy_mem_mgr.h
/// Copies rows of one image into another, on several threads; where the images' corners differ, this crops. The other
/// image is one that is written to disk: each thread holds a band of it that stays in the processor's cache.

#pragma once

#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/product_file.h"
#include "simulation/thread_arg.h"

struct COPY_MEM_MGR_ARG : THREAD_ARG {
    const MEM_MGR* source = nullptr;
    MEM_MGR* destination = nullptr;  ///< a band of rows: it takes the place of one after the other
    PRODUCT_FILE* file = nullptr;    ///< receives the bands
    long long file_row = 0;          ///< of the source's row 0
};

/// Kernel, for pixels of 4 bytes: for each row index start .. start + length - 1, copies the pixels of the columns
/// 0 .. destination's columns - 1 from that row of the source to the destination, and on into the file. Rows and
/// columns are the source's own coordinates: a source whose corners are below 0 loses its border on all sides.
/// @throws ERROR_NOT_SUPPORTED_PIXEL_TYPE for other pixels, ERROR_ARGUMENT when these pixels are not in the source;
///         as PRODUCT_FILE::WriteRows
void CopyMemMgrThread(COPY_MEM_MGR_ARG* argument);

/// Runs the kernel over rows 0 .. rows - 1 and columns 0 .. columns - 1: the file's size, or the last rows of it.
/// @param file_row  of row 0
/// @throws const char* "error in thread execution", "can not create thread"; ERROR_ARGUMENT for more than 2^32 - 1 rows
void CopyMemMgr(const MEM_MGR& source, long long columns, long long rows, PRODUCT_FILE& file, long long file_row = 0);
