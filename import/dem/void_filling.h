/// \file void_filling.h
/// Missing heights filled from their surroundings by GDAL (inverse distances along eight directions).

#pragma once

#include <vector>

/// @param heights_m  rows one after the other, NaN where a height is missing; as many of these as can be are replaced
/// @return how many were filled
/// @throws COMPANION_ERROR when GDAL fails
long long FillVoids(std::vector<float>& heights_m, int columns, int rows);
