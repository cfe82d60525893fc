#include "app/scene/output_sizes.h"

#include <cmath>

#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

/// ceil(extent / factor) in single precision, as the sizes of existing products were computed.
long long SteppedExtent(int extent, int factor) {
    return static_cast<long long>(std::ceil(static_cast<float>(extent) / static_cast<float>(factor)));
}

/// An extension is the largest factor of its direction, so a direction whose factors are all 1 has none, and one step
/// more than the image does not fit: the user can only change the factors.
void AdviseOnFactors(const AREA_EXTENSION& extension, const SUBSAMPLING_FACTORS& factors) {
    Explain(
        "the extension is %d samples and %d lines: factors above 1 are needed in both directions or in none "
        "(shift %d x %d, earth %d x %d, geocoding %d x %d)",
        extension.x, extension.y, factors.shift.x, factors.shift.y, factors.earth.x, factors.earth.y,
        factors.geocoding.x, factors.geocoding.y);
}

/// Columns and rows of a sub-sampled grid before they are known to fit.
struct GRID_SIZE {
    long long columns;
    long long rows;
};

/// Master pixels from the first to the last column and row.
GRID_SIZE Reach(const GRID_SIZE& grid, const SUBSAMPLING& factors) {
    return {(grid.columns - 1) * factors.x, (grid.rows - 1) * factors.y};
}

bool LiesInside(const GRID_SIZE& reach, const IMAGE_SIZE& area) {
    return reach.columns < area.samples && reach.rows < area.lines;
}

bool Covers(const GRID_SIZE& reach, const IMAGE_SIZE& image) {
    return reach.columns >= image.samples - 1 && reach.rows >= image.lines - 1;
}

/// One step more than needed to cover the image.
GRID_SIZE SteppedGrid(const IMAGE_SIZE& image, const SUBSAMPLING& factors) {
    return {SteppedExtent(image.samples, factors.x) + 1, SteppedExtent(image.lines, factors.y) + 1};
}

void CheckShiftGrid(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated,
                    const GRID_SIZE& grid) {
    const GRID_SIZE reach = Reach(grid, request.factors.shift);
    if (!LiesInside(reach, simulated)) {
        Explain("Error: simulated area extension is not enough for subsampled shift matrices");
        AdviseOnFactors(request.extension, request.factors);
        throw ERROR_ALGORITHM();
    }
    if (!Covers(reach, image)) LogAndThrow<ERROR_ALGORITHM>("Error: subsampled shift matrices do not cover full area");
}

void CheckGeocodingGrid(const REQUEST& request, const IMAGE_SIZE& image, const GRID_SIZE& earth_grid) {
    const SUBSAMPLING& earth = request.factors.earth;
    const SUBSAMPLING& geocoding = request.factors.geocoding;
    const GRID_SIZE grid = SteppedGrid(image, geocoding);
    const GRID_SIZE needed = Reach(grid, geocoding);
    const GRID_SIZE reach = Reach(earth_grid, earth);
    if (reach.columns >= needed.columns && reach.rows >= needed.rows) return;
    Explain(" h_earth coverage not enough for interpolation in geco grid");
    Explain("       h_earth: %lld x %lld (sub %d x %d )", earth_grid.columns, earth_grid.rows, earth.x, earth.y);
    Explain("       geco:    %lld x %lld (sub %d x %d, eq %lld x %lld )", grid.columns, grid.rows, geocoding.x,
            geocoding.y, needed.columns, needed.rows);
    AdviseOnFactors(request.extension, request.factors);
    throw ERROR_ALGORITHM();
}

void CheckEarthGrid(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated,
                    const GRID_SIZE& grid) {
    const SUBSAMPLING& factors = request.factors.earth;
    const GRID_SIZE reach = Reach(grid, factors);
    if (!LiesInside(reach, simulated)) {
        Explain("Error: simulated area extension is not enough for subsampled shift matrixes");
        AdviseOnFactors(request.extension, request.factors);
        throw ERROR_ALGORITHM();
    }
    if (!Covers(reach, image)) {
        Explain("Error: h_earth coverage not enough for interpolation in full scene");
        Explain("       h_earth %lld x %lld (sub %d x %d )", grid.columns, grid.rows, factors.x, factors.y);
        throw ERROR_ALGORITHM();
    }
    CheckGeocodingGrid(request, image, grid);
}

/// A geocoding grid is interpolated in the Earth grid: that one then takes every step that the simulated area holds.
GRID_SIZE EarthGrid(const SUBSAMPLING_FACTORS& factors, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated) {
    const bool geocoded = factors.geocoding.x != 1 || factors.geocoding.y != 1;
    if (!geocoded) return SteppedGrid(image, factors.earth);
    return {(simulated.samples - 1) / factors.earth.x + 1, (simulated.lines - 1) / factors.earth.y + 1};
}

IMAGE_SIZE Narrowed(const GRID_SIZE& grid) {
    return {static_cast<int>(grid.columns), static_cast<int>(grid.rows)};
}

}  // namespace

IMAGE_SIZE SizeShiftMatrices(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated) {
    const SUBSAMPLING& factors = request.factors.shift;
    Say(" - Setting size of output shift matrices");
    IMAGE_SIZE output = simulated;
    if (request.extension.extended) {
        const GRID_SIZE grid = SteppedGrid(image, factors);
        CheckShiftGrid(request, image, simulated, grid);
        output = Narrowed(grid);
    }
    Say(" - Set size of output shift matrices");
    Say("   nr_samples_coreg_out:...... %d (sub factor %d)", output.samples, factors.x);
    Say("   nr_lines_coreg_out:........ %d (sub factor %d)", output.lines, factors.y);
    return output;
}

IMAGE_SIZE SizeEarthMatrices(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated) {
    const SUBSAMPLING& factors = request.factors.earth;
    Say(" - Setting size of output earth matrices");
    IMAGE_SIZE output = simulated;
    if (request.extension.extended) {
        const GRID_SIZE grid = EarthGrid(request.factors, image, simulated);
        CheckEarthGrid(request, image, simulated, grid);
        output = Narrowed(grid);
    }
    Say(" - Set size of output earth matrices");
    Say("   nr_samples_earth_out:...... %d (sub factor %d)", output.samples, factors.x);
    Say("   nr_lines_earth_out:........ %d (sub factor %d)", output.lines, factors.y);
    return output;
}

OUTPUT_SIZES SizeOutputs(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated) {
    OUTPUT_SIZES sizes{.simulated = simulated};
    if (request.WantsShifts()) sizes.shift = SizeShiftMatrices(request, image, simulated);
    if (request.WantsEarth() || request.NeedsHeights()) sizes.earth = SizeEarthMatrices(request, image, simulated);
    return sizes;
}
