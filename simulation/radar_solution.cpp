#include "simulation/radar_solution.h"

#include <algorithm>
#include <utility>

#include "geometry/constants.h"
#include "simulation/aperture_time.h"
#include "simulation/radar_conversion.h"

namespace {

/// Cells whose first corner lies farther outside the image, in samples or lines, are dropped.
constexpr double kExtentMargin = 1000.0;

PIXEL_SCALE ScaleOf(const ACQUISITION_SCENE& a) {
    return {a.near_range_time_s, a.first_azimuth_time_s, a.rsf_hz, a.prf_hz};
}

/// Calls visit(first, count) for every run of elements first .. last that are wanted and not done.
template <class VISIT>
void ForEachRun(const std::vector<unsigned char>& wanted, const std::vector<unsigned char>& done, int first, int last,
                VISIT visit) {
    for (int i = first; i <= last; ++i) {
        if (wanted[i] == 0 || done[i] != 0) continue;
        int end = i + 1;
        while (end <= last && wanted[end] != 0 && done[end] == 0) ++end;
        visit(i, end - i);
        i = end;
    }
}

void MarkDone(std::vector<unsigned char>& done, int first, int count) {
    std::fill_n(done.begin() + first, count, static_cast<unsigned char>(1));
}

ROW_POINTS PointsOf(const RADAR_ROW& samples) {
    return {samples[QUANTITY::EARTH_X].data(), samples[QUANTITY::EARTH_Y].data(), samples[QUANTITY::EARTH_Z].data()};
}

}  // namespace

RADAR_SOLUTION::RADAR_SOLUTION(PREPARED_SCENE& prepared, int block)
    : scene_(prepared.Scene()),
      prepared_(prepared),
      area_(scene_.area),
      dem_row_(scene_.dem, scene_.simulated, prepared.VectorLevel()),
      filler_(prepared, block),
      bistatic_(prepared),
      rows_{RADAR_ROW(scene_.simulated), RADAR_ROW(scene_.simulated)},
      upper_(&rows_[0]),
      lower_(&rows_[1]),
      cells_(rows_[0].size, 0) {
    if (scene_.bistatic) bistatic_.Prepare(ReferenceAperture(scene_));
}

RADAR_SOLUTION::~RADAR_SOLUTION() {
    bistatic_.LogStatistics();
}

void RADAR_SOLUTION::SimulateRow(int row) {
    LookAtCells(row);
    std::swap(upper_, lower_);
    if (upper_->row != row) Begin(*upper_, row);
    Begin(*lower_, row + 1);
    MarkTouchedCells();
    std::copy_n(cells_.begin() + first_, last_ - first_, upper_->wanted.begin() + first_);
    upper_->wanted[last_] = 0;
    SolveMaster(*upper_);
    DropFarCells();
    SolveCorners(*upper_);
    SolveCorners(*lower_);
    filler_.FillRow(*upper_, *lower_, cells_);
}

void RADAR_SOLUTION::Begin(RADAR_ROW& samples, int row) const {
    samples.row = row;
    samples.positions_filled = false;
    area_.Mark(row, samples.first_column, samples.in_area);
    std::fill(samples.master_solved.begin(), samples.master_solved.end(), static_cast<unsigned char>(0));
    std::fill(samples.solved.begin(), samples.solved.end(), static_cast<unsigned char>(0));
}

void RADAR_SOLUTION::LookAtCells(int row) {
    first_ = 0;
    last_ = static_cast<int>(cells_.size()) - 1;
    if (scene_.cells.empty()) return;
    const CELL_RANGE& cells = scene_.cells[row - scene_.simulated.first_row];
    std::fill(cells_.begin(), cells_.end(), static_cast<unsigned char>(0));
    first_ = cells.first_column - scene_.simulated.first_column;
    last_ = cells.end_column - scene_.simulated.first_column;
}

void RADAR_SOLUTION::MarkTouchedCells() {
    for (int i = first_; i < last_; ++i) {
        cells_[i] = upper_->in_area[i] | upper_->in_area[i + 1] | lower_->in_area[i] | lower_->in_area[i + 1];
    }
}

/// The first corner alone decides; the filling clips to the grid anyway.
void RADAR_SOLUTION::DropFarCells() {
    for (int i = first_; i < last_; ++i) {
        if (cells_[i] != 0 && !IsWithinExtent(i)) cells_[i] = 0;
    }
    const auto corners = [this](std::vector<unsigned char>& wanted) {
        wanted[first_] = cells_[first_];
        for (int i = first_; i < last_; ++i) wanted[i + 1] = cells_[i] | cells_[i + 1];
    };
    corners(upper_->wanted);
    corners(lower_->wanted);
}

bool RADAR_SOLUTION::IsWithinExtent(int i) const {
    const ACQUISITION_SCENE& master = scene_.master;
    const double range_time_s = 2.0 * upper_->master_range_m[i] / kSpeedOfLight;
    const double time_s = upper_->master_time_s[i];
    const double range_margin_s = kExtentMargin * master.range_sampling_interval_s;
    const double azimuth_margin_s = kExtentMargin * master.azimuth_sampling_interval_s;
    return master.near_range_time_s - range_margin_s <= range_time_s &&
           range_time_s <= master.far_range_time_s + range_margin_s &&
           master.first_azimuth_time_s - azimuth_margin_s <= time_s &&
           time_s <= master.last_azimuth_time_s + azimuth_margin_s;
}

void RADAR_SOLUTION::SolveTowards(const std::optional<ROW_ORBIT>& orbit, const RADAR_ROW& samples, int first, int count,
                                  std::vector<double>& time_s, std::vector<double>& range_m) {
    const int one_by_one = SolveZeroDopplerRow(prepared_.VectorLevel(), orbit.value(), PointsOf(samples), first, count,
                                               time_s.data(), range_m.data());
    counts_.one_by_one += one_by_one;
    counts_.in_rows += count - one_by_one;
}

void RADAR_SOLUTION::SolveMaster(RADAR_ROW& samples) {
    ForEachRun(samples.wanted, samples.master_solved, first_, last_, [&](int first, int count) {
        dem_row_.FillPositions(samples);
        SolveTowards(prepared_.MasterOrbit(), samples, first, count, samples.master_time_s, samples.master_range_m);
        MarkDone(samples.master_solved, first, count);
    });
}

void RADAR_SOLUTION::SolveCorners(RADAR_ROW& samples) {
    SolveMaster(samples);
    const PIXEL_SCALE master = ScaleOf(scene_.master);
    const PIXEL_SCALE slave = ScaleOf(scene_.slave);
    const auto convert_to_pixels = VELMORA_AT_LEVEL(prepared_.VectorLevel(), ConvertToPixels);
    const auto convert_to_phase = VELMORA_AT_LEVEL(prepared_.VectorLevel(), ConvertToPhase);
    const double master_wavelength_m = kSpeedOfLight / scene_.master.carrier_frequency_hz;
    const double slave_wavelength_m = kSpeedOfLight / scene_.slave.carrier_frequency_hz;
    ForEachRun(samples.wanted, samples.solved, first_, last_, [&](int first, int count) {
        SolveTowards(prepared_.SlaveOrbit(), samples, first, count, samples.slave_time_s, samples.slave_range_m);
        if (scene_.bistatic) SolveTravelTimes(samples, first, count);
        convert_to_pixels(master, &samples.master_range_m[first], &samples.master_time_s[first],
                          &samples[QUANTITY::RANGE_PIXEL][first], &samples[QUANTITY::AZIMUTH_PIXEL][first], count);
        convert_to_phase(master_wavelength_m, slave_wavelength_m, &samples.master_range_m[first],
                         &samples.slave_range_m[first], &samples[QUANTITY::PHASE_RAD][first], count);
        if (scene_.shifts.Wanted()) {
            convert_to_pixels(slave, &samples.slave_range_m[first], &samples.slave_time_s[first],
                              &samples[QUANTITY::SLAVE_RANGE_PIXEL][first],
                              &samples[QUANTITY::SLAVE_AZIMUTH_PIXEL][first], count);
        }
        MarkDone(samples.solved, first, count);
    });
}

/// Replaces the slave's solutions by what a monostatic slave would have measured.
void RADAR_SOLUTION::SolveTravelTimes(RADAR_ROW& samples, int first, int count) {
    const BISTATIC_SOLUTION::POINTS points = {
        PointsOf(samples),           samples.master_time_s.data(), samples.master_range_m.data(),
        samples.slave_time_s.data(), samples.slave_range_m.data(), samples.row,
        samples.first_column};
    const int one_by_one = bistatic_.SolveRow(points, first, count);
    counts_.one_by_one += one_by_one;
    counts_.in_rows += count - one_by_one;
}
