#include "import/sentinel1/image_grid.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "companions/companion_error.h"
#include "time/time_axis.h"

namespace {

constexpr double kLongestImage_s = 3600.0;
constexpr double kMostGridLines = 1e7;

IMAGE_GRID GridFrom(const S1_ANNOTATION& image, const UNIVERSAL_TIME& first_line, long long lines) {
    IMAGE_GRID grid;
    grid.first_line = first_line;
    grid.lines = lines;
    grid.samples = image.samples;
    const double duration_s = static_cast<double>(lines - 1) * image.line_interval_s;
    if (duration_s > kLongestImage_s)
        throw COMPANION_ERROR(image.orbit.file + ": the image lasts " + std::to_string(duration_s) +
                              " s by azimuthTimeInterval and its lines: expected at most 3600");
    grid.last_line = TIME_AXIS<UNIVERSAL_TIME>::Plus(first_line, duration_s);
    return grid;
}

/// Where the burst's first line lies in the image's lines.
double LineOf(const S1_ANNOTATION& image, const S1_BURST& burst) {
    return (burst.first_line - image.bursts.front().first_line).Seconds() / image.line_interval_s;
}

IMAGE_GRID BurstGrid(const S1_ANNOTATION& image, int number) {
    const int count = static_cast<int>(image.bursts.size());
    if (number < 1 || number > count)
        throw COMPANION_ERROR(image.orbit.file + ": --burst " + std::to_string(number) + ": the image has " +
                              std::to_string(count) + " bursts, counted from 1");
    const S1_BURST& burst = image.bursts[static_cast<std::size_t>(number - 1)];
    IMAGE_GRID grid = GridFrom(image, burst.first_line, image.lines_per_burst);
    grid.valid_lines = burst.valid_lines;
    grid.valid_samples = burst.valid_samples;
    return grid;
}

/// Every line between the first and the last valid one is valid in some burst: bursts overlap.
IMAGE_GRID DeburstGrid(const S1_ANNOTATION& image) {
    const double last_burst_line = LineOf(image, image.bursts.back());
    if (last_burst_line > kMostGridLines || last_burst_line * image.line_interval_s > kLongestImage_s)
        throw COMPANION_ERROR(image.orbit.file + ": the bursts reach over more than an hour or 10 million lines");
    IMAGE_GRID grid =
        GridFrom(image, image.bursts.front().first_line, std::llround(last_burst_line) + image.lines_per_burst);
    grid.valid_lines = {image.bursts.front().valid_lines.first,
                        std::llround(last_burst_line) + image.bursts.back().valid_lines.last};
    grid.valid_samples = image.bursts.front().valid_samples;
    for (const S1_BURST& burst : image.bursts) {
        const double line = LineOf(image, burst);
        grid.largest_burst_offset = std::max(grid.largest_burst_offset, std::abs(line - std::round(line)));
        grid.valid_samples.first = std::min(grid.valid_samples.first, burst.valid_samples.first);
        grid.valid_samples.last = std::max(grid.valid_samples.last, burst.valid_samples.last);
    }
    return grid;
}

IMAGE_GRID StripmapGrid(const S1_ANNOTATION& image) {
    IMAGE_GRID grid = GridFrom(image, image.first_line, image.lines);
    grid.valid_lines = {0, image.lines - 1};
    grid.valid_samples = {0, image.samples - 1};
    return grid;
}

}  // namespace

IMAGE_GRID ImageGridOf(const S1_ANNOTATION& image, const std::optional<int>& burst) {
    if (burst) return BurstGrid(image, *burst);
    return image.bursts.empty() ? StripmapGrid(image) : DeburstGrid(image);
}
