#include "orbit/interpolation/local_pieces.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"

namespace {

/// Where piece `index` hands over to the next one.
double JointAfter(const SUPPORT_POINTS& points, int index, int point_count) {
    const double* const run = points.x.data() + index;
    if (point_count % 2 == 0) return run[point_count / 2];
    return Midway(run[(point_count - 1) / 2], run[(point_count + 1) / 2], points.is_float);
}

}  // namespace

LOCAL_PIECES::LOCAL_PIECES(const SUPPORT_POINTS& points, const PARAMETERS& parameters)
    : parameters_(parameters),
      x_(points.x.begin(), points.x.end()),
      y_(points.y.begin(), points.y.end()),
      slope_(points.slope.begin(), points.slope.end()),
      points_{x_, y_, slope_, points.is_float, points.first_index},
      is_made_(x_.size() - static_cast<size_t>(parameters.point_count) + 1) {
    const int count = static_cast<int>(is_made_.size());
    for (int i = 0; i < count; ++i) {
        const bool last = i == count - 1;
        const double start = i == 0 ? x_.front() : joints_.back();
        const double stop = last ? x_.back() : JointAfter(points_, i, parameters_.point_count);
        if (!last) joints_.push_back(stop);
        const int index_start = points_.first_index + i;
        pieces_.emplace_back(index_start, index_start + parameters_.point_count - 1, start, stop);
    }
    Log().Message(LOGGING_LEVEL::PARAMETER, "LOCAL_INTERPOLATION: polynom count; %d", count);
    if (count > kMostMadeAtOnce)
        Log().Message(LOGGING_LEVEL::PARAMETER, "LOCAL_INTERPOLATION: more than %d: each is made when it is asked for",
                      kMostMadeAtOnce);
    // The first one in any case: what it refuses or lowers holds for all.
    const int made_now = count > kMostMadeAtOnce ? 1 : count;
    for (int i = 0; i < made_now; ++i) Make(static_cast<size_t>(i));
}

void LOCAL_PIECES::Make(size_t index) {
    PIECE& piece = pieces_[index];
    Log().Message(LOGGING_LEVEL::PARAMETER, "idx_start=%d idx_stop=%d t_start=%.15g t_stop=%.15g", piece.IndexStart(),
                  piece.IndexStop(), piece.Start(), piece.Stop());
    std::unique_ptr<INTERPOLATOR> interpolator = parameters_.make();
    interpolator->SetOrder(parameters_.order);
    interpolator->SetSupportPointCount(parameters_.point_count);
    // All pieces have as many points: what the first one says about order and singular values holds for all.
    interpolator->WarnAboutDropped(index == 0);
    piece.Create(std::move(interpolator), points_);
    if (index == 0) parameters_.order = piece.Interpolator().Order();
    is_made_[index].store(true, std::memory_order_release);
}

const LOCAL_PIECES::PIECE& LOCAL_PIECES::Piece(int index) {
    const auto at = static_cast<size_t>(index);
    if (!is_made_[at].load(std::memory_order_acquire)) {
        const std::lock_guard<std::mutex> lock(making_);
        if (!is_made_[at].load(std::memory_order_relaxed)) Make(at);
    }
    return pieces_[at];
}

const INTERPOLATOR& LOCAL_PIECES::For(double x) {
    // A NaN would trap in the search; the first piece answers it as its class does.
    const auto joint = std::isnan(x) ? joints_.begin() : std::upper_bound(joints_.begin(), joints_.end(), x);
    return Piece(static_cast<int>(joint - joints_.begin())).Interpolator();
}
