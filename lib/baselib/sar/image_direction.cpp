#include "lib/baselib/sar/image_direction.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

namespace SAR {

namespace {

[[noreturn]] void Reject(const char* text, const std::string& first, const std::string& second) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s", text);
    LogAndThrow<ERROR_INVALID_VALUE>("range \"%s\", azimuth \"%s\"", first.c_str(), second.c_str());
}

/// The edge of the direction's first position when this position is at that edge, and the other way round.
Edge Turned(const Range& range, const Edge& edge) {
    if (range.Id() == Range::NEAR) return edge;
    if (range.Id() == Range::FAR) return edge.Opposite();
    Reject(range.Id() == Range::MID ? "mid range is at no edge" : "range is not set", range.Text(), "");
}

Edge Turned(const Azimuth& azimuth, const Edge& edge) {
    if (azimuth.Id() == Azimuth::START) return edge;
    if (azimuth.Id() == Azimuth::STOP) return edge.Opposite();
    Reject(azimuth.Id() == Azimuth::CENTER ? "azimuth center is at no edge" : "azimuth is not set", "", azimuth.Text());
}

}  // namespace

ImageDirection::ImageDirection(const Range& range, const Edge& range_edge, const Azimuth& azimuth,
                               const Edge& azimuth_edge)
    : edges_{Turned(range, range_edge), Turned(azimuth, azimuth_edge)} {
    if (!range_edge.IsOrthogonalTo(azimuth_edge)) {
        Reject("range and azimuth should be at orthogonal edges", range_edge.Text(), azimuth_edge.Text());
    }
}

Edge ImageDirection::EdgeOf(const Range& range) const {
    return Turned(range, edges_.first);
}
Edge ImageDirection::EdgeOf(const Azimuth& azimuth) const {
    return Turned(azimuth, edges_.second);
}

}  // namespace SAR
