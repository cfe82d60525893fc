#include "view/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "view/flag_colours.h"

namespace {

constexpr COLOUR kWhite{255, 255, 255};
constexpr COLOUR kBlack{0, 0, 0};
constexpr int kMargin = 10;
constexpr int kBarRows = 18;
constexpr int kTickRows = 4;
constexpr int kLegendRows = kMargin + kTextRows + kMargin + kBarRows + kTickRows + 4 + kTextRows + kMargin;
constexpr int kTickColumns = 150;  ///< a tick with its number needs this

std::string Number(double value, double width) {
    const int decimals = std::clamp(2 - static_cast<int>(std::floor(std::log10(std::max(width, 1e-9)))), 0, 6);
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

/// Fits into what the legend leaves of the longest side.
int FactorFor(const RASTER_FILE& raster, int longest) {
    const long long columns = (raster.Columns() + longest - 1) / longest;
    const long long rows = (raster.Rows() + longest - kLegendRows - 1) / (longest - kLegendRows);
    return static_cast<int>(std::max(columns, rows));
}

std::string Title(const PRODUCT_KIND* kind) {
    if (kind == nullptr) return "values";
    return std::string(kind->description) + (kind->product == PRODUCT::SIMU_PHASE ? ", wrapped" : "");
}

struct LEGEND_PLACE {
    int row;
    int columns;
};

void DrawBar(CANVAS& canvas, const LEGEND_PLACE& place, const COLOURING& colouring) {
    const int first = place.row + kMargin + kTextRows + kMargin;
    const int length = place.columns - 2 * kMargin;
    for (int x = 0; x < length; ++x) {
        const COLOUR colour = ColourTable(colouring.table)[static_cast<std::size_t>(x * kTableSize / length)];
        canvas.Fill(kMargin + x, first, 1, kBarRows, colour);
    }
}

void DrawScale(CANVAS& canvas, const LEGEND_PLACE& place, const VALUE_RANGE& range, const std::string& unit) {
    const int bar_end = place.row + kMargin + kTextRows + kMargin + kBarRows;
    const int length = place.columns - 2 * kMargin;
    const double width = range.high - range.low;
    const int ticks = std::clamp(length / kTickColumns + 1, 3, 5);
    for (int tick = 0; tick < ticks; ++tick) {
        const int column = kMargin + tick * (length - 1) / (ticks - 1);
        const std::string text =
            Number(range.low + width * tick / (ticks - 1), width) + (tick == ticks - 1 ? unit : "");
        const int last = std::max(place.columns - kMargin - TextColumns(text), kMargin);
        const int left = std::clamp(column - TextColumns(text) / 2, kMargin, last);
        canvas.Fill(column, bar_end, 2, kTickRows, kBlack);
        canvas.Write(left, bar_end + kTickRows + 4, text, kBlack);
    }
}

/// Swatches with their names, in the place of the bar and of its scale.
void DrawClasses(CANVAS& canvas, const LEGEND_PLACE& place) {
    int row = place.row + kMargin + kTextRows + kMargin;
    int column = kMargin;
    for (const FLAG_CLASS& entry : FlagClasses()) {
        if (column + kBarRows + 4 + TextColumns(entry.name) > place.columns - kMargin) {
            row += kBarRows + kTickRows + 4;
            column = kMargin;
        }
        canvas.Fill(column, row, kBarRows, kBarRows, kBlack);
        canvas.Fill(column + 1, row + 1, kBarRows - 2, kBarRows - 2, entry.colour);
        canvas.Write(column + kBarRows + 4, row, entry.name, kBlack);
        column += kBarRows + TextColumns(entry.name) + 2 * kMargin;
    }
}

/// At the right end of the title's line, where pixels without a value are in the picture.
void DrawGreyNote(CANVAS& canvas, const LEGEND_PLACE& place) {
    const std::string text = "no value";
    const int left = place.columns - kMargin - TextColumns(text);
    canvas.Fill(left - 32, place.row + kMargin, 22, 14, kGrey);
    canvas.Write(left, place.row + kMargin, text, kBlack);
}

}  // namespace

AVERAGE AverageFor(const PRODUCT_KIND* kind) {
    if (kind == nullptr) return AVERAGE::MEAN;
    if (kind->product == PRODUCT::LAYOVER_SHADOW) return AVERAGE::BITS;
    return kind->product == PRODUCT::SIMU_PHASE ? AVERAGE::PHASE : AVERAGE::MEAN;
}

CANVAS DrawPicture(const RASTER_FILE& raster, const PRODUCT_KIND* kind, int longest, std::optional<double> invalid) {
    const VALUE_GRID grid = AverageDown(raster, FactorFor(raster, longest), AverageFor(kind), invalid);
    const COLOURING colouring = ColouringFor(kind, raster.PixelType(), grid);
    const std::vector<COLOUR> colours = Colours(grid, colouring);

    CANVAS canvas(std::max(grid.columns, kShortestLongestSide), grid.rows + kLegendRows, kWhite);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column)
            canvas.Set(column, row, colours[static_cast<std::size_t>(row) * grid.columns + column]);
    }
    const LEGEND_PLACE place{grid.rows, canvas.Columns()};
    canvas.Write(kMargin, place.row + kMargin, Title(kind), kBlack);
    if (colouring.has_classes) {
        DrawClasses(canvas, place);
    } else {
        DrawBar(canvas, place, colouring);
        DrawScale(canvas, place, colouring.range, kind == nullptr ? "" : " " + std::string(kind->unit));
    }
    if (std::ranges::any_of(grid.values, [](float value) { return std::isnan(value); })) DrawGreyNote(canvas, place);
    return canvas;
}
