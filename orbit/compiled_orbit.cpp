#include "orbit/compiled_orbit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "lib/baselib/logging/logging.h"
#include "orbit/interpolation/extended_real.h"

namespace {

constexpr int kNodes = 32;
constexpr int kTurn = 4 * kNodes;                  ///< a turn in steps of the nodes' angles
using SERIES = std::array<EXTENDED_REAL, kNodes>;  ///< coefficients of T_0 .. T_31 on -1..1

/// What may be dropped from the end of a series, and how far a compiled value may be from the orbit's own beside the
/// rounding of a value of that size. Dropped coefficients are rounding noise of the samples: leaving them out makes the
/// result smoother than its source.
/// The interpolation's own rounding may be more than that; the coefficients that no polynomial of the orbit has any
/// more show how much, and up to `noise` it is dropped, too.
struct TOLERANCE {
    double dropped;
    double error;
    double noise;
};
constexpr TOLERANCE kTolerances[3] = {{4e-10, 1e-9, 1e-8}, {1e-11, 1e-9, 1e-9}, {1e-11, 1e-8, 1e-9}};  // m, m/s, m/s^2
constexpr double kLargest = 1e100;     ///< m, m/s, m/s^2: beyond any orbit, and far from what overflows
constexpr double kRounding = 0x1p-51;  ///< of a value: the interpolation's last operations and the compiled ones

ORBIT_PIECE::TERM ComponentsOf(const ORBIT_STATE& s) {
    return {s.position_m.x,   s.position_m.y,        s.position_m.z,        s.velocity_m_s.x,     s.velocity_m_s.y,
            s.velocity_m_s.z, s.acceleration_m_s2.x, s.acceleration_m_s2.y, s.acceleration_m_s2.z};
}

/// cos(pi / 64) by its power series.
EXTENDED_REAL CosineOfStep() {
    const EXTENDED_REAL pi(0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53);
    const EXTENDED_REAL angle = pi / (2.0 * kNodes);
    EXTENDED_REAL term = 1.0;
    EXTENDED_REAL sum = 1.0;
    for (int k = 2; k <= 24; k += 2) sum += term *= -(angle * angle) / (k * (k - 1.0));
    return sum;
}

/// cos(k pi (j + 1/2) / 32) depends on k (2 j + 1) modulo 128 only; cos((i + 1) a) = 2 cos(a) cos(i a) - cos((i - 1)
/// a).
const EXTENDED_REAL& CosineOf(int k, int j) {
    static const std::array<EXTENDED_REAL, kTurn> table = [] {
        std::array<EXTENDED_REAL, kTurn> cosines{};
        cosines[0] = 1.0;
        cosines[1] = CosineOfStep();
        for (int i = 2; i < kTurn; ++i) cosines[i] = 2.0 * cosines[1] * cosines[i - 1] - cosines[i - 2];
        return cosines;
    }();
    return table[k * (2 * j + 1) % kTurn];
}

/// Chebyshev series through the samples at the nodes cos(pi (j + 1/2) / 32).
SERIES SeriesThrough(const SERIES& samples) {
    SERIES series{};
    for (int k = 0; k < kNodes; ++k) {
        for (int j = 0; j < kNodes; ++j) series[k] += samples[j] * CosineOf(k, j);
        series[k] *= (k == 0 ? 1.0 : 2.0) / kNodes;
    }
    return series;
}

int DegreeOf(const SERIES& series, double dropped) {
    int degree = kNodes - 1;
    while (degree > 0 && Magnitude(series[degree]) <= dropped) --degree;
    return degree;
}

/// Size of the coefficients beyond the highest degree.
double NoiseOf(const SERIES& series) {
    double noise = 0.0;
    for (int k = ORBIT_PIECE::kMaxDegree + 1; k < kNodes; ++k) noise = std::max(noise, Magnitude(series[k]));
    return noise;
}

/// Powers of u from the Chebyshev series, by T_(k+1) = 2 u T_k - T_(k-1).
SERIES PowersOf(const SERIES& series, int degree) {
    SERIES powers{}, before{}, current{};
    before[0] = 1.0;
    current[1] = 1.0;
    powers[0] = series[0];
    for (int k = 1; k <= degree; ++k) {
        for (int i = 0; i <= k; ++i) powers[i] += series[k] * current[i];
        SERIES next{};
        for (int i = 0; i <= k; ++i) {
            if (i + 1 < kNodes) next[i + 1] += 2.0 * current[i];
            next[i] -= before[i];
        }
        before = current;
        current = next;
    }
    return powers;
}

/// @param noise  per component, of the orbit's own values
bool Agrees(const ORBIT_PIECE& piece, const ORBIT_OF_POOL& orbit, const ORBIT_PIECE::TERM& noise) {
    // A coefficient is the mean of 32 values with weights: noise of size s makes s / 4 of it, and the largest of 23 is
    // some 3 s.
    constexpr double kNoiseOfValues = 16.0;
    constexpr int kChecks = 23;  // prime to the number of nodes: none of them is met again
    for (int i = 0; i < kChecks; ++i) {
        const double t_s = piece.first_s + (piece.last_s - piece.first_s) * ((i + 0.5) / kChecks);
        const ORBIT_PIECE::TERM expected = ComponentsOf(orbit.State(t_s));
        const ORBIT_PIECE::TERM compiled = ComponentsOf(piece.State(t_s));
        for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
            const double allowed =
                kTolerances[c / 3].error + kRounding * std::abs(expected[c]) + kNoiseOfValues * noise[c];
            if (!(std::abs(compiled[c] - expected[c]) <= allowed)) return false;
        }
    }
    return true;
}

std::optional<ORBIT_PIECE> Compile(const ORBIT_OF_POOL& orbit, double first_s, double last_s) {
    ORBIT_PIECE piece;
    piece.first_s = first_s;
    piece.last_s = last_s;
    piece.centre_s = first_s + 0.5 * (last_s - first_s);
    const EXTENDED_REAL half_width_s = 0.5 * (EXTENDED_REAL(last_s) - first_s);

    std::array<SERIES, ORBIT_PIECE::kComponents> samples{};
    for (int j = 0; j < kNodes; ++j) {
        const EXTENDED_REAL node_s = piece.centre_s + half_width_s * CosineOf(1, j);
        const double t_s = std::clamp(static_cast<double>(node_s), first_s, last_s);
        const ORBIT_PIECE::TERM state = ComponentsOf(orbit.State(t_s));
        for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
            if (!std::isfinite(state[c]) || std::fabs(state[c]) > kLargest) return std::nullopt;
            // A time of day rounded to a double moves the satellite by up to 3e-8 m: from there on to the node itself.
            samples[c][j] = state[c];
            if (c < 6) samples[c][j] += state[c + 3] * (node_s - t_s);
        }
    }
    ORBIT_PIECE::TERM noise{};
    for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
        const SERIES series = SeriesThrough(samples[c]);
        const TOLERANCE& tolerance = kTolerances[c / 3];
        int degree = DegreeOf(series, tolerance.dropped);
        if (degree > ORBIT_PIECE::kMaxDegree) {
            noise[c] = NoiseOf(series);
            if (noise[c] > tolerance.noise) return std::nullopt;
            degree = DegreeOf(series, 2.0 * noise[c]);
        }
        const SERIES powers = PowersOf(series, degree);
        EXTENDED_REAL scale = 1.0;
        for (int k = 0; k <= degree; ++k, scale /= half_width_s) {
            piece.terms[k][c] = static_cast<double>(powers[k] * scale);
        }
        piece.degree = std::max(piece.degree, degree);
    }
    if (!Agrees(piece, orbit, noise)) return std::nullopt;
    return piece;
}

/// @param failed_s  bounds of the pieces that can not be compiled
void ReportFailed(const ORBIT_OF_POOL& orbit, const std::vector<double>& failed_s) {
    const double zero_s = orbit.SecondsFromReferenceToZero();
    Log().Message(LOGGING_LEVEL::INFO,
                  "%s: %s: %zu pieces from %.6f s to %.6f s are no polynomials to 1e-9 m; points there take longer",
                  orbit.Configuration().pool_file.c_str(), orbit.Configuration().interpolation.c_str(),
                  failed_s.size() / 2, failed_s.front() + zero_s, failed_s.back() + zero_s);
}

}  // namespace

ORBIT_STATE ORBIT_PIECE::State(double t_s) const {
    const double u = t_s - centre_s;
    TERM sum = terms[degree];
    for (int k = degree - 1; k >= 0; --k) {
        for (int c = 0; c < kComponents; ++c) sum[c] = sum[c] * u + terms[k][c];
    }
    return {{sum[0], sum[1], sum[2]}, {sum[3], sum[4], sum[5]}, {sum[6], sum[7], sum[8]}};
}

COMPILED_ORBIT::COMPILED_ORBIT(const ORBIT_OF_POOL& orbit, double first_s, double last_s) : orbit_(orbit) {
    const std::vector<double> bounds = orbit.PieceBounds();
    std::vector<ORBIT_PIECE> run;
    std::vector<double> failed_s;
    for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
        if (bounds[i + 1] < first_s || bounds[i] > last_s || !(bounds[i] < bounds[i + 1])) continue;
        const std::optional<ORBIT_PIECE> piece = Compile(orbit, bounds[i], bounds[i + 1]);
        if (piece) {
            run.push_back(*piece);
        } else {
            failed_s.insert(failed_s.end(), {bounds[i], bounds[i + 1]});
            KeepLonger(run);
        }
    }
    KeepLonger(run);
    if (!failed_s.empty() && !IsFloatType(orbit.TypeId())) ReportFailed(orbit, failed_s);
    if (!pieces_.empty()) SetEnd(bounds);
}

/// Empties the run.
void COMPILED_ORBIT::KeepLonger(std::vector<ORBIT_PIECE>& run) {
    if (run.size() > pieces_.size()) pieces_.swap(run);
    run.clear();
}

/// Gives the times at which pieces meet to the piece that answers there.
void COMPILED_ORBIT::SetEnd(const std::vector<double>& bounds) {
    constexpr double kLater = std::numeric_limits<double>::infinity();
    if (orbit_.EarlierPieceAnswers()) {
        // With one node, the first time of all is a cell of its own.
        const bool first_apart = orbit_.Interpolation().support_point_count == 1;
        for (ORBIT_PIECE& piece : pieces_) {
            if (piece.first_s != bounds.front() || first_apart) piece.first_s = std::nextafter(piece.first_s, kLater);
            if (piece.last_s != bounds.back()) piece.last_s = std::nextafter(piece.last_s, kLater);
        }
    }
    ORBIT_PIECE& last = pieces_.back();
    if (last.last_s == bounds.back()) {
        end_s_ = std::nextafter(last.last_s, kLater);
    } else {  // the data go on: the time at the end belongs to a piece that is not here
        end_s_ = last.last_s;
        last.last_s = std::nextafter(last.last_s, -kLater);
    }
}

const ORBIT_PIECE* COMPILED_ORBIT::PieceAt(double t_s) const {
    if (pieces_.empty() || !(t_s >= pieces_.front().first_s && t_s < end_s_)) return nullptr;
    const auto after = std::upper_bound(pieces_.begin(), pieces_.end(), t_s,
                                        [](double t, const ORBIT_PIECE& piece) { return t < piece.first_s; });
    return &*(after - 1);
}

ORBIT_STATE COMPILED_ORBIT::State(double t_s) const {
    const ORBIT_PIECE* const piece = PieceAt(t_s);
    return piece != nullptr ? piece->State(t_s) : orbit_.State(t_s);
}
