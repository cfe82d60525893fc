/// \file image_direction.h
/// How range and azimuth run through an image. Range grows from the edge of near range to the opposite edge, that of
/// far range; azimuth grows from the edge of the first line in time (start) to the opposite edge (stop). The two
/// directions are at right angles, hence their edges meet in a corner. The middles (mid range, azimuth center) lie at
/// no edge.

#pragma once

#include "lib/baselib/containers/records.h"
#include "lib/baselib/sar/sar_enumerations.h"

namespace SAR {

class ImageDirection {
  public:
    /// Not set: both edges are "-".
    ImageDirection() = default;
    /// "This range is at that edge, this azimuth at that one." Far range or azimuth stop at an edge say that near range
    /// or azimuth start are at the opposite one.
    /// @throws ERROR_INVALID_VALUE for the middle of a direction, for "-", and for edges that do not meet in a corner
    ImageDirection(const Range& range, const Edge& range_edge, const Azimuth& azimuth, const Edge& azimuth_edge);

    /// The edge of near range and the edge of azimuth start.
    [[nodiscard]] const TUPLE<Edge>& Edges() const { return edges_; }
    /// The edge at which this range or azimuth is; "-" while the direction is not set.
    /// @throws ERROR_INVALID_VALUE for the middle of a direction and for "-"
    [[nodiscard]] Edge EdgeOf(const Range& range) const;
    [[nodiscard]] Edge EdgeOf(const Azimuth& azimuth) const;

  private:
    TUPLE<Edge> edges_;
};

}  // namespace SAR
