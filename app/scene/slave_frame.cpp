#include "app/scene/slave_frame.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "app/scene/geographic_box.h"
#include "geometry/calc_slave_time.h"
#include "geometry/constants.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/azimuth_shift_correction.h"

namespace {

/// Fractional sample (x) and line (y) of the slave; nothing where its orbit has no data.
class SLAVE_VIEW {
  public:
    SLAVE_VIEW(const RADAR_PAIR& pair, const ACQUISITIONS& acquisitions)
        : slave_(pair.slave),
          single_pass_(acquisitions.mode.IsSinglePass()),
          correction_(acquisitions.correction),
          middle_s_(0.5 * (slave_.first_azimuth_time_s + slave_.last_azimuth_time_s)) {}

    [[nodiscard]] std::optional<POINT<double>> operator()(const BORDER_PLACE& place,
                                                          const VECTOR_3D<double>& point_m) const {
        const std::optional<ZERO_DOPPLER> seen = ZeroDopplerInsideData(slave_.orbit, point_m, middle_s_);
        if (!seen) return std::nullopt;
        double time_s = seen->time_s;
        double range_time_s = 2.0 * seen->range_m / kSpeedOfLight;
        if (single_pass_) {  // the echo leaves one satellite and reaches the other: halfway between the two views
            time_s = 0.5 * (time_s + place.azimuth_time_s);
            range_time_s = 0.5 * (range_time_s + place.range_time_s);
            time_s += AzimuthShiftCorrection(correction_, range_time_s);
        }
        return POINT<double>{(range_time_s - slave_.near_range_time_s) * slave_.rsf_hz,
                             (time_s - slave_.first_azimuth_time_s) * slave_.prf_hz};
    }

  private:
    const ACQUISITION_SCENE& slave_;
    const bool single_pass_;
    const AZIMUTH_SHIFT_CORRECTION& correction_;
    const double middle_s_;
};

bool LiesBeyond(const SPAN& span, int size) {
    constexpr int kLeastNeighbourhood = 5000;
    const double neighbourhood = std::max(size, kLeastNeighbourhood);
    return span.most < -neighbourhood || span.least > size + neighbourhood;
}

/// No "-0" in messages.
double Whole(double pixel) {
    return std::rint(pixel) + 0.0;
}

}  // namespace

void WarnAboutForeignSlave(const std::vector<BORDER_PLACE>& border, const RADAR_PAIR& pair,
                           const ACQUISITIONS& acquisitions) {
    const SLAVE_VIEW view(pair, acquisitions);
    SPAN samples;
    SPAN lines;
    for (const BORDER_PLACE& place : border) {
        for (const DEM_POSITION* position : {&place.lowest, &place.highest}) {
            const std::optional<POINT<double>> pixel = view(place, position->point_m);
            if (!pixel) return;
            samples.Add(pixel->x);
            lines.Add(pixel->y);
        }
    }
    const IMAGE_SIZE& size = acquisitions.slave_image;
    if (!LiesBeyond(samples, size.samples) && !LiesBeyond(lines, size.lines)) return;
    Log().Message(LOGGING_LEVEL::WARNING,
                  "%s: the scene lies far outside the slave image: samples %.0f .. %.0f of %d, lines %.0f .. %.0f of "
                  "%d: start times and orbit may be those of another image",
                  acquisitions.slave.pool.c_str(), Whole(samples.least), Whole(samples.most), size.samples,
                  Whole(lines.least), Whole(lines.most), size.lines);
}
