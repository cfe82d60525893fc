#include "view/flag_colours.h"

#include <cmath>

namespace {

enum CLASS { SEEN, LAYOVER, SHADOW, BOTH, SLAVE_ONLY, NO_TERRAIN };

constexpr FLAG_CLASS kClasses[] = {
    {"seen", {235, 235, 230}},
    {"layover", {230, 130, 40}},
    {"shadow", {40, 70, 140}},
    {"both", {140, 60, 130}},
    {"for the slave only", {120, 190, 120}},
    {"no terrain", {0, 0, 0}},
};

/// Bits as the processor's docs/products.md tells them.
CLASS ClassOf(unsigned bits) {
    constexpr unsigned kNoTerrain = 128;
    constexpr unsigned kSlave = 4 | 8;
    if ((bits & kNoTerrain) != 0) return NO_TERRAIN;
    if ((bits & 3U) != 0) return static_cast<CLASS>(bits & 3U);
    return (bits & kSlave) != 0 ? SLAVE_ONLY : SEEN;
}

}  // namespace

std::span<const FLAG_CLASS> FlagClasses() {
    return kClasses;
}

std::vector<COLOUR> FlagColours(const VALUE_GRID& grid) {
    std::vector<COLOUR> colours;
    colours.reserve(grid.values.size());
    for (const float value : grid.values)
        colours.push_back(std::isnan(value) ? kGrey : kClasses[ClassOf(static_cast<unsigned>(value))].colour);
    return colours;
}
