#include "simulation/terrain_profiles.h"

#include <algorithm>
#include <limits>

namespace {

/// Samples of a row that are corners of cells, of those above or those below it.
CELL_RANGE SamplesOfRow(const std::vector<CELL_RANGE>& cells, int row) {
    CELL_RANGE samples{std::numeric_limits<int>::max(), 0};
    for (int i = std::max(row - 1, 0); i <= std::min(row, static_cast<int>(cells.size()) - 1); ++i) {
        if (cells[i].first_column >= cells[i].end_column) continue;
        samples.first_column = std::min(samples.first_column, cells[i].first_column);
        samples.end_column = std::max(samples.end_column, cells[i].end_column + 1);
    }
    return samples;
}

std::size_t SampleCount(const std::vector<CELL_RANGE>& cells) {
    std::size_t count = 0;
    for (int row = 0; row <= static_cast<int>(cells.size()); ++row) {
        const CELL_RANGE samples = SamplesOfRow(cells, row);
        if (samples.first_column < samples.end_column)
            count += static_cast<std::size_t>(samples.end_column - samples.first_column);
    }
    return count;
}

}  // namespace

TERRAIN_PROFILES::TERRAIN_PROFILES(const PROFILE_SIGHT& sight, const SCENE& cells, const DEM_RANGE& all)
    : sight_(sight), first_row_(cells.simulated.first_row) {
    RADAR_ROW samples(all);
    const auto cell_rows = static_cast<int>(cells.cells.size());
    samples_.reserve(SampleCount(cells.cells));
    for (int i = 0; i <= cell_rows && cell_rows > 0; ++i) {
        const CELL_RANGE of_row = SamplesOfRow(cells.cells, i);
        ROW row{of_row.first_column, of_row.end_column, samples_.size()};
        if (row.first < row.end) sight.See(first_row_ + i, row.first, row.end, samples, samples_);
        rows_.push_back(row);
    }
    SetBounds();
}

void TERRAIN_PROFILES::SetBounds() {
    int first_column = std::numeric_limits<int>::max();
    int end_column = 0;
    for (const ROW& row : rows_) {
        if (row.first >= row.end) continue;
        first_column = std::min(first_column, row.first);
        end_column = std::max(end_column, row.end);
    }
    const int end_row = first_row_ + static_cast<int>(rows_.size());
    const bool by_columns = sight_.crosses_columns;
    first_along_ = by_columns ? first_column : first_row_;
    end_along_ = by_columns ? end_column : end_row;
    first_across_ = by_columns ? first_row_ : first_column;
    end_across_ = by_columns ? end_row : end_column;
    hint_ = first_across_;
}

const SEEN* TERRAIN_PROFILES::At(int along, int across) const {
    const int row = sight_.crosses_columns ? across : along;
    const int column = sight_.crosses_columns ? along : across;
    if (row < first_row_ || row >= first_row_ + static_cast<int>(rows_.size())) return nullptr;
    const ROW& run = rows_[row - first_row_];
    if (column < run.first || column >= run.end) return nullptr;
    return &samples_[run.place + static_cast<std::size_t>(column - run.first)];
}

/// The first sample of terrain from a place on, which is moved to it. Nothing where the samples end.
const SEEN* TERRAIN_PROFILES::Nearest(int along, int& across, int step) const {
    for (;; across += step) {
        const SEEN* const seen = At(along, across);
        if (seen == nullptr || seen->is_terrain) return seen;
    }
}

/// Goes on from where the neighbour was.
std::optional<SEEN> TERRAIN_PROFILES::Crossing(int along, double line) {
    const double rises = sight_.rises_across ? 1.0 : -1.0;
    const auto is_before = [&](const SEEN* seen) { return rises * (seen->line - line) <= 0.0; };
    int place = hint_;
    const SEEN* here = Nearest(along, place, 1);
    for (int across = first_across_; here == nullptr && across < end_across_; ++across) {
        place = across;
        here = Nearest(along, place, 1);
    }
    if (here == nullptr) return std::nullopt;
    while (!is_before(here)) {
        int before = place - 1;
        here = Nearest(along, before, -1);
        if (here == nullptr) {
            hint_ = place;
            return std::nullopt;
        }
        place = before;
    }
    int after = place + 1;
    const SEEN* next = Nearest(along, after, 1);
    while (next != nullptr && is_before(next)) {
        here = next;
        place = after++;
        next = Nearest(along, after, 1);
    }
    hint_ = place;
    if (next == nullptr || after != place + 1) return std::nullopt;
    const double part = (line - here->line) / (next->line - here->line);
    const auto mix = [part](double a, double b) { return a + part * (b - a); };
    return SEEN{line,
                mix(here->pixel, next->pixel),
                mix(here->look, next->look),
                mix(here->slave_pixel, next->slave_pixel),
                mix(here->slave_look, next->slave_look),
                true};
}

const TERRAIN_PROFILE& TERRAIN_PROFILES::Trace(double line) {
    profile_.clear();
    const int count = end_along_ - first_along_;
    for (int i = 0; i < count; ++i)
        profile_.push_back(Crossing(sight_.is_reversed ? end_along_ - 1 - i : first_along_ + i, line));
    return profile_;
}
