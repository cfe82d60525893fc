#include "simulation/triangle_filler.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "lib/baselib/logging/logging.h"
#include "simulation/triangle.h"

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__) && \
    !defined(__SANITIZE_ADDRESS__)
#define VELMORA_AVX512 1
#include <immintrin.h>
#else
#define VELMORA_AVX512 0  // a sanitizer does not see what masked loads and stores touch
#endif

namespace {

constexpr double kSmallestArea = 1e-5;                       ///< square pixels
constexpr double kMiddle = 0.5;                              ///< of the allowed barycentric coordinates
constexpr double kHalfWidth = 0.5 + 0.5 * kInsideTolerance;  ///< of the allowed barycentric coordinates
constexpr int kNone = -1;                                    ///< no triangle
constexpr std::array<std::array<int, 3>, 2> kTriangles = {{{0, 1, 2}, {1, 2, 3}}};

/// First integer pixel of a span, at least 0. The pixels of a hopeless corner may exceed an int, hence the order.
int FirstPixel(double lowest) {
    return static_cast<int>(std::clamp(std::floor(lowest), 0.0, 2147483647.0));
}

int LastPixel(double highest, int size) {
    return static_cast<int>(std::clamp(std::ceil(highest), -1.0, size - 1.0));
}

bool IsAllowed(double barycentric) {
    return std::abs(barycentric - kMiddle) <= kHalfWidth;
}

}  // namespace

/// Barycentric coordinates of corners 1 and 2 of a triangle as planes over the image, from the first pixel of the box.
struct TRIANGLE_FILLER::TRIANGLE_PLANES {
    double u;
    double u_column;
    double u_row;
    double v;
    double v_column;
    double v_row;
};

struct TRIANGLE_FILLER::CELL {
    const RADAR_ROW& upper;
    const RADAR_ROW& lower;
    int i;
    PIXEL_BOX box{};
    bool is_line[2]{};
    TRIANGLE_PLANES planes[2]{};

    /// Column of corner c in its row's arrays, and the row: corners 0 and 1 stand in the upper one.
    [[nodiscard]] double At(QUANTITY quantity, int c) const { return (c < 2 ? upper : lower)[quantity][i + (c & 1)]; }
    [[nodiscard]] POINT<double> Pixel(int c) const {
        return {At(QUANTITY::RANGE_PIXEL, c), At(QUANTITY::AZIMUTH_PIXEL, c)};
    }

    void FindBox(const MASTER_GRIDS& image) {
        const auto [near, far] = std::minmax({At(QUANTITY::RANGE_PIXEL, 0), At(QUANTITY::RANGE_PIXEL, 1),
                                              At(QUANTITY::RANGE_PIXEL, 2), At(QUANTITY::RANGE_PIXEL, 3)});
        const auto [early, late] = std::minmax({At(QUANTITY::AZIMUTH_PIXEL, 0), At(QUANTITY::AZIMUTH_PIXEL, 1),
                                                At(QUANTITY::AZIMUTH_PIXEL, 2), At(QUANTITY::AZIMUTH_PIXEL, 3)});
        box = {FirstPixel(near), LastPixel(far, image.mask.columns), FirstPixel(early),
               LastPixel(late, image.mask.rows)};
    }

    void SetUp(int triangle) {
        const auto& corners = kTriangles[triangle];
        const POINT<double> p0 = Pixel(corners[0]);
        const POINT<double> p1 = Pixel(corners[1]);
        const POINT<double> p2 = Pixel(corners[2]);
        is_line[triangle] = TriangleArea(p0, p1, p2) < kSmallestArea;
        if (is_line[triangle]) return;
        const double x1 = p1.x - p0.x;
        const double y1 = p1.y - p0.y;
        const double x2 = p2.x - p0.x;
        const double y2 = p2.y - p0.y;
        const double per_determinant = 1.0 / (x1 * y2 - y1 * x2);
        const double dx = box.first_column - p0.x;
        const double dy = box.first_row - p0.y;
        TRIANGLE_PLANES& plane = planes[triangle];
        plane.u_column = y2 * per_determinant;
        plane.u_row = -x2 * per_determinant;
        plane.v_column = -y1 * per_determinant;
        plane.v_row = x1 * per_determinant;
        plane.u = plane.u_column * dx + plane.u_row * dy;
        plane.v = plane.v_column * dx + plane.v_row * dy;
    }

    [[nodiscard]] float ValueAt(QUANTITY quantity, int row, int column, int triangle) const {
        const TRIANGLE_PLANES& plane = planes[triangle];
        const double u = plane.u + plane.u_column * (column - box.first_column) + plane.u_row * (row - box.first_row);
        const double v = plane.v + plane.v_column * (column - box.first_column) + plane.v_row * (row - box.first_row);
        const auto& corners = kTriangles[triangle];
        return static_cast<float>((1.0 - u - v) * At(quantity, corners[0]) + u * At(quantity, corners[1]) +
                                  v * At(quantity, corners[2]));
    }
};

TRIANGLE_FILLER::TRIANGLE_FILLER(PREPARED_SCENE& prepared, int block)
    : image_(prepared.Scene().image),
      layers_(prepared.Layers()),
      ownership_(prepared.Ownership()),
      contested_(prepared.Contested(block)),
      claimed_(image_.mask.rows, image_.mask.columns),
      block_(block),
      use_vectors_(MachineHasVectors()) {}

void TRIANGLE_FILLER::FillCell(const RADAR_ROW& upper, const RADAR_ROW& lower, int i) {
    CELL cell{upper, lower, i};
    cell.FindBox(image_);
    if (cell.box.last_row < cell.box.first_row || cell.box.last_column < cell.box.first_column) return;
    cell.SetUp(0);
    cell.SetUp(1);
    // Which way a cell goes, and so the last bit of its values, must not depend on the block it is in.
    if (use_vectors_ && !cell.is_line[0] && !cell.is_line[1]) {
        FillWithVectors(cell);
    } else {
        FillPixelByPixel(cell);
    }
}

int TRIANGLE_FILLER::TriangleAround(const CELL& cell, int row, int column) const {
    const double dx = column - cell.box.first_column;
    const double dy = row - cell.box.first_row;
    for (int triangle = 0; triangle < 2; ++triangle) {
        if (cell.is_line[triangle]) {
            Log().Message(LOGGING_LEVEL::WARNING, "RADAR_SOLUTION::IsInside : Not triangle, only line");
            continue;
        }
        const TRIANGLE_PLANES& plane = cell.planes[triangle];
        const double u = plane.u + plane.u_column * dx + plane.u_row * dy;
        const double v = plane.v + plane.v_column * dx + plane.v_row * dy;
        if (IsAllowed(u) && IsAllowed(v) && IsAllowed(1.0 - u - v)) return triangle;
    }
    return kNone;
}

void TRIANGLE_FILLER::FillPixelByPixel(const CELL& cell) {
    const bool owns_all = ownership_.OwnsAll(block_, cell.box);
    for (int row = cell.box.first_row; row <= cell.box.last_row; ++row) {
        for (int column = cell.box.first_column; column <= cell.box.last_column; ++column) {
            if ((claimed_.EightFrom(row, column) & 1) != 0) continue;
            const int triangle = TriangleAround(cell, row, column);
            if (triangle == kNone) continue;
            claimed_.Claim(row, column, 1);
            WriteOrKeep(cell, row, column, triangle, owns_all || ownership_.Owns(block_, row, column));
        }
    }
}

void TRIANGLE_FILLER::WriteOrKeep(const CELL& cell, int row, int column, int triangle, bool owned) {
    CONTESTED_PIXEL pixel{row, column, {}};
    float* value = pixel.values.data();
    for (const PIXEL_LAYER& layer : layers_.Dense()) *value++ = cell.ValueAt(layer.quantity, row, column, triangle);
    if (layers_.IsSparseRow(row)) {
        for (const PIXEL_LAYER& layer : layers_.Sparse())
            *value++ = cell.ValueAt(layer.quantity, row, column, triangle);
    }
    if (!owned) {
        contested_.push_back(pixel);
        return;
    }
    image_.mask[row][column] = 1;
    layers_.Store(row, column, pixel.values);
}

#if VELMORA_AVX512

#define VELMORA_TARGET __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,bmi2")))

namespace {

/// A layer's quantity inside both triangles: middle + u' along_u + v' along_v, with u' = u - 1/2 and v' = v - 1/2.
struct QUANTITY_IN_CELL {
    double middle[2];
    double along_u[2];
    double along_v[2];
};

/// Lanes of a mask whose pixels the block owns.
__mmask8 OwnedLanes(const PIXEL_OWNERSHIP& ownership, int block, int row, int column, __mmask8 lanes) {
    unsigned owned = 0;
    for (int lane = 0; lane < PIXEL_LAYERS::kLanes; ++lane) {
        if ((lanes >> lane & 1) != 0 && ownership.Owns(block, row, column + lane)) owned |= 1U << lane;
    }
    return static_cast<__mmask8>(owned);
}

/// Lanes that have their place in a dense layer.
__mmask8 LanesOf(const PIXEL_LAYER& layer, int row, int column, __mmask8 lanes) {
    const int left = layer.Columns() - column;
    if (row >= layer.EndRow() || left <= 0) return 0;
    return left >= PIXEL_LAYERS::kLanes ? lanes : static_cast<__mmask8>(lanes & ((1U << left) - 1));
}

/// Stores the lanes of a mask.
VELMORA_TARGET inline void StoreLanes(const PIXEL_LAYER& layer, int row, int column, __mmask8 lanes,
                                      const __m256& single) {
    if (layer.singles) {
        _mm256_mask_storeu_ps(layer.singles[row] + column, lanes, single);
    } else {
        _mm512_mask_storeu_pd(layer.doubles[row] + column, lanes, _mm512_maskz_cvtps_pd(lanes, single));
    }
}

/// Stores those lanes of a mask that have their place in a sparse layer. Such lanes are as many columns apart as the
/// layer's factor says, and neighbours in the layer: they are drawn together.
VELMORA_TARGET inline void StoreSparseLanes(const PIXEL_LAYER& layer, int row, int column, __mmask8 lanes,
                                            const __m256& single) {
    const GRID_PLACES& places = *layer.places;
    const int grid_row = places.row_of[row];
    const auto with_place = static_cast<__mmask8>(places.next_eight[column]);
    if (grid_row < 0 || with_place == 0) return;
    const int grid_column = places.column_of[column + __builtin_ctz(with_place)];
    const auto drawn_lanes = static_cast<__mmask8>(_pext_u32(lanes, with_place));
    const __m256 drawn = _mm256_maskz_compress_ps(with_place, single);
    StoreLanes(layer, grid_row, grid_column, drawn_lanes, drawn);
}

/// A plane over the image at the lanes of one group, in its first row.
VELMORA_TARGET inline __m512d FirstRow(const __m512d& dx, double at, double per_column) {
    return _mm512_fmadd_pd(dx, _mm512_set1_pd(per_column), _mm512_set1_pd(at));
}

VELMORA_TARGET inline __m256 ValueInLanes(const QUANTITY_IN_CELL& q, const __m512d (&u)[2], const __m512d (&v)[2],
                                          __mmask8 lanes, __mmask8 in_second) {
    __m512d value[2];
    for (int t = 0; t < 2; ++t) {
        value[t] = _mm512_fmadd_pd(u[t], _mm512_set1_pd(q.along_u[t]),
                                   _mm512_fmadd_pd(v[t], _mm512_set1_pd(q.along_v[t]), _mm512_set1_pd(q.middle[t])));
    }
    return _mm512_maskz_cvtpd_ps(lanes, _mm512_mask_blend_pd(in_second, value[0], value[1]));
}

/// Lanes whose barycentric coordinates are all allowed; u and v already less the middle.
VELMORA_TARGET inline __mmask8 InsideLanes(const __m512d& u, const __m512d& v) {
    const __m512d limit = _mm512_set1_pd(kHalfWidth);
    const __m512d w = _mm512_add_pd(u, v);  // (1 - u - v) - 1/2 = -(u' + v') - 1/2 with u' = u - 1/2, v' = v - 1/2
    __mmask8 inside = _mm512_cmp_pd_mask(_mm512_abs_pd(u), limit, _CMP_LE_OQ);
    inside = _mm512_mask_cmp_pd_mask(inside, _mm512_abs_pd(v), limit, _CMP_LE_OQ);
    return _mm512_mask_cmp_pd_mask(inside, _mm512_abs_pd(_mm512_add_pd(w, _mm512_set1_pd(kMiddle))), limit, _CMP_LE_OQ);
}

}  // namespace

/// Eight pixels of a row at a time.
VELMORA_TARGET void TRIANGLE_FILLER::FillWithVectors(const CELL& cell) {
    const std::vector<PIXEL_LAYER>& dense = layers_.Dense();
    const std::vector<PIXEL_LAYER>& sparse = layers_.Sparse();
    const std::size_t dense_count = dense.size();
    const std::size_t sparse_count = sparse.size();
    QUANTITY_IN_CELL quantities[kMaxLayers];
    for (std::size_t k = 0; k < dense_count + sparse_count; ++k) {
        const QUANTITY quantity = (k < dense_count ? dense[k] : sparse[k - dense_count]).quantity;
        const double corners[] = {cell.At(quantity, 0), cell.At(quantity, 1), cell.At(quantity, 2),
                                  cell.At(quantity, 3)};
        for (int t = 0; t < 2; ++t) {
            const double d1 = corners[t + 1] - corners[t];
            const double d2 = corners[t + 2] - corners[t];
            quantities[k].middle[t] = corners[t] + kMiddle * (d1 + d2);
            quantities[k].along_u[t] = d1;
            quantities[k].along_v[t] = d2;
        }
    }
    const PIXEL_BOX& box = cell.box;
    const bool owns_all = ownership_.OwnsAll(block_, box);
    const __m512d lane_numbers = _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7);
    for (int column = box.first_column; column <= box.last_column; column += kLanes) {
        const int lanes_left = box.last_column - column + 1;
        const auto in_box = static_cast<__mmask8>(lanes_left >= kLanes ? 0xff : (1 << lanes_left) - 1);
        const __m512d dx = _mm512_add_pd(lane_numbers, _mm512_set1_pd(column - box.first_column));
        __m512d first_u[2], first_v[2];
        for (int t = 0; t < 2; ++t) {
            first_u[t] = FirstRow(dx, cell.planes[t].u - kMiddle, cell.planes[t].u_column);
            first_v[t] = FirstRow(dx, cell.planes[t].v - kMiddle, cell.planes[t].v_column);
        }
        for (int row = box.first_row; row <= box.last_row; ++row) {
            const auto free = static_cast<__mmask8>(in_box & ~claimed_.EightFrom(row, column));
            if (free == 0) continue;
            const __m512d dy = _mm512_set1_pd(row - box.first_row);
            __m512d u[2], v[2];
            __mmask8 inside[2];
            for (int t = 0; t < 2; ++t) {
                u[t] = _mm512_fmadd_pd(dy, _mm512_set1_pd(cell.planes[t].u_row), first_u[t]);
                v[t] = _mm512_fmadd_pd(dy, _mm512_set1_pd(cell.planes[t].v_row), first_v[t]);
                inside[t] = InsideLanes(u[t], v[t]);
            }
            const auto taken = static_cast<__mmask8>(free & (inside[0] | inside[1]));
            if (taken == 0) continue;
            const auto in_second = static_cast<__mmask8>(~inside[0]);
            claimed_.Claim(row, column, taken);
            const __mmask8 written = owns_all ? taken : OwnedLanes(ownership_, block_, row, column, taken);
            _mm_mask_storeu_epi8(image_.mask[row] + column, written, _mm_set1_epi8(1));
            for (std::size_t k = 0; k < dense_count; ++k) {
                StoreLanes(dense[k], row, column, LanesOf(dense[k], row, column, written),
                           ValueInLanes(quantities[k], u, v, written, in_second));
            }
            if (layers_.IsSparseRow(row)) {
                for (std::size_t k = 0; k < sparse_count; ++k) {
                    StoreSparseLanes(sparse[k], row, column, written,
                                     ValueInLanes(quantities[dense_count + k], u, v, written, in_second));
                }
            }
            if (written == taken) continue;

            alignas(32) float values[kMaxLayers][kLanes];
            for (std::size_t k = 0; k < dense_count + sparse_count; ++k) {
                _mm256_store_ps(values[k], ValueInLanes(quantities[k], u, v, taken, in_second));
            }
            Keep(row, column, taken & ~unsigned{written}, values);
        }
    }
}

void TRIANGLE_FILLER::Keep(int row, int column, unsigned lanes, const float (*values)[kLanes]) {
    for (; lanes != 0; lanes &= lanes - 1) {
        const int lane = __builtin_ctz(lanes);
        CONTESTED_PIXEL pixel{row, column + lane, {}};
        for (std::size_t k = 0; k < layers_.Count(); ++k) pixel.values[k] = values[k][lane];
        contested_.push_back(pixel);
    }
}

bool TRIANGLE_FILLER::MachineHasVectors() {
    static const bool has = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                            __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
                            __builtin_cpu_supports("bmi2");
    return has;
}

#else

void TRIANGLE_FILLER::FillWithVectors(const CELL& cell) {
    FillPixelByPixel(cell);
}

bool TRIANGLE_FILLER::MachineHasVectors() {
    return false;
}

#endif
