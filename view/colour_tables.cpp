#include "view/colour_tables.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace {

/// A colour as lightness (0..1), chroma and hue.
struct STOP {
    double lightness;
    double chroma;
    double hue_deg;
};

struct LAB {
    double lightness;
    double a;
    double b;
};

LAB LabOf(const STOP& stop) {
    const double hue_rad = stop.hue_deg * std::numbers::pi / 180.0;
    return {stop.lightness, stop.chroma * std::cos(hue_rad), stop.chroma * std::sin(hue_rad)};
}

double Cube(double x) {
    return x * x * x;
}

/// Linear light to the byte of sRGB (IEC 61966-2-1).
std::uint8_t ByteOf(double linear) {
    const double light = std::clamp(linear, 0.0, 1.0);
    const double coded = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(255.0 * coded));
}

COLOUR ColourOf(const LAB& lab) {
    const double l = Cube(lab.lightness + 0.3963377774 * lab.a + 0.2158037573 * lab.b);
    const double m = Cube(lab.lightness - 0.1055613458 * lab.a - 0.0638541728 * lab.b);
    const double s = Cube(lab.lightness - 0.0894841775 * lab.a - 1.2914855480 * lab.b);
    return {ByteOf(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            ByteOf(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            ByteOf(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

/// Straight lines between the stops, which stand at equal distances.
COLOUR_TABLE Through(std::span<const STOP> stops) {
    COLOUR_TABLE table;
    for (int i = 0; i < kTableSize; ++i) {
        const double place = static_cast<double>(i) / (kTableSize - 1) * static_cast<double>(stops.size() - 1);
        const std::size_t before = std::min(static_cast<std::size_t>(place), stops.size() - 2);
        const double part = place - static_cast<double>(before);
        const LAB from = LabOf(stops[before]);
        const LAB to = LabOf(stops[before + 1]);
        table[i] = ColourOf({std::lerp(from.lightness, to.lightness, part), std::lerp(from.a, to.a, part),
                             std::lerp(from.b, to.b, part)});
    }
    return table;
}

COLOUR_TABLE CircleOfHues() {
    constexpr double kLightness = 0.72;
    constexpr double kChroma = 0.125;  // more leaves sRGB in the blue
    COLOUR_TABLE table;
    for (int i = 0; i < kTableSize; ++i) table[i] = ColourOf(LabOf({kLightness, kChroma, 360.0 * i / kTableSize}));
    return table;
}

constexpr STOP kSequential[] = {
    {0.25, 0.09, 290}, {0.46, 0.10, 245}, {0.66, 0.11, 175}, {0.82, 0.15, 130}, {0.95, 0.13, 105}};
constexpr STOP kDiverging[] = {
    {0.38, 0.13, 260}, {0.68, 0.10, 250}, {0.97, 0.00, 0}, {0.70, 0.13, 40}, {0.40, 0.14, 25}};
constexpr STOP kTerrain[] = {{0.55, 0.09, 150}, {0.70, 0.09, 125}, {0.84, 0.07, 95},
                             {0.68, 0.07, 65},  {0.72, 0.03, 50},  {0.98, 0.00, 0}};

}  // namespace

const COLOUR_TABLE& ColourTable(TABLE table) {
    static const COLOUR_TABLE cyclic = CircleOfHues();
    static const COLOUR_TABLE sequential = Through(kSequential);
    static const COLOUR_TABLE diverging = Through(kDiverging);
    static const COLOUR_TABLE terrain = Through(kTerrain);
    switch (table) {
        case TABLE::CYCLIC:
            return cyclic;
        case TABLE::SEQUENTIAL:
            return sequential;
        case TABLE::DIVERGING:
            return diverging;
        default:
            return terrain;
    }
}
