#include "view/value_grid.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

namespace {

constexpr float kNoMean = std::numeric_limits<float>::quiet_NaN();

/// Sums of one row of blocks.
struct BLOCK_SUMS {
    explicit BLOCK_SUMS(int columns) : count(columns), first(columns), second(columns) {}
    void Clear() {
        std::ranges::fill(count, 0);
        std::ranges::fill(first, 0.0);
        std::ranges::fill(second, 0.0);
    }
    std::vector<int> count;
    std::vector<double> first;   ///< values, or cosines
    std::vector<double> second;  ///< sines
};

void AddValues(const std::vector<double>& values, int factor, BLOCK_SUMS& sums) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i])) continue;
        const std::size_t block = i / static_cast<std::size_t>(factor);
        ++sums.count[block];
        sums.first[block] += values[i];
    }
}

/// 32-bit sines: their error of 1e-7 is far below a step of colour.
void AddPhases(const std::vector<double>& values, int factor, BLOCK_SUMS& sums) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i])) continue;
        const std::size_t block = i / static_cast<std::size_t>(factor);
        const float phase = static_cast<float>(values[i]);
        ++sums.count[block];
        sums.first[block] += std::cos(phase);
        sums.second[block] += std::sin(phase);
    }
}

void AddBits(const std::vector<double>& values, int factor, BLOCK_SUMS& sums) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i])) continue;
        const std::size_t block = i / static_cast<std::size_t>(factor);
        const auto bits = static_cast<unsigned>(std::clamp(values[i], 0.0, 255.0));
        sums.count[block] = 1;
        sums.first[block] = static_cast<double>(static_cast<unsigned>(sums.first[block]) | bits);
    }
}

void Add(AVERAGE average, const std::vector<double>& values, int factor, BLOCK_SUMS& sums) {
    if (average == AVERAGE::PHASE) return AddPhases(values, factor, sums);
    if (average == AVERAGE::BITS) return AddBits(values, factor, sums);
    AddValues(values, factor, sums);
}

float ValueOfBlock(const BLOCK_SUMS& sums, std::size_t block, AVERAGE average) {
    if (sums.count[block] == 0) return kNoMean;
    if (average != AVERAGE::PHASE) return static_cast<float>(sums.first[block] / sums.count[block]);
    const double angle = std::atan2(sums.second[block], sums.first[block]);
    return static_cast<float>(angle < 0.0 ? angle + 2.0 * std::numbers::pi : angle);
}

class AVERAGER {
  public:
    AVERAGER(const RASTER_FILE& raster, int factor, AVERAGE average, std::optional<double> invalid)
        : raster_(raster), factor_(factor), average_(average), invalid_(invalid) {
        grid_.columns = static_cast<int>((raster.Columns() + factor - 1) / factor);
        grid_.rows = static_cast<int>((raster.Rows() + factor - 1) / factor);
        grid_.values.resize(static_cast<std::size_t>(grid_.columns) * grid_.rows);
    }

    VALUE_GRID Grid() {
        // All memory before the threads: none could say that there is not enough.
        const auto count = std::min<std::size_t>(std::clamp(std::thread::hardware_concurrency(), 1U, 16U),
                                                 static_cast<std::size_t>(std::max(grid_.rows, 1)));
        std::vector<ROOM> rooms(count, ROOM(raster_.Columns(), grid_.columns));
        {
            std::vector<std::jthread> threads;
            for (ROOM& room : rooms) threads.emplace_back([this, &room] { FillRows(room); });
        }
        return std::move(grid_);
    }

  private:
    /// What a thread works in.
    struct ROOM {
        ROOM(long long columns, int blocks) : values(static_cast<std::size_t>(columns)), sums(blocks) {}
        std::vector<double> values;
        BLOCK_SUMS sums;
    };

    /// Each thread takes the next row that nobody has.
    void FillRows(ROOM& room) {
        for (int row = next_row_++; row < grid_.rows; row = next_row_++) FillRow(row, room.values, room.sums);
    }

    void FillRow(int row, std::vector<double>& values, BLOCK_SUMS& sums) {
        sums.Clear();
        const long long first = static_cast<long long>(row) * factor_;
        const long long end = std::min(first + factor_, raster_.Rows());
        for (long long line = first; line < end; ++line) {
            raster_.ReadRow(line, values);
            if (invalid_) std::ranges::replace(values, *invalid_, std::numeric_limits<double>::quiet_NaN());
            Add(average_, values, factor_, sums);
        }
        float* const to = grid_.values.data() + static_cast<std::size_t>(row) * grid_.columns;
        for (int block = 0; block < grid_.columns; ++block) to[block] = ValueOfBlock(sums, block, average_);
    }

    const RASTER_FILE& raster_;
    int factor_;
    AVERAGE average_;
    std::optional<double> invalid_;
    VALUE_GRID grid_;
    std::atomic<int> next_row_{0};
};

}  // namespace

VALUE_GRID AverageDown(const RASTER_FILE& raster, int factor, AVERAGE average, std::optional<double> invalid) {
    return AVERAGER(raster, factor, average, invalid).Grid();
}

std::optional<VALUE_RANGE> RangeOf(const VALUE_GRID& grid) {
    std::optional<VALUE_RANGE> range;
    for (const float value : grid.values) {
        if (std::isnan(value)) continue;
        if (!range) range = {value, value};
        range->low = std::min<double>(range->low, value);
        range->high = std::max<double>(range->high, value);
    }
    return range;
}
