#include "geometry/pair_geometry.h"

#include <limits>

#include "orbit/orbit_state.h"

PAIR_GEOMETRY PairGeometryAt(const VECTOR_3D<double>& point_m, const VECTOR_3D<double>& up, const ORBIT_STATE& master,
                             const VECTOR_3D<double>& slave_m, double turn_m) {
    const VECTOR_3D<double> side = Unit(CrossProduct(master.velocity_m_s, point_m - master.position_m));
    const VECTOR_3D<double> across = DotProduct(side, up) < 0.0 ? -1.0 * side : side;
    const double height_m = HeightOfAmbiguity_m(turn_m, across, up, Unit(slave_m - point_m));
    return {PerpendicularBaseline_m(master.position_m, slave_m, across),
            height_m > kEndlessHeight_m ? std::numeric_limits<double>::infinity() : height_m};
}
