#include "app/scene/output_sizes.h"

#include <cmath>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// ceil(extent / factor) in single precision, as the sizes of existing products were computed.
long long SteppedExtent(int extent, int factor) {
    return static_cast<long long>(std::ceil(static_cast<float>(extent) / static_cast<float>(factor)));
}

/// The master image: the simulated area less the extension.
IMAGE_SIZE Cropped(const SIMULATION_STATE& state) {
    return {state.simulation.samples - state.configuration.extension_x,
            state.simulation.lines - state.configuration.extension_y};
}

/// An extension is the largest factor of its direction, so a direction whose factors are all 1 has none, and one step
/// more than the image does not fit: the user can only change the factors.
void AdviseOnFactors(const RUN_CONFIGURATION& configuration) {
    Log().Message(LOGGING_LEVEL::ALARM,
                  "the extension is %d samples and %d lines: factors above 1 are needed in both directions or in none "
                  "(shift %d x %d, earth %d x %d, geocoding %d x %d)",
                  configuration.extension_x, configuration.extension_y, configuration.shift.x, configuration.shift.y,
                  configuration.earth.x, configuration.earth.y, configuration.geocoding.x, configuration.geocoding.y);
}

void CheckShiftSize(const SIMULATION_STATE& state, long long a, long long b) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    const long long reach_x = a * configuration.shift.x;
    const long long reach_y = b * configuration.shift.y;
    const IMAGE_SIZE image = Cropped(state);
    if (!(state.simulation.samples > reach_x && state.simulation.lines > reach_y)) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "Error: simulated area extension is not enough for subsampled shift matrices");
        AdviseOnFactors(configuration);
        throw ERROR_ALGORITHM();
    }
    if (reach_x < image.samples - 1 || reach_y < image.lines - 1) {
        Log().Message(LOGGING_LEVEL::ALARM, "Error: subsampled shift matrices do not cover full area");
        throw ERROR_ALGORITHM();
    }
}

void CheckGeocodingGrid(const SIMULATION_STATE& state, long long p, long long q) {
    const SUBSAMPLING& earth = state.configuration.earth;
    const SUBSAMPLING& geocoding = state.configuration.geocoding;
    const IMAGE_SIZE image = Cropped(state);
    const long long u = SteppedExtent(image.samples, geocoding.x);
    const long long v = SteppedExtent(image.lines, geocoding.y);
    if ((p - 1) * earth.x >= geocoding.x * u && (q - 1) * earth.y >= geocoding.y * v) return;
    Log().Message(LOGGING_LEVEL::ALARM, " h_earth coverage not enough for interpolation in geco grid");
    Log().Message(LOGGING_LEVEL::ALARM, "       h_earth: %lld x %lld (sub %d x %d )", p, q, earth.x, earth.y);
    Log().Message(LOGGING_LEVEL::ALARM, "       geco:    %lld x %lld (sub %d x %d, eq %lld x %lld )", u + 1, v + 1,
                  geocoding.x, geocoding.y, u * geocoding.x, v * geocoding.y);
    AdviseOnFactors(state.configuration);
    throw ERROR_ALGORITHM();
}

void CheckEarthSize(const SIMULATION_STATE& state, long long p, long long q) {
    const SUBSAMPLING& earth = state.configuration.earth;
    const IMAGE_SIZE image = Cropped(state);
    const long long reach_x = (p - 1) * earth.x;
    const long long reach_y = (q - 1) * earth.y;
    if (!(reach_x < state.simulation.samples && reach_y < state.simulation.lines)) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "Error: simulated area extension is not enough for subsampled shift matrixes");
        AdviseOnFactors(state.configuration);
        throw ERROR_ALGORITHM();
    }
    if (reach_x < image.samples - 1 || reach_y < image.lines - 1) {
        Log().Message(LOGGING_LEVEL::ALARM, "Error: h_earth coverage not enough for interpolation in full scene");
        Log().Message(LOGGING_LEVEL::ALARM, "       h_earth %lld x %lld (sub %d x %d )", p, q, earth.x, earth.y);
        throw ERROR_ALGORITHM();
    }
    CheckGeocodingGrid(state, p, q);
}

}  // namespace

void SizeShiftMatrices(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    Log().Message(LOGGING_LEVEL::INFO, " - Setting size of output shift matrices");
    state.shift_output = state.simulation;
    if (configuration.area_extended) {
        const IMAGE_SIZE image = Cropped(state);
        const long long a = SteppedExtent(image.samples, configuration.shift.x);
        const long long b = SteppedExtent(image.lines, configuration.shift.y);
        CheckShiftSize(state, a, b);
        state.shift_output = {static_cast<int>(a + 1), static_cast<int>(b + 1)};
    }
    Log().Message(LOGGING_LEVEL::INFO, " - Set size of output shift matrices");
    Log().Message(LOGGING_LEVEL::INFO, "   nr_samples_coreg_out:...... %d (sub factor %d)", state.shift_output.samples,
                  configuration.shift.x);
    Log().Message(LOGGING_LEVEL::INFO, "   nr_lines_coreg_out:........ %d (sub factor %d)", state.shift_output.lines,
                  configuration.shift.y);
}

void SizeEarthMatrices(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    const SUBSAMPLING& earth = configuration.earth;
    Log().Message(LOGGING_LEVEL::INFO, " - Setting size of output earth matrices");
    state.earth_output = state.simulation;
    if (configuration.area_extended) {
        const bool geocoded = configuration.geocoding.x != 1 || configuration.geocoding.y != 1;
        const IMAGE_SIZE image = Cropped(state);
        const long long p =
            geocoded ? (state.simulation.samples - 1) / earth.x + 1 : SteppedExtent(image.samples, earth.x) + 1;
        const long long q =
            geocoded ? (state.simulation.lines - 1) / earth.y + 1 : SteppedExtent(image.lines, earth.y) + 1;
        CheckEarthSize(state, p, q);
        state.earth_output = {static_cast<int>(p), static_cast<int>(q)};
    }
    Log().Message(LOGGING_LEVEL::INFO, " - Set size of output earth matrices");
    Log().Message(LOGGING_LEVEL::INFO, "   nr_samples_earth_out:...... %d (sub factor %d)", state.earth_output.samples,
                  earth.x);
    Log().Message(LOGGING_LEVEL::INFO, "   nr_lines_earth_out:........ %d (sub factor %d)", state.earth_output.lines,
                  earth.y);
}
