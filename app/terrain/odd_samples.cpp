#include "app/terrain/odd_samples.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace {

short Swapped(short sample) {
    return static_cast<short>(__builtin_bswap16(static_cast<std::uint16_t>(sample)));
}

float Swapped(float sample) {
    return __builtin_bit_cast(float, __builtin_bswap32(__builtin_bit_cast(std::uint32_t, sample)));
}

/// The customary marks are palindromes of no byte order: -32768 and 32767 would pass for 128 and -129 m.
bool IsMark(float height_m) {
    return height_m == kDemVoid_m || height_m == 32767.0F || height_m == -32767.0F || height_m == -9999.0F;
}

template <class SAMPLE>
bool LooksSwapped(const GRID_VIEW<const SAMPLE>& heights, const DEM_RANGE& simulated) {
    long long samples = 0;
    long long as_they_stand = 0;
    long long swapped = 0;
    for (int row = simulated.first_row; row <= simulated.last_row; ++row) {
        for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
            const SAMPLE sample = heights[row][column];
            if (IsMark(HeightOf(sample))) continue;
            ++samples;
            as_they_stand += IsOdd(HeightOf(sample)) ? 0 : 1;
            swapped += IsOdd(HeightOf(Swapped(sample))) ? 0 : 1;
        }
    }
    return swapped > samples / 2 && swapped > as_they_stand;
}

}  // namespace

void ODD_SAMPLES::Add(int row, int column) {
    if (count++ == 0) box = {row, row, column, column};
    box.last_row = row;
    box.first_column = std::min(box.first_column, column);
    box.last_column = std::max(box.last_column, column);
}

std::string Appearance(const DEM_GRID& dem, const DEM_RANGE& simulated, const ODD_SAMPLES& odd) {
    if (dem.real_heights ? LooksSwapped(dem.real_heights, simulated) : LooksSwapped(dem.heights, simulated))
        return "the file seems to be in the other byte order";
    std::map<int, long long> values;  // at most the 16-bit numbers: reals are no larger (dem_sample.h)
    for (int row = odd.box.first_row; row <= odd.box.last_row; ++row) {
        for (int column = odd.box.first_column; column <= odd.box.last_column; ++column) {
            const float height_m = dem.Height(column, row);
            if (IsOdd(height_m)) ++values[static_cast<int>(height_m)];
        }
    }
    for (const auto& [value, number] : values)
        if (number > odd.count / 2) return std::to_string(value) + " seems to mark missing heights";
    return "they are no heights of land";
}
