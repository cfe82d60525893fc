#include "simulation/travel_time_block.h"

namespace {

constexpr int kPlaces = TRAVEL_TIME_BLOCK::kSize;
constexpr int kComponents = ORBIT_PIECE::kComponents;
constexpr double kSecondsPerMetre = 3.3356409519815204e-09;  ///< 1 / speed of light

/// @tparam DEGREE  of the piece or higher: its further terms are 0
template <int DEGREE>
[[gnu::always_inline]] inline int Place(const double* __restrict terms, double centre_s, double first_s, double last_s,
                                        double offset_s, TRAVEL_TIME_BLOCK& __restrict block) {
    const double* __restrict asked_s = block.asked_s;
    double* __restrict x_m = block.place_x_m;
    double* __restrict y_m = block.place_y_m;
    double* __restrict z_m = block.place_z_m;
    double* __restrict placed = block.placed;
    int left = 0;
    for (int i = 0; i < kPlaces; ++i) {
        const double at_s = asked_s[i] + offset_s;
        // Held on the piece, so that the powers of a time that lies elsewhere can not overflow.
        const double from_first_s = at_s > first_s ? at_s : first_s;
        const double u = (from_first_s < last_s ? from_first_s : last_s) - centre_s;
        double x = 0.0, y = 0.0, z = 0.0;
#pragma GCC unroll 24
        for (int k = DEGREE; k >= 0; --k) {
            const double* const term = terms + k * kComponents;
            x = x * u + term[0];
            y = y * u + term[1];
            z = z * u + term[2];
        }
        const int here =
            static_cast<int>(at_s >= first_s) & static_cast<int>(at_s < last_s) & static_cast<int>(placed[i] == 0.0);
        const double now = here;
        x_m[i] = now * x + (1.0 - now) * x_m[i];
        y_m[i] = now * y + (1.0 - now) * y_m[i];
        z_m[i] = now * z + (1.0 - now) * z_m[i];
        placed[i] += now;
        left += placed[i] == 0.0 ? 1 : 0;
    }
    return left;
}

/// Travel time between the point and the satellite's place: the straight path in vacuum.
[[gnu::always_inline]] inline double Delay(const TRAVEL_TIME_BLOCK& block, int i) {
    const double x = block.place_x_m[i] - block.x_m[i];
    const double y = block.place_y_m[i] - block.y_m[i];
    const double z = block.place_z_m[i] - block.z_m[i];
    return __builtin_sqrt(x * x + y * y + z * z) * kSecondsPerMetre;
}

}  // namespace

int VELMORA_VECTOR_LEVEL::PlaceOnPiece(const ORBIT_PIECE& piece, double offset_s, TRAVEL_TIME_BLOCK& block) {
    static_assert(sizeof(ORBIT_PIECE::TERM) == kComponents * sizeof(double));
    static_assert(ORBIT_PIECE::kMaxDegree == 23);
    const auto* const terms = reinterpret_cast<const double*>(&piece.terms);
    if (piece.degree <= 7) return Place<7>(terms, piece.centre_s, piece.first_s, piece.last_s, offset_s, block);
    if (piece.degree <= 11) return Place<11>(terms, piece.centre_s, piece.first_s, piece.last_s, offset_s, block);
    return Place<23>(terms, piece.centre_s, piece.first_s, piece.last_s, offset_s, block);
}

void VELMORA_VECTOR_LEVEL::StartTravel(TRAVEL_TIME_BLOCK& block) {
    for (int i = 0; i < kPlaces; ++i) {
        const double path_s = Delay(block, i);
        block.receive_path_s[i] = path_s;
        block.travel_s[i] = 2.0 * path_s + block.travel_s[i];
        block.moving[i] = 1.0;
        block.further[i] = 0.0;
    }
}

int VELMORA_VECTOR_LEVEL::StepTravel(double tolerance, TRAVEL_TIME_BLOCK& block) {
    int moving = 0;
    for (int i = 0; i < kPlaces; ++i) {
        const double before_s = block.travel_s[i];
        const double after_s = Delay(block, i) + block.receive_path_s[i];
        const double changes = __builtin_fabs(after_s / before_s - 1.0) < tolerance ? 0.0 : 1.0;
        const double was_moving = block.moving[i];
        block.travel_s[i] = was_moving * after_s + (1.0 - was_moving) * before_s;
        block.moving[i] = was_moving * changes;
        block.further[i] += was_moving * changes;
        moving += block.moving[i] != 0.0 ? 1 : 0;
    }
    return moving;
}

void VELMORA_VECTOR_LEVEL::AddSample(const SAMPLE_WEIGHTS& weights, bool first, TRAVEL_TIME_BLOCK& block) {
    const SAMPLE_WEIGHTS w = weights;
    if (first) {
        for (int i = 0; i < kPlaces; ++i) {
            block.first_travel_s[i] = block.travel_s[i];
            block.c0[i] = block.c1[i] = block.c2[i] = 0.0;
        }
        return;
    }
    for (int i = 0; i < kPlaces; ++i) {
        // The squares differ in their last digits only: their difference, not they, goes into the sums.
        const double travel_s = block.travel_s[i];
        const double first_s = block.first_travel_s[i];
        const double excess = (travel_s - first_s) * (travel_s + first_s);
        block.c0[i] += w.c0 * excess;
        block.c1[i] += w.c1 * excess;
        block.c2[i] += w.c2 * excess;
    }
}

void VELMORA_VECTOR_LEVEL::FindShortest(TRAVEL_TIME_BLOCK& block) {
    for (int i = 0; i < kPlaces; ++i) {
        const double c0 = block.c0[i] + block.first_travel_s[i] * block.first_travel_s[i];
        const double c1 = block.c1[i];
        // A parabola that opens downwards has a longest path; taken for the shortest it would be a silent wrong result.
        const bool opens_upwards = block.c2[i] > 0.0;
        const double c2 = opens_upwards ? block.c2[i] : 1.0;
        const double radicand = c0 - 0.25 * c1 * c1 / c2;
        const bool is_above = radicand >= 0.0;
        block.c0[i] = c0;
        block.vertex[i] = -0.5 * c1 / c2;
        block.shortest_s[i] = __builtin_sqrt(is_above ? radicand : 0.0);
        block.solved[i] = static_cast<double>(static_cast<int>(opens_upwards) & static_cast<int>(is_above));
    }
}
