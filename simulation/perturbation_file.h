/// \file perturbation_file.h
/// Earth-fixed coordinates are millions of metres: as 32-bit reals they would be rounded to half a metre. A
/// perturbation file therefore holds value - offset, with one whole-number offset near the values. The file does not
/// hold the offset: its reader must add it (see docs/raster_files.md).

#pragma once

#include "lib/baselib/image/grid_view.h"
#include "lib/baselib/image/product_file.h"

/// The offset of a matrix: its centre element [rows / 2][columns / 2], rounded to a whole number.
/// @throws ERROR_INVALID_VALUE when the element is not finite
double PerturbationOffset(double centre);

/// The lines that open the output of a perturbation file.
void LogPerturbationFile(const PRODUCT_FILE& file, double offset);

/// Writes matrix - offset, for rows first_row .. end_row - 1, into a product of 32-bit reals.
/// @param precision  wanted resolution, in the unit of the matrix, above 0. A pixel whose |value - offset| exceeds it
///                   by more than the 24-bit mantissa of a 32-bit real holds (2^24) is told at WARNING, and written.
/// @throws ERROR_ARGUMENT for a precision not above 0; ERROR_INVALID_VALUE for a value that is not finite or beyond the
///         range of 32-bit reals; as PRODUCT_FILE::WriteRows
void WritePerturbationRows(PRODUCT_FILE& file, const GRID_VIEW<const double>& matrix, int first_row, int end_row,
                           double offset, double precision);
