#include "simulation/triangle_normals.h"

namespace {

/// (c - a) x (b - a), component by component.
[[gnu::always_inline]] inline void Cross(const SAMPLE_RUN& a, int i, const SAMPLE_RUN& b, int j, const SAMPLE_RUN& c,
                                         int k, double& x, double& y, double& z) {
    const double bx = b.x_m[j] - a.x_m[i];
    const double by = b.y_m[j] - a.y_m[i];
    const double bz = b.z_m[j] - a.z_m[i];
    const double cx = c.x_m[k] - a.x_m[i];
    const double cy = c.y_m[k] - a.y_m[i];
    const double cz = c.z_m[k] - a.z_m[i];
    x = cy * bz - cz * by;
    y = cz * bx - cx * bz;
    z = cx * by - cy * bx;
}

}  // namespace

void VELMORA_VECTOR_LEVEL::TriangleNormals(const SAMPLE_RUN& upper, const SAMPLE_RUN& lower, int count,
                                           double* const (&normals)[2][3]) {
    // The arrays do not overlap, and are too many for the compiler to ask at run time.
    double* const x0 = normals[0][0];
    double* const y0 = normals[0][1];
    double* const z0 = normals[0][2];
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) Cross(upper, i, upper, i + 1, lower, i, x0[i], y0[i], z0[i]);
    double* const x1 = normals[1][0];
    double* const y1 = normals[1][1];
    double* const z1 = normals[1][2];
    // From the lower right corner: the same sense.
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) Cross(lower, i + 1, lower, i, upper, i + 1, x1[i], y1[i], z1[i]);
}
