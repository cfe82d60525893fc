#include "simulation/layover_shadow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"

namespace {

constexpr double kShadowMarginLines = 2000.0;  ///< samples farther from the image are not looked at

/// The scene with as much more of the DEM as a shadow that falls into the image may begin in.
SCENE Widened(const SCENE& scene, double relief_m) {
    SCENE wide = scene;
    const DEM_GRID& dem = scene.dem;
    const int column = std::clamp(dem.columns / 2, 0, std::max(dem.columns - 2, 0));
    const int row = std::clamp(dem.rows / 2, 0, std::max(dem.rows - 2, 0));
    const auto point = [&](int c, int r) {
        VECTOR_3D<double> point_m;
        Get_Earth_Position_From_DEM(dem, c, r, point_m.x, point_m.y, point_m.z);
        return point_m;
    };
    // Twice the relief: the shadow at an incidence of 63 degrees. Heights differ, too: cells count as if level.
    const auto cells = [&](const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
        return static_cast<int>(std::min(2.0 * relief_m / std::max(Length(b - a), 1.0), 1e6)) + 1;
    };
    const int wider = cells(point(column, row), point(column + 1, row));
    const int higher = cells(point(column, row), point(column, row + 1));
    DEM_RANGE& range = wide.simulated;
    range.first_column = std::max(range.first_column - wider, 0);
    range.last_column = std::min(range.last_column + wider, dem.columns - 1);
    range.first_row = std::max(range.first_row - higher, 0);
    range.last_row = std::min(range.last_row + higher, dem.rows - 1);
    return wide;
}

double LineOf(const ACQUISITION_SCENE& acquisition, double time_s) {
    return (time_s - acquisition.first_azimuth_time_s) * acquisition.prf_hz;
}

double PixelOf(const ACQUISITION_SCENE& acquisition, double range_m) {
    return (2.0 * range_m / kSpeedOfLight - acquisition.near_range_time_s) * acquisition.rsf_hz;
}

/// A sample or a point of a profile: where the master and the slave see it.
struct SEEN {
    double line = 0.0;
    double pixel = 0.0;
    double look = 0.0;
    double slave_pixel = 0.0;
    double slave_look = 0.0;
};

/// Whole numbers p with low <= p < high are first .. end - 1, between 0 and the count.
struct PIXELS {
    int first;
    int end;
};

PIXELS Between(double a, double b, int count) {
    const auto place = [count](double value) {
        return static_cast<int>(std::clamp(std::ceil(value), 0.0, static_cast<double>(count)));
    };
    return {place(std::min(a, b)), place(std::max(a, b))};
}

/// How many of something reach each pixel of a line.
class COUNTS {
  public:
    void Clear(int count) { counts_.assign(static_cast<std::size_t>(count), 0); }
    void Add(double from, double to, std::int16_t step = 1) {
        const PIXELS pixels = Between(from, to, static_cast<int>(counts_.size()));
        for (int p = pixels.first; p < pixels.end; ++p) counts_[p] = static_cast<std::int16_t>(counts_[p] + step);
    }
    [[nodiscard]] int At(int pixel) const { return counts_[pixel]; }

  private:
    std::vector<std::int16_t> counts_;
};

/// What reaches the pixels of one line, towards one satellite. The profile runs outwards: sheets that are turned over
/// count backwards, so that of any run of it as many more run forwards as backwards as its ends tell.
struct SHEETS {
    COUNTS forward;  ///< less those that are turned over
    COUNTS turned;
    COUNTS away;    ///< facing away
    COUNTS hidden;  ///< by the master's pixels, for either satellite

    void Clear(int count) {
        for (COUNTS* counts : {&forward, &turned, &away}) counts->Clear(count);
    }
    [[nodiscard]] int All(int pixel) const { return forward.At(pixel) + 2 * turned.At(pixel); }
    [[nodiscard]] int Facing(int pixel) const { return All(pixel) - away.At(pixel); }
};

}  // namespace

/// The samples that one piece needs, and the profiles of its lines.
class TERRAIN_PROFILES {
  public:
    TERRAIN_PROFILES(const LAYOVER_SHADOW& whole, int first_line, int end_line);

    /// The flags of one line.
    void Find(int line, unsigned char* flags);

  private:
    struct ROW {
        int first = 0;  ///< column
        int end = 0;
        std::size_t place = 0;
    };

    void SolveRow(int row, int first, int end, RADAR_ROW& samples);
    void Append(const RADAR_ROW& samples, int first, int end);
    [[nodiscard]] const SEEN* At(int along, int across) const;
    [[nodiscard]] std::optional<SEEN> Crossing(int along, double line);
    void Trace(double line);
    void CountSheets();
    void CountRun(std::size_t first, std::size_t last);
    void CountSegment(const SEEN& near, const SEEN& far);
    static void CountHidden(double near_look, double far_look, double& horizon, double near_pixel, double far_pixel,
                            COUNTS& hidden);
    void FindSlavePixels();
    void MarkSlaveLayover(unsigned char* flags);
    void Shrink(int& first, int& end, const RADAR_ROW& samples) const;

    const LAYOVER_SHADOW& whole_;
    const SCENE scene_;
    int first_row_;
    std::vector<ROW> rows_;
    std::vector<SEEN> samples_;
    int first_along_ = 0;
    int end_along_ = 0;
    int first_across_ = 0;
    int end_across_ = 0;
    int hint_ = 0;
    int rises_ = 1;                             ///< +1: lines grow across
    std::vector<std::optional<SEEN>> profile_;  ///< outwards; empty where the line does not cross
    SHEETS master_;
    SHEETS slave_;
    double first_slave_pixel_ = 0.0;
    int slave_pixels_ = 0;
    bool slave_turns_ = false;         ///< some sheet of the line is turned over, as the slave sees it
    std::vector<int> layover_before_;  ///< pixels of the slave with layover before each, and after the last
};

namespace {

SCENE Limited(const SCENE& scene, const DEM_LINES& lines, int first_line, int end_line) {
    SCENE limited = scene;
    lines.LimitTo(first_line, end_line, limited);
    return limited;
}

}  // namespace

TERRAIN_PROFILES::TERRAIN_PROFILES(const LAYOVER_SHADOW& whole, int first_line, int end_line)
    : whole_(whole),
      scene_(Limited(whole.scene_, whole.dem_lines_, first_line, end_line)),
      first_row_(scene_.simulated.first_row) {
    RADAR_ROW samples(whole.scene_.simulated);
    const auto cell_rows = static_cast<int>(scene_.cells.size());
    for (int i = 0; i <= cell_rows && cell_rows > 0; ++i) {
        CELL_RANGE samples_of_row{scene_.dem.columns, 0};  // corners of the cells above and below
        for (int j = std::max(i - 1, 0); j <= std::min(i, cell_rows - 1); ++j) {
            const CELL_RANGE& cells = scene_.cells[j];
            if (cells.first_column >= cells.end_column) continue;
            samples_of_row.first_column = std::min(samples_of_row.first_column, cells.first_column);
            samples_of_row.end_column = std::max(samples_of_row.end_column, cells.end_column + 1);
        }
        SolveRow(first_row_ + i, samples_of_row.first_column, samples_of_row.end_column, samples);
    }
    int first_column = scene_.dem.columns;
    int end_column = 0;
    for (const ROW& row : rows_) {
        if (row.first >= row.end) continue;
        first_column = std::min(first_column, row.first);
        end_column = std::max(end_column, row.end);
    }
    const int end_row = first_row_ + static_cast<int>(rows_.size());
    const bool by_columns = whole.crosses_columns_;
    first_along_ = by_columns ? first_column : first_row_;
    end_along_ = by_columns ? end_column : end_row;
    first_across_ = by_columns ? first_row_ : first_column;
    end_across_ = by_columns ? end_row : end_column;
    hint_ = first_across_;
    rises_ = whole.rises_across_ ? 1 : -1;
}

void TERRAIN_PROFILES::SolveRow(int row, int first, int end, RADAR_ROW& samples) {
    if (first >= end) {
        rows_.push_back({});
        return;
    }
    samples.row = row;
    samples.positions_filled = false;
    whole_.dem_row_.FillPositions(samples);
    if (whole_.near_end_of_data_) Shrink(first, end, samples);
    const auto solve = [&](const std::optional<ROW_ORBIT>& orbit, std::vector<double>& time_s,
                           std::vector<double>& range_m) {
        const ROW_POINTS points = {samples[QUANTITY::EARTH_X].data(), samples[QUANTITY::EARTH_Y].data(),
                                   samples[QUANTITY::EARTH_Z].data()};
        static_cast<void>(SolveZeroDopplerRow(whole_.prepared_.VectorLevel(), orbit.value(), points,
                                              first - samples.first_column, end - first, time_s.data(),
                                              range_m.data()));
    };
    solve(whole_.prepared_.MasterOrbit(), samples.master_time_s, samples.master_range_m);
    solve(whole_.prepared_.SlaveOrbit(), samples.slave_time_s, samples.slave_range_m);
    rows_.push_back({first, end, samples_.size()});
    Append(samples, first, end);
}

/// Some interpolations end the process outside the orbit's data.
void TERRAIN_PROFILES::Shrink(int& first, int& end, const RADAR_ROW& samples) const {
    const auto is_inside = [&](int column) {
        const int i = column - samples.first_column;
        const VECTOR_3D<double> point_m = {samples[QUANTITY::EARTH_X][i], samples[QUANTITY::EARTH_Y][i],
                                           samples[QUANTITY::EARTH_Z][i]};
        return ZeroDopplerInsideData(scene_.master.orbit, point_m, scene_.master.first_azimuth_time_s) &&
               ZeroDopplerInsideData(scene_.slave.orbit, point_m, scene_.slave.first_azimuth_time_s);
    };
    while (first < end && !is_inside(first)) ++first;
    while (first < end && !is_inside(end - 1)) --end;
}

/// The look: minus the cosine of the angle at the satellite between the Earth's centre and the sample (law of cosines).
void TERRAIN_PROFILES::Append(const RADAR_ROW& samples, int first, int end) {
    const auto look = [](double radius_m, double range_m, double square_m2) {
        return (square_m2 - radius_m * radius_m - range_m * range_m) / (2.0 * radius_m * range_m);
    };
    for (int i = first - samples.first_column; i < end - samples.first_column; ++i) {
        const double x = samples[QUANTITY::EARTH_X][i];
        const double y = samples[QUANTITY::EARTH_Y][i];
        const double z = samples[QUANTITY::EARTH_Z][i];
        const double square_m2 = x * x + y * y + z * z;
        SEEN seen;
        seen.line = LineOf(scene_.master, samples.master_time_s[i]);
        seen.pixel = PixelOf(scene_.master, samples.master_range_m[i]);
        seen.look = look(whole_.master_radii_.At(seen.line), samples.master_range_m[i], square_m2);
        seen.slave_pixel = PixelOf(scene_.slave, samples.slave_range_m[i]);
        seen.slave_look = look(whole_.slave_radii_.At(LineOf(scene_.slave, samples.slave_time_s[i])),
                               samples.slave_range_m[i], square_m2);
        samples_.push_back(seen);
    }
}

const SEEN* TERRAIN_PROFILES::At(int along, int across) const {
    const int row = whole_.crosses_columns_ ? across : along;
    const int column = whole_.crosses_columns_ ? along : across;
    if (row < first_row_ || row >= first_row_ + static_cast<int>(rows_.size())) return nullptr;
    const ROW& run = rows_[row - first_row_];
    if (column < run.first || column >= run.end) return nullptr;
    return &samples_[run.place + static_cast<std::size_t>(column - run.first)];
}

/// Goes on from where the neighbour was.
std::optional<SEEN> TERRAIN_PROFILES::Crossing(int along, double line) {
    const auto is_before = [&](const SEEN* seen) { return rises_ * (seen->line - line) <= 0.0; };
    const SEEN* here = At(along, hint_);
    for (int across = first_across_; here == nullptr && across < end_across_; ++across) {
        here = At(along, across);
        if (here != nullptr) hint_ = across;
    }
    if (here == nullptr) return std::nullopt;
    while (!is_before(here)) {
        const SEEN* const previous = At(along, hint_ - 1);
        if (previous == nullptr) return std::nullopt;
        here = previous;
        --hint_;
    }
    const SEEN* next = At(along, hint_ + 1);
    while (next != nullptr && is_before(next)) {
        here = next;
        ++hint_;
        next = At(along, hint_ + 1);
    }
    if (next == nullptr) return std::nullopt;
    const double part = (line - here->line) / (next->line - here->line);
    const auto mix = [part](double a, double b) { return a + part * (b - a); };
    return SEEN{line, mix(here->pixel, next->pixel), mix(here->look, next->look),
                mix(here->slave_pixel, next->slave_pixel), mix(here->slave_look, next->slave_look)};
}

void TERRAIN_PROFILES::Trace(double line) {
    profile_.clear();
    const int count = end_along_ - first_along_;
    for (int i = 0; i < count; ++i)
        profile_.push_back(Crossing(whole_.is_reversed_ ? end_along_ - 1 - i : first_along_ + i, line));
}

void TERRAIN_PROFILES::CountHidden(double near_look, double far_look, double& horizon, double near_pixel,
                                   double far_pixel, COUNTS& hidden) {
    if (far_look <= horizon) {
        hidden.Add(near_pixel, far_pixel);
        return;
    }
    if (near_look < horizon) {
        const double part = (horizon - near_look) / (far_look - near_look);
        hidden.Add(near_pixel, near_pixel + part * (far_pixel - near_pixel));
    }
    horizon = far_look;
}

void TERRAIN_PROFILES::CountSegment(const SEEN& near, const SEEN& far) {
    if (far.pixel < near.pixel) master_.turned.Add(near.pixel, far.pixel);
    if (far.look <= near.look) master_.away.Add(near.pixel, far.pixel);
    const double to_slave = first_slave_pixel_;
    if (far.slave_pixel < near.slave_pixel) {
        slave_turns_ = true;
        slave_.turned.Add(near.slave_pixel - to_slave, far.slave_pixel - to_slave);
    }
    if (far.slave_look <= near.slave_look) slave_.away.Add(near.slave_pixel - to_slave, far.slave_pixel - to_slave);
}

void TERRAIN_PROFILES::CountRun(std::size_t first, std::size_t last) {
    const auto add = [](COUNTS& counts, double from, double to) {
        counts.Add(from, to, static_cast<std::int16_t>(to >= from ? 1 : -1));
    };
    add(master_.forward, profile_[first]->pixel, profile_[last]->pixel);
    add(slave_.forward, profile_[first]->slave_pixel - first_slave_pixel_,
        profile_[last]->slave_pixel - first_slave_pixel_);
    for (std::size_t k = first; k < last; ++k) CountSegment(*profile_[k], *profile_[k + 1]);
}

/// Those that the segments over the image reach.
void TERRAIN_PROFILES::FindSlavePixels() {
    double lowest = 1e300;
    double highest = -1e300;
    for (std::size_t k = 0; k + 1 < profile_.size(); ++k) {
        if (!profile_[k] || !profile_[k + 1]) continue;
        const auto [low, high] = std::minmax(profile_[k]->pixel, profile_[k + 1]->pixel);
        if (high < 0.0 || low > whole_.samples_) continue;
        lowest = std::min({lowest, profile_[k]->slave_pixel, profile_[k + 1]->slave_pixel});
        highest = std::max({highest, profile_[k]->slave_pixel, profile_[k + 1]->slave_pixel});
    }
    const double most = 4.0 * whole_.samples_ + 1e5;  // voids reach far
    first_slave_pixel_ = lowest <= highest ? std::floor(lowest) : 0.0;
    slave_pixels_ = static_cast<int>(std::clamp(highest - first_slave_pixel_, 0.0, most)) + 2;
}

void TERRAIN_PROFILES::CountSheets() {
    FindSlavePixels();
    slave_turns_ = false;
    master_.Clear(whole_.samples_);
    slave_.Clear(slave_pixels_);
    for (SHEETS* sheets : {&master_, &slave_}) sheets->hidden.Clear(whole_.samples_);
    double horizon = -1e300;
    double slave_horizon = -1e300;
    std::size_t run = 0;
    for (std::size_t k = 0; k < profile_.size(); ++k) {
        if (!profile_[k]) continue;
        const SEEN& here = *profile_[k];
        if (k == 0 || !profile_[k - 1]) {
            run = k;
            horizon = std::max(horizon, here.look);
            slave_horizon = std::max(slave_horizon, here.slave_look);
        } else {
            const SEEN& near = *profile_[k - 1];
            CountHidden(near.look, here.look, horizon, near.pixel, here.pixel, master_.hidden);
            CountHidden(near.slave_look, here.slave_look, slave_horizon, near.pixel, here.pixel, slave_.hidden);
        }
        if (k + 1 == profile_.size() || !profile_[k + 1]) CountRun(run, k);
    }
}

/// Of every sheet that reaches a pixel, the pixel of the slave next to it.
void TERRAIN_PROFILES::MarkSlaveLayover(unsigned char* flags) {
    if (!slave_turns_) return;
    layover_before_.assign(1, 0);
    for (int p = 0; p < slave_pixels_; ++p)
        layover_before_.push_back(layover_before_.back() + (slave_.Facing(p) > 1 ? 1 : 0));
    const auto place_of = [&](double slave_pixel) {
        return static_cast<int>(
            std::clamp(std::floor(slave_pixel - first_slave_pixel_ + 0.5), 0.0, slave_pixels_ - 1.0));
    };
    for (std::size_t k = 0; k + 1 < profile_.size(); ++k) {
        if (!profile_[k] || !profile_[k + 1]) continue;
        const SEEN& near = *profile_[k];
        const SEEN& far = *profile_[k + 1];
        const auto [low, high] = std::minmax({place_of(near.slave_pixel), place_of(far.slave_pixel)});
        if (layover_before_[low] == layover_before_[high + 1]) continue;
        const PIXELS pixels = Between(near.pixel, far.pixel, whole_.samples_);
        for (int p = pixels.first; p < pixels.end; ++p) {
            const double part = (p - near.pixel) / (far.pixel - near.pixel);
            const int place = place_of(near.slave_pixel + part * (far.slave_pixel - near.slave_pixel));
            if (layover_before_[place] != layover_before_[place + 1]) flags[p] |= kSlaveLayover;
        }
    }
}

void TERRAIN_PROFILES::Find(int line, unsigned char* flags) {
    Trace(line);
    CountSheets();
    for (int p = 0; p < whole_.samples_; ++p) {
        const int all = master_.All(p);
        unsigned flag = 0;
        if (all < 1) flag = kNoTerrain;
        if (master_.Facing(p) > 1) flag |= kMasterLayover;
        if (all > 0 && master_.hidden.At(p) >= all) flag |= kMasterShadow;
        if (all > 0 && slave_.hidden.At(p) >= all) flag |= kSlaveShadow;
        flags[p] = static_cast<unsigned char>(flag);
    }
    MarkSlaveLayover(flags);
}

double LAYOVER_SHADOW::RADII::At(double line) const {
    const double place = std::clamp(line - first_line, 0.0, static_cast<double>(radius_m.size()) - 2.0);
    const auto i = static_cast<std::size_t>(place);
    return radius_m[i] + (place - static_cast<double>(i)) * (radius_m[i + 1] - radius_m[i]);
}

LAYOVER_SHADOW::LAYOVER_SHADOW(const SCENE& scene, int samples, int lines, double relief_m)
    : scene_(Widened(scene, relief_m)),
      samples_(samples),
      lines_(lines),
      prepared_(scene_),
      dem_lines_(scene_),
      dem_row_(scene_.dem, scene_.simulated, prepared_.VectorLevel()),
      master_radii_(RadiiOf(scene_.master)),
      slave_radii_(RadiiOf(scene_.slave)) {
    Orient();
    const DEM_RANGE& range = scene_.simulated;
    for (const int row : {range.first_row, range.last_row}) {
        for (const int column : {range.first_column, range.last_column}) {
            VECTOR_3D<double> point_m;
            Get_Earth_Position_From_DEM(scene_.dem, column, row, point_m.x, point_m.y, point_m.z);
            for (const ACQUISITION_SCENE* acquisition : {&scene_.master, &scene_.slave})
                near_end_of_data_ |=
                    !ZeroDopplerInsideData(acquisition->orbit, point_m, acquisition->first_azimuth_time_s);
        }
    }
}

/// As far beyond the image as the orbit's data go.
LAYOVER_SHADOW::RADII LAYOVER_SHADOW::RadiiOf(const ACQUISITION_SCENE& acquisition) const {
    const TIME_WINDOW data = DataWindow(acquisition.orbit);
    const auto margin = static_cast<int>(kShadowMarginLines);
    RADII radii;
    radii.first_line = -margin;
    for (int line = -margin; line <= lines_ + margin; ++line) {
        const double time_s =
            std::clamp(acquisition.first_azimuth_time_s + line / acquisition.prf_hz, data.first_s, data.last_s);
        radii.radius_m.push_back(Length(acquisition.orbit.orbit->Position(time_s + acquisition.orbit.offset_s)));
    }
    return radii;
}

/// Which way line and range grow on the DEM, about the middle of the image's place in it.
void LAYOVER_SHADOW::Orient() {
    const DEM_RANGE& range = scene_.simulated;
    const int column = (range.first_column + range.last_column) / 2;
    const int row = (range.first_row + range.last_row) / 2;
    const auto see = [&](int c, int r) {
        const GEOGRAPHIC place = GeographicOfDemSample(scene_.dem, c, r);
        const GEODETIC_PARAMETERS& geodetic = scene_.dem.geodetic;
        const VECTOR_3D<double> point_m = DatumForward(
            geodetic.datum,
            GeographicToCartesian({place.longitude_rad, place.latitude_rad, 0.0}, geodetic.a_m, geodetic.e2));
        SEEN seen;
        const auto solution = ZeroDopplerInsideData(scene_.master.orbit, point_m, scene_.master.first_azimuth_time_s);
        if (!solution) return seen;
        seen.line = LineOf(scene_.master, solution->time_s);
        seen.pixel = PixelOf(scene_.master, solution->range_m);
        return seen;
    };
    const SEEN here = see(column, row);
    const SEEN right = see(std::min(column + 1, range.last_column), row);
    const SEEN below = see(column, std::min(row + 1, range.last_row));
    crosses_columns_ = std::abs(below.line - here.line) >= std::abs(right.line - here.line);
    rises_across_ = (crosses_columns_ ? below.line : right.line) > here.line;
    is_reversed_ = (crosses_columns_ ? right.pixel : below.pixel) < here.pixel;
}

void LAYOVER_SHADOW::Find(int piece, unsigned char* flags) const {
    const int first_line = piece * kLines;
    const int lines = LinesOf(piece);
    TERRAIN_PROFILES profiles(*this, first_line, first_line + lines);
    for (int i = 0; i < lines; ++i) profiles.Find(first_line + i, flags + static_cast<std::ptrdiff_t>(i) * samples_);
}
