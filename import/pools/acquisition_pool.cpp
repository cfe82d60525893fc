#include "import/pools/acquisition_pool.h"

#include "import/pools/orbit_entries.h"

namespace {

/// The radar looks to the right on all Sentinel-1 satellites; the annotation does not say so.
constexpr const char* kLookDirection = "right";

ARRAY<double> EllipsoidParameters(const S1_ANNOTATION& image) {
    ARRAY<double> list(0, 9);  // shift, rotation and scale are 0: the orbits' own frame
    for (int i = 0; i < 7; ++i) list[i] = 0.0;
    list[7] = image.semi_major_axis_m;
    list[8] = image.semi_minor_axis_m;
    return list;
}

}  // namespace

void WriteAcquisitionPool(const std::string& path, const S1_ANNOTATION& image, const IMAGE_GRID& grid,
                          const ORBIT_TABLE& orbit, const std::vector<UTC_STATE_VECTOR>& vectors) {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    const UNIVERSAL_TIME reference = ReferenceTimeFor(vectors);
    pool.Change("n_samples", static_cast<int>(grid.samples),
                {" " + image.mission + " " + image.swath + " " + image.polarisation + ", first line " +
                 grid.first_line.ToIsoText() + " UTC"});
    pool.Change("n_lines", static_cast<int>(grid.lines));
    pool.Change("first_az_time", (grid.first_line - reference).Seconds());
    pool.Change("first_rg_time", image.first_range_time_s);
    pool.Change("prf", 1.0 / image.line_interval_s);
    pool.Change("range_sampling_frequency", image.range_sampling_rate_hz);
    pool.Change("oversampling", 1.0);
    pool.Change("az_bandwidth", image.azimuth_bandwidth_hz);
    pool.Change("radar_frequency", image.radar_frequency_hz);
    pool.Change("antenna_look_direction", std::string(kLookDirection));
    pool.Change("ellipsoid_parameters", EllipsoidParameters(image));
    ChangeOrbitEntries(pool, vectors, reference, " state vectors: " + orbit.kind);
    pool.Update();
}
