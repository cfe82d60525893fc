#include "simulation/bistatic_solution.h"

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/fit/svdfit.h"
#include "orbit/general_orbit.h"
#include "simulation/aperture_time.h"
#include "simulation/azimuth_shift_correction.h"

BISTATIC_SOLUTION::BISTATIC_SOLUTION(const PREPARED_SCENE& prepared, const SETTINGS& settings)
    : scene_(prepared.Scene()), prepared_(prepared), settings_(settings) {}

/// The abscissae are the same for every point, so the least-squares fit is one linear map from ordinates to
/// coefficients: its columns are the fits of the unit ordinates. Abscissae are scaled to -1..1, else the fixed
/// threshold on the singular values would drop the quadratic term of a short aperture.
void BISTATIC_SOLUTION::Prepare(double aperture_s) {
    CheckAperture(scene_, aperture_s);
    aperture_s_ = aperture_s;
    const int samples = settings_.sample_count;
    if (settings_.order >= samples) {
        Log() << LOGGING_LEVEL::WARNING << "POLYFIT: reduce polynomial fit order " << settings_.order << " -> "
              << samples - 1 << "\n";
        settings_.order = samples - 1;
    }
    const int coefficients = settings_.order + 1;
    std::vector<long double> abscissa(samples);
    for (int i = 0; i < samples; ++i) abscissa[i] = static_cast<long double>(SampleTime(i)) / (0.5L * aperture_s_);
    const std::vector<long double> sigma(samples, 1.0L);
    std::vector<long double> column(coefficients);
    SVDFIT<long double, POLYNOM_FUNCTION<long double>> fit;
    fit.Resize(samples, coefficients);
    weights_.assign(samples, {});
    for (int i = 0; i < samples; ++i) {
        std::vector<long double> unit(samples, 0.0L);
        unit[i] = 1.0L;
        fit.Fit(abscissa, unit, sigma, column);
        double* const parts[] = {&weights_[i].c0, &weights_[i].c1, &weights_[i].c2};
        for (int k = 0; k < std::min(coefficients, 3); ++k) *parts[k] = static_cast<double>(column[k]);
    }
}

/// Receive time of a sample, from the sampling centre.
double BISTATIC_SOLUTION::SampleTime(int sample) const {
    return sample * aperture_s_ / (settings_.sample_count - 1) - 0.5 * aperture_s_;
}

int BISTATIC_SOLUTION::SolveRow(const POINTS& points, int first, int count) {
    int one_by_one = 0;
    for (int next = first; next < first + count; next += BLOCK::kSize) {
        const int size = std::min(BLOCK::kSize, first + count - next);
        one_by_one_.fill(false);
        Load(points, next, size);
        for (int sample = 0; sample < settings_.sample_count; ++sample) {
            IterateTravelTimes(points, next, size, sample);
            VELMORA_AT_LEVEL(prepared_.VectorLevel(), AddSample)(weights_[sample], sample == 0, block_);
        }
        VELMORA_AT_LEVEL(prepared_.VectorLevel(), FindShortest)(block_);
        Finish(points, next, size);
        one_by_one += static_cast<int>(std::count(one_by_one_.begin(), one_by_one_.begin() + size, true));
    }
    return one_by_one;
}

void BISTATIC_SOLUTION::Load(const POINTS& points, int first, int size) {
    for (int i = 0; i < BLOCK::kSize; ++i) {
        const int from = first + std::min(i, size - 1);
        block_.x_m[i] = points.places.x_m[from];
        block_.y_m[i] = points.places.y_m[from];
        block_.z_m[i] = points.places.z_m[from];
    }
}

/// Where the satellite is at the times asked for.
void BISTATIC_SOLUTION::PlaceSatellite(const ROW_ORBIT& orbit) {
    const auto place_on_piece = VELMORA_AT_LEVEL(prepared_.VectorLevel(), PlaceOnPiece);
    std::fill_n(block_.placed, BLOCK::kSize, 0.0);
    int left = BLOCK::kSize;
    for (int i = 0; i < BLOCK::kSize && left > 0; ++i) {
        if (block_.placed[i] != 0.0) continue;
        const double at_s = block_.asked_s[i] + orbit.handle.offset_s;
        const ORBIT_PIECE* const piece = orbit.compiled->PieceAt(at_s);
        if (piece != nullptr) left = place_on_piece(*piece, orbit.handle.offset_s, block_);
        if (block_.placed[i] != 0.0) continue;
        // Outside the compiled pieces, or at the last time of all.
        const VECTOR_3D<double> place_m = orbit.handle.orbit->Position(at_s);
        block_.place_x_m[i] = place_m.x;
        block_.place_y_m[i] = place_m.y;
        block_.place_z_m[i] = place_m.z;
        block_.placed[i] = 1.0;
        one_by_one_[i] = true;
        --left;
    }
}

/// Travel times master - point - slave of the echoes received at a time: a fixed point, since the transmit time depends
/// on it.
void BISTATIC_SOLUTION::IterateTravelTimes(const POINTS& points, int first, int size, int sample) {
    const double sample_time_s = SampleTime(sample);
    for (int i = 0; i < BLOCK::kSize; ++i) {
        const int from = first + std::min(i, size - 1);
        block_.receive_time_s[i] = sample_time_s + 0.5 * (points.slave_time_s[from] + points.master_time_s[from]);
        block_.asked_s[i] = block_.receive_time_s[i];
        // The travel time exceeds twice the receive path by nearly the difference of the two ranges.
        block_.travel_s[i] = (points.master_range_m[from] - points.slave_range_m[from]) / kSpeedOfLight;
    }
    PlaceSatellite(prepared_.SlaveOrbit().value());
    VELMORA_AT_LEVEL(prepared_.VectorLevel(), StartTravel)(block_);
    const auto step_travel = VELMORA_AT_LEVEL(prepared_.VectorLevel(), StepTravel);
    for (int step = 0; step <= kMaxFurtherIterations; ++step) {
        for (int i = 0; i < BLOCK::kSize; ++i) block_.asked_s[i] = block_.receive_time_s[i] - block_.travel_s[i];
        PlaceSatellite(prepared_.MasterOrbit().value());
        if (step_travel(settings_.tolerance, block_) == 0) break;
    }
    for (int i = 0; i < size; ++i) {
        ++histogram_[std::min(static_cast<int>(block_.further[i]), kMaxFurtherIterations)];
    }
}

void BISTATIC_SOLUTION::Finish(const POINTS& points, int first, int size) const {
    for (int i = 0; i < size; ++i) {
        const int element = first + i;
        if (block_.solved[i] == 0.0) RefuseMaximum(points, element, i);
        const double middle_s = 0.5 * (points.slave_time_s[element] + points.master_time_s[element]);
        const double vertex_s = 0.5 * aperture_s_ * block_.vertex[i] + middle_s;
        const double shortest_s = block_.shortest_s[i];
        points.slave_range_m[element] = shortest_s * kSpeedOfLight * 0.5;
        points.slave_time_s[element] = points.master_range_m[element] / kSpeedOfLight + (vertex_s - shortest_s) +
                                       AzimuthShiftCorrection(scene_.correction, shortest_s);
    }
}

void BISTATIC_SOLUTION::RefuseMaximum(const POINTS& points, int element, int i) const {
    const double half_s = 0.5 * aperture_s_;
    LogAndThrow<ERROR_ALGORITHM>(
        "bistatic solution: the travel times of DEM column %d, row %d have no minimum (squared travel time "
        "%g + %g t + %g t^2); check the orbits of master and slave",
        points.first_dem_column + element, points.dem_row, block_.c0[i], block_.c1[i] / half_s,
        block_.c2[i] / (half_s * half_s));
}

void BISTATIC_SOLUTION::LogStatistics() const {
    Log().Message(LOGGING_LEVEL::TRACE, "BISTATIC_B: histogram of iterations:");
    for (std::size_t i = 0; i < histogram_.size(); ++i) {
        if (histogram_[i] == 0) continue;
        Log().Message(LOGGING_LEVEL::TRACE, "%d iterations: %lld occurrences", static_cast<int>(i) + 1, histogram_[i]);
    }
}
