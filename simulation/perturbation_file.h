/// \file perturbation_file.h
/// Earth-fixed coordinates are millions of metres: as 32-bit reals they would be rounded to half a metre. A
/// perturbation file therefore holds value - offset, with one whole-number offset near the values. The file does not
/// hold the offset: its reader must add it (see docs/raster_files.md).

#pragma once

#include <string>

#include "lib/baselib/image/grid_view.h"

/// The offset of a matrix: its centre element [rows / 2][columns / 2], rounded to a whole number.
/// @throws ERROR_ARGUMENT for a matrix without elements, ERROR_INVALID_VALUE when the element is not finite
double PerturbationOffset(const GRID_VIEW<const double>& matrix);

/// Writes matrix - offset as a raster file of 32-bit reals.
/// @param precision  wanted resolution, in the unit of the matrix, above 0. A pixel whose |value - offset| exceeds it
/// by
///                   more than the 24-bit mantissa of a 32-bit real holds (2^24) is told at WARNING, and written.
/// @throws ERROR_ARGUMENT for a precision not above 0; ERROR_INVALID_VALUE for a value that is not finite or beyond the
///         range of 32-bit reals (the file stays incomplete); as MEM_MGR::CreateFile and Flush
void WritePerturbationFile(const std::string& path, const GRID_VIEW<const double>& matrix, double offset,
                           double precision);
