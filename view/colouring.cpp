#include "view/colouring.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "view/flag_colours.h"

namespace {

/// Both signs matter when the smaller end is at least a quarter of the larger one.
bool IsAboutZero(const VALUE_RANGE& range) {
    return range.low < 0.0 && range.high > 0.0 &&
           std::min(-range.low, range.high) >= 0.25 * std::max(-range.low, range.high);
}

bool IsShift(const PRODUCT_KIND* kind) {
    return kind != nullptr && (kind->product == PRODUCT::RG_COREG || kind->product == PRODUCT::AZ_COREG);
}

bool IsCoordinate(const PRODUCT_KIND* kind) {
    return kind != nullptr && (kind->product == PRODUCT::X_EARTH || kind->product == PRODUCT::Y_EARTH ||
                               kind->product == PRODUCT::Z_EARTH);
}

bool IsBaseline(const PRODUCT_KIND* kind) {
    return kind != nullptr && kind->product == PRODUCT::PERPENDICULAR_BASELINE;
}

bool IsHeight(const PRODUCT_KIND* kind, PIXEL_TYPE pixel_type) {
    return kind == nullptr ? pixel_type == PIXEL_TYPE::INT_16 : kind->product == PRODUCT::H_EARTH;
}

int PlaceInTable(double value, const COLOURING& colouring) {
    const double width = colouring.range.high - colouring.range.low;
    const double part = width > 0.0 ? (value - colouring.range.low) / width : 0.5;
    const int steps = colouring.table == TABLE::CYCLIC ? kTableSize : kTableSize - 1;
    return std::clamp(static_cast<int>(part * steps + (colouring.table == TABLE::CYCLIC ? 0.0 : 0.5)), 0,
                      kTableSize - 1);
}

/// Differences to the neighbours before and behind; one-sided at the edges and beside missing values.
class SLOPES {
  public:
    explicit SLOPES(const VALUE_GRID& grid) : grid_(grid) {}

    [[nodiscard]] double ToTheRight(int column, int row) const {
        return Difference(grid_.At(column, row), column > 0 ? grid_.At(column - 1, row) : NAN,
                          column + 1 < grid_.columns ? grid_.At(column + 1, row) : NAN);
    }
    [[nodiscard]] double Down(int column, int row) const {
        return Difference(grid_.At(column, row), row > 0 ? grid_.At(column, row - 1) : NAN,
                          row + 1 < grid_.rows ? grid_.At(column, row + 1) : NAN);
    }

  private:
    static double Difference(float here, float before, float behind) {
        if (std::isnan(here)) return 0.0;
        if (std::isnan(before)) return std::isnan(behind) ? 0.0 : behind - here;
        return std::isnan(behind) ? here - before : 0.5 * (behind - before);
    }
    const VALUE_GRID& grid_;
};

/// The pixel spacing on the ground is not known here: slopes count in units of their root mean square.
double TypicalSlope(const VALUE_GRID& grid) {
    const SLOPES slopes(grid);
    double sum = 0.0;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            sum += std::pow(slopes.ToTheRight(column, row), 2) + std::pow(slopes.Down(column, row), 2);
        }
    }
    return std::sqrt(sum / (static_cast<double>(grid.columns) * grid.rows));
}

/// Lambert's law for a light from the upper left, 45 degrees high; 1 for level ground.
double Light(double to_the_right, double down) {
    const double level = 1.0 / std::numbers::sqrt2;
    const double cosine =
        (level + 0.5 * (to_the_right + down)) / std::sqrt(1.0 + to_the_right * to_the_right + down * down);
    return std::max(cosine, 0.0) / level;
}

std::uint8_t Dimmed(std::uint8_t part, double light) {
    constexpr double kAmbient = 0.45;
    return static_cast<std::uint8_t>(std::clamp(part * (kAmbient + (1.0 - kAmbient) * light), 0.0, 255.0));
}

void Shade(const VALUE_GRID& grid, std::vector<COLOUR>& colours) {
    const double typical = TypicalSlope(grid);
    if (!(typical > 0.0)) return;
    const SLOPES slopes(grid);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            if (std::isnan(grid.At(column, row))) continue;
            const double light = Light(slopes.ToTheRight(column, row) / typical, slopes.Down(column, row) / typical);
            COLOUR& colour = colours[static_cast<std::size_t>(row) * grid.columns + column];
            colour = {Dimmed(colour.red, light), Dimmed(colour.green, light), Dimmed(colour.blue, light)};
        }
    }
}

}  // namespace

COLOURING ColouringFor(const PRODUCT_KIND* kind, PIXEL_TYPE pixel_type, const VALUE_GRID& grid) {
    if (kind != nullptr && kind->product == PRODUCT::SIMU_PHASE) return {TABLE::CYCLIC, {0.0, 2.0 * std::numbers::pi}};
    if (kind != nullptr && kind->product == PRODUCT::LAYOVER_SHADOW) return {.has_classes = true};
    const VALUE_RANGE range = RangeOf(grid).value_or(VALUE_RANGE{});
    if (IsHeight(kind, pixel_type)) return {.table = TABLE::TERRAIN, .range = range, .shaded = true};
    if (IsCoordinate(kind) || IsBaseline(kind) || (IsShift(kind) && IsAboutZero(range))) {
        const double most = std::max(std::fabs(range.low), std::fabs(range.high));
        return {TABLE::DIVERGING, {-most, most}};
    }
    return {TABLE::SEQUENTIAL, range};
}

std::vector<COLOUR> Colours(const VALUE_GRID& grid, const COLOURING& colouring) {
    if (colouring.has_classes) return FlagColours(grid);
    const COLOUR_TABLE& table = ColourTable(colouring.table);
    std::vector<COLOUR> colours(grid.values.size(), kGrey);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        if (!std::isnan(grid.values[i])) colours[i] = table[PlaceInTable(grid.values[i], colouring)];
    }
    if (colouring.shaded) Shade(grid, colours);
    return colours;
}
