#include "orbit/compiled_orbit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr int kNodes = 32;
constexpr long double kPi = 3.14159265358979323846264338327950288L;

using SERIES = std::array<long double, kNodes>;  ///< coefficients of T_0 .. T_31 on -1..1

/// What may be dropped from the end of a series, and how far a compiled value may be from the orbit's own beside the
/// rounding of a value of that size. Dropped coefficients are rounding noise of the samples: leaving them out makes the
/// result smoother than its source.
struct TOLERANCE {
    long double dropped;
    double error;
};
constexpr TOLERANCE kTolerances[3] = {{4e-10L, 1e-9}, {1e-11L, 1e-9}, {1e-11L, 1e-8}};  // m, m/s, m/s^2
constexpr int kRoundings = 4;  ///< halves of an ulp: the interpolation's last operations and the compiled ones

ORBIT_PIECE::TERM ComponentsOf(const ORBIT_STATE& s) {
    return {s.position_m.x,   s.position_m.y,        s.position_m.z,        s.velocity_m_s.x,     s.velocity_m_s.y,
            s.velocity_m_s.z, s.acceleration_m_s2.x, s.acceleration_m_s2.y, s.acceleration_m_s2.z};
}

/// cos(k pi (j + 1/2) / 32) depends on k (2 j + 1) modulo 128 only.
long double CosineOf(int k, int j) {
    static const std::array<long double, 4 * kNodes> table = [] {
        std::array<long double, 4 * kNodes> cosines{};
        for (int i = 0; i < 4 * kNodes; ++i) cosines[i] = std::cos(kPi * i / (2 * kNodes));
        return cosines;
    }();
    return table[k * (2 * j + 1) % (4 * kNodes)];
}

/// Chebyshev series through the samples at the nodes cos(pi (j + 1/2) / 32).
SERIES SeriesThrough(const SERIES& samples) {
    SERIES series{};
    for (int k = 0; k < kNodes; ++k) {
        for (int j = 0; j < kNodes; ++j) series[k] += samples[j] * CosineOf(k, j);
        series[k] *= (k == 0 ? 1.0L : 2.0L) / kNodes;
    }
    return series;
}

int DegreeOf(const SERIES& series, long double dropped) {
    int degree = kNodes - 1;
    while (degree > 0 && std::fabs(series[degree]) <= dropped) --degree;
    return degree;
}

/// Powers of u from the Chebyshev series, by T_(k+1) = 2 u T_k - T_(k-1).
SERIES PowersOf(const SERIES& series, int degree) {
    SERIES powers{}, before{}, current{};
    before[0] = 1.0L;
    current[1] = 1.0L;
    powers[0] = series[0];
    for (int k = 1; k <= degree; ++k) {
        for (int i = 0; i <= k; ++i) powers[i] += series[k] * current[i];
        SERIES next{};
        for (int i = 0; i <= k; ++i) {
            if (i + 1 < kNodes) next[i + 1] += 2.0L * current[i];
            next[i] -= before[i];
        }
        before = current;
        current = next;
    }
    return powers;
}

bool Agrees(const ORBIT_PIECE& piece, const ORBIT_OF_POOL& orbit) {
    constexpr int kChecks = 23;  // prime to the number of nodes: none of them is met again
    constexpr double kHalfUlp = 0x1p-53;
    for (int i = 0; i < kChecks; ++i) {
        const double t_s = piece.first_s + (piece.last_s - piece.first_s) * ((i + 0.5) / kChecks);
        const ORBIT_PIECE::TERM expected = ComponentsOf(orbit.State(t_s));
        const ORBIT_PIECE::TERM compiled = ComponentsOf(piece.State(t_s));
        for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
            const double allowed = kTolerances[c / 3].error + kRoundings * kHalfUlp * std::abs(expected[c]);
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
    const long double half_width_s = 0.5L * (static_cast<long double>(last_s) - first_s);

    std::array<SERIES, ORBIT_PIECE::kComponents> samples{};
    for (int j = 0; j < kNodes; ++j) {
        const long double node_s = piece.centre_s + half_width_s * CosineOf(1, j);
        const double t_s = std::clamp(static_cast<double>(node_s), first_s, last_s);
        const ORBIT_PIECE::TERM state = ComponentsOf(orbit.State(t_s));
        for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
            if (!std::isfinite(state[c])) return std::nullopt;
            // A time of day rounded to a double moves the satellite by up to 3e-8 m: from there on to the node itself.
            samples[c][j] = c < 6 ? state[c] + state[c + 3] * (node_s - t_s) : state[c];
        }
    }
    for (int c = 0; c < ORBIT_PIECE::kComponents; ++c) {
        const SERIES series = SeriesThrough(samples[c]);
        const int degree = DegreeOf(series, kTolerances[c / 3].dropped);
        if (degree > ORBIT_PIECE::kMaxDegree) return std::nullopt;
        const SERIES powers = PowersOf(series, degree);
        long double scale = 1.0L;
        for (int k = 0; k <= degree; ++k, scale /= half_width_s) {
            piece.terms[k][c] = static_cast<double>(powers[k] * scale);
        }
        piece.degree = std::max(piece.degree, degree);
    }
    if (!Agrees(piece, orbit)) return std::nullopt;
    return piece;
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
    for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
        if (bounds[i + 1] < first_s || bounds[i] > last_s || !(bounds[i] < bounds[i + 1])) continue;
        const std::optional<ORBIT_PIECE> piece = Compile(orbit, bounds[i], bounds[i + 1]);
        if (!piece) {
            pieces_.clear();
            return;
        }
        pieces_.push_back(*piece);
    }
    if (pieces_.empty()) return;
    // Where the data go on, the last time of all belongs to the piece that is not here.
    end_s_ = pieces_.back().last_s;
    if (end_s_ == bounds.back()) end_s_ = std::nextafter(end_s_, std::numeric_limits<double>::infinity());
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
