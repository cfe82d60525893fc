#include "simulation/cell_filling.h"

#include "lib/baselib/vectors/eight_lanes.h"
#include "simulation/triangle.h"

namespace {

constexpr double kSmallestArea = 1e-5;  ///< square pixels
constexpr double kLargestInt = 2147483647.0;

/// What is linear over the image, counted from the cell's first pixel.
struct PLANE {
    double at = 0.0;
    double per_column = 0.0;
    double per_row = 0.0;
};

/// Of the two triangles of a cell. Corners: 0 and 1 stand in the upper row, 2 and 3 in the lower.
constexpr int kCorners[2][3] = {{0, 1, 2}, {1, 2, 3}};

/// Barycentric coordinates of a triangle's second and third corner.
struct TRIANGLE_PLANES {
    PLANE u;
    PLANE v;
    bool is_line;
};

struct CELL {
    double x[4];  ///< column
    double y[4];  ///< row
    int first_column;
    int last_column;
    int first_row;
    int last_row;
    double origin_row;  ///< first row of the whole cell, also where the rows to be filled begin later
};

VELMORA_INLINE double Least(const double (&v)[4]) {
    const double a = v[0] < v[1] ? v[0] : v[1];
    const double b = v[2] < v[3] ? v[2] : v[3];
    return a < b ? a : b;
}

VELMORA_INLINE double Greatest(const double (&v)[4]) {
    const double a = v[0] > v[1] ? v[0] : v[1];
    const double b = v[2] > v[3] ? v[2] : v[3];
    return a > b ? a : b;
}

/// The last whole number not above a value, which is first brought between 0 and the greatest int.
VELMORA_INLINE int FirstPixel(double lowest) {
    const double held = lowest > 0.0 ? (lowest < kLargestInt ? lowest : kLargestInt) : 0.0;
    return static_cast<int>(held);
}

/// The first whole number not below a value, which is first brought between -1 and the last pixel.
VELMORA_INLINE int LastPixel(double highest, int last) {
    const double held = highest > -1.0 ? (highest < last ? highest : last) : -1.0;
    const int down = static_cast<int>(held);
    return down + (held > down ? 1 : 0);
}

VELMORA_INLINE double TwiceTheArea(double ax, double ay, double bx, double by, double cx, double cy) {
    return __builtin_fabs(ax * (by - cy) + bx * (cy - ay) + cx * (ay - by));
}

VELMORA_INLINE TRIANGLE_PLANES PlanesOf(const CELL& cell, const int (&corners)[3]) {
    const double x0 = cell.x[corners[0]];
    const double y0 = cell.y[corners[0]];
    const double x1 = cell.x[corners[1]] - x0;
    const double y1 = cell.y[corners[1]] - y0;
    const double x2 = cell.x[corners[2]] - x0;
    const double y2 = cell.y[corners[2]] - y0;
    const double determinant = x1 * y2 - y1 * x2;
    const double twice_area =
        TwiceTheArea(x0, y0, cell.x[corners[1]], cell.y[corners[1]], cell.x[corners[2]], cell.y[corners[2]]);
    TRIANGLE_PLANES planes;
    planes.is_line = 0.5 * twice_area < kSmallestArea || determinant == 0.0;
    if (planes.is_line) {
        planes.u = {2.0, 0.0, 0.0};  // outside everywhere
        planes.v = {2.0, 0.0, 0.0};
        return planes;
    }
    const double per_determinant = 1.0 / determinant;
    const double dx = cell.first_column - x0;
    const double dy = cell.origin_row - y0;
    planes.u = {0.0, y2 * per_determinant, -x2 * per_determinant};
    planes.v = {0.0, -y1 * per_determinant, x1 * per_determinant};
    planes.u.at = planes.u.per_column * dx + planes.u.per_row * dy;
    planes.v.at = planes.v.per_column * dx + planes.v.per_row * dy;
    return planes;
}

/// The plane through the values of a triangle's corners.
VELMORA_INLINE PLANE PlaneThrough(const TRIANGLE_PLANES& t, double v0, double v1, double v2) {
    const double d1 = v1 - v0;
    const double d2 = v2 - v0;
    return {v0 + (d1 * t.u.at + d2 * t.v.at), d1 * t.u.per_column + d2 * t.v.per_column,
            d1 * t.u.per_row + d2 * t.v.per_row};
}

/// A plane at the lanes of a group: its values in the cell's first row, and how they grow from row to row.
struct PLANE_IN_LANES {
    EIGHT_DOUBLES first_row;
    double per_row;

    VELMORA_INLINE EIGHT_DOUBLES InRow(double dy) const { return first_row + dy * per_row; }
};

VELMORA_INLINE PLANE_IN_LANES InLanes(const PLANE& plane, const EIGHT_DOUBLES& dx) {
    return {dx * plane.per_column + plane.at, plane.per_row};
}

/// All that is linear, at eight neighbouring columns of a cell.
struct STRIP {
    int column;        ///< of lane 0
    unsigned in_cell;  ///< lanes that are not beyond the cell's last column
    PLANE_IN_LANES u[2];
    PLANE_IN_LANES v[2];
    PLANE_IN_LANES values[kMaxLayers][2];
};

/// A point counts as inside when the areas of its three part triangles exceed the whole by at most the tolerance. The
/// areas, over the whole, are the magnitudes of its barycentric coordinates.
VELMORA_INLINE EIGHT_TRUTHS IsInside(const EIGHT_DOUBLES& u, const EIGHT_DOUBLES& v) {
    return IsAtMost(Magnitude(u) + Magnitude(v) + Magnitude(1.0 - (u + v)), 1.0 + kInsideTolerance);
}

VELMORA_INLINE bool FindBox(const FILLING& filling, CELL& cell) {
    const double lowest_row = Least(cell.y);
    cell.first_column = FirstPixel(Least(cell.x));
    cell.last_column = LastPixel(Greatest(cell.x), filling.last_column);
    cell.first_row = FirstPixel(lowest_row);
    cell.last_row = LastPixel(Greatest(cell.y), filling.last_row);
    cell.origin_row = cell.first_row;
    if (cell.first_row < filling.first_row) cell.first_row = filling.first_row;
    return cell.first_row <= cell.last_row && cell.first_column <= cell.last_column;
}

VELMORA_INLINE void LoadCorners(const CORNER_ROWS& corners, int i, CELL& cell) {
    for (int c = 0; c < 4; ++c) {
        cell.x[c] = corners.values[static_cast<int>(QUANTITY::RANGE_PIXEL)][c >> 1][i + (c & 1)];
        cell.y[c] = corners.values[static_cast<int>(QUANTITY::AZIMUTH_PIXEL)][c >> 1][i + (c & 1)];
    }
}

/// The planes of a cell's triangles, and those of every layer.
struct CELL_PLANES {
    TRIANGLE_PLANES triangles[2];
    PLANE values[kMaxLayers][2];
    float normals[2][3];
};

VELMORA_INLINE void SetUpPlanes(const FILLING& filling, const CORNER_ROWS& corners, int i, const CELL& cell,
                                CELL_PLANES& planes) {
    for (int t = 0; t < 2; ++t) planes.triangles[t] = PlanesOf(cell, kCorners[t]);
    for (int k = filling.plane_count; k < filling.layer_count; ++k) {
        const int axis = k - filling.plane_count;
        for (int t = 0; t < 2; ++t) planes.normals[t][axis] = static_cast<float>(corners.normals[t][axis][i]);
    }
    for (int k = 0; k < filling.plane_count; ++k) {
        const int quantity = static_cast<int>(filling.layers[k].quantity);
        if (quantity >= kQuantities) {
            for (int t = 0; t < 2; ++t) planes.values[k][t] = {corners.normals[t][quantity - kQuantities][i], 0.0, 0.0};
            continue;
        }
        const double* const(&rows)[2] = corners.values[quantity];
        const double values[4] = {rows[0][i], rows[0][i + 1], rows[1][i], rows[1][i + 1]};
        for (int t = 0; t < 2; ++t) {
            planes.values[k][t] = PlaneThrough(planes.triangles[t], values[t], values[t + 1], values[t + 2]);
        }
    }
}

VELMORA_INLINE void SetUpStrip(const FILLING& filling, const CELL& cell, const CELL_PLANES& planes, int column,
                               STRIP& strip) {
    const int lanes_left = cell.last_column - column + 1;
    strip.column = column;
    strip.in_cell = lanes_left >= kLanes ? 0xffU : (1U << lanes_left) - 1U;
    const EIGHT_DOUBLES dx = LaneNumbers() + static_cast<double>(column - cell.first_column);
    for (int t = 0; t < 2; ++t) {
        strip.u[t] = InLanes(planes.triangles[t].u, dx);
        strip.v[t] = InLanes(planes.triangles[t].v, dx);
        for (int k = 0; k < filling.plane_count; ++k) strip.values[k][t] = InLanes(planes.values[k][t], dx);
    }
}

/// Stores those lanes that have their place in a sparse layer.
VELMORA_INLINE void StorePlaces(const PIXEL_LAYER& layer, int row, int column, unsigned lanes,
                                const float (&values)[kLanes]) {
    const int grid_row = layer.row_of[row];
    if (grid_row < 0) return;
    for (unsigned left = lanes & layer.next_eight[column]; left != 0; left &= left - 1) {
        const int lane = __builtin_ctz(left);
        layer.Store(grid_row, layer.column_of[column + lane], values[lane]);
    }
}

/// Lanes that have their place in a dense layer, which may be smaller than the image.
VELMORA_INLINE unsigned PlacesOf(const PIXEL_LAYER& layer, int row, int column, unsigned lanes) {
    const int left = layer.columns - column;
    if (row >= layer.end_row || left <= 0) return 0;
    return left >= kLanes ? lanes : lanes & ((1U << left) - 1U);
}

VELMORA_INLINE void StoreDense(const PIXEL_LAYER& layer, int row, int column, unsigned lanes,
                               const EIGHT_FLOATS& values) {
    if (layer.singles.data != nullptr) {
        StoreLanes(layer.singles[row] + column, lanes, values);
    } else {
        StoreLanes(layer.doubles[row] + column, lanes, values);
    }
}

/// Stores the normals of the triangles in those lanes that have their place in the sparse layers.
/// @param in_first  lanes of the first triangle
VELMORA_INLINE void StoreNormals(const FILLING& filling, const CELL_PLANES& planes, int row, int column,
                                 unsigned in_first, unsigned lanes) {
    const PIXEL_LAYER* const layers = filling.layers + filling.plane_count;
    const int grid_row = layers[0].row_of[row - filling.first_row];
    if (grid_row < 0) return;
    for (unsigned left = lanes & layers[0].next_eight[column]; left != 0; left &= left - 1) {
        const int lane = __builtin_ctz(left);
        const float(&normal)[3] = planes.normals[(in_first >> lane & 1U) != 0 ? 0 : 1];
        const int grid_column = layers[0].column_of[column + lane];
        for (int axis = 0; axis < 3; ++axis) layers[axis].singles[grid_row][grid_column] = normal[axis];
    }
}

/// The values of all layers in the lanes of one row that the cell takes.
/// @param written  of the taken lanes those that the thread may write now; the others are kept
VELMORA_INLINE void StoreRow(const FILLING& filling, const CELL_PLANES& planes, const STRIP& strip, int row, double dy,
                             const EIGHT_TRUTHS (&in)[2], unsigned taken, unsigned written) {
    float values[kMaxLayers][kLanes];
    const bool sparse_too = filling.sparse_row[row - filling.first_row] != 0;
    const int count = sparse_too ? filling.plane_count : filling.dense_count;
    for (int k = 0; k < count; ++k) {
        const PIXEL_LAYER& layer = filling.layers[k];
        const EIGHT_FLOATS value =
            Rounded(Pick(in[0], strip.values[k][0].InRow(dy), in[1], strip.values[k][1].InRow(dy)));
        if (k < filling.dense_count)
            StoreDense(layer, row, strip.column, PlacesOf(layer, row, strip.column, written), value);
        if (k < filling.dense_count && written == taken) continue;
        Store(values[k], value);
        if (k >= filling.dense_count) StorePlaces(layer, row - filling.first_row, strip.column, written, values[k]);
    }
    const bool normals_too = sparse_too && filling.plane_count < filling.layer_count;
    const unsigned in_first = BitsOf(in[0]);
    if (normals_too) StoreNormals(filling, planes, row, strip.column, in_first, written);
    if (written == taken) return;
    for (int k = filling.plane_count; normals_too && k < filling.layer_count; ++k) {
        for (int lane = 0; lane < kLanes; ++lane)
            values[k][lane] = planes.normals[(in_first >> lane & 1U) != 0 ? 0 : 1][k - filling.plane_count];
    }
    KeepPixels(*filling.contested, row, strip.column, taken & ~written, values,
               sparse_too ? filling.layer_count : count);
}

/// @return how many pixels were asked of triangles that are only lines
VELMORA_INLINE long long FillStrip(const FILLING& filling, const CELL& cell, const CELL_PLANES& planes,
                                   const STRIP& strip, bool owns_all) {
    long long asked_of_lines = 0;
    for (int row = cell.first_row; row <= cell.last_row; ++row) {
        const unsigned free = strip.in_cell & ~filling.claimed->EightFrom(row, strip.column);
        if (free == 0) continue;
        const double dy = row - cell.origin_row;
        EIGHT_TRUTHS in[2];
        for (int t = 0; t < 2; ++t) in[t] = IsInside(strip.u[t].InRow(dy), strip.v[t].InRow(dy));
        in[1] = ButNot(in[1], in[0]);  // what both hold, on the diagonal, belongs to the first
        const unsigned in_first = BitsOf(in[0]);
        if (planes.triangles[0].is_line) asked_of_lines += __builtin_popcount(free);
        if (planes.triangles[1].is_line) asked_of_lines += __builtin_popcount(free & ~in_first);
        const unsigned taken = free & (in_first | BitsOf(in[1]));
        if (taken == 0) continue;
        filling.claimed->Claim(row, strip.column, taken);
        const unsigned written =
            owns_all ? taken : filling.ownership->OwnedLanes(filling.block, row, strip.column, taken);
        StoreRow(filling, planes, strip, row, dy, in, taken, written);
    }
    return asked_of_lines;
}

VELMORA_INLINE long long FillCell(const FILLING& filling, const CORNER_ROWS& corners, int i) {
    CELL cell;
    LoadCorners(corners, i, cell);
    if (!FindBox(filling, cell)) return 0;
    filling.claimed->TouchRows(cell.first_row, cell.last_row);
    CELL_PLANES planes;
    SetUpPlanes(filling, corners, i, cell, planes);
    const bool owns_all =
        filling.ownership->OwnsAll(filling.block, {cell.first_column, cell.last_column, cell.first_row, cell.last_row});
    long long asked_of_lines = 0;
    for (int column = cell.first_column; column <= cell.last_column; column += kLanes) {
        STRIP strip;
        SetUpStrip(filling, cell, planes, column, strip);
        asked_of_lines += FillStrip(filling, cell, planes, strip, owns_all);
    }
    return asked_of_lines;
}

}  // namespace

long long VELMORA_VECTOR_LEVEL::FillCells(const FILLING& filling, const CORNER_ROWS& corners,
                                          const unsigned char* wanted, int count) {
    long long asked_of_lines = 0;
    for (int i = 0; i < count; ++i) {
        if (wanted[i] != 0) asked_of_lines += FillCell(filling, corners, i);
    }
    return asked_of_lines;
}
